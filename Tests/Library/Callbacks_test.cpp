// Every kind of callback: any of them may be removed, added, throw or take its
// plugin away while it is called.
#include "World.h"

namespace {

// The host, A, the aircraft's plugin and B own one callback each.
std::function<void(int)> gCalled;
void *gHandles[3];
int kIndices[] = {0, 1, 2};

int Called(int index) {
    Note(std::to_string(index));
    gCalled(index);
    return index;
}
int CalledBy(void *refcon) { return Called(*static_cast<int *>(refcon)); }

int Draw(int /*phase*/, int /*isBefore*/, void *refcon) { return CalledBy(refcon), 1; }
int Sniff(char /*key*/, int /*flags*/, char /*virtualKey*/, void *refcon) { return CalledBy(refcon), 1; }

LoopPlayer gLoops[3];
CommandPlayer gCommands[3];
CameraPlayer gCamera = [](AVSKCameraPosition *, int isLosing) { return isLosing ? 0 : Called(1); };
MenuPlayer gPicked = [](void *) { Called(1); };
IntPlayer gRead = [] { return Called(1); };
NoticePlayer gNotices[3];

template <int Before>
struct Command {
    static void Create(const Puppet &owner, int i) {
        gCommands[i] = [i](AVSKCommandRef, int) { return Called(i), 1; };
        AVSKRegisterCommandHandler(&kIndices, owner.code.command, Before, &gCommands[i]);
    }
    static void Remove(const Puppet &owner, int i) {
        AVSKUnregisterCommandHandler(&kIndices, owner.code.command, Before, &gCommands[i]);
    }
    static void Dispatch() { AVSKCommandHook(&kIndices, 1, 0, Before); }
};

void CreateWindow(const Puppet & /*owner*/, int i) {
    AVSKCreateWindowParams params = {48, 0, 10, 10, 0, 1, {}, {}, {}, {}, {}, &kIndices[i]};
    params.drawFunc = [](AVSKWindowID, void *refcon) { CalledBy(refcon); };
    params.mouseClickFunc = [](AVSKWindowID, int, int, int, void *refcon) { return CalledBy(refcon), 0; };
    params.cursorFunc = [](AVSKWindowID, int, int, void *refcon) { return CalledBy(refcon), 0; };
    params.mouseWheelFunc = [](AVSKWindowID, int, int, int, int, void *refcon) { return CalledBy(refcon), 0; };
    gHandles[i] = AVSKCreateWindowEx(&params);
}
void DestroyWindow(const Puppet & /*owner*/, int i) { AVSKDestroyWindow(static_cast<AVSKWindowID>(gHandles[i])); }

// How one kind is registered and removed by its owner, and called.
struct Kind {
    const char *name;
    void (*create)(const Puppet &owner, int index);
    void (*remove)(const Puppet &owner, int index); // null: the kind has one callback at a time
    void (*pass)();
    bool oldestFirst = false;
    bool inPlugin = true;                               // the callback lies in the plugin's code
    const char *added = "1; 0", *addedNext = "2; 1; 0"; // one added by the first of two in its call, and the next pass
};

void PrintTo(const Kind &kind, std::ostream *out) { *out << kind.name; }

const Kind kKinds[] = {
    {"draw callbacks", [](auto &, int i) { AVSKRegisterDrawCallback(Draw, 5, 1, &kIndices[i]); },
     [](auto &, int i) { AVSKUnregisterDrawCallback(Draw, 5, 1, &kIndices[i]); }, [] { AVSKDoDrawingHook(2, 0); },
     false, false},
    {"sniffers before windows", [](auto &, int i) { AVSKRegisterKeySniffer(Sniff, 1, &kIndices[i]); },
     [](auto &, int i) { AVSKUnregisterKeySniffer(Sniff, 1, &kIndices[i]); }, [] { AVSKKeyPressHook('k', 0, 0); },
     false, false},
    {"sniffers after windows", [](auto &, int i) { AVSKRegisterKeySniffer(Sniff, 0, &kIndices[i]); },
     [](auto &, int i) { AVSKUnregisterKeySniffer(Sniff, 0, &kIndices[i]); }, [] { AVSKKeyPressHook('k', 0, 0); },
     false, false},
    // From the back the new one cuts off those in front: see ResourceList.
    {"windows drawn", CreateWindow, DestroyWindow, [] { AVSKDoDrawingHook(20, 0); }, true, false, "0; 2", "0; 2"},
    {"windows clicked", CreateWindow, DestroyWindow, [] { AVSKMouseClickHook(5, 5, 1); }, false, false},
    {"windows asked for a cursor", CreateWindow, DestroyWindow, [] { AVSKCursorHook(5, 5); }, false, false},
    {"windows scrolled", CreateWindow, DestroyWindow, [] { AVSKScrollWheelHook(5, 5, 0, 1); }, false, false},
    {"flight loops",
     [](auto &owner, int i) {
         gLoops[i] = [i](float, float, int) { return Called(i), -1.0F; };
         const AVSKCreateFlightLoopParams params = {16, 0, owner.code.flightLoop, &gLoops[i]};
         AVSKScheduleFlightLoop(static_cast<AVSKFlightLoopID>(gHandles[i] = AVSKCreateFlightLoop(&params)), -1, 0);
     },
     [](auto &, int i) {
         AVSKDestroyFlightLoop(static_cast<AVSKFlightLoopID>(gHandles[i]));
         AVSKSetFlightLoopCallbackInterval(nullptr, 1, 0, nullptr); // a walk inside
     },
     [] { World::Pass(1); }},
    {"commands before", Command<1>::Create, Command<1>::Remove, Command<1>::Dispatch},
    {"commands after", Command<0>::Create, Command<0>::Remove, Command<0>::Dispatch, true, true, "0; 1; 2", "0; 1; 2"},
    {"shared data",
     [](auto &owner, int i) {
         gNotices[i] = [i] { Called(i); };
         AVSKShareData("x", AVSKDataTypeInt, owner.code.notified, &gNotices[i]);
     },
     [](auto &owner, int i) { AVSKUnshareData("x", AVSKDataTypeInt, owner.code.notified, &gNotices[i]); },
     [] { AVSKSetDatai(AVSKFindDataRef("x"), 1); }, true, true, "0; 1", "0; 1; 2"},
    {"camera", [](auto &owner, int) { AVSKControlCamera(AVSKCameraForever, owner.code.camera, &gCamera); }, nullptr,
     [] {
         float f[7] = {};
         AVSKCameraHook(f, f + 1, f + 2, f + 3, f + 4, f + 5, f + 6);
     }},
    {"menus",
     [](auto &owner, int) {
         AVSKAppendMenuItem(AVSKCreateMenu("M", nullptr, 0, owner.code.menuPicked, &gPicked), "I", nullptr, 0);
     },
     nullptr, [] { AVSKMenuHook(Host().lastItemID); }},
    {"datarefs", [](auto &owner, int) { Publish("air/x", owner.code.readInt, &gRead); }, nullptr,
     [] { AVSKGetDatai(AVSKFindDataRef("air/x")); }},
    {"messages", [](auto &, int) {}, nullptr, [] { AVSKSendMessageToPlugin(NO_PLUGIN_ID, 1, nullptr); }},
};

class Callbacks : public ThreePlugins, public testing::WithParamInterface<Kind> {
  protected:
    const Kind &kind = GetParam();
    const std::vector<Puppet *> owners = {&a, &air, &b};

