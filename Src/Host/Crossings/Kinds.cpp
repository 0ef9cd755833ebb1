// What a thunk leads to: one function for each callback type, which observes
// the call of the callback behind it.
#include "Kinds.h"

#include "Forward.h"

#include "AVSK/AVSK.h"

namespace crossings {

// The thunk puts the callback into the first register; the arguments lie where
// the caller put them.
#define AVSK_FUNCTION(result, name, parameters, names, arguments)
#define AVSK_SERVICE(result, name, parameters, names, arguments)
#define AVSK_CALLBACK(result, name, names, arguments, ...)                                                             \
    static __attribute__((regparm(1))) result Enter_##name(const Callback *callback __VA_OPT__(, ) __VA_ARGS__) {      \
        const auto function = reinterpret_cast<result (*)(__VA_ARGS__)>(callback->function);                           \
        return Forward{callback->kind->what, callback->side, callback, function} arguments;                            \
    }                                                                                                                  \
    const CallbackKind k_##name{{#name, names}, reinterpret_cast<Function>(Enter_##name)};
#include "Prototypes.inc"

} // namespace crossings
