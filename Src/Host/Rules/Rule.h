// A rule of correct use of the interface. The rules of a family stand in one
// table, such as DatarefRules.h; RuleTable.h lists all of them.
#ifndef AVSK_HOST_RULES_RULE_H
#define AVSK_HOST_RULES_RULE_H

#include <cstddef>
#include <cstdint>
#include <string_view>

namespace host {

enum class Level : std::uint8_t {
    Error = 1, // certainly without effect, or dangerous
    Warning,   // probably a fault
    Note,      // worth a look
};

struct Rule {
    const char *id; // "dataref-readonly"
    Level level;
    // What is wrong, as one sentence whose subject may be the called function.
    // A word in braces stands for a value: "{name} is read-only, nothing was written".
    const char *finding;
    const char *advice;      // what to do, one sentence
    const char *explanation; // a paragraph

    // Rules for hosts have IDs that begin with "host-"; the others are for plugins.
    constexpr bool BlamesHost() const { return std::string_view(id).starts_with("host-"); }
};

// A rule of a table by its ID. Does not compile if the table has no such rule.
template <std::size_t N>
consteval const Rule &Named(const Rule (&table)[N], std::string_view id) {
    for (const Rule &rule : table) {
        if (id == rule.id)
            return rule;
    }
    throw "the table has no rule of this ID";
}

} // namespace host

#endif
