// Callbacks that are passed to the library, or through it to the host. Each is
// replaced by a thunk, a few bytes of code that jump to the observing layer. A
// callback always gets the same thunk, so comparisons by the library have the
// same result, and no refcon changes.
#ifndef AVSK_HOST_CALLBACK_H
#define AVSK_HOST_CALLBACK_H

#include "Crossing.h"
#include "Interned.h"

#include <cstddef>
#include <string>

namespace crossings {

// A callback type: its prototype, and the function that observes calls of it.
// That function takes a Callback in a register, and the arguments on the stack.
struct CallbackKind {
    const Prototype &what;
    void (*entry)();
};

using Function = void (*)();

struct Callback {
    Function entry; // first: the thunk jumps to the address in the first word
    Function function = nullptr;
    const CallbackKind *kind = nullptr;
    Side side = Side::Plugin; // the side that defines the function
    AVSKPluginID owner = NO_PLUGIN_ID;
    std::size_t number = 0;                     // counts from 0, in the order of the first use
    mutable const InternedText *name = nullptr; // null until it is asked for
};

// The thunk of a callback that this side and plugin passed. Null for null. To be
// called on the observed thread.
Function Wrap(Function function, const CallbackKind &kind, Side side, AVSKPluginID owner);

// The callback of a thunk; null if the address is no thunk.
const Callback *CallbackOf(const void *function);

// The function's name, or its file and offset if the file has no symbol for it. It is never freed.
const InternedText &LearnName(const Callback &callback);
inline const InternedText &NameTextOf(const Callback &callback) {
    return callback.name ? *callback.name : LearnName(callback);
}
inline const std::string &NameOf(const Callback &callback) { return NameTextOf(callback).text; }
// The same text outside the heap.
inline std::string_view KeptNameOf(const Callback &callback) { return NameTextOf(callback).kept; }

} // namespace crossings

#endif