    void SetUp() override {
        air.message = [](int, int message, void *) { message == 1 ? Called(1) : 0; };
        ThreePlugins::SetUp();
    }
    void Create(int index) const {
        owners[index]->Run([&] { kind.create(*owners[index], index); });
    }
    void Remove(int index) const {
        owners[index]->Run([&] { kind.remove(*owners[index], index); });
    }
    // So many, called in falling order, of which one acts in its first call.
    void Arrange(std::function<void()> act, int actor = 1) const {
        gCalled = [act, actor, acted = false](int index) mutable {
            if (index == actor && !std::exchange(acted, true))
                act();
        };
        for (const int index : kind.remove ? std::vector{0, 1, 2} : std::vector{1})
            Create(kind.oldestFirst ? 2 - index : index);
    }
    bool Is(const char *name) const { return std::strcmp(kind.name, name) == 0; }
    // What is expected of all three is expected of the one only.
    std::string Expected(const char *three, const char *one) const { return kind.remove ? three : one; }
};

TEST_P(Callbacks, RemovedInAPassTheRestIsCalledAndNobodyWhoIsGone) {
    for (const bool nested : {false, true})
        for (const auto &[what, removed, now, next] : Table<std::string, std::vector<int>, std::string, std::string>{
                 {"itself twice", {1, 1}, "2; 1; 0", "2; 0"},
                 {"the next", {0}, "2; 1", "2; 1"},
                 {"the previous", {2}, "2; 1; 0", "1; 0"},
                 {"itself and the next", {1, 0}, "2; 1", "2"},
                 {"all", {0, 1, 2}, "2; 1", ""},
                 {"all, from the front", {2, 1, 0}, "2; 1", ""}}) {
            // From the back the previous is the record that the inner pass leaves the
            // cursor on, which the list does not survive: see ResourceList. A flight
            // loop is not called again in the same pass.
            if (!kind.remove || (nested && (Is("flight loops") || (Is("windows drawn") && removed[0] == 2))))
                continue;
            SCOPED_TRACE(what + (nested ? ", and a pass inside" : ""));
            Arrange([&, &removed = removed, &next = next] {
                std::for_each(removed.begin(), removed.end(), [&](int index) { Remove(index); });
                if (nested) {
                    const std::string outer = TakeCalls();
                    EXPECT_EQ(DOES(kind.pass()), next);
                    Note(outer);
                }
            });
            EXPECT_EQ(DOES(kind.pass()), now);
            EXPECT_EQ(DOES(kind.pass()), next);
            for (int i = 0; i < 3; ++i)
                Remove(i);
            EXPECT_EQ(DOES(kind.pass()), "");
        }
}

TEST_P(Callbacks, AddedInAPassItIsCalledFromThenOnOrTheNext) {
    if (!kind.remove)
        return;
    gCalled = [&, added = false](int) mutable { std::exchange(added, true) ? void() : Create(2); };
    for (const int index : {0, 1})
        Create(index);
    EXPECT_EQ(DOES(kind.pass()), kind.added);
    EXPECT_EQ(DOES(kind.pass()), kind.addedNext);
    Restart();
    gCalled = [&, depth = 0](int) mutable { ++depth == 1 && !Is("flight loops") ? Create(2), kind.pass() : void(); };
    for (const int index : {0, 1})
        Create(index);
    const std::string calls = DOES(kind.pass());
    EXPECT_EQ(calls.substr(1, std::strlen(kind.addedNext) + 2),
              Is("flight loops") ? "; 0" : Line("; ", kind.addedNext));
}

TEST_P(Callbacks, AnExceptionPassesThroughAndLeavesTheRestInOrder) {
    Arrange([&] { kind.remove ? Remove(1) : void(), throw 1; });
    TakeCalls();
    b.Run([&] {
        EXPECT_THROW(kind.pass(), int);
        EXPECT_EQ(AVSKGetMyID(), 2);
    });
    EXPECT_EQ(TakeCalls(), Expected("2; 1", "1"));
    EXPECT_EQ(DOES(kind.pass()), Expected("2; 0", "1"));
    EXPECT_EQ(AVSKGetMyID(), 0);
}

// By the call ahead of it, or in its own.
TEST_P(Callbacks, DisabledOrUnloadedInAPassItIsNotCalledAgainAndStaysMappedUntilItsCallReturns) {
    for (const bool unloads : {false, true})
        for (const bool own : {true, false}) {
            if (!own && !kind.remove)
                continue;
            Arrange(
                [&] {
                    unloads ? World::UnloadAircraft() : AVSKDisablePlugin(air.Id());
                    EXPECT_EQ(AVSKGetMyID(), !own ? 2 : unloads ? NO_PLUGIN_ID : 3) << "it does nothing in its name";
                    AVSKEnableFeature("AVSK_USE_NATIVE_PATHS", 1);
                    EXPECT_EQ(air.IsMapped(), own || !unloads);
                    air.returned = 0;
                },
                own ? 1 : 2);
            const std::string calls = DOES(kind.pass());
            const std::string expected =
                Line(own ? Expected("2; 1; ", "1; ") : "2; ", "disable air", unloads ? "; stop air" : "");
            EXPECT_EQ(calls.substr(0, expected.size()), expected);
            EXPECT_EQ(calls.ends_with("; 0"), kind.remove != nullptr);
            EXPECT_EQ(air.returned > 0, own && kind.inPlugin) << "it came back into its own code";
            EXPECT_EQ(air.IsMapped(), !unloads);
            EXPECT_EQ(DOES(kind.pass()), Expected("2; 0", ""));
            EXPECT_EQ(AVSKGetMyID(), 0);
            Restart();
        }
}

INSTANTIATE_TEST_SUITE_P(Kinds, Callbacks, testing::ValuesIn(kKinds));

} // namespace
