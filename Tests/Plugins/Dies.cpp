// Ends in the way that the environment's AVSK_TEST_DIES names, in its flight
// loop or where the name says. Used by Blame_test.cpp.
#include "AVSK/AVSK.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <stdexcept>
#include <string_view>
#include <thread>

namespace {

std::string_view Way() {
    const char *way = std::getenv("AVSK_TEST_DIES");
    return way ? way : "";
}

int *volatile gNowhere = nullptr;
void (*volatile gNoFunction)() = nullptr;
volatile bool gEndless = true;

// Not the sanitizers' to find.
__attribute__((no_sanitize("address,undefined"))) void Write() { *gNowhere = 1; }
__attribute__((no_sanitize("undefined"))) void CallNothing() { gNoFunction(); }

__attribute__((noinline)) int Recurse(int depth) { // NOLINT(misc-no-recursion)
    volatile char room[1000];
    room[0] = static_cast<char>(depth);
    return gEndless ? Recurse(depth + 1) + room[0] : room[0];
}

float Tick(float, float, int, void *) {
    std::fputs("about to die", stdout);
    if (Way() == "write")
        Write();
    else if (Way() == "call")
        CallNothing();
    else if (Way() == "stack")
        Recurse(0);
    else if (Way() == "loop")
        while (gEndless) {
        }
    else if (Way() == "thread")
        std::thread(Write).join();
    else if (Way() == "exit")
        std::exit(0);
    else if (Way() == "throw")
        throw std::runtime_error("enough");
    else if (Way() == "library")
        AVSKGetPluginInfo(AVSKGetMyID(), reinterpret_cast<char *>(Way().size()), nullptr, nullptr, nullptr);
    return -1;
}

void Pressed(void *) {
    if (Way() == "abort")
        std::abort();
}

struct Loaded {
    Loaded() {
        if (Way() == "loading")
            Write();
    }
};
const Loaded gLoaded;

} // namespace

int AVPluginStart(char *name, char *signature, char *description) {
    std::strcpy(name, "Dies");
    std::strcpy(signature, "test.dies");
    std::strcpy(description, "Dies.");
    if (Way() == "abort")
        AVSKRegisterHotKey(/*virtualKey=*/119, /*flags=*/4, "Die", Pressed, nullptr);
    else
        AVSKRegisterFlightLoopCallback(Tick, -1, nullptr);
    return 1;
}
