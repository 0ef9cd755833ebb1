// What the public headers require of arguments, as a table.
#ifndef AVSK_HOST_RULES_ARGUMENT_TABLE_H
#define AVSK_HOST_RULES_ARGUMENT_TABLE_H

#include "KnownHandles.h"

#include <cstdint>
#include <span>

namespace host {

enum class Must : std::uint8_t {
    BeFunction,     // callback-null
    BeSet,          // argument-null
    BeSetForHost,   // argument-null-host
    BeText,         // UTF-8 and not null
    BeTextOrNull,   // UTF-8
    BeShort,        // a text of at most "limit" bytes; text-long
    BeShown,        // likewise; text-cut
    BeShortPaths,   // a list of texts that ends in null
    HaveSize,       // a structure whose first field is its size, "limit"
    BeNumber,       // not NaN
    BeFinite,       // a place
    BeFiniteValue,  // of a dataref
    BePlaces,       // AVSKDrawInfo structures
    BeItem,         // an index among the items of the argument "menu" or "parent"
    BeBelow,        // an index below "count"
    BeOneOf,        // "allows" and "text"
    BePlugin,       // the ID of a plugin
    BePluginOrAll,  // or -1
    BeFeature,      // the name of one
    BeOwnName,      // of a command
    BeginRectangle, // the first of left, top, right, bottom
    BeHandle,       // of "kind", null has no use
    BeHandleOrNull, // null has a use, or is harmless
    BeOwnHandle,    // of the calling plugin
    BeOwnHandleOrNull,
};

struct ArgumentRow {
    const char *function;
    const char *parameter; // "params.phase" is a field of a structure
    Must must;
    int limit = 0;
    HandleKind kind = HandleKind::Window;
    int (*count)() = nullptr;
    bool (*allows)(int value) = nullptr;
    const char *text = "";
};

std::span<const ArgumentRow> ArgumentRows();

} // namespace host

#endif
