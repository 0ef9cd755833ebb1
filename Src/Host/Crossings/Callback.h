// Callbacks on their way into the library, and through it to the host: each is
// replaced by a thunk, a few bytes of code that lead past the observers. The
// same callback always gets the same thunk, so what the library compares and
// hands back stays as it was, and no refcon is touched.
#ifndef AVSK_HOST_CALLBACK_H
#define AVSK_HOST_CALLBACK_H

#include "Crossing.h"

#include <string>

namespace crossings {

// A callback type: its prototype, and the code that observes a call of it.
// That takes the Callback in a register, ahead of the arguments.
struct CallbackKind {
    Prototype what;
    void (*entry)();
};

using Function = void (*)();

struct Callback {
    Function entry; // the thunk jumps to where the first word points
    Function function = nullptr;
    const CallbackKind *kind = nullptr;
    Side side = Side::Plugin; // whose function it is
    AVSKPluginID owner = NO_PLUGIN_ID;
};

// The thunk of a callback that the code of a side hands over. Null stays null.
Function Wrap(Function function, const CallbackKind &kind, Side side, AVSKPluginID owner);

// What a thunk stands for; null if the address is not one's.
const Callback *CallbackOf(const void *function);

// The function's own name where its file says it, else file and offset.
const std::string &NameOf(const Callback &callback);

} // namespace crossings

#endif
