// One kind for each callback type and entry point of plugins.
#ifndef AVSK_HOST_KINDS_H
#define AVSK_HOST_KINDS_H

#include "Callback.h"

namespace crossings {

#define AVSK_FUNCTION(result, name, parameters, names, ...)
#define AVSK_SERVICE(result, name, parameters, names, ...)
#define AVSK_CALLBACK(result, name, parameters, entry, names, ...) extern const CallbackKind k_##name;
#include "Prototypes.inc"
#undef AVSK_CALLBACK
#undef AVSK_SERVICE
#undef AVSK_FUNCTION

} // namespace crossings

#endif
