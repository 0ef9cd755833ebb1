// Draw callbacks, key sniffers, windows and hot keys, and the routing of the
// host's draw passes and input events to them. Owns gDrawCallbacks,
// gKeyCallbacks, gListeners, gWindows, gHotKeys, gFocusWindow and gDragWindow;
// called by plugins, by the host's hooks, and by the core when a plugin is
// disabled or unloaded.
#include "AVSK/AVSKDisplay.h"

#include "AVSKDispatch.h"
#include "AVSKFeatures.h"
#include "AVSKHostTable.h"
#include "AVSKModules.h"
#include "AVSKPlatform.h"
#include "AVSKResourceList.h"
#include "AVSKScopedValue.h"

#include <string>
#include <vector>

struct AVSKDrawCallbackRecord : AVSKResource_t<AVSKDrawCallbackRecord> {
    AVSKDrawCallback_f callback;
    int owner;
    int phase;
    int wantsBefore;
    void *refcon;
    int *listeners; // counts the records of this half of this phase; null if the host draws none

    AVSKDrawCallbackRecord(AVSKDrawCallback_f function, int plugin, int ofPhase, int before, void *reference);
    ~AVSKDrawCallbackRecord();
    AVSKDrawCallbackRecord(const AVSKDrawCallbackRecord &) = delete;
    AVSKDrawCallbackRecord &operator=(const AVSKDrawCallbackRecord &) = delete;
};

struct AVSKKeyCallbackRecord : AVSKResource_t<AVSKKeyCallbackRecord> {
    AVSKKeySniffer_f callback = nullptr;
    int owner = NO_PLUGIN_ID;
    int beforeWindows = 0;
    void *refcon = nullptr;
};

struct AVSKWindowCallbackRecord : AVSKResource_t<AVSKWindowCallbackRecord>, AVSKTracked<AVSKWindowCallbackRecord> {
    int left = 0;
    int top = 0;
    int right = 0;
    int bottom = 0;
    int visible = 0;
    AVSKDrawWindow_f drawFunc = nullptr;
    AVSKHandleKey_f keyFunc = nullptr;
    AVSKHandleMouseClick_f mouseClickFunc = nullptr;
    AVSKHandleCursor_f cursorFunc = nullptr;
    AVSKHandleMouseWheel_f mouseWheelFunc = nullptr;
    int owner = NO_PLUGIN_ID;
    void *refcon = nullptr;
    int losingFocus = 0;                          // how deep its key function is being told so
    AVSKWindowCallbackRecord *losingTo = nullptr; // as named in the innermost of these calls

    bool IsHitBy(int x, int y) const { return visible && left <= x && x < right && bottom <= y && y < top; }
};

struct AVSKHotKeyInfoRecord : AVSKResource_t<AVSKHotKeyInfoRecord> {
    int owner = NO_PLUGIN_ID;
    char virtualKey = 0;
    int flags = 0;
    std::string description;
    AVSKHotKey_f callback = nullptr;
    void *refcon = nullptr;
};

// What is removed during a pass of these three is still found until the pass ends.
AVSKResourceList<AVSKDrawCallbackRecord> gDrawCallbacks(AVSKReclaim::AfterPass);
AVSKResourceList<AVSKKeyCallbackRecord> gKeyCallbacks(AVSKReclaim::AfterPass);
AVSKResourceList<AVSKWindowCallbackRecord> gWindows(AVSKReclaim::AfterPass); // the front first
AVSKResourceList<AVSKHotKeyInfoRecord> gHotKeys;

AVSKWindowCallbackRecord *gFocusWindow = nullptr; // gets the keys
AVSKWindowCallbackRecord *gDragWindow = nullptr;  // holds the mouse

