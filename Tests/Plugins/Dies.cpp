// Ends in the way that the environment's AVSK_TEST_DIES names: at a hot key for
// "abort", while it is loaded for "loading", else in its flight loop. For "file"
// it lives and writes a file into the root. Used by Blame_test.cpp and
// Session_test.cpp.
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
__attribute__((no_sanitize("undefined"))) void Call() { gNoFunction(); }

__attribute__((noinline)) int Recurse(int depth) {
    volatile char room[1000];
    room[0] = static_cast<char>(depth);
    return gEndless ? Recurse(depth + 1) + room[0] : room[0];
}

void Loop() {
    while (gEndless) {
    }
}

char *const kNoText = reinterpret_cast<char *>(7);
const struct {
    std::string_view way;
    void (*die)();
} kWays[] = {{"write", Write},
             {"call", Call},
             {"stack", [] { Recurse(0); }},
             {"loop", Loop},
             {"thread", [] { std::thread(Write).join(); }},
             {"exit", [] { std::exit(0); }},
             {"throw", [] { throw std::runtime_error("enough"); }},
             {"file", [] { AVSKSaveDataFile(/*situation*/ 1, "Notes.txt"); }},
             {"library", [] { AVSKGetPluginInfo(AVSKGetMyID(), kNoText, nullptr, nullptr, nullptr); }}};

float Tick(float, float, int, void *) {
    std::fputs("about to die", stdout);
    for (const auto &[way, die] : kWays)
        if (way == Way())
            die();
    return -1;
}

void Pressed(void *) { std::abort(); }

[[maybe_unused]] const bool gLoaded = Way() == "loading" && (Write(), true);

} // namespace

int AVPluginStart(char *name, char *signature, char *description) {
    std::strcpy(name, "Dies");
    std::strcpy(signature, "test.dies");
    std::strcpy(description, "Dies.");
    if (Way() == "abort")
        AVSKRegisterHotKey(/*F8*/ 119, /*pressed*/ 4, "Die", Pressed, nullptr);
    else
        AVSKRegisterFlightLoopCallback(Tick, -1, nullptr);
    return 1;
}
