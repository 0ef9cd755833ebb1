// The rules for hosts judge a host that commits one fault: each rule finds its own
// fault only, and a correct host has none.
#include "FoundRules.h"
#include "RunAvsk.h"

#include <gtest/gtest.h>

#include <set>
#include <string>

namespace {

std::set<std::string> RulesOf(const std::string &fault) {
    const AvskRun run = RunAvsk("exec --check -- " AVSK_TEST_BAD_HOST " " + fault);
    EXPECT_EQ(run.said.find("no fault for this rule"), std::string::npos) << run.said;
    return RulesIn(run.said);
}

// In parts, like the zoo.
constexpr int kParts = 8;
class HostPart : public testing::TestWithParam<int> {};
INSTANTIATE_TEST_SUITE_P(BadHost, HostPart, testing::Range(0, kParts));

TEST_P(HostPart, EachRuleFindsItsOwnFaultOnly) {
    const std::set<std::string> rules = RulesLike("host-[a-z0-9-]+");
    EXPECT_GE(rules.size(), 40U);
    int part = 0;
    for (const std::string &rule : rules) {
        if (part++ % kParts == GetParam()) {
            EXPECT_EQ(RulesOf(rule), std::set<std::string>{rule});
        }
    }
}

TEST(BadHost, NoRuleIsFoundWithoutAFault) { EXPECT_EQ(RulesOf("none"), std::set<std::string>{}); }

} // namespace
