// Reads a dataref by one of its accessors, for the word "read" of sessions.
#ifndef AVSK_HOST_SESSION_DATAREF_READING_H
#define AVSK_HOST_SESSION_DATAREF_READING_H

#include "AVSK/AVSKDataAccess.h"

#include <string>
#include <string_view>
#include <vector>

namespace host {

struct Accessor {
    const char *word; // in sessions: "ints"
    int type;         // AVSKDataTypeIntArray
    bool isArray;
};
const std::vector<Accessor> &Accessors();

// The value as the accessor of this word returns it. Of an array count elements
// from the offset on; with a count of 0 its length. The library writes them in
// front of a page that may not be accessed, so that an accessor which writes too
// many is caught.
std::string ReadBy(std::string_view word, AVSKDataRef ref, int offset, int count);

} // namespace host

#endif
