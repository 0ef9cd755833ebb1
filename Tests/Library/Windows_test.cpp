// Windows: their records, focus and capture, and the events they get.
#include "World.h"

#include "AVSK/AVSKDisplay.h"

#include <list>

namespace {

// A window's functions, played by the test. It notes every call as "label event".
struct Actor {
    std::string label;
    IntPlayer draw, click, cursor, wheel, key, losing; // answer 0 if empty
};

int Act(void *refcon, IntPlayer Actor::*on, const std::string &event) {
    const auto &actor = *static_cast<Actor *>(refcon);
    Note(actor.label + " " + event + (AVSKGetMyID() ? Line(" as ", AVSKGetMyID()) : ""));
    return actor.*on ? (actor.*on)() : 0;
}

std::string Name(const void *window) {
    return !window ? "null" : Host().names.contains(window) ? Host().names[window] : "?";
}

void DrawIt(AVSKWindowID, void *refcon) { Act(refcon, &Actor::draw, "drawn"); }

int ClickIt(AVSKWindowID, int x, int y, int status, void *refcon) {
    return Act(refcon, &Actor::click, Line("click ", status, " at ", x, ",", y));
}

void KeyIt(AVSKWindowID window, char key, int flags, char virtualKey, void *refcon, int losing) {
    Act(refcon, losing ? &Actor::losing : &Actor::key,
        Line(losing ? "loses to " : "key to ", Name(window), " ", int(key), " ", flags, " ", int(virtualKey)));
}

int CursorIt(AVSKWindowID window, int x, int y, void *refcon) {
    return Act(refcon, &Actor::cursor, Line("cursor ", Name(window), " ", x, ",", y));
}

int WheelIt(AVSKWindowID window, int x, int y, int wheel, int clicks, void *refcon) {
    return Act(refcon, &Actor::wheel, Line("wheel ", Name(window), " ", x, ",", y, " ", wheel, " ", clicks));
}

int Takes() { return 1; }

class Windows : public ThreePlugins {
  protected:
    std::list<Actor> actors; // in place

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
    Actor actor = {"w", {}, Takes, {}, {}, {}, {}};
    AVSKWindowID window = AVSKCreateWindow(0, 10, 10, 0, 1, DrawIt, KeyIt, ClickIt, &actor);
    Lines expected = {"w click 1 at 1,2", "w click 3 at 1,2", "w key to w 107 2 3", "w drawn", "w loses to null 0 0 0"};
    for (const bool classic : {true, false}) {
        if (!classic) {
            ActorOf(window = Create("w")).click = Takes;
            expected.insert(expected.begin() + 3, {"w cursor w 1,2", "w wheel w 1,2 3 4"});
        }
        host.names[window] = "w";
        AVSKMouseClickHook(1, 2, 1);
        AVSKMouseClickHook(1, 2, 0);
        AVSKTakeKeyboardFocus(window);
        AVSKKeyPressHook('k', 2, 3);
        AVSKCursorHook(1, 2);
        AVSKScrollWheelHook(1, 2, 3, 4);
        AVSKDoDrawingHook(20, 0);
        AVSKDestroyWindow(window);
        EXPECT_EQ(Take(), expected);
    }
    const AVSKCreateWindowParams old = {44, 0, 1, 1, 0, 1, DrawIt, ClickIt, KeyIt, nullptr, nullptr, nullptr};
    EXPECT_EQ(AVSKCreateWindowEx(&old), nullptr);
    EXPECT_EQ(AVSKCreateWindowEx(nullptr), nullptr);
    EXPECT_EQ(Drawn(), "");
}

TEST_F(Windows, WithoutFunctionsItLetsEverythingPassButKeysAndOnceGoneItIsIgnored) {
    ActorOf(Create("behind")).click = Takes;
    const AVSKWindowID window = AVSKCreateWindow(0, 10, 77, 0, 1, nullptr, nullptr, nullptr, nullptr);
    EXPECT_EQ(Drawn(), "behind");
    EXPECT_EQ(AVSKMouseClickHook(5, 5, 1), 0);
    AVSKTakeKeyboardFocus(window);
    EXPECT_EQ(AVSKKeyPressHook('k', 0, 0), 0);
    AVSKTakeKeyboardFocus(nullptr);
    int right = 0;
    AVSKGetWindowGeometry(window, nullptr, nullptr, &right, nullptr);
    EXPECT_EQ(right, 77);
    AVSKDestroyWindow(window);
    AVSKSetWindowRefCon(window, &right);
    EXPECT_EQ(AVSKGetWindowRefCon(window), nullptr);
}

TEST_F(Windows, TheNewestVisibleOneIsInFrontUnlessAnotherIsBroughtThere) {
    const AVSKWindowID x = Create("x");
    Create("y");
    const AVSKWindowID hidden = Create("h", 0, 0);
    EXPECT_EQ(Drawn(), "xy");
    AVSKBringWindowToFront(x);
    EXPECT_EQ(Drawn(), "yx");
    AVSKSetWindowIsVisible(hidden, 1);
    EXPECT_EQ(Drawn(), "yhx") << "the hidden one was behind x";
    AVSKSetWindowIsVisible(x, 0);
    EXPECT_EQ(AVSKGetWindowIsVisible(x), 0);
    EXPECT_EQ(AVSKIsWindowInFront(x), 0);
    EXPECT_EQ(AVSKIsWindowInFront(hidden), 1);
    EXPECT_EQ(Drawn(), "yh");
}

// ---- Mouse

TEST_F(Windows, APointIsInsideFromLeftAndBottomUpToRightAndTop) {
    ActorOf(Create("w", 20)).click = Takes;
    for (const auto &[x, y, hit] :
         {std::tuple(20, 0, true), {29, 9, true}, {19, 5, false}, {30, 5, false}, {25, 10, false}, {25, -1, false}}) {
        SCOPED_TRACE(Line(x, ",", y));
        EXPECT_EQ(AVSKMouseClickHook(x, y, 1), hit ? 0 : 1);
        AVSKMouseClickHook(x, y, 0);
        AVSKCursorHook(x, y);
        AVSKScrollWheelHook(x, y, 0, 1);
        EXPECT_EQ(Take().size(), hit ? 4U : 0U);
    }
}

// Clicks, cursor and wheel: the front window is asked first, and those behind until one answers.
TEST_F(Windows, EventsGoToTheFrontmostThatTakesThem) {
    for (const char *label : {"back", "middle", "front"})
        CreateAs(a, label);
    Create("hidden", 0, 0);
    const struct {
        const char *taker;
        Lines asked;
    } cases[] = {{"front", {"front"}}, {"middle", {"front", "middle"}}, {"nobody", {"front", "middle", "back"}}};
    for (const auto &each : cases) {
        SCOPED_TRACE(each.taker);
        for (Actor &actor : actors)
            actor.click = actor.cursor = actor.wheel = [&] { return actor.label == each.taker ? 5 : 0; };
        const auto expectAsked = [](const Lines &labels, const std::string &event) {
            const Lines journal = Take();
            ASSERT_EQ(journal.size(), labels.size());
            for (std::size_t i = 0; i < labels.size(); ++i)
                EXPECT_TRUE(journal[i].starts_with(labels[i] + " " + event)) << journal[i];
        };
        const bool taken = each.taker != std::string("nobody");
        EXPECT_EQ(AVSKMouseClickHook(5, 5, 2), taken ? 0 : 1) << "2 is a press";
        expectAsked(each.asked, "click 1 at 5,5 as 1");
        EXPECT_EQ(AVSKMouseClickHook(500, 500, 0), taken ? 0 : 1);
        expectAsked(taken ? Lines{each.taker} : Lines(), "click 3 at 500,500 as 1");
        EXPECT_EQ(AVSKCursorHook(5, 5), taken ? 5 : 0);
        expectAsked(each.asked, "cursor");
        EXPECT_EQ(AVSKScrollWheelHook(5, 5, 0, 1), taken ? 0 : 1);
        expectAsked(each.asked, "wheel");
    }
    AVSKDisablePlugin(a.Id());
    Take();
    EXPECT_EQ(AVSKMouseClickHook(5, 5, 1), 1);
    AVSKCursorHook(5, 5);
    EXPECT_EQ(Take(), Lines());
    EXPECT_EQ(Drawn(), "");
}

TEST_F(Windows, TheOneThatTookThePressIsDraggedOnceAFrameBeforeDrawing) {
    const AVSKWindowID window = Create("w");
    Create("front", 100);
    ActorOf(window).click = Takes;
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
    for (const AVSKWindowID window : {x, x, y})
        AVSKTakeKeyboardFocus(window);
    EXPECT_EQ(AVSKKeyPressHook('\xE9', -1, '\x80'), 0);
    AVSKTakeKeyboardFocus(reinterpret_cast<AVSKWindowID>(&actors));
    EXPECT_EQ(Take(), (Lines{"x loses to y 0 0 0", "y key to y -23 -1 -128", "y loses to ? 0 0 0"}));
    EXPECT_EQ(AVSKKeyPressHook('k', 0, 0), 1);
    AVSKDestroyWindow(y);
    for (const AVSKWindowID window : {x, y})
        AVSKTakeKeyboardFocus(window);
    EXPECT_EQ(AVSKKeyPressHook('k', 0, 0), 1);
    EXPECT_EQ(Take(), Lines{"x loses to y 0 0 0"}) << "to one that is gone";
}

// The camera's loss is told after the focus is gone, and while the plugin is still enabled.
TEST_F(Windows, FocusTakenWhileItsPluginIsDisabledIsThereButSilent) {
    const AVSKWindowID window = CreateAs(a, "w");
    CameraPlayer camera = [=](AVSKCameraPosition *, int) { return AVSKTakeKeyboardFocus(window), 0; };
    a.Run([&] { AVSKControlCamera(AVSKCameraForever, a.code.camera, &camera); });
    AVSKDisablePlugin(a.Id());
    EXPECT_EQ(AVSKKeyPressHook('k', 0, 0), 1);
    AVSKTakeKeyboardFocus(nullptr);
    AVSKEnablePlugin(a.Id());
    EXPECT_EQ(AVSKKeyPressHook('k', 0, 0), 1);
    EXPECT_EQ(Take(), (Lines{"disable A", "enable A"}));
}

TEST_F(Windows, HidingOrDestroyingTheFocusWindowTakesItsFocus) {
    const AVSKWindowID window = Create("w", 0, 0);
    AVSKTakeKeyboardFocus(window);
    AVSKSetWindowIsVisible(window, 0);
    EXPECT_EQ(AVSKKeyPressHook('k', 0, 0), 0) << "hidden already, it gets keys";
    AVSKSetWindowIsVisible(window, 1);
    AVSKSetWindowIsVisible(window, 0);
    AVSKTakeKeyboardFocus(window);
    AVSKDestroyWindow(window);
    EXPECT_EQ(Take(), (Lines{"w key to w 107 0 0", "w loses to null 0 0 0", "w loses to null 0 0 0"}));
}

TEST_F(Windows, DisablingTakesFocusAndMouseBeforeThePluginHears) {
    const AVSKWindowID window = CreateAs(a, "w");
    ActorOf(window).click = Takes;
    AVSKTakeKeyboardFocus(window);
    AVSKMouseClickHook(5, 5, 1);
    Take();
    AVSKDisablePlugin(a.Id());
    EXPECT_EQ(Take(), (Lines{"w loses to null 0 0 0 as 1", "getMouseLocation(pointer, pointer, 0)",
                             "w click 3 at 0,0 as 1", "disable A"}));
    EXPECT_EQ(AVSKKeyPressHook('k', 0, 0), 1);
    EXPECT_EQ(AVSKMouseClickHook(5, 5, 0), 1);
    const AVSKWindowID mine = Create("mine");
    AVSKTakeKeyboardFocus(mine);
    AVSKTakeKeyboardFocus(window);
    EXPECT_EQ(Take(), Lines()) << "it cannot have the focus now";
    AVSKKeyPressHook('k', 0, 0);
    EXPECT_EQ(Take(), Lines{"mine key to mine 107 0 0"});
    AVSKEnablePlugin(a.Id());
    EXPECT_EQ(Drawn(), "wmine") << "the window itself stays";
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
        return 0;
    };
    EXPECT_EQ(Drawn(), "backwbackfrontfront");
    EXPECT_FALSE(Exists(window));
    EXPECT_EQ(Drawn(), "backfront");
}

