// The calls of plugins: where the slots of libGL.so.1 point. A slot points straight
// to Mesa's function if nobody needs to see the call, else to a thunk that
// enters this room first.
#ifndef AVSK_HOST_OPENGL_CALLS_H
#define AVSK_HOST_OPENGL_CALLS_H

#include "Functions.h"

#include "Crossings/Line.h"

namespace opengl {

// What the room does at calls. Owned by Context.cpp.
struct CallHandlers {
    void (*first)();   // before the first call of all; then null
    void (*drawing)(); // before a call that draws or reads pixels; null: these calls are not needed
    void (*reading)(); // before the first call that reads pixels; then null
    std::uint32_t (*error)(std::uint32_t error); // what glGetError() returns instead of this; null: this
};
inline CallHandlers gHandlers{};

// From now on calls enter this room.
void TakeCalls();
// Mesa's functions, which are called from now on; find is null if Mesa is missing.
void SetFunctions(void (*(*find)(const char *name))());
// To be called when a handler or an observer has changed.
void UpdateSlots();

// Adds the call that is under way where the stack pointer has this value, with its arguments. False if there is none.
// For handlers of signals.
bool AddCallUnderWay(crossings::Line &line, const void *stack);

} // namespace opengl

#endif
