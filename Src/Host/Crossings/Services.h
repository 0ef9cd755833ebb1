// The host's services by name.
#ifndef AVSK_HOST_SERVICES_H
#define AVSK_HOST_SERVICES_H

#include "Crossing.h"

#include <string_view>

namespace crossings {

// The prototype of a slot, by its name in AVSKHostCallbacks; null if there is none.
const Prototype *FindService(std::string_view name);
int CountParameters(const Prototype &function);

} // namespace crossings

#endif
