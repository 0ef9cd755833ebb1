// The verdict as text; see Verdict.h.
#include "Verdict.h"

#include "Common/Terminal.h"
#include "Common/Text.h"
#include "Rules/RuleTable.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <numeric>
#include <set>
#include <sstream>

#include <unistd.h>

namespace host {
namespace {

std::string Number(int count, const std::string &word) {
    return std::to_string(count) + " " + word + (count == 1 ? "" : "s");
}

int CountLevel(const PluginVerdict &plugin, Level level) {
    return static_cast<int>(std::count_if(plugin.found.begin(), plugin.found.end(),
                                          [level](const Found &found) { return found.finding.rule->level == level; }));
}

// "2 errors, 1 warning"; empty if there are no findings.
std::string Counts(int errors, int warnings, int notes) {
    std::vector<std::string> parts;
    for (const auto &[count, word] : {std::pair(errors, "error"), {warnings, "warning"}, {notes, "note"}}) {
        if (count > 0)
            parts.push_back(Number(count, word));
    }
    return Join(parts);
}

int CountRan(const PluginVerdict &plugin) {
    return static_cast<int>(std::count_if(plugin.runs.begin(), plugin.runs.end(), [](const ScenarioRun &run) {
        return run.result != ScenarioRun::Result::Empty && run.result != ScenarioRun::Result::Skipped;
    }));
}

std::string Indented(const std::string &text, const std::string &indent) {
    std::string indented;
    std::istringstream lines(text);
    for (std::string line; std::getline(lines, line);)
        indented += (indented.empty() ? "" : "\n") + indent + line;
    return indented;
}

std::string InScenarios(const std::vector<std::string> &scenarios) {
    if (scenarios == std::vector<std::string>{"file"})
        return "";
    const int others = static_cast<int>(scenarios.size()) - 1;
    return " [" + scenarios.front() + (others > 0 ? " and " + Number(others, "other scenario") : "") + "]";
}

void AddFound(const Found &found, std::set<const Rule *> &advised, std::vector<std::string> &lines) {
    const Finding &finding = found.finding;
    lines.push_back("  " +
                    Emphasised(finding.rule->level == Level::Error ? Emphasis::Failure : Emphasis::Heading,
                               LevelWord(finding.rule->level), STDOUT_FILENO) +
                    ": " + finding.Line() + InScenarios(found.scenarios));
    if (advised.insert(finding.rule).second)
        lines.push_back("    " + std::string(finding.rule->advice));
    if (found.scenarios.front() != "file")
        lines.push_back("    again: " + found.repeat);
    if (!found.session.empty()) {
        lines.emplace_back("    this session shows it, with 'avsk run FILE.avs --check':");
        lines.push_back(Indented(Join(found.session, "\n"), "      "));
    }
    if (!found.report.empty())
        lines.push_back(Indented(found.report, "    | "));
}

} // namespace

bool Verdict::HasDied(const PluginVerdict &plugin) {
    return std::any_of(plugin.found.begin(), plugin.found.end(), [](const Found &found) {
        const std::string_view id = found.finding.rule->id;
        return id == "run-crash" || id == "run-hang";
    });
}

bool Verdict::Passes(const PluginVerdict &plugin) const {
    return std::none_of(plugin.found.begin(), plugin.found.end(),
                        [this](const Found &found) { return Counts(found.finding); });
}

int Verdict::CountAll(Level of) const {
    return std::accumulate(plugins.begin(), plugins.end(), 0,
                           [of](int sum, const PluginVerdict &plugin) { return sum + CountLevel(plugin, of); });
}

int Verdict::CountRuns() const {
    return std::accumulate(plugins.begin(), plugins.end(), 0,
                           [](int sum, const PluginVerdict &plugin) { return sum + CountRan(plugin); });
}

int Verdict::Status() const {
    if (std::any_of(plugins.begin(), plugins.end(), HasDied))
        return 3;
    return std::all_of(plugins.begin(), plugins.end(), [this](const PluginVerdict &plugin) { return Passes(plugin); })
               ? 0
               : 1;
}

std::vector<std::string> VerdictLines(const Verdict &verdict) {
    std::vector<std::string> lines;
    std::set<const Rule *> advised;
    int failed = 0;
    for (const PluginVerdict &plugin : verdict.plugins) {
        const bool passes = verdict.Passes(plugin);
        failed += passes ? 0 : 1;
        const std::string counts = Counts(CountLevel(plugin, Level::Error), CountLevel(plugin, Level::Warning),
                                          CountLevel(plugin, Level::Note));
        const auto skipped = std::count_if(plugin.runs.begin(), plugin.runs.end(), [](const ScenarioRun &run) {
            return run.result == ScenarioRun::Result::Skipped;
        });
        lines.push_back(
            (passes ? "pass: " : Emphasised(Emphasis::Failure, "FAIL", STDOUT_FILENO) + ": ") + plugin.target.name +
            ": " + Number(CountRan(plugin), "scenario") + (counts.empty() ? "" : ", " + counts) +
            (skipped > 0 ? ", " + std::to_string(skipped) + " not run, because the plugin does not start and run"
                         : ""));
        for (const Found &found : plugin.found) {
            if (verdict.Counts(found.finding))
                AddFound(found, advised, lines);
        }
        for (const std::string &note : plugin.notes)
            lines.push_back("  " + note);
    }
    std::array<char, 32> seconds{};
    std::snprintf(seconds.data(), seconds.size(), "%.1f s", verdict.seconds);
    const std::string counts =
        Counts(verdict.CountAll(Level::Error), verdict.CountAll(Level::Warning), verdict.CountAll(Level::Note));
    const auto total =
        static_cast<int>(std::count_if(verdict.plugins.begin(), verdict.plugins.end(),
                                       [](const PluginVerdict &plugin) { return !plugin.target.file.empty(); }));
    lines.push_back("RESULT: " +
                    (failed == 0 ? "PASS " + Number(total, "plugin")
                                 : "FAIL " + std::to_string(failed) + " of " + Number(total, "plugin")) +
                    ": " + (counts.empty() ? "no findings" : counts) + "; " + Number(verdict.CountRuns(), "scenario") +
                    " in " + seconds.data());
    return lines;
}

} // namespace host
