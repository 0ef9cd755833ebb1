// The rules for hosts judge a host that commits one fault: each rule finds its own
// fault only, and a correct host has none.
#include "FoundRules.h"
#include "RunAvsk.h"

#include <gtest/gtest.h>

#include <regex>
#include <set>
#include <string>

namespace {

std::set<std::string> RulesOf(const std::string &fault) {
    return RulesIn(RunObserved("--check", AVSK_TEST_BAD_HOST " " + fault).said);
}

// In parts, like the zoo.
constexpr int kParts = 8;
#ifdef __SANITIZE_ADDRESS__
constexpr int kStep = 4; // each run takes a second there
#else
constexpr int kStep = 1;
#endif
class HostPart : public testing::TestWithParam<int> {};
INSTANTIATE_TEST_SUITE_P(BadHost, HostPart, testing::Range(0, kParts, kStep));

TEST_P(HostPart, EachRuleFindsItsOwnFaultOnly) {
    const std::set<std::string> faults =
        FirstGroups(RunObserved("", AVSK_TEST_BAD_HOST).said, std::regex("\n(host-[^;]+);"));
    std::set<std::string> rules = RulesLike("host-[a-z0-9-]+");
    EXPECT_GE(rules.size(), 70U);
    int part = 0;
    for (const std::string &fault : faults) {
        const std::string rule = fault.substr(0, fault.find(':'));
        rules.erase(rule);
        if (part++ % kParts == GetParam()) {
            EXPECT_EQ(RulesOf(fault), std::set<std::string>{rule}) << fault;
        }
    }
    EXPECT_EQ(rules, std::set<std::string>{}) << "no fault for these rules: add it to BadHost.c";
}

TEST(BadHost, NoRuleIsFoundWithoutAFault) { EXPECT_EQ(RulesOf("none"), std::set<std::string>{}); }

} // namespace
