// Defines the kinds of callbacks. A kind's entry is the function to which the
// thunks of its callbacks lead; it observes the call and hands it on.
#include "Kinds.h"

#include "Forward.h"
#include "PrototypeTable.h"

#include "AVSK/AVSK.h"

namespace crossings {

// The thunk passes the Callback in the first register. The arguments lie where
// the caller put them.
#define AVSK_FUNCTION(result, name, parameters, names, ...)
#define AVSK_SERVICE(result, name, parameters, names, ...)
#define AVSK_CALLBACK(result, name, parameters, entry, names, ...)                                                     \
    static __attribute__((regparm(1))) result Enter_##name entry {                                                     \
        const auto function = reinterpret_cast<result(*) parameters>(called->function);                                \
        const Forward handOn{called->kind->what, called->side, called, function};                                      \
        return handOn(__VA_ARGS__);                                                                                    \
    }                                                                                                                  \
    const CallbackKind k_##name{gPrototypes[kIndex_##name], reinterpret_cast<Function>(Enter_##name)};
#include "Prototypes.inc"
#undef AVSK_CALLBACK
#undef AVSK_SERVICE
#undef AVSK_FUNCTION

} // namespace crossings
