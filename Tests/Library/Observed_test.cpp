// The layer that observes all calls across the library's border. This program
// repeats every test behind it. The test here checks that the layer reports all
// calls, complete and in order.
#include "World.h"

#include "Crossings/Format.h"

#include "AVSK/AVSKDisplay.h"

#include <string_view>

namespace {

// Formats every call, as a trace does, during all tests of this program.
struct Everything : crossings::Observer {
    Everything() { crossings::AddObserver(*this); }
    void Begins(const crossings::Crossing &crossing) override {
        crossings::Line line;
        AddSides(line, crossing);
        line.Add("  ");
        AddCall(line, crossing);
        if (isKept)
            kept += std::string(static_cast<std::size_t>(2 * crossing.depth), ' ') + std::string(line.Text()) + "\n";
    }
    void Ends(const crossings::Crossing &crossing) override {
        crossings::Line line;
        AddResult(line, crossing);
        if (isKept)
            kept +=
                std::string(static_cast<std::size_t>(2 * crossing.depth), ' ') + "}" + std::string(line.Text()) + "\n";
    }
    std::string Take() { return std::exchange(kept, {}); }

    bool isKept = false;
    std::string kept;
};
Everything &gEverything = *new Everything;

class Observed : public ThreePlugins {};

float Tick(float /*sinceLast*/, float /*sinceLoop*/, int /*counter*/, void *refcon) {
    AVSKDebugString("tick \"1\"\n");
    *static_cast<int *>(refcon) += 1;
    return 0;
}

TEST_F(Observed, CallsAreSeenNestedWithTheirSidesArgumentsAndResults) {
    int ticks = 0;
    a.Run([&] { AVSKRegisterFlightLoopCallback(Tick, -1, &ticks); });
    gEverything.isKept = true;
    World::Pass(2.5F);
    gEverything.isKept = false;
    EXPECT_EQ(ticks, 1);
    EXPECT_EQ(gEverything.Take(), Line("host > library  AVSKEventHook(event=0, elapsed=2.5, unused=0, parameter=0)\n"
                                       "  library > Name of A  AVSKFlightLoop_f Tick(elapsedSinceLastCall=2.5, "
                                       "elapsedTimeSinceLastFlightLoop=2.5, counter=1, refcon=",
                                       &ticks,
                                       ")\n"
                                       "    Name of A > library  AVSKDebugString(text=\"tick \\\"1\\\"\\n\")\n"
                                       "      library > host  debugString(text=\"tick \\\"1\\\"\\n\")\n"
                                       "      }\n"
                                       "    }\n"
                                       "  } = 0\n"
                                       "} = 1\n"));
}

} // namespace
