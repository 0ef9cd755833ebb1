// Draw callbacks and windows, and the dispatch of the host's draw passes, mouse
// and cursor events to them; AVSKDisplayKeys.cpp has the keyboard half. Owns
// gDrawCallbacks, gListeners, gWindows, gFocusWindow and gDragWindow; called by
// plugins, by the host's hooks, and by the core when a plugin is disabled or
// unloaded.
#include "AVSKDisplay.h"

#include "AVSKDispatch.h"
#include "AVSKFeatures.h"
#include "AVSKHostTable.h"
#include "AVSKModules.h"
#include "AVSKResourceList.h"
#include "AVSKScopedValue.h"

#include "AVSK/AVSKPlugins.h"

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

// Look-ups find what was removed from these two until the pass is over. Outside
// readers rely on the four globals.
AVSKResourceList<AVSKDrawCallbackRecord> gDrawCallbacks(AVSKReclaim::AfterPass);
AVSKResourceList<AVSKWindowCallbackRecord> gWindows(AVSKReclaim::AfterPass); // the front window first
AVSKWindowCallbackRecord *gFocusWindow = nullptr;
AVSKWindowCallbackRecord *gDragWindow = nullptr; // took the last press and gets drags and the release

namespace {

// A window's function may cause the same loss, of focus or mouse, that it is
// notified of. This bounds the recursion.
constexpr int kDeepestLoss = 16;

using WindowPin = AVSKResourceList<AVSKWindowCallbackRecord>::Pin;

// The number of records of each half of each phase: a half without any costs
// one look. The host draws no phase beyond these; the row after them stays 0.
constexpr int kPhases = 103;
int gListeners[kPhases + 1][2] = {};

int *ListenersOf(int phase, int before) {
    const bool drawn = phase >= 0 && phase < kPhases && (before == 0 || before == 1);
    return drawn ? &gListeners[phase][before] : nullptr;
}

// Selects a draw callback by its values, whoever owns it.
auto SameDrawCallback(AVSKDrawCallback_f callback, int phase, int wantsBefore, void *refcon) {
    return [=](const AVSKDrawCallbackRecord &rec) {
        return rec.callback == callback && rec.phase == phase && rec.wantsBefore == wantsBefore && rec.refcon == refcon;
    };
}

} // namespace

// ---- Draw callbacks

AVSKDrawCallbackRecord::AVSKDrawCallbackRecord(AVSKDrawCallback_f function, int plugin, int ofPhase, int before,
                                               void *reference)
    : callback(function), owner(plugin), phase(ofPhase), wantsBefore(before), refcon(reference),
      listeners(function ? ListenersOf(ofPhase, before) : nullptr) {
    if (listeners)
        ++*listeners;
}

AVSKDrawCallbackRecord::~AVSKDrawCallbackRecord() {
    if (listeners)
        --*listeners;
}

int AVSKRegisterDrawCallback(AVSKDrawCallback_f callback, int phase, int wantsBefore, void *refcon) {
    if (!MayCreate() || gDrawCallbacks.FindFirst(SameDrawCallback(callback, phase, wantsBefore, refcon)))
        return 0;
    gDrawCallbacks.Add(new AVSKDrawCallbackRecord(callback, AVSKGetDispatchedPlugin(), phase, wantsBefore, refcon));
    return 1;
}

int AVSKUnregisterDrawCallback(AVSKDrawCallback_f callback, int phase, int wantsBefore, void *refcon) {
    return gDrawCallbacks.RemoveFirst(SameDrawCallback(callback, phase, wantsBefore, refcon));
}

// ---- Windows