namespace {

// A window's function that is told of a loss may cause the same loss again,
// and would be told of that without end.
constexpr int kDeepestLoss = 16;

using WindowPin = AVSKResourceList<AVSKWindowCallbackRecord>::Pin;

constexpr int kNotHandled = 1;
constexpr int kConsumed = 0;

// How many records each half of each phase has, so that a pass nobody listens
// to costs nothing. The host draws no phase beyond these.
constexpr int kPhases = 103;
int gListeners[kPhases][2] = {};

int *ListenersOf(int phase, int before) {
    const bool drawn = phase >= 0 && phase < kPhases && (before == 0 || before == 1);
    return drawn ? &gListeners[phase][before] : nullptr;
}

template <class Record, class Pred>
Record *Find(AVSKResourceList<Record> &list, Pred pred) {
    for (Record &rec : list.AllRecords())
        if (pred(rec))
            return &rec;
    return nullptr;
}

template <class Record, class Pred>
int RemoveFirst(AVSKResourceList<Record> &list, Pred pred) {
    for (Record &rec : list.AllRecords())
        if (pred(rec)) {
            list.Remove(&rec);
            return 1;
        }
    return 0;
}

template <class Record>
void RemoveOwned(AVSKResourceList<Record> &list, int pluginID) {
    for (Record &rec : list.AllRecords())
        if (rec.owner == pluginID)
            list.Remove(&rec);
}

template <class Record>
bool HoldsOwned(const AVSKResourceList<Record> &list, int pluginID) {
    return list.Any([pluginID](const Record &rec) { return rec.owner == pluginID && !rec.is_removed(); });
}

// The one with these values, whoever owns it.
auto Same(AVSKDrawCallback_f callback, int phase, int wantsBefore, void *refcon) {
    return [=](const AVSKDrawCallbackRecord &rec) {
        return rec.callback == callback && rec.phase == phase && rec.wantsBefore == wantsBefore && rec.refcon == refcon;
    };
}

// The one with these values, whoever owns it.
auto Same(AVSKKeySniffer_f callback, int beforeWindows, void *refcon) {
    return [=](const AVSKKeyCallbackRecord &rec) {
        return rec.callback == callback && rec.beforeWindows == beforeWindows && rec.refcon == refcon;
    };
}

} // namespace

// ---- Draw callbacks and key sniffers

AVSKDrawCallbackRecord::AVSKDrawCallbackRecord(AVSKDrawCallback_f function, int plugin, int ofPhase, int before,
                                               void *reference)
    : callback(function), owner(plugin), phase(ofPhase), wantsBefore(before), refcon(reference),
      listeners(ListenersOf(ofPhase, before)) {
    if (listeners)
        ++*listeners;
}

AVSKDrawCallbackRecord::~AVSKDrawCallbackRecord() {
    if (listeners)
        --*listeners;
}

int AVSKRegisterDrawCallback(AVSKDrawCallback_f callback, int phase, int wantsBefore, void *refcon) {
    if (Find(gDrawCallbacks, Same(callback, phase, wantsBefore, refcon)))
        return 0;
    gDrawCallbacks.Add(new AVSKDrawCallbackRecord(callback, AVSKGetDispatchedPlugin(), phase, wantsBefore, refcon));
    return 1;
}

int AVSKUnregisterDrawCallback(AVSKDrawCallback_f callback, int phase, int wantsBefore, void *refcon) {
    return RemoveFirst(gDrawCallbacks, Same(callback, phase, wantsBefore, refcon));
}

int AVSKRegisterKeySniffer(AVSKKeySniffer_f callback, int beforeWindows, void *refcon) {
    if (Find(gKeyCallbacks, Same(callback, beforeWindows, refcon)))
        return 0;
    auto *sniffer = new AVSKKeyCallbackRecord;
    sniffer->callback = callback;
    sniffer->owner = AVSKGetDispatchedPlugin();
    sniffer->beforeWindows = beforeWindows;
    sniffer->refcon = refcon;
    gKeyCallbacks.Add(sniffer);
    return 1;
}

int AVSKUnregisterKeySniffer(AVSKKeySniffer_f callback, int beforeWindows, void *refcon) {
    return RemoveFirst(gKeyCallbacks, Same(callback, beforeWindows, refcon));
}