TEST_F(Windows, DestroyedInItsClickDragOrKeyItHearsNoMore) {
    const struct {
        const char *event;
        IntPlayer Actor::*on;
        std::function<void()> trigger;
    } cases[] = {{"click", &Actor::click, [] {}}, // by the press below
                 {"drag", &Actor::click, [] { AVSKDoDrawingHook(20, 0); }},
                 {"key", &Actor::key, [] { EXPECT_EQ(AVSKKeyPressHook('k', 0, 0), 0); }}};
    for (const auto &each : cases) {
        SCOPED_TRACE(each.event);
        const AVSKWindowID window = Create("w");
        const IntPlayer destroys = [&] { return AVSKDestroyWindow(window), 1; };
        ActorOf(window).click = each.event == std::string("click") ? destroys : Takes;
        AVSKTakeKeyboardFocus(window);
        EXPECT_EQ(AVSKMouseClickHook(5, 5, 1), 0);
        if (Exists(window))
            ActorOf(window).*each.on = destroys;
        each.trigger();
        Take();
        EXPECT_FALSE(Exists(window));
        EXPECT_EQ(AVSKMouseClickHook(5, 5, 0), 1) << "no capture is left";
        EXPECT_EQ(AVSKKeyPressHook('k', 0, 0), 1) << "and no focus";
        EXPECT_EQ(Take(), Lines());
    }
}

