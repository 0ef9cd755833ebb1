// The dispatched plugin, on whose account the library works at this moment,
// and the guard inside which the library calls a plugin. Floor 3; defined in
// AVSKLoaderRegistry.cpp.
#ifndef AVSK_DISPATCH_H
#define AVSK_DISPATCH_H

#include "AVSK/AVSKTypes.h"

// Hidden symbols are reached without the global offset table.
#pragma GCC visibility push(hidden)

extern int gDispatchedPlugin;

void AVSKSetDispatchedPlugin(int id);
int AVSKGetDispatchedPlugin();

// What AVSKDebugGetCurrentPluginName returns.
const char *DebugCurrentPluginName();

// The enabled flags of the registry's records, side by side: a guard reads
// them without touching a record. Only the registry writes them.
struct CallFlags {
    const unsigned char *enabled;
    unsigned count;
};
extern CallFlags gCallFlags;

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
// The guards under way are the frames of a stack. A plugin that is unloaded
// while one of them is for it stays mapped until the stack is empty.
class [[nodiscard]] StDispatchCallback {
  public:
    StDispatchCallback() : previous(gDispatchedPlugin), frame(Push(previous)) {}

    explicit StDispatchCallback(int id) : previous(gDispatchedPlugin), frame(Push(id)) {
        gDispatchedPlugin = id;
        callAllowed = MayCall(id);
    }

    // Inline also on the path of an exception; otherwise the guard would live
    // in memory. The top is restored from the guard, not decremented: a
    // decrement would wait for the store of the call before.
    [[gnu::always_inline]] ~StDispatchCallback() {
        stack.top = frame;
        gDispatchedPlugin = previous;
        if (stack.unloadsWait) [[unlikely]]
            ReturnPastUnloads(frame, previous);
    }

    StDispatchCallback(const StDispatchCallback &) = delete;
    StDispatchCallback &operator=(const StDispatchCallback &) = delete;

    [[nodiscard]] bool operator()() const { return callAllowed; }

    // Makes another plugin the dispatched one and tells whether it may be called.
    [[nodiscard]] bool Enter(int id) {
        gDispatchedPlugin = id;
        *frame = id;
        return MayCall(id);
    }

    // Unmaps a plugin's library: at once, or when the stack is empty if a call
    // of the plugin is under way. The rest of such a call is on nobody's
    // account, because a plugin loaded meanwhile may have the same ID.
    static void ReleaseLibrary(int id, void *handle);

  private:
    static bool MayCall(int id) {
        if (static_cast<unsigned>(id) < gCallFlags.count) [[likely]]
            return gCallFlags.enabled[id] != 0;
        return id == AVSK_PLUGIN_AERIVO; // while the registry is empty
    }

    // The stack is kept outside the guards. Nothing points at a guard, so its
    // members stay in registers.
    struct Stack {
        int *top; // the frame of the next call
        bool unloadsWait;
    };

    // Calls nested deeper than kRecordedCalls share the last frame, which
    // nobody reads. The frame before it separates the two.
    static constexpr int kRecordedCalls = 1024;
    static int frames[kRecordedCalls + 2]; // plugin IDs
    static constexpr int *kSharedFrame = frames + kRecordedCalls + 1;

    static int *Push(int id) {
        int *const pushed = stack.top;
        *pushed = id;
        stack.top = pushed + (pushed != kSharedFrame);
        return pushed;
    }
    static bool IsUnderWay(int id);
    static void ReturnPastUnloads(const int *top, int previous);

    bool callAllowed = false;
    const int previous;
    int *const frame;

    static Stack stack;
};

#pragma GCC visibility pop

#endif
