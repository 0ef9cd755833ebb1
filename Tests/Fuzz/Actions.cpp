// The actions: API calls as the dispatched plugin, and reports of the host. Each
// takes its arguments from the input and updates the model. Two tables at the
// end list them.
#include "Puppets.h"

#include <algorithm>
#include <cmath>
#include <numeric>

namespace {

Input &Draw() { return gFuzz.in; }

int Self() { return AVSKGetMyID(); }

// A handle of the library. It converts to any of its types.
struct Handle {
    void *pointer = nullptr;
    template <class T>
    operator T *() const {
        return static_cast<T *>(pointer);
    }
};

bool IsSelf(const Registration &r) { return r.owner == Self() && r.who == IncarnationOf(Self()); }

void MarkRemoved(Registration &r) {
    r.count = 0;
    r.removed = true;
    r.revived = false;
}

// The input picks a handle. Returns the latest registration with it, since the library reuses addresses.
Registration *PickLatest(Kind kind) {
    const Registration *picked = Pick(kind);
    return picked && picked->handle ? ByHandle(kind, picked->handle) : nullptr;
}

// Returns a handle that the input picks, or null.
Handle HandleOf(Kind kind) {
    const Registration *picked = Pick(kind);
    return {picked ? picked->handle : nullptr};
}

// Creates a resource. As plugin -1 the call must return null or 0 without a host service call.
template <class Call>
void Create(Kind kind, Call call) {
    Registration *r = Register(kind);
    if (!r)
        return;
    const int services = gFuzz.services;
    const bool created = call(*r);
    REQUIRE(r->owner != NO_PLUGIN_ID || (!created && gFuzz.services == services), "nobody creates a %s", NameOf(kind));
}

template <class Call>
void Remove(Registration *r, bool onlyOwn, Call call) {
    if (!r)
        return;
    const bool removed = !onlyOwn || r->owner == Self();
    call(*r);
    if (removed)
        MarkRemoved(*r);
}

template <Kind kKind, auto kCall, bool kOnlyOwn>
void RemoveByHandle() {
    Remove(PickLatest(kKind), kOnlyOwn, [](Registration &r) { kCall(Handle{r.handle}); });
}

// Loading plugins is as slow as many other calls, so a run does it only a few times.
bool MayLoad() { return gFuzz.loads < 4 + gFuzz.actions / 100 && ++gFuzz.loads; }

int AnyX() { return Draw().Below(16); }

// Members are drawn in their order. Compilers disagree about the order of arguments.
struct KeyPress {
    char key = static_cast<char>('A' + Draw().Below(3));
    int flags = Draw().Below(3);
};

constexpr float kIntervals[] = {-1, -1, 0, 1, 0.25F, -2, NAN, INFINITY};
struct Interval {
    float seconds = Draw().OneOf(kIntervals);
    int relative = Draw().Below(2);
};

// ---- The host's reports

// Makes one report. Catches what a callback throws, or rethrows it if the input says so.
template <class Report>
void Hook(Report report) {
    ++gCounters.hooks;
    const int before = Self();
    const bool outermost = gFuzz.depth == 0;
    try {
        report();
    } catch (...) {
        ++gCounters.throws;
        if (!outermost && gFuzz.hostDepth == 0 && Draw().Flag())
            throw;
    }
    if (outermost && Self() == NO_PLUGIN_ID)
        AVSKSetDispatchedPlugin(before); // a life of the library ended inside the report
    if (outermost)
        REQUIRE(Self() == before, "after a hook %d is dispatched, before it %d", Self(), before);
}

void Event(int event, AVSKWord parameter) {
    const bool loads = event == AVSKHostEventSceneryFolder || event == AVSKHostEventPlaneLoaded;
    if (loads && !MayLoad())
        return;
    gFuzz.upheavals += loads || event == AVSKHostEventPlaneUnloaded;
    if (event == AVSKHostEventSceneryFolder)
        parameter = reinterpret_cast<AVSKWord>("/Scenery/s/");
    Hook([=] {
        const float now = gFuzz.now;
        TRACE("event %d at %g, parameter %x", event, now, parameter);
        const bool isFrame = event == AVSKHostEventFrame || event == AVSKHostEventFrameEnd;
        const FlightPass next = {event == AVSKHostEventFrame ? 0 : 1, now, ++gFuzz.serial};
        const AVSKScopedValue pass(gFuzz.pass, isFrame ? next : gFuzz.pass);
        REQUIRE(AVSKEventHook(event, now, 12345, parameter) == 1, "event %d is not answered 1", event);
    });
}

template <int kEvent>
void Pass() {
    constexpr float steps[] = {0, 0.25F, 0.5F, 1, 1, 2, -3, 100};
    gFuzz.now += Draw().OneOf(steps);
    if (Draw().Rarely(64))
        gFuzz.now = Draw().Flag() ? NAN : INFINITY;
    else if (!std::isfinite(gFuzz.now))
        gFuzz.now = 0;
    Event(kEvent, 0);
}

void DrawScreen(int code, int reflection) {
    const AVSKScopedValue drawing(gFuzz.drawHooks, gFuzz.drawHooks + 1);
    Hook([=] { AVSKDoDrawingHook(code, reflection); });
}

// Sends any event, sometimes an unknown one.

// Loads or unloads the aircraft's plugins, or loads the scenery's.

// Shuts the library down and starts it again.
void Restart() {
    if (!MayLoad())
        return;
    TRACE("restart");
    ++gFuzz.upheavals;
    ShutDownLibrary();
    if (AVSKCountPlugins() == 0) // not started meanwhile, from inside a service
        StartLibrary();
}

// ---- Calls of plugins

int AnyPlugin() { return Draw().Below(AVSKCountPlugins() + 3) - 2; }

void Enable(int id) {
    const Incarnation *who = IncarnationOf(id);
    const bool enabling = who && who->enabling;
    const int answer = AVSKEnablePlugin(id);
    REQUIRE(!enabling || answer == 0, "enabling plugin %d inside itself answers %d", id, answer);
}

void SetErrorCallback() {
    Incarnation *self = IncarnationOf(Self());
    const bool wants = !Draw().Rarely(4);
    if (self)
        self->errorSet = wants;
    AVSKSetErrorCallback(wants ? ErrorCallback(self ? self->file : kProgram) : nullptr);
}

bool CreateLoop(Registration &r) {
    r.a = Draw().Below(2);
    const AVSKCreateFlightLoopParams params = {sizeof params, r.a, Code<Kind::Loop>(r), &r};
    r.removed = true; // not registered yet while the library asks the host for the time
    AVSKFlightLoopID loop = AVSKCreateFlightLoop(&params);
    r.removed = false;
    r.handle = loop;
    if (loop) {
        const Interval first;
        AVSKScheduleFlightLoop(loop, first.seconds, first.relative);
    }
    return loop != nullptr;
}

bool RegisterLoop(Registration &r) {
    r.removed = true; // as above
    AVSKRegisterFlightLoopCallback(Code<Kind::Loop>(r), Draw().OneOf(kIntervals), &r);
    r.removed = false;
    return false;
}

// Registers or unregisters a draw callback or a key sniffer, which the library identifies by its values.
template <Kind kKind>
int ByValues(bool registers, Registration &r) {
    if constexpr (kKind == Kind::Draw)
        return (registers ? AVSKRegisterDrawCallback : AVSKUnregisterDrawCallback)(Code<kKind>(r), r.a, r.b, &r);
    else
        return (registers ? AVSKRegisterKeySniffer : AVSKUnregisterKeySniffer)(Code<kKind>(r), r.b, &r);
}

// A pass in progress still finds registrations removed during it.
template <Kind kKind>
bool IsUnderWay() {
    return (kKind == Kind::Draw ? gFuzz.drawHooks : gFuzz.keyHooks) > 0;
}

// Makes a new registration, or an existing one again.
template <Kind kKind>
void RegisterValues() {
    Registration *r = Draw().Rarely(3) ? Pick(kKind) : nullptr;
    if (!r || !IsSelf(*r)) {
        r = Register(kKind);
        if (!r)
            return;
        constexpr int phases[] = {0, 5, 50, 30, 100, 25, 45, 55};
        r->a = Draw().OneOf(phases);
        r->b = Draw().Below(2);
        r->removed = true; // not registered yet
    }
    const int answer = ByValues<kKind>(true, *r);
    const Status status = StatusOf(*r);
    REQUIRE(answer || status != Status::Gone || IsUnderWay<kKind>() || r->owner == NO_PLUGIN_ID, "a new %s is refused",
            NameOf(kKind));
    if (!answer)
        return;
    REQUIRE(status != Status::Live, "a %s is registered twice", NameOf(kKind));
    REQUIRE(r->owner != NO_PLUGIN_ID, "nobody registers a %s", NameOf(kKind));
    r->removed = false;
    r->count = 1;
    r->serial = ++gFuzz.serial;
}

template <Kind kKind>
void UnregisterValues() {
    Registration *r = Pick(kKind);
    if (!r)
        return;
    const int answer = ByValues<kKind>(false, *r);
    const Status status = StatusOf(*r);
    REQUIRE(answer || status != Status::Live, "a registered %s is not found", NameOf(kKind));
    REQUIRE(!answer || status != Status::Gone || IsUnderWay<kKind>() || r->owner == NO_PLUGIN_ID,
            "a removed %s is found", NameOf(kKind));
    if (answer)
        MarkRemoved(*r);
}

bool RegisterHotKey(Registration &r) {
    const KeyPress key;
    r.handle = AVSKRegisterHotKey(key.key, key.flags, "a hot key", Code<Kind::HotKey>(r), &r);
    r.count = r.handle != nullptr;
    return r.handle;
}

void CountHotKeys() {
    const int count = AVSKCountHotKeys();
    const auto &all = gFuzz.Of(Kind::HotKey);
    const auto live = std::count_if(all.begin(), all.end(), [](const Registration *each) {
        return each->count == 1 && StatusOf(*each) == Status::Live;
    });
    REQUIRE(count >= live, "%d hot keys are counted of %d", count, static_cast<int>(live));
    REQUIRE(!AVSKGetNthHotKey(count), "there is a hot key %d of %d", count, count);
    for (int index = 0; index < count; ++index)
        REQUIRE(ByHandle(Kind::HotKey, AVSKGetNthHotKey(index)), "hot key %d is nobody's", index);
}

// Returns the registration of a window that the library still finds, or null. The
// query has no side effects on later calls for the window.
Registration *Found(AVSKWindowID window) {
    void *refcon = AVSKGetWindowRefCon(window);
    Registration *found = ByRefcon(refcon);
    REQUIRE(found || !refcon, "a window has the refcon of another run, %p", refcon);
    REQUIRE(!found || (found->kind == Kind::Window && found->handle == window), "a window has another's refcon");
    return found;
}

bool CreateWindow(Registration &r) {
    const int left = AnyX();
    const int right = left + Draw().Below(12) - 1;
    const Code<Kind::Window> code(r);
    r.handle = AVSKCreateWindow(left, right, right, left, !Draw().Rarely(6), code, code, code, &r);
    return r.handle;
}

bool CreateWindowEx(Registration &r) {
    const Code<Kind::Window> f(r);
    const AVSKCreateWindowParams params = {sizeof params, 0, 16, 16, 0, !Draw().Rarely(6), f, f, f, f, f, &r};
    r.handle = AVSKCreateWindowEx(&params);
    const bool created = r.handle;
    if (Draw().Rarely(3) && created)
        AVSKTakeKeyboardFocus(Handle{r.handle});
    return created;
}

AVSKWindowID AnyWindow() { return HandleOf(Kind::Window); }

void MoveWindow() {
    AVSKWindowID window = AnyWindow();
    int at[4] = {};
    AVSKGetWindowGeometry(window, at, at + 1, at + 2, at + 3);
    AVSKSetWindowGeometry(window, at[0] + Draw().Below(3) - 1, at[1], at[2], at[3]);
    AVSKIsWindowInFront(window);
    AVSKSetWindowIsVisible(window, AVSKGetWindowIsVisible(window) ^ Draw().Below(2));
    if (Registration *r = Found(window))
        AVSKSetWindowRefCon(window, r);
}

bool CreateMenu(Registration &r) {
    AVSKMenuID parent = Draw().Flag() ? HandleOf(Kind::Menu) : Handle();
    const AVSKMenuHandler_f handler = Code<Kind::Menu>(r);
    const int item = Draw().Below(3) - 1;
    AVSKMenuID menu = AVSKCreateMenu("A menu", parent, item, Draw().Rarely(8) ? nullptr : handler, &r);
    r.handle = menu;
    if (menu)
        AVSKAppendMenuItem(menu, "An item", nullptr, 0);
    return menu;
}

void ChangeMenu() {
    AVSKMenuID menu = Draw().Rarely(4) ? AVSKFindPluginsMenu() : static_cast<AVSKMenuID>(HandleOf(Kind::Menu));
    const int index = Draw().Below(5) - 1;
    const int call = Draw().Below(5);
    if (call == 0)
        AVSKRemoveMenuItem(menu, index);
    else if (call == 1)
        AVSKSetMenuItemName(menu, index, "Another name", 0);
    else if (call == 2)
        AVSKEnableMenuItem(menu, index, Draw().Below(2)), AVSKCheckMenuItem(menu, index, Draw().Below(5) - 1);
    else
        AVSKAppendMenuItem(menu, "An item", nullptr, 0);
}

void *AnyCommand() { return HostCommand(Draw().Below(kCommands)); }

void RegisterCommandHandler() {
    void *command = AnyCommand();
    Registration *r = Draw().Rarely(4) ? Pick(Kind::Command) : nullptr;
    if (!r || !IsSelf(*r) || StatusOf(*r) == Status::Gone) {
        r = Register(Kind::Command);
        if (!r)
            return;
        r->handle = command;
        r->b = Draw().Below(2);
    }
    AVSKRegisterCommandHandler(r->handle, Code<Kind::Command>(*r), r->b, r);
    ++r->count;
}

void UnregisterCommandHandler() {
    Registration *r = Pick(Kind::Command);
    if (!r)
        return;
    const bool mine = r->owner == Self();
    AVSKUnregisterCommandHandler(r->handle, Code<Kind::Command>(*r), r->b, r);
    if (mine && r->count > 0 && --r->count == 0)
        MarkRemoved(*r);
}

struct SharedName {
    const char *name;
    int type;
};
constexpr SharedName kShared[] = {
    {"fuzz/shared/int", AVSKDataTypeInt},
    {"fuzz/shared/double", AVSKDataTypeDouble},
    {"fuzz/shared/ints", AVSKDataTypeIntArray},
    {"fuzz/shared/bytes", AVSKDataTypeData},
};

bool Share(Registration &r) {
    r.a = Draw().Below(4);
    const SharedName &shared = kShared[r.a];
    const bool taken = AVSKShareData(shared.name, shared.type, Code<Kind::Shared>(r), &r) == 1;
    REQUIRE(taken || r.owner == NO_PLUGIN_ID, "data cannot be shared");
    r.count = taken;
    return taken;
}

void Unshare() {
    Registration *r = Pick(Kind::Shared);
    if (!r)
        return;
    const bool live = r->owner == Self() && r->count > 0 && StatusOf(*r) == Status::Live;
    const SharedName &shared = kShared[r->a];
    const int answer = AVSKUnshareData(shared.name, shared.type, Code<Kind::Shared>(*r), r);
    REQUIRE(answer || !live, "a subscription is not found");
    REQUIRE(!answer || r->owner == Self(), "a subscription of plugin %d ends for %d", r->owner, Self());
    if (answer)
        MarkRemoved(*r);
}

void UseShared() {
    const char *name = kShared[Draw().Below(4)].name;
    AVSKDataRef ref = AVSKFindDataRef(name);
    REQUIRE(ref, "%s is gone", name);
    int values[8] = {1, 2, 3, 4, 5, 6, 7, 8};
    const int offset = Draw().Below(6) - 1;
    AVSKSetDatai(ref, 1);
    AVSKSetDatad(ref, 1);
    AVSKSetDatavi(ref, values, offset, 2);
    AVSKSetDatab(ref, values, offset, 3);
    AVSKGetDatavi(ref, values, offset, 8);
    AVSKGetDatab(ref, values, offset, 32);
}

constexpr const char *kDataNames[] = {"fuzz/data/0", "fuzz/data/1", "fuzz/data/2", "fuzz/data/3",
                                      "fuzz/data/4", "fuzz/data/5", "fuzz/data/6", "fuzz/data/7"};

void RegisterData() {
    const int number = Draw().Below(8);
    const char *name = kDataNames[number];
    AVSKDataRef ref = AVSKFindDataRef(name);
    bool owned = false;
    bool live = false;
    for (Registration *each : gFuzz.Of(Kind::Data))
        if (each->a == number) {
            const Status status = StatusOf(*each);
            owned = owned || status != Status::Gone;
            live = live || status == Status::Live;
            each->removed = each->removed || !ref;
        }
    REQUIRE(!ref || owned, "%s is owned by nobody who registered it", name);
    REQUIRE(ref || !live, "%s lost its owner", name);
    Create(Kind::Data, [&](Registration &r) {
        r.a = number;
        r.removed = ref || r.owner == NO_PLUGIN_ID;
        const Code<Kind::Data> f(r);
        r.handle =
            AVSKRegisterDataAccessor(name, AVSKDataTypeInt | AVSKDataTypeIntArray, Draw().Below(4) != 0, f, f, nullptr,
                                     nullptr, nullptr, nullptr, f, f, nullptr, nullptr, nullptr, nullptr, &r, &r);
        return r.handle != nullptr;
    });
}

void UnregisterData() {
    const int number = Draw().Below(8);
    const char *name = kDataNames[number];
    AVSKDataRef ref = AVSKFindDataRef(name);
    Registration *mine = nullptr;
    for (Registration *each : gFuzz.Of(Kind::Data))
        if (each->a == number && each->owner == Self() && StatusOf(*each) != Status::Gone)
            mine = each;
    AVSKUnregisterDataAccessor(ref);
    if (!mine)
        return;
    const bool found = AVSKFindDataRef(name);
    REQUIRE(!ref || StatusOf(*mine) == Status::Limbo || !found, "%s is still registered", name);
    mine->removed = mine->removed || !found;
}

void UseData() {
    AVSKDataRef ref = AVSKFindDataRef(Draw().OneOf(kDataNames));
    if (Draw().Rarely(3))
        ref = HandleOf(Kind::Data); // it may be unregistered by now
    int values[4] = {};
    const int call = Draw().Below(4);
    if (call == 0)
        AVSKGetDatai(ref);
    else if (call == 1)
        AVSKSetDatai(ref, 1);
    else if (call == 2)
        AVSKGetDatavi(ref, values, 0, 4);
    else
        AVSKSetDatavi(ref, values, 0, 4);
}

bool LoadAsync(Registration &r) {
    AVSKLoadObjectAsync("an object", Code<Kind::Load>(r), &r);
    return false;
}

bool LoadObject(Registration &r) { return (r.handle = AVSKLoadObject("an object")); }

bool CreateProbe(Registration &r) { return (r.handle = AVSKCreateProbe(Draw().Below(2))); }

void UseScenery() {
    AVSKProbeInfo info = {};
    info.structSize = sizeof info;
    AVSKProbeTerrainXYZ(HandleOf(Kind::Probe), 1, 2, 3, &info);
    AVSKDrawInfo places[2] = {};
    places[0].structSize = places[1].structSize = sizeof *places;
    AVSKDrawObjects(HandleOf(Kind::Object), 2, places, 0, 0);
    if (Registration *r = Register(Kind::Feature))
        AVSKLookupObjects("a path", 1, 2, Code<Kind::Feature>(*r), r);
}

char aircraft[] = "Aircraft/a/x.acf";

bool AcquirePlanes(Registration &r) {
    char *paths[] = {aircraft, aircraft, nullptr};
    r.count = 1; // reset below if it was not queued
    if (!AVSKAcquirePlanes(Draw().Flag() ? paths : nullptr, Code<Kind::Planes>(r), &r))
        return false;
    REQUIRE(r.count == 1, "planes are offered to the plugin that has them");
    r.count = 0;
    int controller = NO_PLUGIN_ID;
    AVSKCountAircraft(nullptr, nullptr, &controller);
    return true;
}

void UsePlanes() {
    AVSKSetActiveAircraftCount(Draw().Below(5) - 1);
    AVSKReinitUsersPlane();
    AVSKSetAircraftModel(Draw().Below(5) - 1, aircraft);
    AVSKSetUsersAircraft(aircraft);
    char texts[2][512];
    AVSKGetNthAircraftModel(0, texts[0], texts[1]);
    AVSKDisableAIForPlane(1);
}

bool ControlCamera(Registration &r) {
    if (r.owner != NO_PLUGIN_ID)
        gFuzz.camera = &r;
    AVSKControlCamera(Draw().Below(3), Code<Kind::Camera>(r), &r);
    return false;
}

// ---- The tables

// One action and its weight, which is its relative frequency.
struct Choice {
    int weight;
    const char *name;
    void (*act)();
};

constexpr Choice kReports[] = {
    {2, "frame", Pass<AVSKHostEventFrame>},
    {1, "end of frame", Pass<AVSKHostEventFrameEnd>},
    {2, "draw",
     [] {
         const int code = Draw().Below(28);
         DrawScreen(code, Draw().Rarely(4));
     }},
    {1, "draw windows", [] { DrawScreen(20, 0); }},
    {2, "click", [] { Hook([x = AnyX(), y = AnyX(), down = Draw().Below(3)] { AVSKMouseClickHook(x, y, down); }); }},
    {2, "key",
     [] {
         const AVSKScopedValue pressing(gFuzz.keyHooks, gFuzz.keyHooks + 1);
         Hook([key = KeyPress()] { AVSKKeyPressHook(key.key, key.flags, key.key); });
     }},
    {1, "cursor", [] { Hook([x = AnyX()] { AVSKCursorHook(x, x); }); }},
    {1, "wheel", [] { Hook([x = AnyX()] { AVSKScrollWheelHook(x, x, 0, 1); }); }},
    {1, "camera",
     [] {
         Hook([] {
             float f[7] = {1, 2, 3, 4, 5, 6, 7};
             AVSKCameraHook(&f[0], &f[1], &f[2], &f[3], &f[4], &f[5], &f[6]);
         });
     }},
    {1, "menu item", [] { Hook([item = AnyHostItemID()] { AVSKMenuHook(item); }); }},
    {1, "menu question",
     [] {
         Hook([menu = AnyHostMenu(), index = Draw().Below(6) - 1] {
             int check = 7;
             if (AVSKCheckMenuHook(menu, index, &check) == 0)
                 REQUIRE(check >= -1 && check <= 1, "a check mark of %d", check);
             AVSKMenuItemEnabled(menu, index);
         });
     }},
    {1, "command",
     [] {
         Hook([command = HostCommand(Draw().Below(kCommands)), bits = Draw().Byte()] {
             AVSKCommandHook(command, bits & 1U, bits & 2U, bits & 4U);
         });
     }},
    {1, "event",
     [] {
         const int event = Draw().Below(16);
         if (event != AVSKHostEventFrame && event != AVSKHostEventFrameEnd)
             Event(event, event == AVSKHostEventSceneryFolder ? 0 : Draw().Rarely(4));
     }},
    {1, "planes",
     [] {
         Hook([count = Draw().Below(8), flag = Draw().Rarely(3)] {
             const int handled = AVSKGetNumberPlanesToHandle(count, flag);
             REQUIRE(handled <= count, "%d planes of %d", handled, count);
             char name[256] = "x.acf";
             static char path[4096];
             AVSKUpdatePlaneNameAndPath(count - 1, name, path);
         });
     }},
    {1, "load completed", [] { Hook(CompleteLoad); }},
    {1, "plugins change",
     [] {
         constexpr int events[] = {AVSKHostEventPlaneUnloaded, AVSKHostEventSceneryFolder, AVSKHostEventPlaneLoaded,
                                   AVSKHostEventPlaneLoaded};
         Event(Draw().OneOf(events), 0);
     }},
};

constexpr Choice kCalls[] = {
    {1, "disable itself", [] { AVSKDisablePlugin(Self()); }},
    {1, "enable itself", [] { Enable(Self()); }},
    {1, "disable", [] { AVSKDisablePlugin(AnyPlugin()); }},
    {2, "enable", [] { Enable(AnyPlugin()); }},
    {1, "reload", [] { MayLoad() ? AVSKReloadPlugins() : void(); }},
    {2, "send message",
     [] {
         const int receiver = Draw().Flag() ? NO_PLUGIN_ID : AnyPlugin();
         int sender = Self();
         AVSKSendMessageToPlugin(receiver, 1000 + Draw().Below(4), &sender);
     }},
    {1, "enable feature",
     [] {
         const int enable = Draw().Below(3);
         AVSKEnableFeature(Draw().Flag() ? "AVSK_WANTS_REFLECTIONS" : "AVSK_USE_NATIVE_PATHS", enable);
     }},
    {2, "error callback", SetErrorCallback},
    {1, "features",
     [] {
         AVSKIsFeatureEnabled("no feature");
         if (Registration *r = Register(Kind::Feature))
             AVSKEnumerateFeatures(Code<Kind::Feature>(*r), r);
     }},
    {1, "ask about plugin", [] { AVSKGetPluginInfo(AnyPlugin(), nullptr, nullptr, nullptr, nullptr); }},
    {3, "create loop", [] { Create(Kind::Loop, CreateLoop); }},
    {2, "register loop", [] { Create(Kind::Loop, RegisterLoop); }},
    {1, "destroy loop", RemoveByHandle<Kind::Loop, AVSKDestroyFlightLoop, true>},
    {1, "unregister loop",
     [] {
         Remove(Pick(Kind::Loop), false,
                [](Registration &r) { AVSKUnregisterFlightLoopCallback(Code<Kind::Loop>(r), &r); });
     }},
    {2, "change loop",
     [] {
         if (Registration *r = Pick(Kind::Loop)) {
             const Interval byHandle;
             AVSKScheduleFlightLoop(Handle{r->handle}, byHandle.seconds, byHandle.relative);
             const Interval byValues;
             AVSKSetFlightLoopCallbackInterval(Code<Kind::Loop>(*r), byValues.seconds, byValues.relative, r);
         }
     }},
    {4, "register draw", RegisterValues<Kind::Draw>},
    {2, "unregister draw", UnregisterValues<Kind::Draw>},
    {4, "register sniffer", RegisterValues<Kind::Sniffer>},
    {2, "unregister sniffer", UnregisterValues<Kind::Sniffer>},
    {3, "register hot key", [] { Create(Kind::HotKey, RegisterHotKey); }},
    {1, "unregister hot key", RemoveByHandle<Kind::HotKey, AVSKUnregisterHotKey, false>},
    {1, "count hot keys", CountHotKeys},
    {1, "change hot key",
     [] {
         AVSKHotKeyID hotKey = HandleOf(Kind::HotKey);
         char description[AVSK_HOT_KEY_TEXT_SIZE];
         AVSKGetHotKeyInfo(hotKey, nullptr, nullptr, description, nullptr);
         const KeyPress key;
         AVSKSetHotKeyCombination(hotKey, key.key, key.flags);
     }},
    {3, "create window", [] { Create(Kind::Window, CreateWindow); }},
    {4, "create window ex", [] { Create(Kind::Window, CreateWindowEx); }},
    {3, "destroy window",
     [] {
         AVSKWindowID window = AnyWindow();
         Remove(Found(window), false, [&](Registration &) { AVSKDestroyWindow(window); });
     }},
    {2, "focus", [] { AVSKTakeKeyboardFocus(Draw().Flag() ? AnyWindow() : nullptr); }},
    {2, "bring to front",
     [] {
         AVSKWindowID window = AnyWindow();
         Registration *r = Found(window);
         if (r && r->removed)
             r->revived = true;
         AVSKBringWindowToFront(window);
     }},
    {2, "move window", MoveWindow},
    {3, "create menu", [] { Create(Kind::Menu, CreateMenu); }},
    {1, "destroy menu", RemoveByHandle<Kind::Menu, AVSKDestroyMenu, true>},
    {1, "clear menu",
     [] {
         Clearing clearing = {HandleOf(Kind::Menu), gFuzz.depth, -1};
         const AVSKScopedValue nested(gClearing, &clearing);
         AVSKClearAllMenuItems(clearing.menu);
     }},
    {3, "change menu", ChangeMenu},
    {3, "register handler", RegisterCommandHandler},
    {2, "unregister handler", UnregisterCommandHandler},
    {1, "begin command", [] { AVSKCommandBegin(AnyCommand()); }},
    {1, "end command", [] { AVSKCommandEnd(AnyCommand()); }},
    {1, "command once", [] { AVSKCommandOnce(AnyCommand()); }},
    {3, "share", [] { Create(Kind::Shared, Share); }},
    {1, "unshare", Unshare},
    {3, "use shared", UseShared},
    {2, "register data", RegisterData},
    {1, "unregister data", UnregisterData},
    {3, "use data", UseData},
    {3, "load async", [] { Create(Kind::Load, LoadAsync); }},
    {1, "load object", [] { Create(Kind::Object, LoadObject); }},
    {1, "unload object", [] { AVSKUnloadObject(HandleOf(Kind::Object)); }},
    {1, "create probe", [] { Create(Kind::Probe, CreateProbe); }},
    {1, "destroy probe", [] { AVSKDestroyProbe(HandleOf(Kind::Probe)); }},
    {1, "use scenery", UseScenery},
    {3, "acquire planes", [] { Create(Kind::Planes, AcquirePlanes); }},
    {2, "release planes", AVSKReleasePlanes},
    {2, "use planes", UsePlanes},
    {2, "control camera", [] { Create(Kind::Camera, ControlCamera); }},
    {1, "leave camera", AVSKDontControlCamera},
    {1, "press button",
     [] {
         gFuzz.buttons.push_back(1 + Draw().Below(4));
         AVSKCommandButtonPress(gFuzz.buttons.back());
     }},
    {1, "release button", [] { AVSKCommandButtonRelease(1 + Draw().Below(4)); }},
    {1, "small ones",
     [] {
         AVSKDebugString("a line\n");
         AVSKGetElapsedTime();
         AVSKCameraPosition position;
         AVSKReadCameraPosition(&position);
     }},
};

// Acts as one row of a table.
template <std::size_t kCount>
void Act(const Choice (&table)[kCount], int number) {
    constexpr auto add = [](int sum, const Choice &each) { return sum + each.weight; };
    static const int total = std::accumulate(table, table + kCount, 0, add);
    number %= total;
    const Choice *choice = table;
    while (number >= choice->weight)
        number -= choice++->weight;
    TRACE("%s", choice->name);
    choice->act();
}

void PluginActs(int number) {
    ++gCounters.calls;
    Act(kCalls, number);
}

bool MayAct() { return !gFuzz.calm && !Draw().Empty() && ++gFuzz.actions <= kMaxActions; }

} // namespace

