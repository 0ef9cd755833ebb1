// The keyboard half of the display module: key sniffers, hot keys, and the
// dispatch of a key press to them and to the focus window. Owns gKeyCallbacks
// and gHotKeys; called by plugins, by the host's key hook, and by
// AVSKDisplay.cpp when a plugin is unloaded.
#include "AVSKDisplay.h"

#include "AVSKDispatch.h"
#include "AVSKModules.h"
#include "AVSKPlatform.h"
#include "AVSKResourceList.h"

#include <string>

struct AVSKKeyCallbackRecord : AVSKResource_t<AVSKKeyCallbackRecord> {
    AVSKKeySniffer_f callback = nullptr;
    int owner = NO_PLUGIN_ID;
    int beforeWindows = 0;
    void *refcon = nullptr;
};

struct AVSKHotKeyInfoRecord : AVSKResource_t<AVSKHotKeyInfoRecord> {
    int owner = NO_PLUGIN_ID;
    char virtualKey = 0;
    int flags = 0;
    std::string description;
    AVSKHotKey_f callback = nullptr;
    void *refcon = nullptr;
};

// Outside readers rely on these globals.
AVSKResourceList<AVSKKeyCallbackRecord> gKeyCallbacks(AVSKReclaim::AfterPass);
AVSKResourceList<AVSKHotKeyInfoRecord> gHotKeys;

// ---- Key sniffers

namespace {

// Selects a sniffer by its values, whoever owns it.
auto SameSniffer(AVSKKeySniffer_f callback, int beforeWindows, void *refcon) {
    return [=](const AVSKKeyCallbackRecord &rec) {
        return rec.callback == callback && rec.beforeWindows == beforeWindows && rec.refcon == refcon;
    };
}

} // namespace

int AVSKRegisterKeySniffer(AVSKKeySniffer_f callback, int beforeWindows, void *refcon) {
    if (!MayCreate() || gKeyCallbacks.FindFirst(SameSniffer(callback, beforeWindows, refcon)))
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
    return gKeyCallbacks.RemoveFirst(SameSniffer(callback, beforeWindows, refcon));
}

// ---- Hot keys
//
// Queries begin a walk and leave it open; registering ends a walk that it did
// not begin. While a walk is open, removals are deferred to the next end of a
// walk.

namespace {

// Begins a walk, leaves it open, and returns the record at an address, dead
// ones included, or null. Outside readers rely on the name.
AVSKHotKeyInfoRecord *AVSKValidateHotKey(const void *id) {
    for (AVSKHotKeyInfoRecord *rec = gHotKeys.BeginIterate(); rec; rec = rec->get_next())
        if (rec == id)
            return rec;
    return nullptr;
}

} // namespace

AVSKHotKeyID AVSKRegisterHotKey(char virtualKey, int flags, const char *description, AVSKHotKey_f callback,
                                void *refcon) {
    if (!MayCreate())
        return nullptr;
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

// ---- Dispatch of a key press

namespace {

enum class Sniffers {
    BeforeWindows,
    AfterWindows
};

// Offers a key to the sniffers of one kind and tells whether one of them
// consumed it. The walk stays open: from the first key press on, removals from
// the list are deferred.
bool IsConsumedBySniffers(Sniffers kind, char key, int flags, char virtualKey) {
    auto walk = gKeyCallbacks.LiveRecords();
    bool consumed = false;
    StDispatchCallback guard;
    for (const AVSKKeyCallbackRecord &rec : walk) {
        if ((rec.beforeWindows != 0) != (kind == Sniffers::BeforeWindows) || !rec.callback)
            continue;
        if (guard.Enter(rec.owner) && rec.callback(key, flags, virtualKey, rec.refcon) == 0) {
            consumed = true;
            break;
        }
    }
    walk.KeepOpen();
    return consumed;
}

// The focus window consumes every key, unless its plugin is disabled.
bool IsConsumedByFocusWindow(char key, int flags, char virtualKey) {
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

int AVSKDisplayKeyPressHook(char key, int flags, char virtualKey) {
    if (!key && !flags && !virtualKey)
        return kNotHandled;
    const bool consumed = IsConsumedBySniffers(Sniffers::BeforeWindows, key, flags, virtualKey) ||
                          AVSKDispatchHotKey(virtualKey, flags) || IsConsumedByFocusWindow(key, flags, virtualKey) ||
                          IsConsumedBySniffers(Sniffers::AfterWindows, key, flags, virtualKey);
    return consumed ? kConsumed : kNotHandled;
}

// ---- Teardown

void RemoveKeySniffersOf(int pluginID) { gKeyCallbacks.RemoveAll(OwnedBy(pluginID)); }

void RemoveHotKeysOf(int pluginID) { gHotKeys.RemoveAll(OwnedBy(pluginID)); }

bool HoldsKeySniffersOrHotKeys(int pluginID) {
    return gKeyCallbacks.Any(HeldBy(pluginID)) || gHotKeys.Any(HeldBy(pluginID));
}
