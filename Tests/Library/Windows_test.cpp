// Windows: records, mouse, focus, and changes inside calls.
#include "World.h"

namespace {

// The callbacks of a window. Every call is journaled as "label event".
struct Actor {
    std::string label;
    IntPlayer draw, click, cursor, wheel, key, losing; // return 0 if empty
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
    std::list<Actor> actors; // a list: refcons point into it

    // Creates a window of the caller with all callbacks, from (left, 0) to (left + 10, 10).
    AVSKWindowID Create(const std::string &label, int left = 0, int visible = 1) {
        actors.push_back({label, {}, {}, {}, {}, {}, {}});
        const AVSKCreateWindowParams params = {48,     left,    10,    left + 10, 0,       visible,
                                               DrawIt, ClickIt, KeyIt, CursorIt,  WheelIt, &actors.back()};
        const AVSKWindowID window = AVSKCreateWindowEx(&params);
        host.names[window] = label;
        return window;
    }
    AVSKWindowID CreateAs(const Puppet &owner, const std::string &label) {
        return owner.Run([&] { return Create(label); });
    }
    static Actor &ActorOf(AVSKWindowID window) { return *static_cast<Actor *>(AVSKGetWindowRefCon(window)); }
    static std::string Geometry(AVSKWindowID window) {
        int left = 0, top = 0, right = 0, bottom = 0;
        AVSKGetWindowGeometry(window, &left, &top, &right, &bottom);
        return Line(left, " ", top, " ", right, " ", bottom);
    }
    static bool Exists(AVSKWindowID window) { return AVSKGetWindowRefCon(window) != nullptr; }
    static std::string Focus(AVSKWindowID window) { return DOES(AVSKTakeKeyboardFocus(window)); }
    static std::string Key() { return DOES(AVSKKeyPressHook('k', 0, 0)); }
    static std::string Click(int x, int y, int down) { return DOES(AVSKMouseClickHook(x, y, down)); }
    static std::string Drawn() { return DOES(AVSKDoDrawingHook(20, 0)); }
};

// ---- Records

TEST_F(Windows, BothCreationCallsTakeTheirFunctionsInTheirOwnOrder) {
    Actor actor = {"w", {}, Takes, {}, {}, {}, {}};
    for (const bool classic : {true, false}) {
        const AVSKWindowID window =
            classic ? AVSKCreateWindow(0, 10, 10, 0, 1, DrawIt, KeyIt, ClickIt, &actor) : Create("w");
        ActorOf(window).click = Takes;
        host.names[window] = "w";
        EXPECT_EQ(Click(1, 2, 1), "0: w click 1 at 1,2");
        EXPECT_EQ(Click(1, 2, 0), "0: w click 3 at 1,2");
        Focus(window);
        EXPECT_EQ(DOES(AVSKKeyPressHook('k', 2, 3)), "0: w key to w 107 2 3");
        EXPECT_EQ(DOES(AVSKCursorHook(1, 2)), classic ? "0" : "0: w cursor w 1,2");
        EXPECT_EQ(DOES(AVSKScrollWheelHook(1, 2, 3, 4)), classic ? "1" : "1: w wheel w 1,2 3 4");
        EXPECT_EQ(Drawn(), "1: w drawn");
        EXPECT_EQ(DOES(AVSKDestroyWindow(window)), "w loses to null 0 0 0");
    }
    const AVSKCreateWindowParams old = {44, 0, 1, 1, 0, 1, DrawIt, ClickIt, KeyIt, nullptr, nullptr, nullptr};
    EXPECT_TRUE(!AVSKCreateWindowEx(&old) && !AVSKCreateWindowEx(nullptr));
    EXPECT_EQ(Drawn(), "1");
}

TEST_F(Windows, WithoutFunctionsItLetsEverythingPassButKeysAndOnceGoneItIsIgnored) {
    ActorOf(Create("behind")).click = Takes;
    const AVSKWindowID window = AVSKCreateWindow(0, 10, 77, 5, 1, nullptr, nullptr, nullptr, nullptr);
    EXPECT_EQ(Drawn(), "1: behind drawn");
    EXPECT_EQ(Click(5, 5, 1), "0: behind click 1 at 5,5");
    Focus(window);
    EXPECT_EQ(Key(), "0");
    Focus(nullptr);
    AVSKGetWindowGeometry(window, nullptr, nullptr, nullptr, nullptr);
    EXPECT_EQ(Geometry(window), "0 10 77 5");
    AVSKSetWindowRefCon(window, &host);
    EXPECT_EQ(AVSKGetWindowRefCon(window), &host);
    AVSKDestroyWindow(window);
    AVSKSetWindowRefCon(window, this);
    AVSKSetWindowGeometry(window, 1, 2, 3, 4);
    EXPECT_EQ(Geometry(window), "0 0 0 0");
    EXPECT_FALSE(Exists(window));
}

TEST_F(Windows, TheNewestVisibleOneIsInFrontUnlessAnotherIsBroughtThere) {
    const AVSKWindowID x = Create("x"), y = Create("y"), hidden = Create("h", 0, 0);
    EXPECT_EQ(Drawn(), "1: x drawn; y drawn");
    AVSKBringWindowToFront(x);
    EXPECT_EQ(Drawn(), "1: y drawn; x drawn");
    AVSKSetWindowIsVisible(hidden, 1);
    EXPECT_EQ(Drawn(), "1: y drawn; h drawn; x drawn") << "the hidden one was behind x";
    AVSKSetWindowIsVisible(x, 0);
    EXPECT_EQ(AVSKGetWindowIsVisible(x), 0);
    EXPECT_TRUE(!AVSKIsWindowInFront(x) && !AVSKIsWindowInFront(y) && AVSKIsWindowInFront(hidden));
    EXPECT_EQ(Drawn(), "1: y drawn; h drawn");
}

// ---- Mouse

TEST_F(Windows, APointIsInsideFromLeftAndBottomUpToRightAndTop) {
    ActorOf(Create("w", 20)).click = Takes;
    for (const auto &[x, y, hit] : Table<int, int, bool>{
             {20, 0, true}, {29, 9, true}, {19, 5, false}, {30, 5, false}, {25, 10, false}, {25, -1, false}}) {
        SCOPED_TRACE(Line(x, ",", y));
        EXPECT_EQ(AVSKMouseClickHook(x, y, 1), hit ? 0 : 1);
        AVSKMouseClickHook(x, y, 0);
        AVSKCursorHook(x, y);
        AVSKScrollWheelHook(x, y, 0, 1);
        EXPECT_EQ(Take().size(), hit ? 4U : 0U);
    }
}

// Clicks, cursor and wheel go to the front window first, then to those behind it until one takes the event.
TEST_F(Windows, EventsGoToTheFrontmostThatTakesThem) {
    for (const char *label : {"back", "middle", "front"})
        CreateAs(a, label);
    Create("hidden", 0, 0);
    const Lines order = {"front", "middle", "back"};
    for (const std::size_t asked : {1U, 2U, 3U}) {
        const bool taken = asked < 3;
        const std::string taker = order[asked - 1];
        for (Actor &actor : actors)
            actor.click = actor.cursor = actor.wheel = [&] { return taken && actor.label == taker ? 5 : 0; };
        const auto expected = [&](int answer, const std::string &event, const std::string &end) {
            std::string text = Line(answer, ": ");
            for (std::size_t i = 0; i < asked; ++i)
                text +=
                    Line(i ? "; " : "", order[i], " ", event, event == "click 1" ? "" : " " + order[i], end, " as 1");
            return text;
        };
        EXPECT_EQ(Click(5, 5, 2), expected(!taken, "click 1", " at 5,5")) << "2 is a press";
        EXPECT_EQ(Click(500, 500, 0), taken ? "0: " + taker + " click 3 at 500,500 as 1" : "1");
        EXPECT_EQ(DOES(AVSKCursorHook(5, 5)), expected(taken ? 5 : 0, "cursor", " 5,5"));
        EXPECT_EQ(DOES(AVSKScrollWheelHook(5, 5, 0, 1)), expected(!taken, "wheel", " 5,5 0 1"));
    }
    AVSKDisablePlugin(a.Id());
    EXPECT_EQ(Click(5, 5, 1) + DOES(AVSKCursorHook(5, 5)) + DOES(AVSKScrollWheelHook(5, 5, 0, 1)) + Drawn(), "1011");
}

TEST_F(Windows, TheOneThatTookThePressIsDraggedOnceAFrameBeforeDrawing) {
    const AVSKWindowID window = Create("w");
    Create("front", 100);
    ActorOf(window).click = Takes;
    host.on.getMouseLocation = [](int *x, int *y, int) { *x = 300, *y = 400; };
    Click(5, 5, 1);
    AVSKSetWindowIsVisible(window, 0);
    EXPECT_EQ(Drawn(), "1: getMouseLocation(pointer, pointer, 0); w click 2 at 300,400; front drawn");
    EXPECT_EQ(Click(7, 8, 0), "0: w click 3 at 7,8");
    EXPECT_EQ(Click(7, 8, 0), "1") << "released";
    EXPECT_EQ(Drawn(), "1: front drawn");
}

// ---- Focus

TEST_F(Windows, FocusGoesWhereItIsPutAndTheLoserHearsTheCallersWords) {
    const AVSKWindowID x = Create("x"), y = Create("y");
    EXPECT_EQ((Lines{Focus(x), Focus(x), Focus(y)}), (Lines{"", "", "x loses to y 0 0 0"}));
    EXPECT_EQ(DOES(AVSKKeyPressHook('\xE9', -1, '\x80')), "0: y key to y -23 -1 -128");
    EXPECT_EQ(Focus(reinterpret_cast<AVSKWindowID>(&actors)), "y loses to ? 0 0 0");
    EXPECT_EQ(Key(), "1");
    Focus(x);
    EXPECT_EQ(DOES(AVSKDestroyWindow(y)), "");
    EXPECT_EQ(Key(), "0: x key to x 107 0 0") << "another was destroyed";
    EXPECT_EQ(Focus(y), "x loses to y 0 0 0") << "to one that is gone";
    EXPECT_EQ(Key(), "1");
}

// Disabling notifies the camera function after it has removed the focus, while the plugin is still enabled.
TEST_F(Windows, FocusTakenWhileItsPluginIsDisabledIsThereButSilent) {
    const AVSKWindowID window = CreateAs(a, "w");
    CameraPlayer camera = [=](AVSKCameraPosition *, int) { return AVSKTakeKeyboardFocus(window), 0; };
    a.Run([&] { AVSKControlCamera(AVSKCameraForever, a.code.camera, &camera); });
    EXPECT_EQ(DOES(AVSKDisablePlugin(a.Id())), "disable A");
    EXPECT_EQ((Lines{Key(), Focus(nullptr), DOES(AVSKEnablePlugin(a.Id())), Key()}),
              (Lines{"1", "", "1: enable A", "1"}));
}

TEST_F(Windows, HidingOrDestroyingTheFocusWindowTakesItsFocus) {
    const AVSKWindowID window = Create("w", 0, 0);
    Focus(window);
    AVSKSetWindowIsVisible(window, 0);
    EXPECT_EQ(Key(), "0: w key to w 107 0 0") << "hidden already, it gets keys";
    AVSKSetWindowIsVisible(window, 1);
    EXPECT_EQ(DOES(AVSKSetWindowIsVisible(window, 0)), "w loses to null 0 0 0");
    Focus(window);
    EXPECT_EQ(DOES(AVSKDestroyWindow(window)), "w loses to null 0 0 0");
}

TEST_F(Windows, DisablingTakesFocusAndMouseBeforeThePluginHears) {
    const AVSKWindowID window = CreateAs(a, "w");
    ActorOf(window).click = Takes;
    Focus(window);
    Click(5, 5, 1);
    EXPECT_EQ(DOES(AVSKDisablePlugin(a.Id())),
              "w loses to null 0 0 0 as 1; getMouseLocation(pointer, pointer, 0); w click 3 at 0,0 as 1; disable A");
    EXPECT_EQ((Lines{Key(), Click(5, 5, 0)}), Lines(2, "1"));
    const AVSKWindowID mine = Create("mine");
    EXPECT_EQ((Lines{Focus(mine), Focus(window), Key()}), (Lines{"", "", "0: mine key to mine 107 0 0"}))
        << "it cannot have the focus now";
    AVSKEnablePlugin(a.Id());
    EXPECT_EQ(Drawn(), "1: w drawn as 1; mine drawn") << "the window itself stays";
    AVSKDestroyWindow(mine);
    ActorOf(window).click = [&] { return AVSKDisablePlugin(a.Id()), 1; };
    EXPECT_EQ((Lines{Click(5, 5, 1), Click(5, 5, 0)}), (Lines{"0: w click 1 at 5,5 as 1; disable A", "1"}));
}

// ---- Changes inside calls

TEST_F(Windows, DestroyedInAPassItAnswersUntilThatIsOver) {
    Create("back");
    const AVSKWindowID window = Create("w");
    Create("front");
    ActorOf(window).draw = [&] {
        AVSKDestroyWindow(window);
        AVSKDestroyWindow(window);
        AVSKSetWindowGeometry(window, 1, 2, 3, 4);
        EXPECT_EQ(Geometry(window), "1 2 3 4");
        AVSKDoDrawingHook(20, 0);
        EXPECT_TRUE(Exists(window)) << "after a pass inside as well";
        return 0;
    };
    EXPECT_EQ(Drawn(), "1: back drawn; w drawn; back drawn; front drawn; front drawn");
    EXPECT_FALSE(Exists(window));
    EXPECT_EQ(Drawn(), "1: back drawn; front drawn");
}

TEST_F(Windows, DestroyedInItsClickDragOrKeyItHearsNoMore) {
    const auto press = [] { AVSKMouseClickHook(5, 5, 1); };
    for (const auto &[event, on, trigger] : Table<std::string, IntPlayer Actor::*, std::function<void()>>{
             {"click", &Actor::click, press},
             {"drag", &Actor::click, [] { AVSKDoDrawingHook(20, 0); }},
             {"key", &Actor::key, [] { EXPECT_EQ(AVSKKeyPressHook('k', 0, 0), 0); }}}) {
        SCOPED_TRACE(event);
        const AVSKWindowID window = Create("w");
        ActorOf(window).click = Takes;
        AVSKTakeKeyboardFocus(window);
        event == "click" ? void() : press();
        ActorOf(window).*on = [&] { return AVSKDestroyWindow(window), 1; };
        trigger();
        EXPECT_FALSE(Exists(window));
        EXPECT_EQ(Click(5, 5, 0), "1") << "no capture is left";
        EXPECT_EQ(Key(), "1") << "and no focus";
    }
}

TEST_F(Windows, TheLosingWindowMayDestroyItselfHideOrTakeTheFocusBack) {
    for (const auto &[what, act, stays] :
         Table<std::string, void (*)(AVSKWindowID), bool>{{"destroys itself", AVSKDestroyWindow, false},
                                                          {"hides itself",
                                                           [](AVSKWindowID w) {
                                                               AVSKSetWindowIsVisible(w, 0);
                                                               EXPECT_EQ(AVSKKeyPressHook('k', 0, 0), 1)
                                                                   << "it has no focus any more";
                                                           },
                                                           true},
                                                          {"takes it back", AVSKTakeKeyboardFocus, true}}) {
        SCOPED_TRACE(what);
        const AVSKWindowID x = Create("x"), y = Create("y");
        AVSKTakeKeyboardFocus(x);
        ActorOf(x).losing = [x, &act = act, times = 0]() mutable { return ++times < 3 ? act(x), 0 : 0; };
        EXPECT_EQ(Focus(y), "x loses to y 0 0 0");
        EXPECT_EQ(Exists(x), stays);
        EXPECT_EQ(Key(), "0: y key to y 107 0 0") << "the focus ends where the first caller put it";
        AVSKDestroyWindow(x);
        AVSKDestroyWindow(y);
    }
    const AVSKWindowID x = Create("x"), y = Create("y");
    AVSKTakeKeyboardFocus(x);
    ActorOf(x).losing = [=] { return AVSKDestroyWindow(y), 0; };
    AVSKTakeKeyboardFocus(y);
    EXPECT_EQ(Key(), "1") << "a window that was destroyed meanwhile does not get it";
}

TEST_F(Windows, ALossThatCausesItselfEnds) {
    const auto disable = [this] { AVSKDisablePlugin(air.Id()); };
    for (const auto &[act, more] :
         Table<std::function<void()>, std::string>{{[] { AVSKTakeKeyboardFocus(nullptr); }, ""},
                                                   {disable, "; disable air"},
                                                   {World::UnloadAircraft, "; disable air; stop air"}}) {
        const AVSKWindowID window = CreateAs(air, "w"), next = CreateAs(b, "e");
        AVSKTakeKeyboardFocus(window);
        ActorOf(window).losing = [&act = act] { return act(), 0; };
        EXPECT_EQ(Focus(next), "w loses to e 0 0 0 as 3; w loses to null 0 0 0 as 3" + more);
        EXPECT_EQ(Key(), "0: e key to e 107 0 0 as 2");
        Restart();
    }
    int times = 0, clicks = 0;
    const AVSKWindowID window = CreateAs(air, "w"), next = CreateAs(b, "e");
    AVSKTakeKeyboardFocus(window);
    ActorOf(window).losing = [&] { return AVSKTakeKeyboardFocus(++times % 2 ? nullptr : next), 0; };
    AVSKTakeKeyboardFocus(next);
    EXPECT_LT(times, 50) << "to and fro";
    Restart();
    ActorOf(CreateAs(air, "w")).click = [&] { return clicks++ > 0 ? disable() : void(), 1; };
    Click(5, 5, 1);
    Click(5, 5, 0);
    EXPECT_LT(clicks, 50);
    EXPECT_EQ(Click(5, 5, 0), "1") << "it was let go";
}

TEST_F(Windows, DestroyedTheLosingWindowMayDestroyItselfAndHaveItsPluginUnloaded) {
    const AVSKWindowID window = CreateAs(air, "w");
    AVSKTakeKeyboardFocus(window);
    ActorOf(window).losing = [=] { return AVSKDestroyWindow(window), World::UnloadAircraft(), 0; };
    AVSKDestroyWindow(window);
    EXPECT_FALSE(Exists(window));
    EXPECT_EQ(air.Id(), NO_PLUGIN_ID);
}

TEST_F(Windows, OneThatANewOneCutOffGoesWithItsPlugin) {
    ActorOf(Create("back")).draw = [&] { return actors.size() < 3 ? Create("new"), 0 : 0; };
    const AVSKWindowID window = CreateAs(air, "w");
    ActorOf(window).losing = []() -> int { throw 1; }; // disabling fails
    Focus(window);
    Drawn();
    EXPECT_FALSE(Exists(window));
    EXPECT_THROW(world.Stop(), int);
    SetUp();
    EXPECT_EQ(Key(), "1");
}

} // namespace
