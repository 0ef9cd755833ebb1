// Windows: their records, focus and capture, and the events they get.
#include "World.h"

#include "AVSK/AVSKDisplay.h"

#include <gtest/gtest.h>

#include <list>

namespace {

// A window's functions, played by the test. It notes every call as "label event".
struct Actor {
    std::string label;
    std::function<void()> draw, key, losing;
    std::function<int()> click, cursor, wheel; // answer 0 if empty
};

void NoteFor(const Actor &actor, const std::string &event) {
    Note(actor.label + " " + event + (AVSKGetMyID() ? " as " + std::to_string(AVSKGetMyID()) : ""));
}

std::string Name(const void *window) {
    const auto name = Host().names.find(window);
    return !window ? "null" : name == Host().names.end() ? "?" : name->second;
}

void DrawIt(AVSKWindowID, void *refcon) {
    const auto &actor = *static_cast<Actor *>(refcon);
    NoteFor(actor, "drawn");
    if (actor.draw)
        actor.draw();
}

int ClickIt(AVSKWindowID window, int x, int y, int status, void *refcon) {
    const auto &actor = *static_cast<Actor *>(refcon);
    EXPECT_EQ(Name(window), actor.label);
    NoteFor(actor, "click " + std::to_string(status) + " at " + std::to_string(x) + "," + std::to_string(y));
    return actor.click ? actor.click() : 0;
}

void KeyIt(AVSKWindowID window, char key, int flags, char virtualKey, void *refcon, int losing) {
    const auto &actor = *static_cast<Actor *>(refcon);
    NoteFor(actor, (losing ? "loses to " : "key to ") + Name(window) + " " + std::to_string(key) + " " +
                       std::to_string(flags) + " " + std::to_string(virtualKey));
    if (const auto &act = losing ? actor.losing : actor.key)
        act();
}

int CursorIt(AVSKWindowID window, int x, int y, void *refcon) {
    const auto &actor = *static_cast<Actor *>(refcon);
    NoteFor(actor, "cursor " + Name(window) + " " + std::to_string(x) + "," + std::to_string(y));
    return actor.cursor ? actor.cursor() : 0;
}

int WheelIt(AVSKWindowID window, int x, int y, int wheel, int clicks, void *refcon) {
    const auto &actor = *static_cast<Actor *>(refcon);
    NoteFor(actor, "wheel " + Name(window) + " " + std::to_string(x) + "," + std::to_string(y) + " " +
                       std::to_string(wheel) + " " + std::to_string(clicks));
    return actor.wheel ? actor.wheel() : 0;
}

class Windows : public testing::Test {
  protected:
    World world;
    FakeHost &host = Host();
    Puppet &a = world.Install("A");
    std::list<Actor> actors; // in place

    void SetUp() override { world.StartQuietly(); }

