// What plugins and the host do: calls of the interface on the dispatched
// plugin's account, and reports of the host. Each draws its arguments from
// the input and keeps the model up to date.
#include "Host.h"
#include "Model.h"

#include "AVSKDispatch.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <optional>
#include <string>

namespace {

Input &In() { return gFuzz.in; }

int Self() { return AVSKGetMyID(); }

template <class T>
T *As(void *handle) {
    return static_cast<T *>(handle);
}

bool IsSelf(const Registration &r) { return r.owner == Self() && r.who == IncarnationOf(Self()); }

// Of those with the handle of one that the input picks, the latest: addresses come again.
Registration *PickLatest(Kind kind) {
    const Registration *picked = Pick(kind);
    return picked && picked->handle ? ByHandle(kind, picked->handle) : nullptr;
}

void MarkRemoved(Registration &r) {
    r.count = 0;
    r.removed = true;
    r.revived = false;
}

// Each loading of plugins costs a thousand other calls: a run has a few.
bool MayLoad() { return ++gFuzz.loads <= 6; }

// One thing that may be done, so many times as often as one of weight 1.
struct Choice {
    int weight;
    void (*act)();
};

// Does one of them, as the input says.
template <std::size_t Count>
void Choose(const char *family, const Choice (&choices)[Count]) {
    int total = 0;
    for (const Choice &each : choices)
        total += each.weight;
    int left = In().Below(total);
    Trace("%s %d of %d", family, left, total);
    for (const Choice &each : choices)
        if ((left -= each.weight) < 0)
            return each.act();
}

// ---- The host's reports

// One report: what a callback throws ends here, or goes on to the caller's caller.
template <class Report>
void Hook(Report report) {
    ++gCounters.hooks;
    const int before = Self();
    const bool outermost = gFuzz.depth == 0;
    try {
        report();
    } catch (...) {
        ++gCounters.throws;
        if (!outermost && gFuzz.hostDepth == 0 && In().Flag())
            throw;
    }
    if (outermost)
        REQUIRE(Self() == before, "after a hook %d is dispatched, before it %d", Self(), before);
}

void Event(int event, AVSKWord parameter) {
    if ((event == AVSKHostEventSceneryFolder || event == AVSKHostEventPlaneLoaded) && !MayLoad())
        return;
    const std::string scenery = gFuzz.root + "Scenery/s/";
    if (event == AVSKHostEventSceneryFolder)
        parameter = reinterpret_cast<AVSKWord>(scenery.c_str());
    Hook([=] {
        const float now = gFuzz.now;
        Trace("event %d at %g, parameter %x", event, now, parameter);
        std::optional<Pushed<FlightPass>> pass;
        if (event == AVSKHostEventFrame || event == AVSKHostEventFrameEnd)
            pass.emplace(gFuzz.passes, FlightPass{event == AVSKHostEventFrame ? 0 : 1, now, ++gFuzz.serial});
        REQUIRE(AVSKEventHook(event, now, 12345, parameter) == 1, "event %d is not answered 1", event);
    });
}

void Pass(int event) {
    constexpr float steps[] = {0, 0.25F, 0.5F, 1, 1, 2, -3, 100};
    gFuzz.now += steps[In().Below(8)];
    if (In().Rarely(64))
        gFuzz.now = In().Flag() ? NAN : INFINITY;
    else if (!std::isfinite(gFuzz.now))
        gFuzz.now = 0;
    Event(event, 0);
}

void Draw(int code, int reflection) {
    const Deeper drawing(gFuzz.drawHooks);
    Hook([=] { AVSKDoDrawingHook(code, reflection); });
}

int AnyX() { return In().Below(16); }
int AnyFlags() { return In().Below(3); }
char AnyKey() { return static_cast<char>('A' + In().Below(3)); }

void PressKey() {
    const char key = AnyKey();
    const int flags = AnyFlags();
    const Deeper pressing(gFuzz.keyHooks);
    Hook([=] { AVSKKeyPressHook(key, flags, key); });
}

void AskAboutMenu() {
    void *menu = AnyHostMenu();
    const int index = In().Below(6) - 1;
    Hook([=] {
        int check = 7;
        if (AVSKCheckMenuHook(menu, index, &check) == 0)
            REQUIRE(check >= -1 && check <= 1, "a check mark of %d", check);
        AVSKMenuItemEnabled(menu, index);
    });
}

// Every event there is and some that are none.
void AnyEvent() {
    const int event = In().Below(16);
    if (event != AVSKHostEventFrame && event != AVSKHostEventFrameEnd)
        Event(event, event == AVSKHostEventSceneryFolder ? 0 : In().Rarely(4));
}

constexpr Choice kReports[] = {
    {2, [] { Pass(AVSKHostEventFrame); }},
    {1, [] { Pass(AVSKHostEventFrameEnd); }},
    {2,
     [] {
         const int code = In().Below(28);
         Draw(code, In().Rarely(4));
     }},
    {1, [] { Draw(20, 0); }}, // the windows
    {2,
     [] {
         const int x = AnyX();
         const int y = AnyX();
         Hook([x, y, down = In().Below(3)] { AVSKMouseClickHook(x, y, down); });
     }},
    {2, PressKey},
    {1, [] { Hook([x = AnyX()] { AVSKCursorHook(x, x); }); }},
    {1, [] { Hook([x = AnyX()] { AVSKScrollWheelHook(x, x, 0, 1); }); }},
    {1,
     [] {
         Hook([] {
             float f[7] = {1, 2, 3, 4, 5, 6, 7};
             AVSKCameraHook(&f[0], &f[1], &f[2], &f[3], &f[4], &f[5], &f[6]);
         });
     }},
    {1, [] { Hook([item = AnyHostItemID()] { AVSKMenuHook(item); }); }},
    {1, AskAboutMenu},
    {1,
     [] {
         void *command = HostCommand(In().Below(kCommands));
         Hook([command, bits = In().Byte()] { AVSKCommandHook(command, bits & 1U, bits & 2U, bits & 4U); });
     }},
    {1, AnyEvent},
    {1,
     [] {
         const int count = In().Below(8);
         Hook([count, flag = In().Rarely(3)] {
             const int handled = AVSKGetNumberPlanesToHandle(count, flag);
             REQUIRE(handled <= count, "%d planes of %d", handled, count);
         });
     }},
    {1, [] { Hook([] { CompleteLoad(); }); }},
    {1,
     [] { // the aircraft's and the scenery's plugins come and go
         constexpr int events[] = {AVSKHostEventPlaneUnloaded, AVSKHostEventSceneryFolder, AVSKHostEventPlaneLoaded,
                                   AVSKHostEventPlaneLoaded};
         Event(events[In().Below(4)], 0);
     }},
};

// ---- Plugins

int AnyPlugin() { return In().Below(AVSKCountPlugins() + 3) - 2; }

void SendMessage() {
    const int receiver = In().Flag() ? NO_PLUGIN_ID : AnyPlugin();
    const Pushed sending(gFuzz.senders, Self());
    AVSKSendMessageToPlugin(receiver, 1000 + In().Below(4), reinterpret_cast<void *>(gFuzz.senders.size() - 1));
}

void AskAboutPlugin() {
    char texts[4][AVSK_TEXT_SIZE];
    AVSKGetPluginInfo(AnyPlugin(), texts[0], texts[1], texts[2], texts[3]);
    AVSKFindPluginByPath(texts[1]);
    const int found = AVSKFindPluginBySignature(texts[2]);
    REQUIRE(found < AVSKCountPlugins(), "signature %s is plugin %d of %d", texts[2], found, AVSKCountPlugins());
    AVSKDebugGetCurrentPluginName();
}

constexpr Choice kPluginCalls[] = {
    {1, [] { AVSKDisablePlugin(Self()); }},
    {1, [] { AVSKEnablePlugin(Self()); }},
    {2, [] { AVSKDisablePlugin(AnyPlugin()); }},
    {2, [] { AVSKEnablePlugin(AnyPlugin()); }},
    {1,
     [] {
         if (MayLoad())
             AVSKReloadPlugins();
     }},
    {1, SendMessage},
    {1,
     [] {
         const int enable = In().Below(3);
         AVSKEnableFeature(In().Flag() ? "AVSK_WANTS_REFLECTIONS" : "AVSK_USE_NATIVE_PATHS", enable);
     }},
    {1,
     [] {
         Incarnation *self = IncarnationOf(Self());
         const bool wants = !In().Rarely(4);
         if (self)
             self->errorSet = wants;
         AVSKSetErrorCallback(wants ? (self ? *self->code : kProgramCode).error : nullptr);
     }},
    {1,
     [] {
         AVSKIsFeatureEnabled("no feature");
         if (Registration *r = Register(Kind::Feature))
             AVSKEnumerateFeatures(r->functions.feature, r);
     }},
    {1, AskAboutPlugin},
};

// ---- Flight loops

float AnyInterval() {
    constexpr float intervals[] = {-1, -1, 0, 1, 0.25F, -2, NAN, INFINITY};
    return intervals[In().Below(8)];
}

void LoopCall() {
    Trace("LoopCall");
    switch (In().Below(6)) {
    case 0:
        if (Registration *r = Register(Kind::Loop)) {
            r->a = In().Below(2);
            const AVSKCreateFlightLoopParams params = {sizeof params, r->a, r->functions.flightLoop, r};
            r->removed = true; // not there while the host is asked for the time
            AVSKFlightLoopID loop = AVSKCreateFlightLoop(&params);
            r->removed = false;
            r->handle = loop;
            AVSKScheduleFlightLoop(loop, AnyInterval(), In().Below(2));
        }
        return;
    case 1:
        if (Registration *r = Register(Kind::Loop)) {
            r->removed = true; // likewise
            AVSKRegisterFlightLoopCallback(r->functions.flightLoop, AnyInterval(), r);
            r->removed = false;
        }
        return;
    case 2:
        if (Registration *r = PickLatest(Kind::Loop)) {
            const bool mine = r->owner == Self();
            AVSKDestroyFlightLoop(As<AVSKFlightLoopRecord>(r->handle));
            if (mine)
                MarkRemoved(*r);
        }
        return;
    case 3:
        if (const Registration *r = Pick(Kind::Loop))
            AVSKScheduleFlightLoop(As<AVSKFlightLoopRecord>(r->handle), AnyInterval(), In().Below(2));
        return;
    case 4:
        if (Registration *r = Pick(Kind::Loop)) {
            AVSKUnregisterFlightLoopCallback(r->functions.flightLoop, r);
            MarkRemoved(*r);
        }
        return;
    default:
        if (Registration *r = Pick(Kind::Loop))
            AVSKSetFlightLoopCallbackInterval(r->functions.flightLoop, AnyInterval(), In().Below(2), r);
    }
}

// ---- Draw callbacks, sniffers and hot keys

// A registration by values, fresh or once more.
Registration *ByValues(Kind kind) {
    if (In().Rarely(3)) {
        Registration *again = Pick(kind);
        if (again && IsSelf(*again))
            return again;
    }
    Registration *r = Register(kind);
    if (r) {
        constexpr int phases[] = {0, 5, 50, 30, 100, 25, 45, 55};
        r->a = phases[In().Below(8)];
        r->b = In().Below(2);
        r->removed = true; // not there yet
    }
    return r;
}

void NoteRegistered(Registration &r, int answer, bool underWay) {
    const Status status = StatusOf(r);
    if (answer) {
        REQUIRE(status != Status::Live, "a %s is registered twice", NameOf(r.kind));
        r.removed = false;
        r.count = 1;
        r.serial = ++gFuzz.serial;
    } else {
        REQUIRE(status != Status::Gone || underWay || r.owner == NO_PLUGIN_ID,
                "a %s is refused though it is not registered", NameOf(r.kind));
    }
}

void NoteUnregistered(Registration &r, int answer, bool underWay) {
    const Status status = StatusOf(r);
    REQUIRE(answer || status != Status::Live, "a registered %s is not found", NameOf(r.kind));
    // In the pass under way a removed one is still found.
    REQUIRE(!answer || status != Status::Gone || underWay || r.owner == NO_PLUGIN_ID, "a removed %s is found",
            NameOf(r.kind));
    if (answer)
        MarkRemoved(r);
}

// Registers or unregisters by values; a pass under way still finds what was removed in it.
void ValuesCall(Kind kind, bool underWay, int (*add)(Registration &), int (*remove)(Registration &)) {
    Trace("%s call", NameOf(kind));
    if (In().Below(3) < 2) {
        if (Registration *r = ByValues(kind))
            NoteRegistered(*r, add(*r), underWay);
    } else if (Registration *r = Pick(kind)) {
        NoteUnregistered(*r, remove(*r), underWay);
    }
}

void DrawCall() {
    ValuesCall(
        Kind::Draw, gFuzz.drawHooks > 0,
        [](Registration &r) { return AVSKRegisterDrawCallback(r.functions.draw, r.a, r.b, &r); },
        [](Registration &r) { return AVSKUnregisterDrawCallback(r.functions.draw, r.a, r.b, &r); });
}

void SnifferCall() {
    ValuesCall(
        Kind::Sniffer, gFuzz.keyHooks > 0,
        [](Registration &r) { return AVSKRegisterKeySniffer(r.functions.sniffer, r.b, &r); },
        [](Registration &r) { return AVSKUnregisterKeySniffer(r.functions.sniffer, r.b, &r); });
}

void HotKeyCall() {
    Trace("HotKeyCall");
    switch (In().Below(6)) {
    case 0:
    case 1:
        if (Registration *r = Register(Kind::HotKey)) {
            r->handle = AVSKRegisterHotKey(AnyKey(), AnyFlags(), "a hot key", r->functions.hotKey, r);
            r->count = 1;
        }
        return;
    case 2:
        if (Registration *r = PickLatest(Kind::HotKey)) {
            AVSKUnregisterHotKey(As<AVSKHotKeyInfoRecord>(r->handle));
            MarkRemoved(*r);
        }
        return;
    case 3: {
        const int count = AVSKCountHotKeys();
        int live = 0;
        for (const Registration &each : gFuzz.registrations)
            live += each.kind == Kind::HotKey && each.count == 1 && StatusOf(each) == Status::Live;
        REQUIRE(count >= live, "%d hot keys are counted of %d", count, live);
        REQUIRE(!AVSKGetNthHotKey(count), "there is a hot key %d of %d", count, count);
        for (int index = 0; index < count; ++index)
            REQUIRE(ByHandle(Kind::HotKey, AVSKGetNthHotKey(index)), "hot key %d is nobody's", index);
        return;
    }
    case 4:
        if (const Registration *r = Pick(Kind::HotKey)) {
            char key = 0;
            int flags = 0;
            char description[AVSK_HOT_KEY_TEXT_SIZE];
            int plugin = 0;
            AVSKGetHotKeyInfo(As<AVSKHotKeyInfoRecord>(r->handle), &key, &flags, description, &plugin);
        }
        return;
    default:
        if (const Registration *r = Pick(Kind::HotKey))
            AVSKSetHotKeyCombination(As<AVSKHotKeyInfoRecord>(r->handle), AnyKey(), AnyFlags());
    }
}

// ---- Windows

// The registration of a window that the library still finds, or null. The
// question itself is harmless before any call that looks the window up.
Registration *Found(AVSKWindowID window) {
    void *refcon = AVSKGetWindowRefCon(window);
    for (Registration &each : gFuzz.registrations)
        if (&each == refcon) {
            REQUIRE(each.kind == Kind::Window && each.handle == window, "a window has the refcon of a %s",
                    NameOf(each.kind));
            return &each;
        }
    REQUIRE(!refcon, "a window has the refcon of another run, %p", refcon);
    return nullptr;
}

void WindowCall() {
    const int what = In().Below(12);
    Trace("WindowCall %d", what);
    if (what < 4) {
        Registration *r = Register(Kind::Window);
        if (!r)
            return;
        const FuzzCode &f = r->functions;
        const int left = AnyX();
        const int right = left + In().Below(12) - 1;
        const int visible = !In().Rarely(6);
        if (what == 0) {
            r->handle = AVSKCreateWindow(left, right, right, left, visible, f.drawWindow, f.key, f.click, r);
        } else {
            const AVSKCreateWindowParams params = {sizeof params, 0,       16,    16,       0,       visible,
                                                   f.drawWindow,  f.click, f.key, f.cursor, f.wheel, r};
            r->handle = AVSKCreateWindowEx(&params);
        }
        if (what == 3)
            AVSKTakeKeyboardFocus(As<AVSKWindowCallbackRecord>(r->handle));
        return;
    }
    const Registration *picked = Pick(Kind::Window);
    auto *window = As<AVSKWindowCallbackRecord>(picked ? picked->handle : nullptr);
    switch (what) {
    case 4:
    case 5: {
        Registration *r = Found(window);
        AVSKDestroyWindow(window);
        if (r)
            MarkRemoved(*r);
        return;
    }
    case 6:
        return AVSKTakeKeyboardFocus(window);
    case 7:
        return AVSKTakeKeyboardFocus(nullptr);
    case 8:
        return AVSKSetWindowIsVisible(window, In().Below(2));
    case 9: {
        Registration *r = Found(window);
        if (r && r->removed)
            r->revived = true;
        AVSKBringWindowToFront(window);
        return;
    }
    case 10: {
        int at[4] = {};
        AVSKGetWindowGeometry(window, at, at + 1, at + 2, at + 3);
        AVSKSetWindowGeometry(window, at[0] + In().Below(3) - 1, at[1], at[2], at[3]);
        return;
    }
    default:
        AVSKIsWindowInFront(window);
        AVSKGetWindowIsVisible(window);
        if (Registration *r = Found(window))
            AVSKSetWindowRefCon(window, r);
    }
}

// ---- Menus

void MenuCall() {
    Trace("MenuCall");
    const int what = In().Below(8);
    if (what < 2) {
        Registration *parent = what == 0 ? nullptr : Pick(Kind::Menu);
        Registration *r = Register(Kind::Menu);
        if (!r)
            return;
        const bool handled = !In().Rarely(8);
        r->handle = AVSKCreateMenu("A menu", parent ? As<AVSKMenuInfo_t>(parent->handle) : nullptr, In().Below(3) - 1,
                                   handled ? r->functions.menu : nullptr, r);
        AVSKAppendMenuItem(As<AVSKMenuInfo_t>(r->handle), "An item", nullptr, 0);
        return;
    }
    Registration *r = PickLatest(Kind::Menu);
    if (!r)
        return;
    auto *own = As<AVSKMenuInfo_t>(r->handle);
    AVSKMenuID menu = In().Rarely(4) ? AVSKFindPluginsMenu() : own;
    const int index = In().Below(5) - 1;
    switch (what) {
    case 2: {
        const bool mine = r->owner == Self();
        AVSKDestroyMenu(own);
        if (mine)
            MarkRemoved(*r);
        return;
    }
    case 3:
        return AVSKClearAllMenuItems(own);
    case 4:
        AVSKAppendMenuItem(menu, "An item", nullptr, 0);
        return;
    case 5:
        return AVSKRemoveMenuItem(menu, index);
    case 6:
        AVSKSetMenuItemName(menu, index, "Another name", 0);
        AVSKEnableMenuItem(menu, index, In().Below(2));
        return;
    default: {
        AVSKCheckMenuItem(menu, index, In().Below(5) - 1);
        int check = 0;
        AVSKCheckMenuItemState(menu, index, &check);
    }
    }
}

// ---- Commands, shared data and datarefs

void CommandCall() {
    Trace("CommandCall");
    void *command = HostCommand(In().Below(kCommands));
    switch (In().Below(7)) {
    case 0:
    case 1: {
        Registration *r = In().Rarely(4) ? Pick(Kind::Command) : nullptr;
        if (!r || !IsSelf(*r) || StatusOf(*r) == Status::Gone) {
            r = Register(Kind::Command);
            if (!r)
                return;
            r->handle = command;
            r->b = In().Below(2);
        }
        AVSKRegisterCommandHandler(r->handle, r->functions.command, r->b, r);
        ++r->count;
        return;
    }
    case 2:
    case 3:
        if (Registration *r = Pick(Kind::Command)) {
            const bool mine = r->owner == Self();
            AVSKUnregisterCommandHandler(r->handle, r->functions.command, r->b, r);
            if (mine && r->count > 0 && --r->count == 0)
                MarkRemoved(*r);
        }
        return;
    case 4:
        return AVSKCommandBegin(command);
    case 5:
        return AVSKCommandEnd(command);
    default:
        AVSKCommandOnce(command);
    }
}

constexpr int kSharedNames = 4;
const char *const kShared[kSharedNames] = {"fuzz/shared/int", "fuzz/shared/double", "fuzz/shared/ints",
                                           "fuzz/shared/bytes"};
constexpr int kSharedTypes[kSharedNames] = {AVSKDataTypeInt, AVSKDataTypeDouble, AVSKDataTypeIntArray,
                                            AVSKDataTypeData};

void SharedCall() {
    Trace("SharedCall");
    const int name = In().Below(kSharedNames);
    AVSKDataRef ref = AVSKFindDataRef(kShared[name]);
    switch (In().Below(5)) {
    case 0:
    case 1:
        if (Registration *r = Register(Kind::Shared)) {
            r->a = name;
            const int taken = AVSKShareData(kShared[name], kSharedTypes[name], r->functions.dataChanged, r);
            REQUIRE(taken == (r->owner != NO_PLUGIN_ID), "data cannot be shared, or by nobody");
            r->count = taken;
        }
        return;
    case 2:
        if (Registration *r = Pick(Kind::Shared)) {
            const bool mine = r->owner == Self() && r->count > 0;
            const bool was = StatusOf(*r) == Status::Live;
            const int answer = AVSKUnshareData(kShared[r->a], kSharedTypes[r->a], r->functions.dataChanged, r);
            REQUIRE(answer == 1 || !mine || !was, "a subscription is not found");
            REQUIRE(answer == 0 || r->owner == Self(), "a subscription of plugin %d ends for %d", r->owner, Self());
            if (answer)
                MarkRemoved(*r);
        }
        return;
    default: {
        REQUIRE(ref, "%s is gone", kShared[name]);
        int values[8] = {1, 2, 3, 4, 5, 6, 7, 8};
        AVSKSetDatai(ref, 1);
        AVSKSetDatad(ref, 1);
        const int offset = In().Below(6) - 1;
        AVSKSetDatavi(ref, values, offset, 2);
        AVSKSetDatab(ref, values, offset, 3);
        AVSKGetDatavi(ref, values, offset, 8);
        AVSKGetDatab(ref, values, offset, 32);
    }
    }
}

constexpr int kDataNames = 8;

const char *DataName(int number) {
    static char name[32];
    std::snprintf(name, sizeof name, "fuzz/data/%d", number);
    return name;
}

void DataCall() {
    Trace("DataCall");
    const int name = In().Below(kDataNames);
    AVSKDataRef ref = AVSKFindDataRef(DataName(name));
    switch (In().Below(6)) {
    case 0:
    case 1: {
        Registration *r = Register(Kind::Data);
        if (!r)
            return;
        r->a = name;
        r->removed = true;
        bool owned = false;
        bool live = false;
        for (const Registration &each : gFuzz.registrations)
            if (each.kind == Kind::Data && each.a == name) {
                owned = owned || StatusOf(each) != Status::Gone;
                live = live || StatusOf(each) == Status::Live;
            }
        REQUIRE(!ref || owned, "%s is owned by nobody who registered it", DataName(name));
        REQUIRE(ref || !live, "%s lost its owner", DataName(name));
        const FuzzCode &f = r->functions;
        if (!ref) {
            for (Registration &each : gFuzz.registrations)
                if (each.kind == Kind::Data && each.a == name)
                    each.removed = true;
            r->removed = r->owner == NO_PLUGIN_ID;
        }
        r->handle = AVSKRegisterDataAccessor(DataName(name), AVSKDataTypeInt | AVSKDataTypeIntArray, In().Below(4) != 0,
                                             f.readInt, f.writeInt, nullptr, nullptr, nullptr, nullptr, f.readInts,
                                             f.writeInts, nullptr, nullptr, nullptr, nullptr, r, r);
        return;
    }
    case 2: {
        Registration *mine = nullptr;
        for (Registration &each : gFuzz.registrations)
            if (each.kind == Kind::Data && each.a == name && each.owner == Self() && StatusOf(each) != Status::Gone)
                mine = &each;
        AVSKUnregisterDataAccessor(ref);
        if (mine) {
            REQUIRE(!ref || StatusOf(*mine) == Status::Limbo || !AVSKFindDataRef(DataName(name)),
                    "%s is still registered", DataName(name));
            if (!AVSKFindDataRef(DataName(name)))
                mine->removed = true;
        }
        return;
    }
    default: {
        if (const Registration *r = In().Rarely(3) ? Pick(Kind::Data) : nullptr)
            ref = As<AVSKData_t>(r->handle); // perhaps nobody's by now
        int values[4] = {};
        switch (In().Below(4)) {
        case 0:
            AVSKGetDatai(ref);
            return;
        case 1:
            return AVSKSetDatai(ref, 1);
        case 2:
            AVSKGetDatavi(ref, values, 0, 4);
            return;
        default:
            AVSKSetDatavi(ref, values, 0, 4);
            AVSKIsDataRefGood(ref);
            AVSKCanWriteDataRef(ref);
            AVSKGetDataRefTypes(ref);
            return;
        }
    }
    }
}

// ---- Scenery, planes, camera and the small ones

void SceneryCall() {
    Trace("SceneryCall");
    switch (In().Below(8)) {
    case 0:
    case 1:
    case 2:
        if (Registration *r = Register(Kind::Load))
            AVSKLoadObjectAsync("an object", r->functions.objectLoaded, r);
        return;
    case 3:
        if (Registration *r = Register(Kind::Object))
            r->handle = AVSKLoadObject("an object");
        return;
    case 4:
        if (const Registration *r = Pick(Kind::Object))
            AVSKUnloadObject(r->handle);
        return;
    case 5:
        if (Registration *r = Register(Kind::Probe))
            r->handle = AVSKCreateProbe(In().Below(2));
        return;
    case 6:
        if (const Registration *r = Pick(Kind::Probe))
            AVSKDestroyProbe(As<AVSKProbe_t>(r->handle));
        return;
    default: {
        const Registration *probe = Pick(Kind::Probe);
        AVSKProbeInfo info = {};
        info.structSize = sizeof info;
        AVSKProbeTerrainXYZ(probe ? As<AVSKProbe_t>(probe->handle) : nullptr, 1, 2, 3, &info);
        const Registration *object = Pick(Kind::Object);
        AVSKDrawInfo places[2] = {};
        places[0].structSize = places[1].structSize = sizeof *places;
        AVSKDrawObjects(object ? object->handle : nullptr, 2, places, 0, 0);
        if (const Registration *r = Register(Kind::Feature))
            AVSKLookupObjects("a path", 1, 2, r->functions.feature, const_cast<Registration *>(r));
    }
    }
}

void PlaneCall() {
    Trace("PlaneCall");
    char path[] = "Aircraft/a/x.acf";
    char *paths[] = {path, path, nullptr};
    switch (In().Below(8)) {
    case 0:
    case 1:
    case 2:
        if (Registration *r = Register(Kind::Planes)) {
            r->count = 1; // withdrawn if it was not queued
            if (AVSKAcquirePlanes(In().Flag() ? paths : nullptr, r->functions.planes, r)) {
                int controller = NO_PLUGIN_ID;
                REQUIRE(r->count == 1, "planes are offered to the plugin that has them");
                r->count = 0;
                AVSKCountAircraft(nullptr, nullptr, &controller);
            }
        }
        return;
    case 3:
    case 4:
        return AVSKReleasePlanes();
    case 5:
        AVSKSetActiveAircraftCount(In().Below(5) - 1);
        AVSKReinitUsersPlane();
        return;
    case 6:
        return AVSKSetAircraftModel(In().Below(5) - 1, path);
    default: {
        AVSKSetUsersAircraft(path);
        char file[512];
        char folder[512];
        AVSKGetNthAircraftModel(0, file, folder);
        AVSKDisableAIForPlane(1);
    }
    }
}

void CameraCall() {
    Trace("CameraCall");
    switch (In().Below(4)) {
    case 0:
    case 1:
        if (Registration *r = Register(Kind::Camera)) {
            if (r->owner != NO_PLUGIN_ID)
                gFuzz.camera = r;
            AVSKControlCamera(In().Below(3), r->functions.camera, r);
        }
        return;
    case 2:
        return AVSKDontControlCamera();
    default: {
        AVSKCameraPosition position;
        AVSKReadCameraPosition(&position);
    }
    }
}

void SmallCall() {
    Trace("SmallCall");
    const int button = 1 + In().Below(4);
    switch (In().Below(3)) {
    case 0:
        gFuzz.buttons.push_back(button);
        AVSKCommandButtonPress(button);
        return;
    case 1:
        return AVSKCommandButtonRelease(button);
    default:
        AVSKDebugString("a line\n");
        AVSKGetElapsedTime();
    }
}

constexpr Choice kActs[] = {
    {2, [] { Choose("plugin call", kPluginCalls); }},
    {1, LoopCall},
    {1, DrawCall},
    {1, SnifferCall},
    {3, WindowCall},
    {1, HotKeyCall},
    {1, MenuCall},
    {1, CommandCall},
    {1, SharedCall},
    {1, DataCall},
    {1, SceneryCall},
    {1, PlaneCall},
    {1, [] { In().Flag() ? CameraCall() : SmallCall(); }},
};

void HostReport() { Choose("report", kReports); }

void PluginActs() {
    ++gCounters.calls;
    Choose("call", kActs);
}

bool MayAct() { return !gFuzz.calm && !In().Empty() && ++gFuzz.actions <= kMaxActions; }

} // namespace

