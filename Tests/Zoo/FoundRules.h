// The rules that a run of the host names.
#ifndef AVSK_TESTS_FOUND_RULES_H
#define AVSK_TESTS_FOUND_RULES_H

#include "RunAvsk.h"

#include <regex>
#include <set>
#include <string>

inline std::set<std::string> FirstGroups(const std::string &text, const std::regex &pattern) {
    std::set<std::string> groups;
    for (std::sregex_iterator match(text.begin(), text.end(), pattern); match != std::sregex_iterator(); ++match)
        groups.insert((*match)[1]);
    return groups;
}

// The words in parentheses at the ends of findings.
inline std::set<std::string> RulesIn(const std::string &said) {
    static const std::regex finding(R"(\n  (?:error|warning|note): .*\(([a-z0-9-]+)\))");
    return FirstGroups(said, finding);
}

// Those whose IDs match.
inline std::set<std::string> RulesLike(const std::string &pattern) {
    return FirstGroups(RunAvsk("explain").said, std::regex("\n  (" + pattern + ") +(?:error|warning|note) "));
}

#endif
