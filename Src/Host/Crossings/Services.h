// The host's services by name.
#ifndef AVSK_HOST_SERVICES_H
#define AVSK_HOST_SERVICES_H

#include "Crossing.h"

#include <string>
#include <string_view>
#include <vector>

namespace crossings {

// The prototype of a slot, by its name in AVSKHostCallbacks; null if there is none.
const Prototype *FindService(std::string_view name);
std::vector<std::string> ServiceNames();
// The number of a slot; 0 if the prototype is no service.
int SlotOf(const Prototype &service);
int CountParameters(const Prototype &function);

} // namespace crossings

#endif
