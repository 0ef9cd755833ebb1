// Lists whose walk depth never returns to zero must not hoard: allocations
// are counted over many rounds.
#include "World.h"

#include "AVSK/AVSKDisplay.h"

#include <gtest/gtest.h>

#include <atomic>
#include <cstdlib>
#include <new>

namespace {
std::atomic<long> gAllocations = 0; // alive
} // namespace

void *operator new(std::size_t size, const std::nothrow_t & /*tag*/) noexcept {
    void *memory = std::malloc(size ? size : 1);
    gAllocations += memory != nullptr;
    return memory;
}

void *operator new(std::size_t size) {
    if (void *memory = operator new(size, std::nothrow))
        return memory;
    throw std::bad_alloc();
}

void operator delete(void *memory) noexcept {
    gAllocations -= memory != nullptr;
    std::free(memory);
}

void operator delete(void *memory, std::size_t /*size*/) noexcept { operator delete(memory); }

namespace {

int Draw(int /*phase*/, int /*isBefore*/, void * /*refcon*/) { return 1; }
float Loop(float /*sinceLast*/, float /*total*/, int /*counter*/, void * /*refcon*/) { return -1; }
int Sniff(char /*key*/, int /*flags*/, char /*virtualKey*/, void * /*refcon*/) { return 1; }

TEST(Memory, StaysFlatOverManyRoundsOfRegisteringAndKeyPresses) {
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
    const long before = gAllocations;
    ASSERT_GT(before, 0);
    for (int i = 0; i < 100000; ++i)
        round();
    EXPECT_EQ(gAllocations, before);
    EXPECT_EQ(AVSKCountHotKeys(), 0);
}

} // namespace
