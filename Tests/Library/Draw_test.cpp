// Draw callbacks, and the host's draw codes.
#include "World.h"

namespace {

using Player = std::function<int(int phase, int isBefore)>;

int Play(int phase, int isBefore, void *refcon) { return (*static_cast<const Player *>(refcon))(phase, isBefore); }

class Draw : public ThreePlugins {
  protected:
    static int Register(const Puppet &owner, Player &player, int phase = 5, int before = 1) {
        return owner.Run([&] { return AVSKRegisterDrawCallback(Play, phase, before, &player); });
    }
    static Player Answers(const char *label, int answer) {
        return [=](int, int) { return Note(Line(label, AVSKGetMyID())), answer; };
    }
};

TEST_F(Draw, EachCodeDispatchesItsPhases) {
    // Indexed by code. Where only the before half is called, its result decides whether the host draws.
    const char *const phases[] = {"",     "0b 0a", "5b",   "5a",   "10b",     "10a",     "15b",
                                  "15a",  "20b",   "20a",  "25b",  "25a",     "30b 30a", "35b 35a",
                                  "40b",  "40a",   "45b",  "45a",  "55b 55a", "50b",     "window 50a",
                                  "101b", "101a",  "100b", "100a", "102b",    "102a",    ""};
    int answer = 1;
    std::string calls;
    Player player = [&](int phase, int isBefore) {
        calls += Line(calls.empty() ? "" : " ", phase, isBefore ? "b" : "a");
        return answer;
    };
    for (const int phase : {-1, 0, 5, 10, 15, 20, 25, 30, 35, 40, 45, 50, 55, 60, 100, 101, 102, 103})
        for (const int before : {0, 1, 2, -1}) // 2 and -1 are never called
            EXPECT_EQ(Register(a, player, phase, before), 1);
    a.Run([] { EXPECT_EQ(AVSKRegisterDrawCallback(nullptr, 5, 1, nullptr), 1); });
    const auto window = [](AVSKWindowID, void *refcon) { *static_cast<std::string *>(refcon) = "window"; };
    AVSKCreateWindow(0, 1, 1, 0, 1, window, nullptr, nullptr, &calls);
    for (int code = -1; code < 28; ++code)
        for (const int given : {1, 2}) {
            answer = given;
            calls.clear();
            const std::string expected = code < 0 ? "" : phases[code];
            const bool asks = expected.ends_with("b") || code == 1 || code == 13;
            EXPECT_EQ(AVSKDoDrawingHook(code, 0), asks ? given & 1 : 1) << code;
            EXPECT_EQ(calls, expected) << code;
        }
}

TEST_F(Draw, ItsFourValuesAreItsNameWhoeverRegisteredItAndAsLongAsThePassLasts) {
    Player player;
    player = [&](int, int) {
        b.Run([&] { EXPECT_EQ(AVSKUnregisterDrawCallback(Play, 5, 1, &player), 1); });
        return Note("called"), Register(a, player);
    };
    EXPECT_EQ(Register(a, player), 1);
    EXPECT_EQ(Register(b, player), 0);
    EXPECT_EQ(Register(a, player, 5, 0), 1);
    EXPECT_EQ(Register(a, player, 10), 1);
    EXPECT_EQ(AVSKUnregisterDrawCallback(Play, 15, 1, &player), 0);
    EXPECT_EQ(DOES(AVSKDoDrawingHook(2, 0)), "0: called") << "it could not be registered again in the pass";
    EXPECT_EQ(DOES(AVSKDoDrawingHook(2, 0)), "1");
    EXPECT_EQ(Register(a, player), 1);
}

TEST_F(Draw, ReflectionsReachOnlyThoseWhoWantThem) {
    Player mirrored = Answers("mirrored", 0), plain = Answers("plain", 1);
    Register(a, mirrored);
    Register(b, plain);
    a.Run([] { AVSKEnableFeature("AVSK_WANTS_REFLECTIONS", 5); });
    for (const int reflection : {0, 1, 2, -1})
        EXPECT_EQ(DOES(AVSKDoDrawingHook(2, reflection)), reflection == 1 ? "0: mirrored1" : "0: plain2; mirrored1");
}

} // namespace
