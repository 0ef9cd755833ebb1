// The dispatched plugin, on whose account the library works at this moment,
// and the guard inside which every call into a plugin is made.
#ifndef AVSK_DISPATCH_H
#define AVSK_DISPATCH_H

#include "AVSKLoader.h"

// Known to be local, so that it is reached without the global offset table.
#pragma GCC visibility push(hidden)

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
// A walk along many callbacks makes one guard and enters plugin after plugin:
//
//     StDispatchCallback guard;
//     for (...)
//         if (guard.Enter(rec.owner))
//             rec.callback(rec.refcon);
//
// The guards under way are frames of a stack. A plugin that is unloaded while
// one of its calls is among them stays mapped until the stack is empty.
class [[nodiscard]] StDispatchCallback {
  public:
    StDispatchCallback() : previous(gDispatchedPlugin), depth(stack.depth) {
        if (depth == stack.capacity) [[unlikely]]
            GrowStack();
        stack.frames[depth] = previous;
        stack.depth = depth + 1;
    }

    explicit StDispatchCallback(int id) : StDispatchCallback() { callAllowed = Enter(id); }

    ~StDispatchCallback() {
        stack.depth = depth;
        gDispatchedPlugin = previous;
        if (stack.unloadsWait) [[unlikely]]
            ReturnPastUnloads();
    }

    StDispatchCallback(const StDispatchCallback &) = delete;
    StDispatchCallback &operator=(const StDispatchCallback &) = delete;

    [[nodiscard]] bool operator()() const { return callAllowed; }

    // Makes another plugin the dispatched one and tells whether it may be called.
    [[nodiscard]] bool Enter(int id) {
        gDispatchedPlugin = id;
        stack.frames[depth] = id;
        if (const PluginRecord *record = AVSKPluginAt(id)) [[likely]]
            return record->enabled;
        return id == AVSK_PLUGIN_AERIVO && gAllPlugins.empty();
    }

    // Unloads a plugin's library, now or, while one of its calls is under way,
    // when the last call is over. What such a call still does is on nobody's
    // account, for a plugin loaded meanwhile may have the same ID.
    static void ReleaseLibrary(int id, void *handle);

  private:
    // Kept apart from the guards, whose members can then stay in registers.
    struct Stack {
        int *frames; // the plugin called, by depth
        int depth;
        int capacity;
        bool unloadsWait;
    };

    static void GrowStack();
    void ReturnPastUnloads() const;

    bool callAllowed = false;
    const int previous;
    const int depth;

    static Stack stack;
};

#pragma GCC visibility pop

#endif