    // The host's window with all functions, from (left, 0) to (left + 10, 10).
    AVSKWindowID Create(const char *label, int left = 0, int visible = 1) {
        actors.push_back({label, {}, {}, {}, {}, {}, {}});
        const AVSKCreateWindowParams params = {48,     left,    10,    left + 10, 0,       visible,
                                               DrawIt, ClickIt, KeyIt, CursorIt,  WheelIt, &actors.back()};
        const AVSKWindowID window = AVSKCreateWindowEx(&params);
        host.names[window] = label;
        return window;
    }
    AVSKWindowID CreateAs(const Puppet &owner, const char *label) {
        AVSKWindowID window = nullptr;
        owner.Run([&] { window = Create(label); });
        return window;
    }
    static Actor &ActorOf(AVSKWindowID window) { return *static_cast<Actor *>(AVSKGetWindowRefCon(window)); }
    static bool Exists(AVSKWindowID window) {
        int left = -77;
        AVSKGetWindowGeometry(window, &left, nullptr, nullptr, nullptr);
        return left != -77;
    }
    // The order in which they are drawn.
    static std::string Drawn() {
        Take();
        AVSKDoDrawingHook(20, 0);
        std::string order;
        for (const std::string &line : Take())
            order += line.substr(0, line.find(' '));
        return order;
    }
};

// ---- Records

TEST_F(Windows, BothCreationCallsTakeTheirFunctionsInTheirOwnOrder) {
    Actor actor = {"w", {}, {}, {}, [] { return 1; }, {}, {}};
    const AVSKWindowID classic = AVSKCreateWindow(0, 10, 10, 0, 1, DrawIt, KeyIt, ClickIt, &actor);
    host.names[classic] = "w";
    const auto use = [](AVSKWindowID window) {
        AVSKMouseClickHook(1, 2, 1);
        AVSKMouseClickHook(1, 2, 0);
        AVSKTakeKeyboardFocus(window);
        AVSKKeyPressHook('k', 2, 3);
        AVSKCursorHook(1, 2);
        AVSKScrollWheelHook(1, 2, 3, 4);
        AVSKDoDrawingHook(20, 0);
        AVSKDestroyWindow(window);
    };
    Lines expected = {"w click 1 at 1,2", "w click 3 at 1,2", "w key to w 107 2 3", "w drawn", "w loses to null 0 0 0"};
    use(classic);
    EXPECT_EQ(Take(), expected);
    const AVSKWindowID window = Create("w");
    ActorOf(window).click = [] { return 1; };
    use(window);
    expected.insert(expected.begin() + 3, {"w cursor w 1,2", "w wheel w 1,2 3 4"});
    EXPECT_EQ(Take(), expected);
}

TEST_F(Windows, ParametersOfAnotherSizeCreateNothing) {
    for (const int size : {0, 44, 47, 52}) {
        const AVSKCreateWindowParams params = {size, 0, 1, 1, 0, 1, DrawIt, ClickIt, KeyIt, nullptr, nullptr, nullptr};
        EXPECT_EQ(AVSKCreateWindowEx(&params), nullptr);
    }
    EXPECT_EQ(AVSKCreateWindowEx(nullptr), nullptr);
    EXPECT_EQ(Drawn(), "");
}

TEST_F(Windows, KeepWhatTheyAreGiven) {
    const AVSKWindowID window = Create("w", 3);
    int at[4] = {};
    AVSKGetWindowGeometry(window, &at[0], &at[1], &at[2], &at[3]);
    EXPECT_EQ((std::vector<int>(at, at + 4)), (std::vector<int>{3, 10, 13, 0}));
    AVSKSetWindowGeometry(window, 9, 1, -5, 6); // inverted
    AVSKGetWindowGeometry(window, nullptr, nullptr, nullptr, nullptr);
    AVSKGetWindowGeometry(window, &at[0], &at[1], &at[2], &at[3]);
    EXPECT_EQ((std::vector<int>(at, at + 4)), (std::vector<int>{9, 1, -5, 6}));
    AVSKSetWindowIsVisible(window, -3);
    EXPECT_EQ(AVSKGetWindowIsVisible(window), -3);
    AVSKSetWindowRefCon(window, &at);
    EXPECT_EQ(AVSKGetWindowRefCon(window), &at);
}

TEST_F(Windows, AnUnknownWindowIsIgnoredByEveryCall) {
    const AVSKWindowID gone = Create("gone");
    const AVSKWindowID there = Create("there");
    AVSKDestroyWindow(gone);
    for (const AVSKWindowID window : {gone, AVSKWindowID(nullptr), reinterpret_cast<AVSKWindowID>(&actors)}) {
        EXPECT_FALSE(Exists(window));
        AVSKSetWindowGeometry(window, 0, 1, 1, 0);
        AVSKSetWindowIsVisible(window, 1);
        EXPECT_EQ(AVSKGetWindowIsVisible(window), 0);
        AVSKSetWindowRefCon(window, &host);
        EXPECT_EQ(AVSKGetWindowRefCon(window), nullptr);
        AVSKBringWindowToFront(window);
        EXPECT_EQ(AVSKIsWindowInFront(window), 0);
        AVSKDestroyWindow(window);
    }
    EXPECT_EQ(AVSKIsWindowInFront(there), 1);
}

TEST_F(Windows, TheNewestVisibleOneIsInFrontUnlessAnotherIsBroughtThere) {
    const AVSKWindowID x = Create("x");
    const AVSKWindowID y = Create("y");
    const AVSKWindowID hidden = Create("h", 0, 0);
    const auto front = [&] {
        return std::string(AVSKIsWindowInFront(x) ? "x" : "") + (AVSKIsWindowInFront(y) ? "y" : "") +
               (AVSKIsWindowInFront(hidden) ? "h" : "");
    };
    EXPECT_EQ(front(), "y");
    EXPECT_EQ(Drawn(), "xy");
    AVSKBringWindowToFront(x);
    EXPECT_EQ(front(), "x");
    EXPECT_EQ(Drawn(), "yx");
    AVSKBringWindowToFront(x);
    EXPECT_EQ(Drawn(), "yx");
    AVSKSetWindowIsVisible(hidden, 1);
    EXPECT_EQ(front(), "x");
    AVSKSetWindowIsVisible(x, 0);
    EXPECT_EQ(front(), "h");
    EXPECT_EQ(Drawn(), "yh");
    AVSKSetWindowIsVisible(y, 0);
    AVSKSetWindowIsVisible(hidden, 0);
    EXPECT_EQ(front(), "");
}

// ---- Mouse

TEST_F(Windows, APointIsInsideFromLeftAndBottomUpToRightAndTop) {
    const AVSKWindowID window = Create("w", 20);
    ActorOf(window).click = [] { return 1; };
    const struct {
        int x;
        int y;
        bool hit;
    } cases[] = {{20, 0, true},  {29, 9, true},   {20, 9, true},   {29, 0, true},  {19, 5, false},
                 {30, 5, false}, {25, 10, false}, {25, -1, false}, {-25, 5, false}};
    for (const auto &each : cases) {
        SCOPED_TRACE(testing::Message() << each.x << "," << each.y);
        EXPECT_EQ(AVSKMouseClickHook(each.x, each.y, 1), each.hit ? 0 : 1);
        AVSKMouseClickHook(each.x, each.y, 0);
        AVSKCursorHook(each.x, each.y);
        AVSKScrollWheelHook(each.x, each.y, 0, 1);
        EXPECT_EQ(Take().size(), each.hit ? 4U : 0U);
    }
    AVSKSetWindowGeometry(window, 30, 0, 20, 10);
    EXPECT_EQ(AVSKMouseClickHook(25, 5, 1), 1);
}

// Clicks, cursor and wheel: the front window is asked first, and those behind until one answers.
TEST_F(Windows, EventsGoToTheFrontmostThatTakesThem) {
    const AVSKWindowID back = Create("back");
    const AVSKWindowID middle = CreateAs(a, "middle");
    const AVSKWindowID front = Create("front");
    const AVSKWindowID hidden = Create("hidden", 0, 0);
    const struct {
        const char *taker;
        Lines asked;
    } cases[] = {{"front", {"front"}},
                 {"middle", {"front", "middle"}},
                 {"back", {"front", "middle", "back"}},
                 {"nobody", {"front", "middle", "back"}}};
    for (const auto &each : cases) {
        SCOPED_TRACE(each.taker);
        for (const AVSKWindowID window : {back, middle, front, hidden}) {
            Actor &actor = ActorOf(window);
            actor.click = actor.cursor = actor.wheel = [&each, &actor] { return actor.label == each.taker ? 5 : 0; };
        }
        const auto asked = [](const char *event) {
            Lines labels;
            for (const std::string &line : Take()) {
                EXPECT_NE(line.find(event), std::string::npos);
                labels.push_back(line.substr(0, line.find(' ')));
            }
            return labels;
        };
        const bool taken = each.taker != std::string("nobody");
        EXPECT_EQ(AVSKMouseClickHook(5, 5, 2), taken ? 0 : 1) << "2 is a press";
        EXPECT_EQ(asked("click 1"), each.asked);
        EXPECT_EQ(AVSKMouseClickHook(500, 500, 0), taken ? 0 : 1);
        EXPECT_EQ(asked("click 3 at 500,500"), taken ? Lines{each.taker} : Lines());
        EXPECT_EQ(AVSKCursorHook(5, 5), taken ? 5 : 0);
        EXPECT_EQ(asked("cursor"), each.asked);
        EXPECT_EQ(AVSKScrollWheelHook(5, 5, 0, 1), taken ? 0 : 1);
        EXPECT_EQ(asked("wheel"), each.asked);
    }
    AVSKDisablePlugin(a.Id());
    Take();
    AVSKCursorHook(5, 5);
    EXPECT_EQ(Take(), (Lines{"front cursor front 5,5", "back cursor back 5,5"}));
    EXPECT_EQ(Drawn(), "backfront");
}

TEST_F(Windows, TheOneThatTookThePressIsDraggedOnceAFrameBeforeDrawing) {
    const AVSKWindowID window = Create("w");
    Create("front", 100);
    ActorOf(window).click = [] { return 1; };
    host.on.getMouseLocation = [](int *x, int *y, int) {
        *x = 300;
        *y = 400;
    };
    AVSKMouseClickHook(5, 5, 1);
    AVSKSetWindowIsVisible(window, 0);
    Take();
    AVSKDoDrawingHook(20, 0);
    EXPECT_EQ(Take(), (Lines{"getMouseLocation(pointer, pointer, 0)", "w click 2 at 300,400", "front drawn"}));
    EXPECT_EQ(AVSKMouseClickHook(7, 8, 0), 0);
    EXPECT_EQ(AVSKMouseClickHook(7, 8, 0), 1) << "released";
    AVSKDoDrawingHook(20, 0);
    EXPECT_EQ(Take(), (Lines{"w click 3 at 7,8", "front drawn"}));
}

// ---- Focus

TEST_F(Windows, FocusGoesWhereItIsPutAndTheLoserHearsTheCallersWords) {
    const AVSKWindowID x = Create("x");
    const AVSKWindowID y = Create("y");
    AVSKTakeKeyboardFocus(x);
    AVSKTakeKeyboardFocus(x);
    EXPECT_EQ(Take(), Lines());
    AVSKTakeKeyboardFocus(y);
    EXPECT_EQ(Take(), Lines{"x loses to y 0 0 0"});
    EXPECT_EQ(AVSKKeyPressHook('\xE9', -1, '\x80'), 0);
    EXPECT_EQ(Take(), Lines{"y key to y -23 -1 -128"});
    AVSKTakeKeyboardFocus(reinterpret_cast<AVSKWindowID>(&actors));
    EXPECT_EQ(Take(), Lines{"y loses to ? 0 0 0"});
    EXPECT_EQ(AVSKKeyPressHook('k', 0, 0), 1);
    AVSKTakeKeyboardFocus(nullptr);
    EXPECT_EQ(Take(), Lines());
}

TEST_F(Windows, HidingOrDestroyingTheFocusWindowTakesItsFocus) {
    const AVSKWindowID window = Create("w");
    AVSKSetWindowIsVisible(window, 0);
    AVSKTakeKeyboardFocus(window);
    EXPECT_EQ(AVSKKeyPressHook('k', 0, 0), 0) << "hidden, it still gets keys";
    AVSKSetWindowIsVisible(window, 0);
    EXPECT_EQ(Take(), Lines{"w key to w 107 0 0"}) << "it was hidden already";
    AVSKSetWindowIsVisible(window, 1);
    AVSKSetWindowIsVisible(window, 0);
    EXPECT_EQ(Take(), Lines{"w loses to null 0 0 0"});
    AVSKTakeKeyboardFocus(window);
    AVSKDestroyWindow(window);
    EXPECT_EQ(Take(), Lines{"w loses to null 0 0 0"});
    EXPECT_EQ(AVSKKeyPressHook('k', 0, 0), 1);
}

TEST_F(Windows, AWindowOfADisabledPluginNeverGetsTheFocus) {
    const AVSKWindowID mine = Create("mine");
    const AVSKWindowID theirs = CreateAs(a, "theirs");
    AVSKTakeKeyboardFocus(mine);
    AVSKDisablePlugin(a.Id());
    Take();
    AVSKTakeKeyboardFocus(theirs);
    EXPECT_EQ(Take(), Lines());
    AVSKKeyPressHook('k', 0, 0);
    EXPECT_EQ(Take(), Lines{"mine key to mine 107 0 0"});
}

TEST_F(Windows, DisablingTakesFocusAndMouseBeforeThePluginHears) {
    const AVSKWindowID window = CreateAs(a, "w");
    ActorOf(window).click = [] { return 1; };
    AVSKTakeKeyboardFocus(window);
    AVSKMouseClickHook(5, 5, 1);
    Take();
    AVSKDisablePlugin(a.Id());
    EXPECT_EQ(Take(), (Lines{"w loses to null 0 0 0 as 1", "getMouseLocation(pointer, pointer, 0)",
                             "w click 3 at 0,0 as 1", "disable A"}));
    EXPECT_EQ(AVSKKeyPressHook('k', 0, 0), 1);
    EXPECT_EQ(AVSKMouseClickHook(5, 5, 0), 1);
    AVSKEnablePlugin(a.Id());
    EXPECT_EQ(Drawn(), "w") << "the window itself stays";
}

TEST_F(Windows, GoWithTheirPlugin) {
    const Puppet &air = world.InstallAircraft("air");
    World::LoadAircraft();
    const AVSKWindowID theirs = CreateAs(air, "theirs");
    const AVSKWindowID mine = Create("mine");
    ActorOf(theirs).click = [] { return 1; };
    ActorOf(mine).draw = World::UnloadAircraft;
    AVSKTakeKeyboardFocus(theirs);
    AVSKMouseClickHook(5, 5, 1);
    AVSKDoDrawingHook(20, 0);
    EXPECT_FALSE(Exists(theirs));
    EXPECT_EQ(AVSKKeyPressHook('k', 0, 0), 1);
    EXPECT_EQ(AVSKMouseClickHook(5, 5, 0), 1);
    ActorOf(mine).draw = nullptr;
    EXPECT_EQ(Drawn(), "mine");
}

// ---- Changes inside calls

TEST_F(Windows, DestroyedInAPassItAnswersUntilThatIsOver) {
    Create("back");
    const AVSKWindowID window = Create("w");
    Create("front");
    ActorOf(window).draw = [&] {
        AVSKDestroyWindow(window);
        AVSKDestroyWindow(window);
        EXPECT_TRUE(Exists(window));
        AVSKSetWindowGeometry(window, 1, 2, 3, 4);
        AVSKDoDrawingHook(20, 0);
        EXPECT_TRUE(Exists(window)) << "after a pass inside as well";
    };
    EXPECT_EQ(Drawn(), "backwbackfrontfront");
    EXPECT_FALSE(Exists(window));
    EXPECT_EQ(Drawn(), "backfront");
}

TEST_F(Windows, BringingItToTheFrontSavesNoDestroyedWindow) {
    const AVSKWindowID window = Create("w");
    Create("front");
    ActorOf(window).cursor = [&] {
        AVSKDestroyWindow(window);
        AVSKBringWindowToFront(window);
        EXPECT_EQ(AVSKIsWindowInFront(window), 1) << "it is in the list until the pass is over";
        return 0;
    };
    AVSKCursorHook(5, 5);
    EXPECT_FALSE(Exists(window));
    EXPECT_EQ(Drawn(), "front");
}

TEST_F(Windows, BroughtToTheFrontInAPassTheOthersAreStillDrawn) {
    const AVSKWindowID x = Create("x");
    Create("y");
    Create("z");
    ActorOf(x).draw = [&] {
        ActorOf(x).draw = nullptr;
        AVSKBringWindowToFront(x);
    };
    Drawn();
    EXPECT_EQ(Drawn(), "yzx");
}

TEST_F(Windows, ANewOneInADrawPassCutsOffThoseInFront) {
    const AVSKWindowID back = Create("b");
    const AVSKWindowID x = Create("x");
    const AVSKWindowID y = Create("y");
    ActorOf(y).draw = [&] {
        actors.back().draw = nullptr;
        Create("new");
    };
    EXPECT_EQ(Drawn(), "bxy");
    EXPECT_FALSE(Exists(x));
    EXPECT_TRUE(Exists(back));
    EXPECT_EQ(Drawn(), "bnew");
}

TEST_F(Windows, AClickThatDestroysItsWindowLeavesNoCapture) {
    const AVSKWindowID window = Create("w");
    ActorOf(window).click = [&] { return AVSKDestroyWindow(window), 1; };
    EXPECT_EQ(AVSKMouseClickHook(5, 5, 1), 0);
    EXPECT_EQ(AVSKMouseClickHook(5, 5, 0), 1);
    EXPECT_FALSE(Exists(window));
}

TEST_F(Windows, TheDragWindowMayBeDestroyedInItsDragAndHearsNoRelease) {
    for (const bool inside : {true, false}) {
        const AVSKWindowID window = Create("w");
        ActorOf(window).click = [] { return 1; };
        AVSKMouseClickHook(5, 5, 1);
        if (inside) {
            ActorOf(window).click = [&] { return AVSKDestroyWindow(window), 1; };
            AVSKDoDrawingHook(20, 0);
        } else {
            AVSKDestroyWindow(window);
        }
        Take();
        EXPECT_EQ(AVSKMouseClickHook(5, 5, 0), 1);
        EXPECT_EQ(Take(), Lines());
        EXPECT_FALSE(Exists(window));
    }
}

TEST_F(Windows, AWindowDestroyedWhileFocusIsOnItsWayDoesNotGetIt) {
    const AVSKWindowID x = Create("x");
    const AVSKWindowID y = Create("y");
    AVSKTakeKeyboardFocus(x);
    ActorOf(x).losing = [&] { AVSKDestroyWindow(y); };
    AVSKTakeKeyboardFocus(y);
    EXPECT_FALSE(Exists(y));
    EXPECT_EQ(AVSKKeyPressHook('k', 0, 0), 1);
}

TEST_F(Windows, TheLosingWindowMayDestroyItselfHideOrTakeTheFocusBack) {
    const struct {
        const char *what;
        std::function<void(AVSKWindowID)> act;
        bool stays;
        int told; // that it loses the focus
    } cases[] = {{"destroys itself", AVSKDestroyWindow, false, 1},
                 {"hides itself", [](AVSKWindowID w) { AVSKSetWindowIsVisible(w, 0); }, true, 1},
                 {"takes it back", AVSKTakeKeyboardFocus, true, 1},
                 {"lets it go again", [](AVSKWindowID) { AVSKTakeKeyboardFocus(nullptr); }, true, 3}};
    for (const auto &each : cases) {
        SCOPED_TRACE(each.what);
        const AVSKWindowID x = Create("x");
        const AVSKWindowID y = Create("y");
        AVSKTakeKeyboardFocus(x);
        int times = 0;
        ActorOf(x).losing = [&] {
            if (++times < 3)
                each.act(x);
        };
        AVSKTakeKeyboardFocus(y);
        EXPECT_EQ(times, each.told);
        EXPECT_EQ(Exists(x), each.stays);
        Take();
        AVSKKeyPressHook('k', 0, 0);
        EXPECT_EQ(Take(), Lines{"y key to y 107 0 0"}) << "the focus ends where the first caller put it";
        AVSKDestroyWindow(x);
        AVSKDestroyWindow(y);
    }
}

TEST_F(Windows, TheFocusWindowMayDestroyItselfInItsKey) {
    const AVSKWindowID window = Create("w");
    AVSKTakeKeyboardFocus(window);
    ActorOf(window).key = [&] { AVSKDestroyWindow(window); };
    EXPECT_EQ(AVSKKeyPressHook('k', 0, 0), 0);
    EXPECT_FALSE(Exists(window));
    EXPECT_EQ(AVSKKeyPressHook('k', 0, 0), 1);
}

} // namespace
