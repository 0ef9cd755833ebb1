// Flight loops: when they are called, with what, and what a pass survives.
#include "World.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <deque>
#include <stdexcept>

namespace {

class Processing : public testing::Test {
  protected:
    World world;
    FakeHost &host = Host();
    Puppet &a = world.Install("A");
    Puppet &b = world.Install("B");
    std::deque<LoopPlayer> players; // in place

    void SetUp() override { world.StartQuietly(); }

    // A loop of A's that runs f, and its handle.
    AVSKFlightLoopID Create(LoopPlayer f, int phase = 0) {
        players.push_back(std::move(f));
        AVSKFlightLoopID loop = nullptr;
        a.Run([&] {
            const AVSKCreateFlightLoopParams params = {16, phase, a.code.flightLoop, &players.back()};
            loop = AVSKCreateFlightLoop(&params);
        });
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

TEST_F(Processing, AnIntervalSaysWhenALoopIsNextCalled) {
    const struct {
        float interval;
        std::string calls; // passes 1 to 8, at 0.25 s each
    } cases[] = {{0, "........"},    {-1, "********"},    {-2, ".*.*.*.*"},    {-1.5F, ".*.*.*.*"},
                 {-3, "..*..*.."},   {-0.5F, "********"}, {0.25F, "********"}, {0.5F, ".*.*.*.*"},
                 {0.3F, ".*.*.*.*"}, {1e-9F, "********"}, {1e9F, "........"},  {NAN, "........"}};
    for (const auto &each : cases) {
        SCOPED_TRACE(each.interval);
        bool called = false;
        host.now = 0;
        const AVSKFlightLoopID loop = Create([&](float, float, int) { return called = true, each.interval; });
        Schedule(loop, each.interval);
        std::string calls;
        for (int pass = 1; pass <= 8; ++pass) {
            called = false;
            EXPECT_EQ(World::Pass(0.25F * static_cast<float>(pass)), 1);
            calls += called ? '*' : '.';
        }
        EXPECT_EQ(calls, each.calls);
        a.Run([&] { AVSKDestroyFlightLoop(loop); });
    }
}

TEST_F(Processing, ALoopHearsItsOwnAndTheTotalTimeAndThePass) {
    std::string heard;
    host.now = 10;
    Schedule(Create([&](float sinceLast, float total, int counter) {
                 heard += std::to_string(sinceLast) + " " + std::to_string(total) + " " + std::to_string(counter) + ";";
                 EXPECT_EQ(AVSKGetMyID(), 1);
                 EXPECT_EQ(AVSKGetCycleNumber(), counter);
                 return -1.0F;
             }),
             -1);
    EXPECT_EQ(AVSKGetElapsedTime(), 10.0F);
    EXPECT_EQ(AVSKGetCycleNumber(), 0);
    World::Pass(12);
    FrameEnd(12);
    World::Pass(12.5F);
    EXPECT_EQ(heard, "2.000000 12.000000 1;0.500000 12.500000 3;") << "two passes a frame";
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

TEST_F(Processing, ALoopCreatedDuringAPassIsNotReachedByIt) {
    Schedule(Create([&](float, float, int) {
                 Every("new");
                 return Note("creator"), 0.0F;
             }),
             -1);
    World::Pass(1);
    EXPECT_EQ(Take(), Lines{"creator"});
    World::Pass(2);
    EXPECT_EQ(Take(), Lines{"new"});
}

TEST_F(Processing, SecondsCountFromCreationLastCallOrNow) {
    const struct {
        int relativeToNow;
        const char *calls; // at 10.5, 11, 15.5, 16
    } cases[] = {{0, ".*.."}, {1, "...*"}};
    for (const auto &each : cases) {
        SCOPED_TRACE(each.relativeToNow);
        host.now = 10;
        bool called = false;
        const AVSKFlightLoopID loop = Create([&](float, float, int) { return called = true, 0.0F; });
        host.now = 15;
        Schedule(loop, 1, each.relativeToNow);
        std::string calls;
        for (const float now : {10.5F, 11.0F, 15.5F, 16.0F}) {
            called = false;
            World::Pass(now);
            calls += called ? '*' : '.';
        }
        EXPECT_EQ(calls, each.calls);
    }
}

TEST_F(Processing, PassesCountFromCreationThoughScheduledLaterAndRelativeToNow) {
    const AVSKFlightLoopID loop = Create([](float, float, int) { return Note("called"), 0.0F; });
    World::Pass(1);
    World::Pass(2);
    Schedule(loop, -3, 1);
    World::Pass(3);
    EXPECT_EQ(Take(), Lines{"called"});
}

// The sum of 2^24 and 1 is 2^24 as a float, so the loop is due at once.
TEST_F(Processing, DueTimesAreRoundedToFloat) {
    host.now = 16777216;
    Schedule(Create([](float, float, int) { return Note("called"), 0.0F; }), 1);
    World::Pass(16777216);
    EXPECT_EQ(Take(), Lines{"called"});
}

TEST_F(Processing, ALoopThatAnswers0RestsUntilItIsScheduledAgain) {
    const AVSKFlightLoopID loop = Create([](float, float, int) { return Note("called"), 0.0F; });
    Schedule(loop, -1);
    World::Pass(1);
    World::Pass(2);
    EXPECT_EQ(Take(), Lines{"called"});
    Schedule(loop, -1);
    World::Pass(3);
    EXPECT_EQ(Take(), Lines{"called"});
}

TEST_F(Processing, TheLoopsAnswerReplacesWhatItScheduledForItself) {
    AVSKFlightLoopID loop = nullptr;
    loop = Create([&](float, float, int) {
        Note("called");
        AVSKScheduleFlightLoop(loop, -5, 0);
        return -1.0F;
    });
    Schedule(loop, -1);
    World::Pass(1);
    World::Pass(2);
    EXPECT_EQ(Take(), (Lines{"called", "called"}));
}

TEST_F(Processing, FaultyParametersAreReportedOneByOneAndMakeALoopAllTheSame) {
    const AVSKCreateFlightLoopParams faulty = {12, 2, nullptr, nullptr};
    AVSKFlightLoopID loop = nullptr;
    const auto create = [&] {
        loop = AVSKCreateFlightLoop(&faulty);
        AVSKScheduleFlightLoop(loop, -1, 0);
    };
    a.Run(create);
    EXPECT_EQ(Take(), Lines()) << "no error callback, no check";
    ASSERT_NE(loop, nullptr);
    a.Run(JournalErrors);
    a.Run(create);
    EXPECT_EQ(Take(), (Lines{"error: Illegal struct size for AVSKCreateFlightLoop",
                             "error: Illegal phase type for AVSKCreateFlightLoop",
                             "error: Null callback for AVSKCreateFlightLoop"}));
    ASSERT_NE(loop, nullptr);
    Every("phase 2", 2);
    a.Run([] {
        AVSKRegisterFlightLoopCallback(nullptr, -1, nullptr);
        EXPECT_EQ(AVSKCreateFlightLoop(nullptr), nullptr);
    });
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

TEST_F(Processing, StaleHandlesAreIgnored) {
    const AVSKFlightLoopID loop = Every("gone");
    a.Run(JournalErrors);
    int local = 0;
    a.Run([&] {
        AVSKDestroyFlightLoop(loop);
        for (const AVSKFlightLoopID stale :
             {loop, AVSKFlightLoopID(nullptr), reinterpret_cast<AVSKFlightLoopID>(&local)}) {
            AVSKScheduleFlightLoop(stale, -1, 1);
            AVSKDestroyFlightLoop(stale);
        }
    });
    World::Pass(1);
    EXPECT_EQ(Take(), Lines());
}

TEST_F(Processing, TheOlderCallsUnregisterTheNewestAndRescheduleAllWhoeverAsks) {
    players.emplace_back([](float, float, int) { return Note("called"), 0.0F; });
    LoopPlayer *const player = &players.back();
    a.Run([&] {
        for (int i = 0; i < 3; ++i)
            AVSKRegisterFlightLoopCallback(a.code.flightLoop, 0, player);
    });
    b.Run([&] {
        AVSKUnregisterFlightLoopCallback(a.code.flightLoop, player);
        AVSKUnregisterFlightLoopCallback(a.code.flightLoop, nullptr);
        AVSKSetFlightLoopCallbackInterval(a.code.flightLoop, -1, 0, player);
        AVSKSetFlightLoopCallbackInterval(b.code.flightLoop, -1, 0, player);
    });
    World::Pass(1);
    EXPECT_EQ(Take(), Lines(2, "called"));
    host.now = 1;
    b.Run([&] { AVSKSetFlightLoopCallbackInterval(a.code.flightLoop, 1, 1, player); });
    World::Pass(1.5F);
    EXPECT_EQ(Take(), Lines());
    World::Pass(2);
    EXPECT_EQ(Take(), Lines(2, "called"));
}

TEST_F(Processing, UnregisterStopsAtAMatchThatWasDestroyedInThePass) {
    players.emplace_back([](float, float, int) { return Note("old"), -1.0F; });
    LoopPlayer *const player = &players.back();
    AVSKFlightLoopID newest = nullptr;
    a.Run([&] {
        AVSKRegisterFlightLoopCallback(a.code.flightLoop, -1, player);
        const AVSKCreateFlightLoopParams params = {16, 0, a.code.flightLoop, player};
        newest = AVSKCreateFlightLoop(&params);
    });
    Schedule(Create([&](float, float, int) {
                 AVSKDestroyFlightLoop(newest);
                 AVSKUnregisterFlightLoopCallback(a.code.flightLoop, player);
                 return 0.0F;
             }),
             -1);
    World::Pass(1);
    EXPECT_EQ(Take(), Lines{"old"});
}

TEST_F(Processing, ADisabledOwnersLoopWaitsWithItsTimes) {
    Schedule(
        Create([](float sinceLast, float, int) { return Note(std::to_string(static_cast<int>(sinceLast))), 1.0F; }), 1);
    AVSKDisablePlugin(1);
    World::Pass(5);
    AVSKEnablePlugin(1);
    Take();
    World::Pass(6);
    EXPECT_EQ(Take(), Lines{"6"});
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

TEST_F(Processing, AnExceptionEndsThePassAndLeavesEverythingInOrder) {
    Every("older");
    const AVSKFlightLoopID bad = Create([](float, float, int) -> float { throw std::runtime_error("loop"); });
    Schedule(bad, -1);
    EXPECT_THROW(World::Pass(1), std::runtime_error);
    EXPECT_EQ(AVSKGetMyID(), 0);
    a.Run([=] { AVSKDestroyFlightLoop(bad); });
    World::Pass(2);
    EXPECT_EQ(Take(), Lines{"older"});
}

TEST_F(Processing, AnUnloadedPluginsLoopsGoWithIt) {
    Puppet &air = world.InstallAircraft("air");
    World::LoadAircraft();
    players.emplace_back([](float, float, int) { return Note("air's"), -1.0F; });
    air.Run([&] { AVSKRegisterFlightLoopCallback(air.code.flightLoop, -1, &players.back()); });
    Every("A's");
    // Unloaded in the middle of a pass, before its loop's turn.
    Schedule(Create([](float, float, int) { return World::UnloadAircraft(), 0.0F; }), -1);
    Take();
    World::Pass(1);
    const Lines journal = Take();
    EXPECT_EQ(std::count(journal.begin(), journal.end(), "air's"), 0);
    EXPECT_EQ(std::count(journal.begin(), journal.end(), "A's"), 1);
    EXPECT_FALSE(air.IsMapped());
}

} // namespace
