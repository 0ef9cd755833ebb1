// The dispatched plugin, on whose account the library works at this moment,
// and the guard inside which every call into a plugin is made.
#ifndef AVSK_DISPATCH_H
#define AVSK_DISPATCH_H

#include "AVSKLoader.h"

extern int gDispatchedPlugin;

inline void AVSKSetDispatchedPlugin(int id) { gDispatchedPlugin = id; }
inline int AVSKGetDispatchedPlugin() { return gDispatchedPlugin; }

// What AVSKDebugGetCurrentPluginName answers.
const char *DebugCurrentPluginName();

// Makes a plugin the dispatched one until the end of the scope, and tells
// whether it may be called:
//
//     if (StDispatchCallback guard(owner); guard())
//         callback(refcon);
//
// The guards under way form a chain. A plugin that is unloaded while one of
// its calls is in it stays mapped until the chain is empty.
class [[nodiscard]] StDispatchCallback {
  public:
    explicit StDispatchCallback(int id) : previous(gDispatchedPlugin), target(id), outer(innermost) {
        const PluginRecord *record = AVSKPluginAt(id);
        callAllowed = record ? record->enabled : id == 0 && gAllPlugins.empty();
        gDispatchedPlugin = id;
        innermost = this;
    }

    ~StDispatchCallback() {
        gDispatchedPlugin = previous;
        innermost = outer;
        if (!outer && unloadsWait)
            UnloadWaitingLibraries();
    }

    StDispatchCallback(const StDispatchCallback &) = delete;
    StDispatchCallback &operator=(const StDispatchCallback &) = delete;

    [[nodiscard]] bool operator()() const { return callAllowed; }

    // Unloads a plugin's library, now or, while one of its calls is under way,
    // when the last call is over. What such a call still does is on nobody's
    // account, for a plugin loaded meanwhile may have the same ID.
    static void ReleaseLibrary(int id, void *handle);

  private:
    static void UnloadWaitingLibraries();

    bool callAllowed;
    int previous;
    int target;
    StDispatchCallback *const outer;

    static StDispatchCallback *innermost;
    static bool unloadsWait;
};

#endif
