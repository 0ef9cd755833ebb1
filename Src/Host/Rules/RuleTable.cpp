// Lists the families of rules; see RuleTable.h.
#include "RuleTable.h"

#include "ArgumentRules.h"
#include "DatarefRules.h"
#include "FileRules.h"
#include "HostOrderRules.h"
#include "HostServiceRules.h"
#include "HostTableRules.h"
#include "LifeRules.h"
#include "OpenGLRules.h"
#include "PlaceRules.h"
#include "RunRules.h"
#include "StateRules.h"

#include <span>

namespace host {
namespace {

RuleFamily Family(const char *title, std::span<const Rule> table) {
    RuleFamily family{title, {}};
    for (const Rule &rule : table)
        family.rules.push_back(&rule);
    return family;
}

} // namespace

const std::vector<RuleFamily> &RuleFamilies() {
    static const std::vector<RuleFamily> families = {
        Family("Datarefs", kDatarefRules),
        Family("Arguments and results", kArgumentRules),
        Family("Place and time", kPlaceRules),
        Family("Life", kLifeRules),
        Family("State", kStateRules),
        Family("OpenGL", kOpenGLRules),
        Family("Runs", kRunRules),
        Family("Files", kFileRules),
        Family("Hosts: the table", kHostTableRules),
        Family("Hosts: order and time", kHostOrderRules),
        Family("Hosts: services", kHostServiceRules),
    };
    return families;
}

const Rule *FindRule(std::string_view id) {
    for (const RuleFamily &family : RuleFamilies()) {
        for (const Rule *rule : family.rules) {
            if (id == rule->id)
                return rule;
        }
    }
    return nullptr;
}

std::vector<std::string> RuleIds() {
    std::vector<std::string> ids;
    for (const RuleFamily &family : RuleFamilies()) {
        for (const Rule *rule : family.rules)
            ids.emplace_back(rule->id);
    }
    return ids;
}

const char *LevelWord(Level level) {
    return level == Level::Error ? "error" : level == Level::Warning ? "warning" : "note";
}

std::string SentenceOf(const Rule &rule) {
    std::string sentence;
    bool isValue = false;
    for (const char c : std::string_view(rule.finding)) {
        if (c == '{' || c == '}')
            isValue = c == '{';
        else
            sentence += isValue && c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c;
    }
    return sentence;
}

std::string Explain(const Rule &rule) {
    return std::string(LevelWord(rule.level)) + ": " + SentenceOf(rule) + ".\n\n" + rule.explanation + "\n\n" +
           rule.advice + "\n";
}

std::string RulesDocument() {
    std::string text =
        "# Rules\n\n"
        "`avsk run --check` and `avsk check` judge plugins by these rules, and the host by those of the families "
        "\"Hosts\".\n"
        "An error is certainly without effect, or dangerous. A warning is probably a fault. A note is worth a look.\n"
        "`avsk explain RULE` shows one rule, and the line `allow RULE \"reason\"` in a session excuses it there.\n\n"
        "This file is made from the table of rules: `avsk explain --markdown`.\n";
    for (const RuleFamily &family : RuleFamilies()) {
        text += "\n## " + std::string(family.title) + "\n";
        for (const Rule *rule : family.rules) {
            text += "\n### " + std::string(rule->id) + "\n\n**" + LevelWord(rule->level) + "**: " + SentenceOf(*rule) +
                    ".\n\n" + rule->explanation + "\n\n*What to do:* " + rule->advice + "\n";
        }
    }
    return text;
}

} // namespace host
