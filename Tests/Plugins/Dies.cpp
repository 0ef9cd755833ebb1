// Crashes or exits in the way that AVSK_TEST_DIES names: in a hot key for "abort",
// while it is being loaded for "loading", else in its flight loop. For "file" it
// survives and writes a file into the root. Used by Blame_test.cpp and Session_test.cpp.
#include "AVSK/AVSK.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <stdexcept>
#include <string>
#include <string_view>
#include <thread>

#include <csignal>
#include <unistd.h>

namespace {

std::string_view Way() {
    const char *way = std::getenv("AVSK_TEST_DIES");
    return way ? way : "";
}

int *volatile gNowhere = nullptr;
void (*volatile gNoFunction)() = nullptr;
volatile bool gEndless = true;

// Without sanitizers, which would report these faults before the host does.
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

// Overwrites return addresses with 0x41414141. The loop is one instruction, whose
// registers it cannot overwrite.
__attribute__((noinline, no_sanitize("address,undefined"))) void Smash(int bytes) {
    volatile char room[16];
    volatile char *at = room;
    asm volatile("rep stosb" : "+D"(at), "+c"(bytes) : "a"('A') : "memory");
}

__attribute__((no_sanitize("address,undefined"))) void LoseStack() {
    asm volatile("movl $0x41414141, %ebp\n\tmovl $0x41414141, %esp\n\tpushl $1");
}

// Passes texts that are far longer than any line of a report.
void NameLong() {
    const std::string longest(20000, 'n');
    AVSKMenuID menu = AVSKCreateMenu(longest.c_str(), nullptr, 0, nullptr, nullptr);
    AVSKAppendMenuItem(menu, longest.c_str(), nullptr, 0);
    AVSKCreateCommand(longest.c_str(), longest.c_str());
    AVSKDebugString(longest.c_str());
    Write();
}

void Caught() {
    try {
        throw std::runtime_error("caught");
    } catch (const std::exception &) {
        throw 5;
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
             {"smash", [] { Smash(64); }},
             {"smashfar", [] { Smash(2500); }},
             {"registers", LoseStack},
             {"names", NameLong},
             {"rethrow", Caught},
             {"throw", [] { throw std::runtime_error("enough"); }},
             {"file", [] { AVSKSaveDataFile(/*situation*/ 1, "Notes.txt"); }},
             {"text", [] { AVSKFindDataRef(kNoText); }},
             {"_exit", [] { _exit(0); }},
             {"interrupt", [] { raise(SIGINT); }},
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
