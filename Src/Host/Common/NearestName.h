// Suggests existing names where a reader's name was not found.
#ifndef AVSK_HOST_COMMON_NEAREST_NAME_H
#define AVSK_HOST_COMMON_NEAREST_NAME_H

#include <cstddef>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace host {

// How many characters must be inserted, removed, replaced or swapped with their
// neighbour to make one text of the other. Upper and lower case are equal.
std::size_t EditDistance(std::string_view a, std::string_view b);

// The names that are most like the wanted one, best first: those that differ in
// about a third of their characters at most, then those that contain it.
std::vector<std::string> NearestNames(std::string_view wanted, std::span<const std::string> names,
                                      std::size_t most = 3);

// The end of a message: "; did you mean 'a' or 'b'?". Empty if no name is near.
std::string DidYouMean(std::string_view wanted, std::span<const std::string> names, std::size_t most = 3);

} // namespace host

#endif
