// The scenarios of `avsk check`: what a user and a simulator may do with a
// plugin, as sessions.
#ifndef AVSK_HOST_VERDICT_SCENARIOS_H
#define AVSK_HOST_VERDICT_SCENARIOS_H

#include "Targets.h"

#include "Session/Inventory.h"

#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace host {

// What the steps are made from.
struct Stage {
    Inventory made;     // by the plugin once it had started
    std::string plugin; // its name as a word of the session
    std::string folder; // has an aircraft and a scenery, see MakeWorld()
};

struct Scenario {
    std::string_view name;
    std::string_view meaning;
    // The lines after those that choose the plugin. None if the plugin has made
    // nothing of the kind. Null for scenarios that have more than one session.
    std::vector<std::string> (*lines)(const Stage &stage);
};

// These scenarios differ from the others.
inline constexpr std::string_view kFileScenario = "file";         // the files alone
inline constexpr std::string_view kStartScenario = "start";       // the first, which shows what the plugin makes
inline constexpr std::string_view kMonkeyScenario = "monkey";     // random steps
inline constexpr std::string_view kTogetherScenario = "together"; // all plugins of the check at once

std::span<const Scenario> Scenarios();
std::vector<std::string> ScenarioNames();
// Null if there is none.
const Scenario *FindScenario(std::string_view name);

// The lines that choose the plugins.
std::vector<std::string> HeadOf(std::span<const Target> targets);

// Makes the aircraft and the scenery of the scenarios in this folder.
void MakeWorld(const std::string &folder);

// Random steps: the same ones for the same seed and plugin.
std::vector<std::string> MonkeyLines(const Stage &stage, unsigned seed, int count);

} // namespace host

#endif