// ---- Windows

namespace {

// The record at an address, dead ones included, or null.
AVSKWindowCallbackRecord *AVSKWindowIsValid(const void *window) {
    return Find(gWindows, [window](const AVSKWindowCallbackRecord &rec) { return &rec == window; });
}

AVSKWindowID AddWindow(const AVSKCreateWindowParams &params) {
    auto *window = new AVSKWindowCallbackRecord;
    window->left = params.left;
    window->top = params.top;
    window->right = params.right;
    window->bottom = params.bottom;
    window->visible = params.visible;
    window->drawFunc = params.drawFunc;
    window->keyFunc = params.keyFunc;
    window->mouseClickFunc = params.mouseClickFunc;
    window->cursorFunc = params.cursorFunc;
    window->mouseWheelFunc = params.mouseWheelFunc;
    window->owner = AVSKGetDispatchedPlugin();
    window->refcon = params.refcon;
    gWindows.Add(window);
    return window;
}

// Takes the focus from a window, which hears of it, but not again from inside
// that very call: there it would be told for ever.
void TakeFocusFrom(AVSKWindowCallbackRecord *window) {
    if (gFocusWindow != window)
        return;
    if (window->losingFocus)
        gFocusWindow = nullptr;
    else
        AVSKTakeKeyboardFocus(nullptr);
}

// Not of the very loss that it is being told of.
bool MayBeTold(const AVSKWindowCallbackRecord &window, const AVSKWindowCallbackRecord *to) {
    return window.losingFocus == 0 || (window.losingTo != to && window.losingFocus < kDeepestLoss);
}

// Clears what points at a window that goes; no call is made.
void Forget(const AVSKWindowCallbackRecord *window) {
    if (gFocusWindow == window)
        gFocusWindow = nullptr;
    if (gDragWindow == window)
        gDragWindow = nullptr;
}

void Destroy(AVSKWindowCallbackRecord *window) {
    const WindowPin pin(gWindows);
    TakeFocusFrom(window);
    if (window->linked) // still, after that call
        gWindows.Remove(window);
    Forget(window); // which the call may have given the focus again
}

} // namespace

AVSKWindowID AVSKCreateWindow(int left, int top, int right, int bottom, int visible, AVSKDrawWindow_f drawFunc,
                              AVSKHandleKey_f keyFunc, AVSKHandleMouseClick_f mouseClickFunc, void *refcon) {
    return AddWindow({sizeof(AVSKCreateWindowParams), left, top, right, bottom, visible, drawFunc, mouseClickFunc,
                      keyFunc, nullptr, nullptr, refcon});
}

AVSKWindowID AVSKCreateWindowEx(const AVSKCreateWindowParams *params) {
    if (!params || params->structSize != static_cast<int>(sizeof *params))
        return nullptr;
    return AddWindow(*params);
}

void AVSKDestroyWindow(AVSKWindowID window) {
    if (AVSKWindowCallbackRecord *rec = AVSKWindowIsValid(window))
        Destroy(rec);
}

void AVSKGetWindowGeometry(AVSKWindowID window, int *outLeft, int *outTop, int *outRight, int *outBottom) {
    const AVSKWindowCallbackRecord *rec = AVSKWindowIsValid(window);
    if (!rec)
        return;
    if (outLeft)
        *outLeft = rec->left;
    if (outTop)
        *outTop = rec->top;
    if (outRight)
        *outRight = rec->right;
    if (outBottom)
        *outBottom = rec->bottom;
}

void AVSKSetWindowGeometry(AVSKWindowID window, int left, int top, int right, int bottom) {
    AVSKWindowCallbackRecord *rec = AVSKWindowIsValid(window);
    if (!rec)
        return;
    rec->left = left;
    rec->top = top;
    rec->right = right;
    rec->bottom = bottom;
}

