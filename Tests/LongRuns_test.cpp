// What only long flights reach: lists whose walk depth never returns to zero must
// not hoard, and pass counts leave the integers of a float behind.
#include "World.h"

#include "AVSK/AVSKDisplay.h"

#include <malloc.h>

extern int gLastCallNumber;

namespace {

int Draw(int /*phase*/, int /*isBefore*/, void * /*refcon*/) { return 1; }
float Loop(float /*sinceLast*/, float /*total*/, int /*counter*/, void * /*refcon*/) { return -1; }
int Sniff(char /*key*/, int /*flags*/, char /*virtualKey*/, void * /*refcon*/) { return 1; }

TEST(LongRuns, MemoryStaysFlatOverManyRoundsOfRegisteringAndKeyPresses) {
    World world;
    world.StartQuietly();
    const auto round = [] {
        AVSKRegisterDrawCallback(Draw, 5, 1, nullptr);
        AVSKRegisterKeySniffer(Sniff, 1, nullptr);
        AVSKRegisterKeySniffer(Sniff, 0, nullptr);
        const AVSKHotKeyID hotKey = AVSKRegisterHotKey(
            'K', 0, "a hot key of some length", [](void *) {}, nullptr);
        const AVSKWindowID window = AVSKCreateWindow(
            0, 1, 1, 0, 1, [](AVSKWindowID, void *) {}, [](AVSKWindowID, char, int, char, void *, int) {}, nullptr,
            nullptr);
        AVSKRegisterFlightLoopCallback(Loop, -1, nullptr);
        AVSKKeyPressHook('k', 0, 'K');
        AVSKKeyPressHook('x', 0, 'X');
        AVSKCountHotKeys();
        AVSKDoDrawingHook(2, 0);
        AVSKDoDrawingHook(20, 0);
        World::Pass(1);
        AVSKUnregisterDrawCallback(Draw, 5, 1, nullptr);
        AVSKUnregisterKeySniffer(Sniff, 1, nullptr);
        AVSKUnregisterKeySniffer(Sniff, 0, nullptr);
        AVSKUnregisterHotKey(hotKey);
        AVSKDestroyWindow(window);
        AVSKUnregisterFlightLoopCallback(Loop, nullptr);
    };
    round();
    const auto before = mallinfo2().uordblks; // 0 under a sanitizer
    for (int i = 0; i < 100000; ++i)
        round();
    EXPECT_EQ(mallinfo2().uordblks, before);
}

TEST(LongRuns, PassCountsCompareExactlyBeyondTheIntegersOfAFloat) {
    World world;
    world.StartQuietly();
    gLastCallNumber = (1 << 24) + 1;
    AVSKRegisterFlightLoopCallback([](float, float, int, void *) { return Note("called"), -3.0F; }, -3, nullptr);
    for (const bool called : {false, false, true, false, false, true}) {
        World::Pass(1);
        EXPECT_EQ(Take().size(), called);
    }
}

} // namespace