TEST_F(Windows, TheLosingWindowMayDestroyItselfHideOrTakeTheFocusBack) {
    const struct {
        const char *what;
        std::function<void(AVSKWindowID)> act;
        bool stays;
    } cases[] = {{"destroys itself", AVSKDestroyWindow, false},
                 {"hides itself", [](AVSKWindowID w) { AVSKSetWindowIsVisible(w, 0); }, true},
                 {"takes it back", AVSKTakeKeyboardFocus, true}};
    for (const auto &each : cases) {
        SCOPED_TRACE(each.what);
        const AVSKWindowID x = Create("x");
        const AVSKWindowID y = Create("y");
        AVSKTakeKeyboardFocus(x);
        int times = 0;
        ActorOf(x).losing = [&] {
            if (++times < 3)
                each.act(x);
            return 0;
        };
        AVSKTakeKeyboardFocus(y);
        EXPECT_EQ(times, 1);
        EXPECT_EQ(Exists(x), each.stays);
        Take();
        AVSKKeyPressHook('k', 0, 0);
        EXPECT_EQ(Take(), Lines{"y key to y 107 0 0"}) << "the focus ends where the first caller put it";
        AVSKDestroyWindow(x);
        AVSKDestroyWindow(y);
    }
    const AVSKWindowID x = Create("x");
    const AVSKWindowID y = Create("y");
    AVSKTakeKeyboardFocus(x);
    ActorOf(x).losing = [=] { return AVSKDestroyWindow(y), 0; };
    AVSKTakeKeyboardFocus(y);
    EXPECT_EQ(AVSKKeyPressHook('k', 0, 0), 1) << "a window that was destroyed meanwhile does not get it";
}

