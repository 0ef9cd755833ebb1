// Selects names by a pattern that a user wrote.
#ifndef AVSK_HOST_COMMON_NAME_PATTERN_H
#define AVSK_HOST_COMMON_NAME_PATTERN_H

#include <string>
#include <vector>

namespace host {

// The names that match a pattern. In a pattern * is any text; without * it may be
// any part of the name; an empty one matches all. Upper and lower case are equal.
// If nothing matches, throws UsageError with the nearest names; the message calls
// a name "dataref" if the list is called "datarefs".
std::vector<std::string> SelectNames(const std::vector<std::string> &names, const std::string &pattern,
                                     const std::string &list);

} // namespace host

#endif