namespace {

// The record at an address, dead ones included, or null. Outside readers rely
// on the name.
AVSKWindowCallbackRecord *AVSKWindowIsValid(const void *window) {
    return gWindows.FindFirst([window](const AVSKWindowCallbackRecord &rec) { return &rec == window; });
}

AVSKWindowID AddWindow(const AVSKCreateWindowParams &params) {
    if (!MayCreate())
        return nullptr;
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

// Takes the focus from a window and notifies the window. During that
// notification it only clears the focus: another one would recurse forever.
void TakeFocusFrom(AVSKWindowCallbackRecord *window) {
    if (gFocusWindow != window)
        return;
    if (window->losingFocus)
        gFocusWindow = nullptr;
    else
        AVSKTakeKeyboardFocus(nullptr);
}

// False while the window is being notified of this same loss, or when such
// notifications nest too deeply.
bool MayNotifyLoss(const AVSKWindowCallbackRecord &window, const AVSKWindowCallbackRecord *to) {
    return window.losingFocus == 0 || (window.losingTo != to && window.losingFocus < kDeepestLoss);
}

// Tells a window that it loses the focus to another. The other is named as the
// caller named it, even if it is unknown.
void NotifyFocusLoss(AVSKWindowCallbackRecord &window, AVSKWindowID to) {
    const AVSKScopedValue depth(window.losingFocus, window.losingFocus + 1);
    const AVSKScopedValue target(window.losingTo, to);
    if (const StDispatchCallback guard(window.owner); guard() && window.keyFunc)
        window.keyFunc(to, 0, 0, 0, window.refcon, 1);
}

// Takes focus and mouse from a window without notifying it.
void Forget(const AVSKWindowCallbackRecord *window) {
    if (gFocusWindow == window)
        gFocusWindow = nullptr;
    if (gDragWindow == window)
        gDragWindow = nullptr;
}

void Destroy(AVSKWindowCallbackRecord *window) {
    const WindowPin pin(gWindows);
    TakeFocusFrom(window);
    if (window->IsLinked()) // the notification may have destroyed it
        gWindows.Remove(window);
    Forget(window); // the notification may have given it the focus again
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
    if (AVSKWindowCallbackRecord *old = gFocusWindow; old && MayNotifyLoss(*old, window))
        NotifyFocusLoss(*old, window);
    gFocusWindow = rec && !rec->IsRemoved() ? rec : nullptr;
}

void AVSKBringWindowToFront(AVSKWindowID window) {
    if (AVSKWindowCallbackRecord *rec = AVSKWindowIsValid(window))
        gWindows.MoveToFront(rec);
}

int AVSKIsWindowInFront(AVSKWindowID window) {
    const AVSKWindowCallbackRecord *front =
        gWindows.FindFirst([](const AVSKWindowCallbackRecord &rec) { return rec.visible != 0; });
    return front && front == window;
}

// ---- Dispatch of draw passes

namespace {

// Calls the callbacks of one half of a phase and combines their answers bit by
// bit: any even answer keeps the host from drawing, as 0 does. Outside readers
// rely on the name.
[[gnu::always_inline]] inline int AVSKDispatchDrawingHook(int phase, int isBefore, int isReflection) {
    const int *const listeners = &gListeners[phase][isBefore];
    int result = 1;
    StDispatchCallback guard;
    for (const AVSKDrawCallbackRecord &rec : gDrawCallbacks.LiveRecords()) {
        if (rec.listeners != listeners)
            continue;
        if (isReflection == 1 && !AVSKHasFeatureInternal(rec.owner, kFeatureWantsReflections))
            continue;
        if (guard.Enter(rec.owner))
            result &= rec.callback(phase, isBefore, rec.refcon);
    }
    return result;
}

// What a draw code of the host dispatches, and what the host gets as answer.
struct DrawCode {
    int phase;
    unsigned char first; // the first half: 1 before, 0 after
    bool more;           // the half after follows, or the windows come first
    bool windows;
    bool asks; // the answer is that of the half before; otherwise it is 1
};

// The irregular entries match how the host has always drawn: codes 12 and 18
// draw nothing that could be left out, 19 and 20 enclose the windows, and the
// phases of 21 to 26 are not in ascending order.
constexpr DrawCode None() { return {kPhases, 0, false, false, false}; }
constexpr DrawCode Before(int phase) { return {phase, 1, false, false, true}; }
constexpr DrawCode After(int phase) { return {phase, 0, false, false, false}; }
constexpr DrawCode Both(int phase) { return {phase, 1, true, false, true}; }
constexpr DrawCode BothUnasked(int phase) { return {phase, 1, true, false, false}; }
constexpr DrawCode WindowsAndAfter(int phase) { return {phase, 0, true, true, false}; }

constexpr DrawCode kDrawCodes[] = {
    None(),      Both(0),    Before(5),   After(5),   Before(10),      After(10),       Before(15),
    After(15),   Before(20), After(20),   Before(25), After(25),       BothUnasked(30), Both(35),
    Before(40),  After(40),  Before(45),  After(45),  BothUnasked(55), Before(50),      WindowsAndAfter(50),
    Before(101), After(101), Before(100), After(100), Before(102),     After(102),
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

[[gnu::always_inline]] inline int DrawHalf(int phase, int half, int isReflection) {
    return gListeners[phase][half] != 0 ? AVSKDispatchDrawingHook(phase, half, isReflection) : kNotHandled;
}

[[gnu::noinline]] int DrawMore(const DrawCode &code, int isReflection) {
    if (code.windows) {
        AVSKDisplayMouseDragHook();
        DrawWindows();
    }
    int answer = kNotHandled;
    for (int half = code.first; half >= 0; --half) // a loop, so that the dispatch is inlined once
        if (const int result = DrawHalf(code.phase, half, isReflection); half != 0 && code.asks)
            answer = result;
    return answer;
}

} // namespace

int AVSKDisplayDoDrawingHook(int hostDrawCode, int isReflection) {
    if (static_cast<unsigned>(hostDrawCode) >= kDrawCodeCount)
        return kNotHandled;
    const DrawCode &code = kDrawCodes[hostDrawCode];
    if (code.more)
        return DrawMore(code, isReflection);
    const int answer = DrawHalf(code.phase, code.first, isReflection);
    return code.first == 0 ? kNotHandled : answer;
}

// ---- Dispatch of mouse and cursor events

namespace {

// Offers a press to the windows under the mouse, front to back. A click neither
// raises a window nor moves the focus.
int OfferMouseDown(int x, int y) {
    StDispatchCallback guard;
    for (AVSKWindowCallbackRecord &window : gWindows.LiveRecords()) {
        if (!window.IsHitBy(x, y) || !window.mouseClickFunc)
            continue;
        if (!guard.Enter(window.owner) || !window.mouseClickFunc(&window, x, y, AVSKMouseDown, window.refcon))
            continue;
        if (!window.IsRemoved()) // its function may have destroyed it
            gDragWindow = &window;
        return kConsumed;
    }
    return kNotHandled;
}

// Calls the drag window, wherever the mouse is and even if the window is hidden.
int CallDragWindow(int x, int y, int status) {
    AVSKWindowCallbackRecord *window = gDragWindow;
    const StDispatchCallback guard(window->owner);
    if (!guard())
        return kNotHandled;
    window->mouseClickFunc(window, x, y, status, window->refcon); // not null: it took the press
    return kConsumed;
}

// Sends the release to the drag window and clears it. The window's function may
// have its plugin disabled, which releases the mouse again.
int ReleaseDragWindow(int x, int y) {
    static int releases = 0;
    const AVSKScopedValue depth(releases, releases + 1);
    const int result = releases <= kDeepestLoss ? CallDragWindow(x, y, AVSKMouseUp) : kNotHandled;
    gDragWindow = nullptr;
    return result;
}

} // namespace

int AVSKDisplayMouseClickHook(int x, int y, int mouseStatus) {
    if (mouseStatus == AVSKMouseDown)
        return OfferMouseDown(x, y);
    if (!gDragWindow)
        return kNotHandled;
    return mouseStatus == AVSKMouseUp ? ReleaseDragWindow(x, y) : CallDragWindow(x, y, mouseStatus);
}

namespace {

// Reports a drag or a release at the position that the host answers.
void ReportMouse(int status) {
    int x = 0;
    int y = 0;
    gHooks->getMouseLocation(&x, &y, 0);
    AVSKDisplayMouseClickHook(x, y, status);
}

} // namespace

void AVSKDisplayMouseDragHook() {
    if (gDragWindow)
        ReportMouse(AVSKMouseDrag);
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

// ---- Teardown

void AVSKDisplayDisableHook(int pluginID) {
    if (gFocusWindow && gFocusWindow->owner == pluginID)
        AVSKTakeKeyboardFocus(nullptr);
    if (gDragWindow && gDragWindow->owner == pluginID)
        ReportMouse(AVSKMouseUp);
}

namespace {

void DestroyWindowsOf(int pluginID) {
    for (AVSKWindowCallbackRecord &window : gWindows.AllRecords())
        if (window.owner == pluginID) {
            Destroy(&window);
            // A plugin that is loaded during this pass may get the same ID. It
            // would own this window if somebody brought it to the front.
            window.owner = NO_PLUGIN_ID;
        }
}

// Windows that a new one cut off are in no walk, but still have storage.
void RemoveCutOffWindowsOf(int pluginID) {
    std::vector<AVSKWindowCallbackRecord *> cutOff;
    AVSKWindowCallbackRecord::ForEach([pluginID, &cutOff](AVSKWindowCallbackRecord *window) {
        if (window->owner == pluginID)
            cutOff.push_back(window);
    });
    for (AVSKWindowCallbackRecord *window : cutOff) {
        window->owner = NO_PLUGIN_ID; // a removed window that was brought to the front can still be called
        Forget(window);
        if (!window->IsRemoved())
            gWindows.Remove(window);
    }
}

} // namespace

void AVSKDisplayCleanupHook(int pluginID) {
    gDrawCallbacks.RemoveAll(OwnedBy(pluginID));
    RemoveKeySniffersOf(pluginID);
    DestroyWindowsOf(pluginID);
    RemoveCutOffWindowsOf(pluginID);
    RemoveHotKeysOf(pluginID);
}

bool DisplayHolds(int pluginID) {
    bool holdsWindow = false; // also one that a new window cut off
    AVSKWindowCallbackRecord::ForEach([pluginID, &holdsWindow](const AVSKWindowCallbackRecord *window) {
        holdsWindow = holdsWindow || HeldBy(pluginID)(*window);
    });
    return holdsWindow || gDrawCallbacks.Any(HeldBy(pluginID)) || HoldsKeySniffersOrHotKeys(pluginID);
}