int AVSKGetWindowIsVisible(AVSKWindowID window) {
    const AVSKWindowCallbackRecord *rec = AVSKWindowIsValid(window);
    return rec ? rec->visible : 0;
}

void AVSKSetWindowIsVisible(AVSKWindowID window, int visible) {
    AVSKWindowCallbackRecord *rec = AVSKWindowIsValid(window);
    if (!rec)
        return;
    const WindowPin pin(gWindows);
    if (rec->visible && !visible)
        TakeFocusFrom(rec);
    rec->visible = visible;
}

void *AVSKGetWindowRefCon(AVSKWindowID window) {
    const AVSKWindowCallbackRecord *rec = AVSKWindowIsValid(window);
    return rec ? rec->refcon : nullptr;
}

void AVSKSetWindowRefCon(AVSKWindowID window, void *refcon) {
    if (AVSKWindowCallbackRecord *rec = AVSKWindowIsValid(window))
        rec->refcon = refcon;
}

void AVSKTakeKeyboardFocus(AVSKWindowID window) {
    AVSKWindowCallbackRecord *rec = AVSKWindowIsValid(window);
    if (rec == gFocusWindow)
        return;
    if (rec && !AVSKIsPluginEnabled(rec->owner))
        return;
    const WindowPin pin(gWindows);
    if (AVSKWindowCallbackRecord *old = gFocusWindow; old && MayBeTold(*old, window)) {
        const AVSKScopedValue depth(old->losingFocus, old->losingFocus + 1);
        const AVSKScopedValue target(old->losingTo, window);
        // The window that gets the focus is named as the caller named it.
        if (const StDispatchCallback guard(old->owner); guard() && old->keyFunc)
            old->keyFunc(window, 0, 0, 0, old->refcon, 1);
    }
    gFocusWindow = rec && !rec->is_removed() ? rec : nullptr;
}

void AVSKBringWindowToFront(AVSKWindowID window) {
    if (AVSKWindowCallbackRecord *rec = AVSKWindowIsValid(window))
        gWindows.MoveToFront(rec);
}

int AVSKIsWindowInFront(AVSKWindowID window) {
    const AVSKWindowCallbackRecord *front =
        Find(gWindows, [](const AVSKWindowCallbackRecord &rec) { return rec.visible != 0; });
    return front && front == window;
}

// ---- Hot keys
//
// The queries begin a walk and leave it open, and registering ends one that
// nobody began: removals are deferred while a walk is open, and reclaimed when
// the next one ends.

namespace {

// Begins a walk that stays open, and finds the record at an address, dead
// ones included.
AVSKHotKeyInfoRecord *AVSKValidateHotKey(const void *id) {
    for (AVSKHotKeyInfoRecord *rec = gHotKeys.BeginIterate(); rec; rec = rec->get_next())
        if (rec == id)
            return rec;
    return nullptr;
}

} // namespace

AVSKHotKeyID AVSKRegisterHotKey(char virtualKey, int flags, const char *description, AVSKHotKey_f callback,
                                void *refcon) {
    auto *hotKey = new AVSKHotKeyInfoRecord;
    hotKey->owner = AVSKGetDispatchedPlugin();
    hotKey->virtualKey = virtualKey;
    hotKey->flags = flags;
    hotKey->description = description ? description : "";
    hotKey->callback = callback;
    hotKey->refcon = refcon;
    gHotKeys.Add(hotKey);
    gHotKeys.EndIterate();
    return hotKey;
}

void AVSKUnregisterHotKey(AVSKHotKeyID hotKey) {
    if (AVSKHotKeyInfoRecord *rec = AVSKValidateHotKey(hotKey))
        gHotKeys.Remove(rec);
    gHotKeys.EndIterate();
}

int AVSKCountHotKeys() {
    int count = 0;
    for (const AVSKHotKeyInfoRecord *rec = gHotKeys.BeginIterate(); rec; rec = rec->get_next())
        ++count;
    return count;
}