TEST_F(Windows, ALossThatCausesItselfEnds) {
    const auto disable = [this] { AVSKDisablePlugin(air.Id()); };
    const struct {
        const char *what;
        std::function<void()> act;
        std::string told;
    } cases[] = {{"gives the focus away", [] { AVSKTakeKeyboardFocus(nullptr); },
                  "w loses to e 0 0 0 as 3; w loses to null 0 0 0 as 3"},
                 {"is disabled", disable, "w loses to e 0 0 0 as 3; w loses to null 0 0 0 as 3; disable air"},
                 {"is unloaded", [] { World::UnloadAircraft(); },
                  "w loses to e 0 0 0 as 3; w loses to null 0 0 0 as 3; disable air; stop air"}};
    for (const auto &each : cases) {
        SCOPED_TRACE(each.what);
        const AVSKWindowID window = CreateAs(air, "w");
        const AVSKWindowID next = CreateAs(b, "e");
        AVSKTakeKeyboardFocus(window);
        ActorOf(window).losing = [&] { return each.act(), 0; };
        Take();
        AVSKTakeKeyboardFocus(next);
        EXPECT_EQ(TakeCalls(), each.told);
        AVSKKeyPressHook('k', 0, 0);
        EXPECT_EQ(TakeCalls(), "e key to e 107 0 0 as 2");
        Restart();
    }
    int times = 0;
    const AVSKWindowID window = CreateAs(air, "w");
    const AVSKWindowID next = CreateAs(b, "e");
    AVSKTakeKeyboardFocus(window);
    ActorOf(window).losing = [&] { return AVSKTakeKeyboardFocus(++times % 2 ? nullptr : next), 0; };
    AVSKTakeKeyboardFocus(next);
    EXPECT_LT(times, 50) << "to and fro";
    Restart();
    int clicks = 0;
    ActorOf(CreateAs(air, "w")).click = [&] { return clicks++ > 0 ? disable() : void(), 1; };
    AVSKMouseClickHook(5, 5, 1);
    AVSKMouseClickHook(5, 5, 0);
    EXPECT_LT(clicks, 50);
    EXPECT_EQ(AVSKMouseClickHook(5, 5, 0), 1) << "it was let go";
}

TEST_F(Windows, DestroyedTheLosingWindowMayDestroyItselfAndHaveItsPluginUnloaded) {
    const AVSKWindowID window = CreateAs(air, "w");
    AVSKTakeKeyboardFocus(window);
    ActorOf(window).losing = [=] { return AVSKDestroyWindow(window), World::UnloadAircraft(), 0; };
    AVSKDestroyWindow(window);
    EXPECT_FALSE(Exists(window));
    EXPECT_EQ(air.Id(), NO_PLUGIN_ID);
}

} // namespace
