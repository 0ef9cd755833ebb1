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
        Record(previous);
        stack.depth = depth + 1;
    }

    explicit StDispatchCallback(int id) : StDispatchCallback() { callAllowed = Enter(id); }

    // Inline also where an exception passes, or the guard would live in memory.
    [[gnu::always_inline]] ~StDispatchCallback() {
        stack.depth = depth;
        gDispatchedPlugin = previous;
        if (stack.unloadsWait) [[unlikely]]
            ReturnPastUnloads(depth, previous);
    }

    StDispatchCallback(const StDispatchCallback &) = delete;
    StDispatchCallback &operator=(const StDispatchCallback &) = delete;

    [[nodiscard]] bool operator()() const { return callAllowed; }

    // Makes another plugin the dispatched one and tells whether it may be called.
    [[nodiscard]] bool Enter(int id) {
        gDispatchedPlugin = id;
        Record(id);
        if (static_cast<unsigned>(id) < gCallFlags.count) [[likely]]
            return gCallFlags.enabled[id] != 0;
        return id == AVSK_PLUGIN_AERIVO && gCallFlags.count == 0;
    }

    // Unloads a plugin's library, now or, while one of its calls is under way,
    // when the last call is over. What such a call still does is on nobody's
    // account, for a plugin loaded meanwhile may have the same ID.
    static void ReleaseLibrary(int id, void *handle);

  private:
    static constexpr int kRecordedCalls = 1024;

    // Kept apart from the guards: nothing points at a guard, so that its
    // members stay in registers.
    struct Stack {
        int depth;
        bool unloadsWait;
        int frames[kRecordedCalls]; // the plugin called; deeper calls may be anybody's
    };

    void Record(int id) const {
        if (depth < kRecordedCalls) [[likely]]
            stack.frames[depth] = id;
    }
    static bool IsUnderWay(int id);
    static void ReturnPastUnloads(int depth, int previous);

    bool callAllowed = false;
    const int previous;
    const int depth;

    static Stack stack;
};

#pragma GCC visibility pop

#endif