AVSKHotKeyID AVSKGetNthHotKey(int index) {
    AVSKHotKeyInfoRecord *rec = gHotKeys.BeginIterate();
    if (index < 0)
        return nullptr;
    while (rec && index-- > 0)
        rec = rec->get_next();
    return rec;
}

void AVSKGetHotKeyInfo(AVSKHotKeyID hotKey, char *outVirtualKey, int *outFlags, char *outDescription,
                       AVSKPluginID *outPlugin) {
    const AVSKHotKeyInfoRecord *rec = AVSKValidateHotKey(hotKey);
    if (!rec)
        return;
    if (outVirtualKey)
        *outVirtualKey = rec->virtualKey;
    if (outFlags)
        *outFlags = rec->flags;
    if (outDescription)
        strcpytrunc(outDescription, rec->description, AVSK_HOT_KEY_TEXT_SIZE);
    if (outPlugin)
        *outPlugin = rec->owner;
}

void AVSKSetHotKeyCombination(AVSKHotKeyID hotKey, char virtualKey, int flags) {
    if (AVSKHotKeyInfoRecord *rec = AVSKValidateHotKey(hotKey)) {
        rec->virtualKey = virtualKey;
        rec->flags = flags;
    }
}

int AVSKDispatchHotKey(char virtualKey, int flags) {
    auto walk = gHotKeys.LiveRecords();
    StDispatchCallback guard;
    for (const AVSKHotKeyInfoRecord &rec : walk) {
        if (rec.virtualKey != virtualKey || rec.flags != flags || !rec.callback)
            continue;
        if (guard.Enter(rec.owner)) {
            rec.callback(rec.refcon);
            walk.KeepOpen();
            return 1;
        }
    }
    return 0;
}

// ---- Routing of draw passes

namespace {

// Calls the callbacks of one half of a phase. The answers are combined bit by
// bit: an even one keeps the host from drawing as 0 does.
[[gnu::always_inline]] inline int AVSKDispatchDrawingHook(int phase, int isBefore, int isReflection) {
    const int *const listeners = ListenersOf(phase, isBefore);
    int result = 1;
    StDispatchCallback guard;
    for (const AVSKDrawCallbackRecord &rec : gDrawCallbacks.LiveRecords()) {
        if (rec.listeners != listeners || !rec.callback)
            continue;
        if (isReflection == 1 && !AVSKHasFeatureInternal(rec.owner, kFeatureWantsReflections))
            continue;
        if (guard.Enter(rec.owner))
            result &= rec.callback(phase, isBefore, rec.refcon);
    }
    return result;
}

// What a draw code of the host dispatches, and what it is answered.
struct DrawCode {
    int phase;
    bool half[2]; // after, before
    bool windows; // ahead of the half after
    bool asks;    // the half before says whether the host draws; else it draws in any case
};

// The irregular ones match how the host has always drawn: 12 and 18 draw
// nothing that could be left out, 19 and 20 stand around the windows, and the
// phases of 21 to 26 are not in order.
constexpr DrawCode Before(int phase) { return {phase, {false, true}, false, true}; }
constexpr DrawCode After(int phase) { return {phase, {true, false}, false, false}; }
constexpr DrawCode Both(int phase) { return {phase, {true, true}, false, true}; }
constexpr DrawCode BothUnasked(int phase) { return {phase, {true, true}, false, false}; }
constexpr DrawCode WindowsAndAfter(int phase) { return {phase, {true, false}, true, false}; }

constexpr DrawCode kDrawCodes[] = {
    {}, // no code
    Both(0),     Before(5),       After(5),   Before(10),          After(10),   Before(15), After(15),   Before(20),
    After(20),   Before(25),      After(25),  BothUnasked(30),     Both(35),    Before(40), After(40),   Before(45),
    After(45),   BothUnasked(55), Before(50), WindowsAndAfter(50), Before(101), After(101), Before(100), After(100),
    Before(102), After(102),
};
constexpr unsigned kDrawCodeCount = sizeof kDrawCodes / sizeof *kDrawCodes;

[[gnu::noinline]] void DrawWindows() {
    StDispatchCallback guard;
    for (AVSKWindowCallbackRecord &window : gWindows.LiveRecordsFromBack()) {
        if (!window.visible || !window.drawFunc)
            continue;
        if (guard.Enter(window.owner))
            window.drawFunc(&window, window.refcon);
    }
}

} // namespace

