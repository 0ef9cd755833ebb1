// Texts that are stored once and never freed, such as the names of functions and
// plugins. Reports refer to them after their plugin was unloaded.
#ifndef AVSK_HOST_INTERNED_H
#define AVSK_HOST_INTERNED_H

#include <string>

namespace crossings {

const std::string &Interned(std::string text);

} // namespace crossings

#endif
