// Flight loops: when they are called, with what, and what a pass survives.
#include "World.h"

#include <cmath>

namespace {

class Processing : public ThreePlugins {
  protected:
    // A loop of A's that runs f, and its handle.
    AVSKFlightLoopID Create(LoopPlayer f, int phase = 0) {
        AVSKFlightLoopID loop = nullptr;
        const AVSKCreateFlightLoopParams params = {16, phase, a.code.flightLoop, Keep(std::move(f))};
        a.Run([&] { loop = AVSKCreateFlightLoop(&params); });
        return loop;
    }
    void Schedule(AVSKFlightLoopID loop, float interval, int relativeToNow = 0) const {
        a.Run([=] { AVSKScheduleFlightLoop(loop, interval, relativeToNow); });
    }
    // A loop that notes its label and answers with its interval, due in every pass.
    AVSKFlightLoopID Every(const char *label, int phase = 0) {
        const AVSKFlightLoopID loop = Create([label](float, float, int) { return Note(label), -1.0F; }, phase);
        Schedule(loop, -1);
        return loop;
    }
    static int FrameEnd(float now) { return AVSKEventHook(AVSKHostEventFrameEnd, now, 0, 0); }
};

// Passes do not look at the clock. Where it runs backwards a loop waits until the time
// comes again; a time that is none is passed over; after the end of time nothing is later.
TEST_F(Processing, AnIntervalSaysWhenALoopIsNextCalledWhateverTheClockSays) {
    constexpr float inf = INFINITY;
    const std::vector<float> even = {0.25F, 0.5F, 0.75F, 1, 1.25F, 1.5F, 1.75F, 2};
    const struct {
        float interval;
        std::string calls;
        std::vector<float> passes;
        float created = 0;
    } cases[] = {{0, "........", even},
                 {-1, "********", even},
                 {-1.5F, ".*.*.*.*", even},
                 {-3, "..*..*..", even},
                 {0.25F, "********", even},
                 {0.3F, ".*.*.*.*", even},
                 {NAN, "........", even},
                 {-1e30F, "........", even},
                 {-1, "****", {NAN, inf, -inf, -1}},
                 {1, "*...*", {5, 3, 4, 5.5F, 6}},
                 {1, "...*", {-5, 0, 10, 11}, 10},
                 {1, ".*.*", {NAN, 1, NAN, 2}},
                 {1, "*..*", {inf, 1, -inf, inf}},
                 {inf, "..*.", {1, 1e30F, inf, 2}},
                 {1, "....", {1, 2, inf, NAN}, NAN},
                 {3e38F, ".*.", {3e38F, inf, 1}, 3e38F},
                 {1, "**.", {-inf, -3e38F, -inf}, -inf}};
    for (const auto &each : cases) {
        SCOPED_TRACE(Line("every ", each.interval, ", created at ", each.created));
        bool called = false;
        host.now = each.created;
        const AVSKFlightLoopID loop = Create([&](float, float, int) { return called = true, each.interval; });
        Schedule(loop, each.interval);
        std::string calls;
        for (const float now : each.passes) {
            called = false;
            EXPECT_EQ(World::Pass(now), 1);
            calls += called ? '*' : '.';
        }
        EXPECT_EQ(calls, each.calls);
        a.Run([&] { AVSKDestroyFlightLoop(loop); });
    }
}

TEST_F(Processing, ALoopHearsItsOwnAndTheTotalTimeAndThePass) {
    host.now = 10;
    Schedule(Create([&](float sinceLast, float total, int counter) {
                 Note(Line(sinceLast, " ", total, " ", counter - AVSKGetCycleNumber(), " as ", AVSKGetMyID()));
                 return -1.0F;
             }),
             -1);
    const int before = AVSKGetCycleNumber();
    World::Pass(12);
    FrameEnd(12);
    EXPECT_EQ(AVSKGetCycleNumber(), before + 2) << "two passes a frame";
    World::Pass(12.5F);
    EXPECT_EQ(Take(), (Lines{"2 12 0 as 1", "0.5 12.5 0 as 1"}));
}

TEST_F(Processing, TheLoopCreatedLastIsCalledFirstAndEachInItsPhase) {
    Every("first");
    Every("after 1", 1);
    Every("second");
    Every("after 2", 1);
    World::Pass(1);
    EXPECT_EQ(Take(), (Lines{"second", "first"}));
    FrameEnd(1);
    EXPECT_EQ(Take(), (Lines{"after 2", "after 1"}));
}

TEST_F(Processing, SecondsCountFromCreationOrNow) {
    for (const int relativeToNow : {0, 1}) {
        host.now = 10;
        const AVSKFlightLoopID loop = Create([](float, float, int) { return Note("called"), 0.0F; });
        host.now = 15;
        Schedule(loop, 1, relativeToNow);
        for (const int now : {0, 1}) { // half a second later, and a second
            World::Pass(now ? 16 : 15.5F);
            EXPECT_EQ(Take().size(), now == relativeToNow);
        }
    }
}

TEST_F(Processing, AClockThatDestroysTheLoopLeavesNothingToSchedule) {
    const AVSKFlightLoopID loop = Every("called");
    host.on.getElapsedTime = [=] { return AVSKDestroyFlightLoop(loop), 1.0F; };
    Schedule(loop, -1, 1);
    World::Pass(1);
    EXPECT_EQ(TakeCalls().find("called"), std::string::npos);
}

// The sum of 2^24 and 1 is 2^24 as a float, so the loop is due at once.
TEST_F(Processing, DueTimesAreRoundedToFloat) {
    host.now = 16777216;
    Schedule(Create([](float, float, int) { return Note("called"), 0.0F; }), 1);
    World::Pass(16777216);
    EXPECT_EQ(Take(), Lines{"called"});
}

TEST_F(Processing, FaultyParametersAreReportedOneByOneAndMakeALoopAllTheSame) {
    const AVSKCreateFlightLoopParams faulty = {12, 2, nullptr, nullptr};
    for (const bool listens : {false, true}) {
        AVSKFlightLoopID loop = nullptr;
        a.Run([&] {
            if (listens)
                JournalErrors();
            loop = AVSKCreateFlightLoop(&faulty);
            AVSKScheduleFlightLoop(loop, -1, 0);
            EXPECT_EQ(AVSKCreateFlightLoop(nullptr), nullptr);
        });
        EXPECT_NE(loop, nullptr);
        EXPECT_EQ(Take(), listens ? (Lines{"error: Illegal struct size for AVSKCreateFlightLoop",
                                           "error: Illegal phase type for AVSKCreateFlightLoop",
                                           "error: Null callback for AVSKCreateFlightLoop"})
                                  : Lines());
    }
    const AVSKCreateFlightLoopParams nothing = {16, 0, nullptr, nullptr};
    AVSKScheduleFlightLoop(AVSKCreateFlightLoop(&nothing), -1, 0);
    Every("phase 2", 2);
    Take();
    World::Pass(1);
    FrameEnd(1);
    EXPECT_EQ(Take(), Lines()) << "none of them is ever called";
}

TEST_F(Processing, AnotherPluginsLoopIsLeftAloneAndReported) {
    const AVSKFlightLoopID loop = Every("A's");
    b.Run(JournalErrors);
    b.Run([=] {
        AVSKScheduleFlightLoop(loop, 0, 0);
        AVSKDestroyFlightLoop(loop);
    });
    EXPECT_EQ(Take(), (Lines{"error: Attempt to schedule a flight loop callback owned by another plugin.",
                             "error: Attempt to remove a flight loop callback owned by another plugin."}));
    World::Pass(1);
    EXPECT_EQ(Take(), Lines{"A's"});
}

TEST_F(Processing, TheOlderCallsUnregisterTheNewestAndRescheduleAllWhoeverAsks) {
    void *const player = Keep<LoopPlayer>([](float, float, int) { return Note("called"), 0.0F; });
    a.Run([&] {
        for (int i = 0; i < 3; ++i)
            AVSKRegisterFlightLoopCallback(a.code.flightLoop, 0, player);
    });
    b.Run([&] {
        AVSKUnregisterFlightLoopCallback(a.code.flightLoop, player);
        AVSKUnregisterFlightLoopCallback(a.code.flightLoop, nullptr);
        AVSKSetFlightLoopCallbackInterval(a.code.flightLoop, -1, 0, player);
        AVSKSetFlightLoopCallbackInterval(b.code.flightLoop, 0, 0, player);
    });
    World::Pass(1);
    EXPECT_EQ(Take(), Lines(2, "called"));
    for (const int relativeToNow : {0, 1}) { // a second after the last call, or from 1.5 s on
        host.now = 1.5F;
        AVSKSetFlightLoopCallbackInterval(a.code.flightLoop, 1, relativeToNow, player);
        World::Pass(2);
        EXPECT_EQ(Take().size(), relativeToNow ? 0U : 2U);
    }
}

TEST_F(Processing, APassInsideAPassIsAPass) {
    int depth = 0;
    AVSKFlightLoopID loop = nullptr;
    loop = Create([&](float, float, int counter) {
        Note("pass " + std::to_string(counter));
        if (++depth == 1)
            World::Pass(1);
        else
            AVSKDestroyFlightLoop(loop);
        return -1.0F;
    });
    Every("last");
    Schedule(loop, -1);
    World::Pass(1);
    EXPECT_EQ(Take(), (Lines{"last", "pass 1", "last", "pass 2"}));
    World::Pass(2);
    EXPECT_EQ(Take(), Lines{"last"});
}

TEST_F(Processing, AnUnloadedPluginsLoopsGoWithIt) {
    void *const airs = Keep<LoopPlayer>([](float, float, int) { return Note("air's"), -1.0F; });
    air.Run([&] { AVSKRegisterFlightLoopCallback(air.code.flightLoop, -1, airs); });
    Every("A's");
    // Unloaded in the middle of a pass, before its loop's turn.
    Schedule(Create([](float, float, int) { return World::UnloadAircraft(), 0.0F; }), -1);
    World::Pass(1);
    EXPECT_EQ(TakeCalls(), "disable air; stop air; A's");
    EXPECT_FALSE(air.IsMapped());
}

} // namespace