int AVSKDisplayDoDrawingHook(int hostDrawCode, int isReflection) {
    if (static_cast<unsigned>(hostDrawCode) >= kDrawCodeCount)
        return kNotHandled;
    const DrawCode &code = kDrawCodes[hostDrawCode];
    int answer = kNotHandled;
    if (code.half[1] && gListeners[code.phase][1] != 0) {
        const int result = AVSKDispatchDrawingHook(code.phase, 1, isReflection);
        if (code.asks)
            answer = result;
    }
    if (code.windows) {
        AVSKDisplayMouseDragHook();
        DrawWindows();
    }
    if (code.half[0] && gListeners[code.phase][0] != 0)
        AVSKDispatchDrawingHook(code.phase, 0, isReflection);
    return answer;
}

// ---- Routing of mouse and keys

namespace {

// Offers a press to the windows under the mouse, the front one first. A click
// neither raises a window nor moves the focus.
int OfferMouseDown(int x, int y) {
    StDispatchCallback guard;
    for (AVSKWindowCallbackRecord &window : gWindows.LiveRecords()) {
        if (!window.IsHitBy(x, y) || !window.mouseClickFunc)
            continue;
        if (!guard.Enter(window.owner) || !window.mouseClickFunc(&window, x, y, AVSKMouseDown, window.refcon))
            continue;
        if (!window.is_removed()) // by its own click
            gDragWindow = &window;
        return kConsumed;
    }
    return kNotHandled;
}

// Calls the window that holds the mouse, wherever it is and also while hidden.
int CallDragWindow(int x, int y, int status) {
    AVSKWindowCallbackRecord *window = gDragWindow;
    const StDispatchCallback guard(window->owner);
    if (!guard())
        return kNotHandled;
    window->mouseClickFunc(window, x, y, status, window->refcon); // it took the press
    return kConsumed;
}

enum class Sniffers {
    BeforeWindows,
    AfterWindows
};

// Offers a key to one kind of sniffers; false when one of them consumed it.
// The walk is never ended: removals from the list are deferred from the first
// key press on.
bool OfferToSniffers(Sniffers kind, char key, int flags, char virtualKey) {
    auto walk = gKeyCallbacks.LiveRecords();
    bool goesOn = true;
    StDispatchCallback guard;
    for (const AVSKKeyCallbackRecord &rec : walk) {
        if ((rec.beforeWindows != 0) != (kind == Sniffers::BeforeWindows) || !rec.callback)
            continue;
        if (guard.Enter(rec.owner) && rec.callback(key, flags, virtualKey, rec.refcon) == 0) {
            goesOn = false;
            break;
        }
    }
    walk.KeepOpen();
    return goesOn;
}

// The focus window consumes whatever it is given; false if its plugin is not to be called.
bool CallFocusWindow(char key, int flags, char virtualKey) {
    AVSKWindowCallbackRecord *window = gFocusWindow;
    if (!window)
        return false;
    const StDispatchCallback guard(window->owner);
    if (!guard())
        return false;
    if (window->keyFunc)
        window->keyFunc(window, key, flags, virtualKey, window->refcon, 0);
    return true;
}

} // namespace

int AVSKDisplayMouseClickHook(int x, int y, int mouseStatus) {
    if (mouseStatus == AVSKMouseDown)
        return OfferMouseDown(x, y);
    if (!gDragWindow)
        return kNotHandled;
    if (mouseStatus != AVSKMouseUp)
        return CallDragWindow(x, y, mouseStatus);
    // A window that is let go may have its plugin disabled, which lets it go once more.
    static int releases = 0;
    const AVSKScopedValue depth(releases, releases + 1);
    const int result = releases <= kDeepestLoss ? CallDragWindow(x, y, mouseStatus) : kNotHandled;
    gDragWindow = nullptr;
    return result;
}

