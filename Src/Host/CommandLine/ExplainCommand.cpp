// `avsk explain`: shows the rules by which plugins are judged.
#include "Commands.h"
#include "Pager.h"

#include "Common/Columns.h"
#include "Common/NearestName.h"
#include "Common/UsageError.h"
#include "Rules/RuleTable.h"

#include <CLI/CLI.hpp>

#include <memory>
#include <string>
#include <vector>

namespace host {
namespace {

struct ExplainRequest {
    std::string id;
    bool markdown = false;
};

std::string ListRules() {
    std::string text;
    for (const RuleFamily &family : RuleFamilies()) {
        text += (text.empty() ? "" : "\n") + std::string(family.title) + "\n";
        std::vector<std::vector<std::string>> rows;
        for (const Rule *rule : family.rules)
            rows.push_back({rule->id, LevelWord(rule->level), SentenceOf(*rule)});
        for (const std::string &line : AlignColumns(rows))
            text += "  " + line + "\n";
    }
    return text;
}

std::string DescribeRule(const std::string &id) {
    const Rule *rule = FindRule(id);
    if (!rule) {
        const std::string nearest = DidYouMean(id, RuleIds());
        throw UsageError("explain: no rule '" + id + "'" +
                         (nearest.empty() ? ": 'avsk explain' lists all rules" : nearest));
    }
    return Explain(*rule);
}

} // namespace

void AddExplainCommand(CLI::App &app, Job &job) {
    const auto request = std::make_shared<ExplainRequest>();
    CLI::App *command = app.add_subcommand("explain", "Explains a rule of --check, or lists the rules.");
    command->add_option("RULE", request->id, "the word in parentheses in a finding; without it, a list of all rules")
        ->type_name("");
    command->add_flag("--markdown", request->markdown, "write all rules as a document");
    command->footer("Examples:\n  avsk explain dataref-readonly\n  avsk explain | grep error\n\n"
                    "Exit status: 0, or 2 if there is no such rule.");
    command->callback([request, &job] {
        job = [request] {
            ShowInPager(request->markdown     ? RulesDocument()
                        : request->id.empty() ? ListRules()
                                              : DescribeRule(request->id));
            return 0;
        };
    });
}

} // namespace host
