// The prototypes of everything that crosses the library's border, in one table.
#ifndef AVSK_HOST_PROTOTYPE_TABLE_H
#define AVSK_HOST_PROTOTYPE_TABLE_H

#include "Crossing.h"

namespace crossings {

enum PrototypeIndex : std::uint16_t {
#define AVSK_FUNCTION(result, name, parameters, names, ...) kIndex_##name,
#define AVSK_SERVICE(result, name, parameters, names, ...) kIndex_##name,
#define AVSK_CALLBACK(result, name, parameters, entry, names, ...) kIndex_##name,
#include "Prototypes.inc"
#undef AVSK_CALLBACK
#undef AVSK_SERVICE
#undef AVSK_FUNCTION
    kPrototypeCount
};

extern Prototype gPrototypes[kPrototypeCount];

} // namespace crossings

#endif
