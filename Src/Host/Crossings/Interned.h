// Texts that are stored once and never freed, such as the names of functions and
// plugins. Reports refer to them after their plugin was unloaded.
#ifndef AVSK_HOST_INTERNED_H
#define AVSK_HOST_INTERNED_H

#include <string>
#include <string_view>

namespace crossings {

struct InternedText {
    std::string text;
    std::string_view kept; // outside the heap, which plugins may corrupt
};

const InternedText &Interned(const std::string &text);

} // namespace crossings

#endif
