// Reads datarefs by name, as text.
#ifndef AVSK_HOST_OBSERVING_DATAREF_VALUES_H
#define AVSK_HOST_OBSERVING_DATAREF_VALUES_H

#include "AVSK/AVSKDataAccess.h"

#include <optional>
#include <string>
#include <vector>

namespace host {

// A dataref, or with an index one element of it.
struct FoundDataref {
    AVSKDataRef ref = nullptr; // null if nobody publishes it
    std::optional<int> index;
};

// The dataref of exactly this name; null if nobody publishes it.
AVSKDataRef FindPublished(const std::string &name);

// NAME, or NAME[3] for an element if no dataref has that whole name.
FoundDataref FindDataref(const std::string &name);

// "int", "float array", "int, float, double" ...
std::string DatarefTypes(AVSKDataRef ref);

// How many elements or bytes an array has; nothing if it is none, or cannot be read.
std::optional<int> CountElements(AVSKDataRef ref);

// All values. A dataref with several types is read as the most precise number.
std::vector<std::string> ReadDataref(AVSKDataRef ref);

} // namespace host

#endif
