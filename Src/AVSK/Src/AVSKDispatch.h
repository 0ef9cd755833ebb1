// The dispatched plugin, on whose account the library works at this moment,
// and the guard inside which every call into a plugin is made.
#ifndef AVSK_DISPATCH_H
#define AVSK_DISPATCH_H

#include "AVSKLoader.h"

// Known to be local, so that it is reached without the global offset table.
#pragma GCC visibility push(hidden)

extern int gDispatchedPlugin;

void AVSKSetDispatchedPlugin(int id);
int AVSKGetDispatchedPlugin();

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
    StDispatchCallback() : previous(gDispatchedPlugin), frame(Push(previous)) {}

    explicit StDispatchCallback(int id) : previous(gDispatchedPlugin), frame(Push(id)) {
        gDispatchedPlugin = id;
        callAllowed = MayCall(id);
    }

    // Inline also where an exception passes, or the guard would live in memory.
    // The top is put back, not counted down: each call would wait for what the
    // one before has just stored.
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

    // Unloads a plugin's library, now or, while one of its calls is under way,
    // when the last call is over. What such a call still does is on nobody's
    // account, for a plugin loaded meanwhile may have the same ID.
    static void ReleaseLibrary(int id, void *handle);

  private:
    static bool MayCall(int id) {
        if (static_cast<unsigned>(id) < gCallFlags.count) [[likely]]
            return gCallFlags.enabled[id] != 0;
        return id == AVSK_PLUGIN_AERIVO; // before there are records
    }

    // Kept apart from the guards: nothing points at a guard, so that its
    // members stay in registers.
    struct Stack {
        int *top; // the frame of the next call
        bool unloadsWait;
    };

    // Calls deeper than the recorded ones share the last frame, which nobody
    // reads; the one before it only tells the two apart.
    static constexpr int kRecordedCalls = 1024;
    static int frames[kRecordedCalls + 2]; // the plugins called
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
