// What `avsk check` has found about each plugin.
#ifndef AVSK_HOST_VERDICT_VERDICT_H
#define AVSK_HOST_VERDICT_VERDICT_H

#include "Targets.h"

#include "Rules/Findings.h"

#include <set>
#include <string>
#include <vector>

namespace host {

// A finding, once for all scenarios in which it occurred.
struct Found {
    Finding finding;
    std::vector<std::string> scenarios;
    std::string report;               // of a crash or a hang
    std::string repeat;               // the command that shows it again
    std::vector<std::string> session; // that reproduces it, if it was found by the monkey
};

struct ScenarioRun {
    enum class Result {
        Ran,
        Crashed,
        Hung,
        Empty,   // the plugin made nothing that it could use
        Skipped, // the plugin does not even start
    };
    std::string name;
    Result result = Result::Ran;
    double seconds = 0;
};

struct PluginVerdict {
    Target target;
    std::vector<Found> found;      // in the order of their first scenarios
    std::vector<ScenarioRun> runs; // in the order of the scenarios
    std::set<std::string> notes;   // what could not be judged
};

struct Verdict {
    std::vector<PluginVerdict> plugins;
    Level level = Level::Warning; // findings of this level and worse ones fail
    double seconds = 0;

    bool Counts(const Finding &finding) const { return finding.rule->level <= level; }
    // Whether a plugin ended a run, or none of its findings counts.
    static bool HasDied(const PluginVerdict &plugin);
    bool Passes(const PluginVerdict &plugin) const;
    int CountAll(Level of) const;
    int CountRuns() const;
    // 0, 1 for findings, 3 for a crash or a hang.
    int Status() const;
};

// The lines for a reader. The last one begins with "RESULT: PASS" or "RESULT: FAIL".
std::vector<std::string> VerdictLines(const Verdict &verdict);
// The same as JSON, and in the format of JUnit: a test suite for each plugin with a
// test case for each scenario.
std::string VerdictJson(const Verdict &verdict);
std::string VerdictJunit(const Verdict &verdict);

} // namespace host

#endif
