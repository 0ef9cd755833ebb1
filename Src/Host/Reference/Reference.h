// The documentation of the interface, as it stands in the public headers.
#ifndef AVSK_HOST_REFERENCE_REFERENCE_H
#define AVSK_HOST_REFERENCE_REFERENCE_H

#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace host {

struct ReferenceEntry {
    const char *name;
    const char *kind;   // "function", "host service", "callback type" or "entry point of plugins"
    const char *header; // "AVSK/AVSKDisplay.h"
    const char *declaration;
    const char *documentation;
};

// All of them, in the order of the headers.
std::span<const ReferenceEntry> ReferenceEntries();
std::vector<std::string> ReferenceNames();
// Upper and lower case are equal. Null if there is no such name.
const ReferenceEntry *FindReference(std::string_view name);
// The first sentence of the documentation, in one line.
std::string SummaryOf(const ReferenceEntry &entry);

} // namespace host

#endif
