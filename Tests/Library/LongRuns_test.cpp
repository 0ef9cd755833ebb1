// Long flights: pass counts above 2^24, which a float cannot represent exactly.
#include "World.h"

extern int gLastCallNumber;

namespace {

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
