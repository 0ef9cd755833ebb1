// All rules. `avsk explain`, Docs/rules.md and the words of sessions are made from them.
#ifndef AVSK_HOST_RULES_RULE_TABLE_H
#define AVSK_HOST_RULES_RULE_TABLE_H

#include "Rule.h"

#include <string>
#include <vector>

namespace host {

struct RuleFamily {
    const char *title; // "Datarefs"
    std::vector<const Rule *> rules;
};
const std::vector<RuleFamily> &RuleFamilies();

// Null if there is none.
const Rule *FindRule(std::string_view id);
std::vector<std::string> RuleIds();

// "error", "warning" or "note"
const char *LevelWord(Level level);

// The finding with words for its values: "NAME is read-only, nothing was written".
std::string SentenceOf(const Rule &rule);

// A rule for a reader, without its ID: level, finding, advice and explanation.
std::string Explain(const Rule &rule);
// All rules as a document in Markdown.
std::string RulesDocument();

} // namespace host

#endif
