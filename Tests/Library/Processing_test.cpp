// Flight loops: when they are called, and with what.
#include "World.h"

#include <cmath>

namespace {

class Processing : public ThreePlugins {
  protected:
    // Creates a loop of plugin A that runs f; returns its handle.
    AVSKFlightLoopID Create(LoopPlayer f, int phase = 0) {
        const AVSKCreateFlightLoopParams params = {16, phase, a.code.flightLoop, Keep(std::move(f))};
        return a.Run([&] { return AVSKCreateFlightLoop(&params); });
    }
    void Schedule(AVSKFlightLoopID loop, float interval, int relativeToNow = 0) const {
        a.Run([=] { AVSKScheduleFlightLoop(loop, interval, relativeToNow); });
    }
    // Creates a loop of plugin A that is due in every pass and journals its label.
    AVSKFlightLoopID Every(const char *label, int phase = 0) {
        const AVSKFlightLoopID loop = Create([label](float, float, int) { return Note(label), -1.0F; }, phase);
        Schedule(loop, -1);
        return loop;
    }
    static std::string Pass(float now) { return DOES(World::Pass(now)); }
    static std::string FrameEnd(float now) { return DOES(AVSKEventHook(AVSKHostEventFrameEnd, now, 0, 0)); }
};

// Intervals in passes ignore the clock. If the clock runs backwards, a loop waits
// until its due time is reached again. A NaN time calls no loop with an interval in
// seconds. After infinity, no time is later.
TEST_F(Processing, AnIntervalSaysWhenALoopIsNextCalledWhateverTheClockSays) {
    constexpr float inf = INFINITY;
    const std::vector<float> even = {0.25F, 0.5F, 0.75F, 1, 1.25F, 1.5F, 1.75F, 2};
    for (const auto &[interval, expected, created, passes] :
         Table<float, std::string, float, std::vector<float>>{{0, "........", 0, even},
                                                              {-1, "********", 0, even},
                                                              {-1.5F, ".*.*.*.*", 0, even},
                                                              {-3, "..*..*..", 0, even},
                                                              {0.25F, "********", 0, even},
                                                              {0.3F, ".*.*.*.*", 0, even},
                                                              {NAN, "........", 0, even},
                                                              {-1e30F, "........", 0, even},
                                                              {-1, "****", 0, {NAN, inf, -inf, -1}},
                                                              {1, "*...*", 0, {5, 3, 4, 5.5F, 6}},
                                                              {1, "...*", 10, {-5, 0, 10, 11}},
                                                              {1, ".*.*", 0, {NAN, 1, NAN, 2}},
                                                              {1, "*..*", 0, {inf, 1, -inf, inf}},
                                                              {inf, "..*.", 0, {1, 1e30F, inf, 2}},
                                                              {1, "....", NAN, {1, 2, inf, NAN}},
                                                              {3e38F, ".*.", 3e38F, {3e38F, inf, 1}},
                                                              {1, "**.", -inf, {-inf, -3e38F, -inf}}}) {
        SCOPED_TRACE(Line("every ", interval, ", created at ", created));
        host.now = created;
        const AVSKFlightLoopID loop = Create([again = interval](float, float, int) { return Note("*"), again; });
        Schedule(loop, interval);
        std::string calls;
        for (const float now : passes)
            calls += Pass(now) == "1: *" ? '*' : '.';
        EXPECT_EQ(calls, expected);
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
    EXPECT_EQ((Lines{Pass(12), FrameEnd(12)}), (Lines{"1: 2 12 0 as 1", "1"}));
    EXPECT_EQ(AVSKGetCycleNumber(), before + 2) << "two passes a frame";
    EXPECT_EQ(Pass(12.5F), "1: 0.5 12.5 0 as 1");
}

TEST_F(Processing, TheLoopCreatedLastIsCalledFirstAndEachInItsPhase) {
    for (const auto &[label, phase] : {std::pair("first", 0), {"after 1", 1}, {"second", 0}, {"after 2", 1}})
        Every(label, phase);
    EXPECT_EQ((Lines{Pass(1), FrameEnd(1)}), (Lines{"1: second; first", "1: after 2; after 1"}));
}

TEST_F(Processing, SecondsCountFromCreationOrNow) {
    for (const int relativeToNow : {0, 1}) {
        host.now = 10;
        const AVSKFlightLoopID loop = Create([](float, float, int) { return Note("called"), 0.0F; });
        host.now = 15;
        Schedule(loop, 1, relativeToNow);
        for (const int now : {0, 1}) // half a second after Schedule(), and one second
            EXPECT_EQ(Pass(now ? 16 : 15.5F), now == relativeToNow ? "1: called" : "1");
    }
}

TEST_F(Processing, AClockThatDestroysTheLoopLeavesNothingToSchedule) {
    const AVSKFlightLoopID loop = Every("called");
    host.on.getElapsedTime = [=] { return AVSKDestroyFlightLoop(loop), 1.0F; };
    Schedule(loop, -1, 1);
    EXPECT_EQ(Pass(1), "1");
}

// As a float, 2^24 + 1 rounds to 2^24, so the loop is due at once.
TEST_F(Processing, DueTimesAreRoundedToFloat) {
    host.now = 16777216;
    Schedule(Create([](float, float, int) { return Note("called"), 0.0F; }), 1);
    EXPECT_EQ(Pass(16777216), "1: called");
}

TEST_F(Processing, FaultyParametersAreReportedOneByOneAndMakeALoopAllTheSame) {
    const AVSKCreateFlightLoopParams faulty = {12, 2, nullptr, nullptr}, nothing = {16, 0, nullptr, nullptr};
    const auto create = [&] {
        const AVSKFlightLoopID loop = AVSKCreateFlightLoop(&faulty);
        AVSKScheduleFlightLoop(loop, -1, 0);
        return loop && !AVSKCreateFlightLoop(nullptr);
    };
    EXPECT_EQ(DOES_AS(a, create()), "1");
    a.Run(JournalErrors);
    EXPECT_EQ(DOES_AS(a, create()), "1: error: Illegal struct size for AVSKCreateFlightLoop; error: Illegal phase type "
                                    "for AVSKCreateFlightLoop; error: Null callback for AVSKCreateFlightLoop");
    AVSKScheduleFlightLoop(AVSKCreateFlightLoop(&nothing), -1, 0);
    Every("phase 2", 2);
    EXPECT_EQ((Lines{Pass(1), FrameEnd(1)}), Lines(2, "1")) << "none of them is ever called";
    EXPECT_EQ(DOES((Every("before"), Every("after", 1))).find("error"), std::string::npos);
}

TEST_F(Processing, AnotherPluginsLoopIsLeftAloneAndReported) {
    const AVSKFlightLoopID loop = Every("A's");
    b.Run(JournalErrors);
    EXPECT_EQ(DOES_AS(b, AVSKScheduleFlightLoop(loop, 0, 0)),
              "error: Attempt to schedule a flight loop callback owned by another plugin.");
    EXPECT_EQ(DOES_AS(b, AVSKDestroyFlightLoop(loop)),
              "error: Attempt to remove a flight loop callback owned by another plugin.");
    EXPECT_EQ(Pass(1), "1: A's");
}

TEST_F(Processing, TheOlderCallsUnregisterTheNewestAndRescheduleAllWhoeverAsks) {
    void *const player = Keep<LoopPlayer>([](float, float, int) { return Note("called"), 0.0F; });
    const AVSKFlightLoop_f loop = a.code.flightLoop;
    a.Run([&] {
        for (int i = 0; i < 3; ++i)
            AVSKRegisterFlightLoopCallback(loop, 0, player);
    });
    b.Run([&] {
        AVSKUnregisterFlightLoopCallback(loop, player);
        AVSKUnregisterFlightLoopCallback(loop, nullptr);
        AVSKSetFlightLoopCallbackInterval(loop, -1, 0, player);
        AVSKSetFlightLoopCallbackInterval(b.code.flightLoop, 0, 0, player);
    });
    EXPECT_EQ(Pass(1), "1: called; called");
    for (const int relativeToNow : {0, 1}) { // one second after the last call, or after 1.5 s
        host.now = 1.5F;
        AVSKSetFlightLoopCallbackInterval(loop, 1, relativeToNow, player);
        EXPECT_EQ(Pass(2), relativeToNow ? "1" : "1: called; called");
    }
}

TEST_F(Processing, APassInsideAPassIsAPass) {
    int depth = 0;
    AVSKFlightLoopID loop = nullptr;
    loop = Create([&](float, float, int counter) {
        Note(Line("pass ", counter));
        ++depth == 1 ? void(World::Pass(1)) : AVSKDestroyFlightLoop(loop);
        return -1.0F;
    });
    Every("last");
    Schedule(loop, -1);
    EXPECT_EQ((Lines{Pass(1), Pass(2)}), (Lines{"1: last; pass 1; last; pass 2", "1: last"}));
}

} // namespace