void ShareNames() {
    for (const SharedName &each : kShared)
        AVSKShareData(each.name, each.type, nullptr, nullptr);
}

void ActInCallback(int throwsOneIn) {
    if (gFuzz.calm || gFuzz.depth >= kMaxDepth)
        return;
    const AVSKScopedValue deeper(gFuzz.depth, gFuzz.depth + 1);
    constexpr int counts[] = {0, 1, 1, 2, 2, 3, 4, 0};
    for (int count = Draw().OneOf(counts); count > 0 && MayAct(); --count) {
        const int number = Draw().Below(256);
        if (number < 64)
            Act(kReports, number);
        else
            PluginActs(number - 64);
    }
    if (!Draw().Rarely(throwsOneIn))
        return;
    TRACE("throws");
    // A tear-down that holds back this exception leaves its files mapped.
    for (File &file : gFuzz.files)
        file.kept = true;
    if (Draw().Flag())
        ThrowOwn();
    throw 1;
}

void ActAsHost() {
    if (gFuzz.depth >= kMaxDepth || !MayAct())
        return;
    const AVSKScopedValue deeper(gFuzz.depth, gFuzz.depth + 1);
    try {
        if (Draw().Rarely(32))
            Restart();
        else
            Act(kReports, Draw().Below(256));
    } catch (...) {
        REQUIRE(false, "an exception passed a report from a host service");
    }
}

void ActAtTop() {
    if (!MayAct())
        return;
    const int number = Draw().Below(256);
    if (number == 255 && Draw().Rarely(4))
        return Restart();
    if (number < 192)
        return Act(kReports, number);
    Catching([] { PluginActs(Draw().Below(256)); }); // as plugin 0
}
