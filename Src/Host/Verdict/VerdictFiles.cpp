// The verdict as JSON and as JUnit's XML, for machines; see Verdict.h.
#include "Verdict.h"

#include "Rules/RuleTable.h"
#include "Session/Record.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <array>
#include <cstdio>
#include <string_view>

namespace host {
namespace {

using Json = nlohmann::json;

const char *WordOf(ScenarioRun::Result result) {
    switch (result) {
    case ScenarioRun::Result::Ran:
        return "ran";
    case ScenarioRun::Result::Crashed:
        return "crashed";
    case ScenarioRun::Result::Hung:
        return "hung";
    case ScenarioRun::Result::Empty:
        return "empty";
    default:
        return "skipped";
    }
}

Json JsonOf(const Found &found, const Verdict &verdict) {
    const Finding &finding = found.finding;
    Json object = FindingJson(finding);
    object["level"] = LevelWord(finding.rule->level);
    object["fails"] = verdict.Counts(finding);
    object["advice"] = finding.rule->advice;
    object["scenarios"] = found.scenarios;
    object["repeat"] = found.repeat;
    if (!found.report.empty())
        object["report"] = found.report;
    if (!found.session.empty())
        object["session"] = found.session;
    return object;
}

// Text between tags or in an attribute: valid UTF-8 of characters that XML allows.
std::string Xml(std::string_view text) {
    constexpr std::string_view kReplacement = "\xEF\xBF\xBD";
    // JSON's writer replaces what is no UTF-8.
    const std::string valid = Json::parse(Json(text).dump(-1, ' ', false, Json::error_handler_t::replace));
    std::string xml;
    for (std::size_t i = 0; i < valid.size(); ++i) {
        const char c = valid[i];
        const std::string_view rest = std::string_view(valid).substr(i);
        if (c == '&')
            xml += "&amp;";
        else if (c == '<')
            xml += "&lt;";
        else if (c == '>')
            xml += "&gt;";
        else if (c == '"')
            xml += "&quot;";
        else if (c == '\n')
            xml += "&#10;";
        else if (rest.starts_with("\xEF\xBF\xBE") || rest.starts_with("\xEF\xBF\xBF"))
            xml += kReplacement, i += 2;
        else if (static_cast<unsigned char>(c) < 0x20 && c != '\t')
            xml += kReplacement;
        else
            xml += c;
    }
    return xml;
}

std::string Attribute(const char *name, std::string_view text) {
    return std::string(" ") + name + "=\"" + Xml(text) + "\"";
}

std::string Seconds(double seconds) {
    std::array<char, 32> text{};
    std::snprintf(text.data(), text.size(), "%.3f", seconds);
    return text.data();
}

// A finding belongs to the test case of its first scenario.
bool BelongsTo(const Found &found, const ScenarioRun &run) { return found.scenarios.front() == run.name; }

std::string CaseOf(const Verdict &verdict, const PluginVerdict &plugin, const ScenarioRun &run) {
    std::string xml = "    <testcase" + Attribute("classname", plugin.target.name) + Attribute("name", run.name) +
                      Attribute("time", Seconds(run.seconds)) + ">\n";
    std::string others; // findings below the level
    for (const Found &found : plugin.found) {
        if (!BelongsTo(found, run))
            continue;
        const std::string line = std::string(LevelWord(found.finding.rule->level)) + ": " + found.finding.Line();
        if (!verdict.Counts(found.finding)) {
            others += line + "\n";
            continue;
        }
        const std::string_view id = found.finding.rule->id;
        const char *tag = id == "run-crash" || id == "run-hang" ? "error" : "failure";
        std::string text = line + "\n" + found.finding.rule->advice + "\nagain: " + found.repeat + "\n";
        for (const std::string &step : found.session)
            text += step + "\n";
        xml += std::string("      <") + tag + Attribute("type", id) + Attribute("message", found.finding.text) + ">" +
               Xml(text + found.report) + "</" + tag + ">\n";
    }
    if (run.result == ScenarioRun::Result::Skipped || run.result == ScenarioRun::Result::Empty)
        xml += std::string("      <skipped") +
               Attribute("message", run.result == ScenarioRun::Result::Empty ? "the plugin makes nothing of this kind"
                                                                             : "the plugin does not start") +
               "/>\n";
    if (!others.empty())
        xml += "      <system-out>" + Xml(others) + "</system-out>\n";
    return xml + "    </testcase>\n";
}

// The runs, and a place for the findings of runs that were not asked for, such as
// a crash of the first run.
std::vector<ScenarioRun> CasesOf(const PluginVerdict &plugin) {
    std::vector<ScenarioRun> cases = plugin.runs;
    for (const Found &found : plugin.found) {
        if (std::none_of(cases.begin(), cases.end(), [&](const ScenarioRun &run) { return BelongsTo(found, run); }))
            cases.push_back({found.scenarios.front(), ScenarioRun::Result::Ran, 0});
    }
    return cases;
}

} // namespace

std::string VerdictJson(const Verdict &verdict) {
    Json plugins = Json::array();
    for (const PluginVerdict &plugin : verdict.plugins) {
        Json findings = Json::array();
        for (const Found &found : plugin.found)
            findings.push_back(JsonOf(found, verdict));
        Json runs = Json::array();
        for (const ScenarioRun &run : plugin.runs)
            runs.push_back({{"name", run.name}, {"result", WordOf(run.result)}, {"seconds", run.seconds}});
        plugins.push_back({{"name", plugin.target.name},
                           {"file", plugin.target.file},
                           {"passed", verdict.Passes(plugin)},
                           {"scenarios", runs},
                           {"findings", findings},
                           {"notes", plugin.notes}});
    }
    const Json object = {{"result", verdict.Status() == 0 ? "PASS" : "FAIL"},
                         {"status", verdict.Status()},
                         {"level", static_cast<int>(verdict.level)},
                         {"seconds", verdict.seconds},
                         {"plugins", plugins}};
    return object.dump(2, ' ', false, Json::error_handler_t::replace) + "\n";
}

std::string VerdictJunit(const Verdict &verdict) {
    std::string xml = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<testsuites" + Attribute("name", "avsk check") +
                      Attribute("time", Seconds(verdict.seconds)) + ">\n";
    for (const PluginVerdict &plugin : verdict.plugins) {
        const std::vector<ScenarioRun> cases = CasesOf(plugin);
        int failures = 0;
        int errors = 0;
        for (const Found &found : plugin.found) {
            const std::string_view id = found.finding.rule->id;
            if (verdict.Counts(found.finding))
                ++(id == "run-crash" || id == "run-hang" ? errors : failures);
        }
        const auto skipped = std::count_if(cases.begin(), cases.end(), [](const ScenarioRun &run) {
            return run.result == ScenarioRun::Result::Skipped || run.result == ScenarioRun::Result::Empty;
        });
        xml += "  <testsuite" + Attribute("name", plugin.target.name) +
               Attribute("tests", std::to_string(cases.size())) + Attribute("failures", std::to_string(failures)) +
               Attribute("errors", std::to_string(errors)) + Attribute("skipped", std::to_string(skipped)) + ">\n";
        for (const ScenarioRun &run : cases)
            xml += CaseOf(verdict, plugin, run);
        for (const std::string &note : plugin.notes)
            xml += "    <system-out>" + Xml(note) + "</system-out>\n";
        xml += "  </testsuite>\n";
    }
    return xml + "</testsuites>\n";
}

} // namespace host
