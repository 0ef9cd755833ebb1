// The table that generate_reference.py makes; see Reference.h.
#include "Reference.h"

#include <algorithm>
#include <cctype>

namespace host {
namespace {

constexpr ReferenceEntry kEntries[] = {
#include "Reference.inc"
};

} // namespace

std::span<const ReferenceEntry> ReferenceEntries() { return kEntries; }

std::vector<std::string> ReferenceNames() {
    std::vector<std::string> names;
    for (const ReferenceEntry &entry : kEntries)
        names.emplace_back(entry.name);
    return names;
}

const ReferenceEntry *FindReference(std::string_view name) {
    const auto isSame = [](char a, char b) {
        return std::tolower(static_cast<unsigned char>(a)) == std::tolower(static_cast<unsigned char>(b));
    };
    for (const ReferenceEntry &entry : kEntries) {
        const std::string_view known = entry.name;
        if (std::equal(known.begin(), known.end(), name.begin(), name.end(), isSame))
            return &entry;
    }
    return nullptr;
}

std::string SummaryOf(const ReferenceEntry &entry) {
    std::string text = entry.documentation;
    std::replace(text.begin(), text.end(), '\n', ' ');
    // The next sentence, parameter or context tag begins with one of these.
    std::size_t end = text.size();
    for (const char *next : {". ", " @", " ["})
        end = std::min(end, text.find(next));
    text.resize(end);
    return text.substr(0, text.find_last_not_of(" .") + 1);
}

} // namespace host
