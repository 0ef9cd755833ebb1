// The rules judge the zoo: each inhabitant breaks its rule and no other, and the
// samples break none.
#include "RunAvsk.h"

#include <gtest/gtest.h>

#include <fstream>
#include <iterator>
#include <regex>
#include <set>
#include <string>

namespace {

// The zoo and a sample, whose signature one inhabitant takes.
constexpr const char *kZoo = "run --check --quiet --frames 8 --plugin " AVSK_TEST_ZOO_PLUGIN " --plugin " AVSK_TEST_DEMO
                             "/Resources/plugins/Template";

// A note about what the library removes, which is no fault.
constexpr const char *kLeft = "left-behind";

// The words in parentheses behind findings.
std::set<std::string> RulesIn(const std::string &said) {
    std::set<std::string> rules;
    static const std::regex finding(R"(\n  (?:error|warning|note): .*\(([a-z0-9-]+)\))");
    for (std::sregex_iterator match(said.begin(), said.end(), finding); match != std::sregex_iterator(); ++match)
        rules.insert((*match)[1]);
    return rules;
}

std::set<std::string> AllRules() {
    const std::string list = RunAvsk("explain").said;
    std::set<std::string> rules;
    static const std::regex row(R"(\n  ([a-z0-9-]+) +(?:error|warning|note) )");
    for (std::sregex_iterator match(list.begin(), list.end(), row); match != std::sregex_iterator(); ++match)
        rules.insert((*match)[1]);
    return rules;
}

TEST(Zoo, EachRuleIsFoundInItsOwnInhabitantOnly) {
    const std::set<std::string> rules = AllRules();
    EXPECT_GE(rules.size(), 14U);
    for (const std::string &rule : rules) {
        const AvskRun run = RunAvsk(kZoo, "AVSK_ZOO=" + rule);
        std::set<std::string> found = RulesIn(run.said);
        if (rule != kLeft)
            found.erase(kLeft);
        EXPECT_EQ(found, std::set<std::string>{rule}) << run.said;
        const bool isError = run.said.find("\n  error: ") != std::string::npos;
        EXPECT_EQ(run.status, isError ? 1 : 0) << run.said;
    }
    EXPECT_EQ(RulesIn(RunAvsk(kZoo).said), std::set<std::string>{});
}

TEST(Zoo, SamplesBreakNoRule) {
    const AvskRun run = RunAvsk("run --check --quiet --frames 300 --root " AVSK_TEST_DEMO);
    EXPECT_EQ(RulesIn(run.said), std::set<std::string>{kLeft}) << run.said;
    EXPECT_EQ(run.status, 0);
}

TEST(Zoo, DocumentIsMadeFromTheTable) {
    std::ifstream document(AVSK_TEST_RULES_DOCUMENT);
    EXPECT_EQ(std::string(std::istreambuf_iterator<char>(document), {}), RunAvsk("explain --markdown").said)
        << "write it anew: avsk explain --markdown > Docs/rules.md";
}

} // namespace