void ShareNames() {
    for (int name = 0; name < kSharedNames; ++name)
        AVSKShareData(kShared[name], kSharedTypes[name], nullptr, nullptr);
}

void ActInCallback(const FuzzCode &code) {
    if (gFuzz.calm || gFuzz.depth >= kMaxDepth)
        return;
    const Deeper deeper(gFuzz.depth);
    constexpr int counts[] = {0, 1, 1, 2, 2, 3, 4, 0};
    for (int count = counts[In().Below(8)]; count > 0 && MayAct(); --count) {
        if (In().Rarely(4))
            HostReport();
        else
            PluginActs();
    }
    if (!In().Rarely(24))
        return;
    Trace("throws");
    // A tear-down that holds the exception until it is done unmaps nothing.
    std::fill(std::begin(gFuzz.kept), std::end(gFuzz.kept), true);
    if (In().Flag())
        code.throwOwn();
    throw 1;
}

void ActAsHost() {
    if (gFuzz.depth >= kMaxDepth || !MayAct())
        return;
    const Deeper deeper(gFuzz.depth);
    try {
        HostReport();
    } catch (...) {
        Fail("an exception passed a report from a host service");
    }
}

void ActAtTop() {
    if (!MayAct())
        return;
    if (In().Below(4) != 3)
        return HostReport();
    try {
        PluginActs(); // of plugin 0
    } catch (...) {
        ++gCounters.throws;
    }
}
