// Pass counts that the interface reaches only after months of flight.
#include "World.h"

#include <gtest/gtest.h>

#include <climits>

extern int gLastCallNumber;

namespace {

TEST(PassCount, ComparesExactlyBeyondTheIntegersOfAFloat) {
    World world;
    world.StartQuietly();
    gLastCallNumber = (1 << 24) + 1;
    for (const float interval : {-1.0F, -2.0F, -3.0F}) {
        std::string calls;
        static bool called;
        const auto loop = [](float, float, int, void *refcon) {
            called = true;
            return *static_cast<float *>(refcon);
        };
        float answer = interval;
        AVSKRegisterFlightLoopCallback(loop, interval, &answer);
        for (int pass = 0; pass < 6; ++pass) {
            called = false;
            World::Pass(1);
            calls += called ? '*' : '.';
        }
        EXPECT_EQ(calls, interval == -1 ? "******" : interval == -2 ? ".*.*.*" : "..*..*");
        AVSKUnregisterFlightLoopCallback(loop, &answer);
    }
}

TEST(PassCount, WrapsWhereItWouldOverflow) {
    World world;
    world.StartQuietly();
    gLastCallNumber = INT_MAX;
    World::Pass(1);
    EXPECT_EQ(AVSKGetCycleNumber(), INT_MIN);
}

} // namespace
