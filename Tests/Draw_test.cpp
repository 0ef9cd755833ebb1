// Draw callbacks, and the host's draw codes.
#include "World.h"

#include "AVSK/AVSKDisplay.h"

#include <gtest/gtest.h>

#include <sstream>
#include <stdexcept>

namespace {

using Player = std::function<int(int phase, int isBefore)>;

int Play(int phase, int isBefore, void *refcon) { return (*static_cast<const Player *>(refcon))(phase, isBefore); }

class Draw : public testing::Test {
  protected:
    World world;
    Puppet &a = world.Install("A");
    Puppet &b = world.Install("B");

    void SetUp() override { world.StartQuietly(); }

    static int Register(const Puppet &owner, Player &player, int phase = 5, int before = 1) {
        int answer = -1;
        owner.Run([&] { answer = AVSKRegisterDrawCallback(Play, phase, before, &player); });
        return answer;
    }
    static Player Answers(const char *label, int answer) {
        return [=](int, int) { return Note(label), answer; };
    }
};

TEST_F(Draw, EachCodeDispatchesItsPhases) {
    const struct {
        int code;
        const char *calls;
        bool asks; // the host draws only if the half before allows it
    } cases[] = {{-1, "", false},           {0, "", false},         {1, "0b 0a", true},
                 {2, "5b", true},           {3, "5a", false},       {4, "10b", true},
                 {5, "10a", false},         {6, "15b", true},       {7, "15a", false},
                 {8, "20b", true},          {9, "20a", false},      {10, "25b", true},
                 {11, "25a", false},        {12, "30b 30a", false}, {13, "35b 35a", true},
                 {14, "40b", true},         {15, "40a", false},     {16, "45b", true},
                 {17, "45a", false},        {18, "55b 55a", false}, {19, "50b", true},
                 {20, "window 50a", false}, {21, "101b", true},     {22, "101a", false},
                 {23, "100b", true},        {24, "100a", false},    {25, "102b", true},
                 {26, "102a", false},       {27, "", false},        {1000, "", false}};
    int answer = 1;
    Player player = [&](int phase, int isBefore) {
        Note(std::to_string(phase) + (isBefore ? "b" : "a"));
        return answer;
    };
    for (const int phase : {-1, 0, 1, 5, 10, 15, 20, 25, 30, 35, 40, 45, 50, 55, 60, 100, 101, 102, 103, 5000})
        for (const int before : {0, 1, 2})
            EXPECT_EQ(Register(a, player, phase, before), 1);
    AVSKCreateWindow(
        0, 1, 1, 0, 1, [](AVSKWindowID, void *) { Note("window"); }, nullptr, nullptr, nullptr);
    for (const auto &each : cases) {
        SCOPED_TRACE(each.code);
        std::istringstream words(each.calls);
        Lines calls;
        for (std::string word; words >> word;)
            calls.push_back(word);
        for (const int given : {1, 3, 0, 2}) {
            answer = given;
            EXPECT_EQ(AVSKDoDrawingHook(each.code, 0), each.asks ? given & 1 : 1);
            EXPECT_EQ(Take(), calls);
        }
    }
}

TEST_F(Draw, TheNewestIsCalledFirstAndAllAreThoughOneSuppresses) {
    Player first = Answers("first", 1);
    Player suppresses = Answers("suppresses", 0);
    Player last = Answers("last", 1);
    Register(a, first);
    Register(b, suppresses);
    Register(a, last);
    EXPECT_EQ(AVSKDoDrawingHook(2, 0), 0);
    EXPECT_EQ(Take(), (Lines{"last", "suppresses", "first"}));
}

TEST_F(Draw, ItsFourValuesAreItsNameWhoeverRegisteredIt) {
    Player player = Answers("called", 1);
    Player other = Answers("other", 1);
    EXPECT_EQ(Register(a, player), 1);
    EXPECT_EQ(Register(a, player), 0);
    EXPECT_EQ(Register(b, player), 0);
    EXPECT_EQ(Register(a, other), 1);
    EXPECT_EQ(Register(a, player, 5, 0), 1);
    EXPECT_EQ(Register(a, player, 10), 1);
    b.Run([&] {
        EXPECT_EQ(AVSKUnregisterDrawCallback(Play, 15, 1, &player), 0);
        EXPECT_EQ(AVSKUnregisterDrawCallback(Play, 5, 1, &player), 1);
        EXPECT_EQ(AVSKUnregisterDrawCallback(Play, 5, 1, &player), 0);
    });
    AVSKDoDrawingHook(2, 0);
    EXPECT_EQ(Take(), Lines{"other"});
}

TEST_F(Draw, ReflectionsReachOnlyThoseWhoWantThem) {
    Player mirrored = Answers("mirrored", 0);
    Player plain = Answers("plain", 1);
    Register(a, mirrored);
    Register(b, plain);
    a.Run([] { AVSKEnableFeature("AVSK_WANTS_REFLECTIONS", 5); });
    EXPECT_EQ(AVSKDoDrawingHook(2, 1), 0);
    EXPECT_EQ(Take(), Lines{"mirrored"});
    for (const int reflection : {0, 2, -1}) {
        AVSKDoDrawingHook(2, reflection);
        EXPECT_EQ(Take(), (Lines{"plain", "mirrored"}));
    }
}

TEST_F(Draw, ItRunsAsItsOwnerIfThatIsEnabled) {
    Player player = [](int, int) {
        Note(std::to_string(AVSKGetMyID()));
        return 0;
    };
    Register(b, player);
    EXPECT_EQ(AVSKDoDrawingHook(2, 0), 0);
    AVSKDisablePlugin(b.Id());
    EXPECT_EQ(AVSKDoDrawingHook(2, 0), 1);
    EXPECT_EQ(Take(), (Lines{"2", "disable B"}));
}

TEST_F(Draw, UnregisteredInAPassItCannotBeRegisteredAgainInThatPass) {
    Player player;
    player = [&](int, int) {
        Note("called");
        EXPECT_EQ(AVSKUnregisterDrawCallback(Play, 5, 1, &player), 1);
        EXPECT_EQ(AVSKRegisterDrawCallback(Play, 5, 1, &player), 0);
        return 1;
    };
    Register(a, player);
    AVSKDoDrawingHook(2, 0);
    AVSKDoDrawingHook(2, 0);
    EXPECT_EQ(Take(), Lines{"called"});
    EXPECT_EQ(Register(a, player), 1);
}

TEST_F(Draw, GoesWithItsPlugin) {
    const Puppet &air = world.InstallAircraft("air");
    Player theirs = Answers("theirs", 1);
    Player unloads = [](int, int) { return World::UnloadAircraft(), Note("unloads"), 1; };
    World::LoadAircraft();
    Register(air, theirs);
    Register(a, unloads);
    Take();
    AVSKDoDrawingHook(2, 0);
    EXPECT_EQ(Take().back(), "unloads");
    EXPECT_FALSE(air.IsMapped());
    World::LoadAircraft();
    EXPECT_EQ(Register(air, theirs), 1);
}

} // namespace