void AVSKDisplayMouseDragHook() {
    if (!gDragWindow)
        return;
    int x = 0;
    int y = 0;
    gHooks->getMouseLocation(&x, &y, 0);
    AVSKDisplayMouseClickHook(x, y, AVSKMouseDrag);
}

int AVSKDisplayKeyPressHook(char key, int flags, char virtualKey) {
    if (!key && !flags && !virtualKey)
        return kNotHandled;
    if (!OfferToSniffers(Sniffers::BeforeWindows, key, flags, virtualKey))
        return kConsumed;
    if (AVSKDispatchHotKey(virtualKey, flags))
        return kConsumed;
    if (CallFocusWindow(key, flags, virtualKey))
        return kConsumed;
    return OfferToSniffers(Sniffers::AfterWindows, key, flags, virtualKey) ? kNotHandled : kConsumed;
}

int AVSKDisplayCursorHook(int x, int y) {
    StDispatchCallback guard;
    for (AVSKWindowCallbackRecord &window : gWindows.LiveRecords()) {
        if (!window.IsHitBy(x, y) || !window.cursorFunc)
            continue;
        if (guard.Enter(window.owner))
            if (const int status = window.cursorFunc(&window, x, y, window.refcon))
                return status;
    }
    return 0;
}

int AVSKDisplayScrollWheelHook(int x, int y, int wheel, int clicks) {
    StDispatchCallback guard;
    for (AVSKWindowCallbackRecord &window : gWindows.LiveRecords()) {
        if (!window.IsHitBy(x, y) || !window.mouseWheelFunc)
            continue;
        if (guard.Enter(window.owner) && window.mouseWheelFunc(&window, x, y, wheel, clicks, window.refcon))
            return kConsumed;
    }
    return kNotHandled;
}

// ---- Plugins that go

void AVSKDisplayDisableHook(int pluginID) {
    if (gFocusWindow && gFocusWindow->owner == pluginID)
        AVSKTakeKeyboardFocus(nullptr);
    if (gDragWindow && gDragWindow->owner == pluginID) {
        int x = 0;
        int y = 0;
        gHooks->getMouseLocation(&x, &y, 0);
        AVSKDisplayMouseClickHook(x, y, AVSKMouseUp);
    }
}

void AVSKDisplayCleanupHook(int pluginID) {
    RemoveOwned(gDrawCallbacks, pluginID);
    RemoveOwned(gKeyCallbacks, pluginID);
    for (AVSKWindowCallbackRecord &window : gWindows.AllRecords())
        if (window.owner == pluginID) {
            Destroy(&window);
            // Brought to the front in the pass under way, it would come alive
            // for a plugin that is loaded with the same ID.
            window.owner = NO_PLUGIN_ID;
        }
    // Windows that a new one cut off stand in no walk, but still have storage.
    std::vector<AVSKWindowCallbackRecord *> cutOff;
    AVSKWindowCallbackRecord::ForEach([pluginID, &cutOff](AVSKWindowCallbackRecord *window) {
        if (window->owner == pluginID)
            cutOff.push_back(window);
    });
    for (AVSKWindowCallbackRecord *window : cutOff) {
        window->owner = NO_PLUGIN_ID; // removed before and brought to the front, it is called again
        Forget(window);
        if (!window->is_removed())
            gWindows.Remove(window);
    }
    RemoveOwned(gHotKeys, pluginID);
}

bool AVSKDisplayHolds(int pluginID) {
    return HoldsOwned(gDrawCallbacks, pluginID) || HoldsOwned(gKeyCallbacks, pluginID) ||
           HoldsOwned(gWindows, pluginID) || HoldsOwned(gHotKeys, pluginID);
}
