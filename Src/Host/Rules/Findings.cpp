// Keeps findings; see Findings.h.
#include "Findings.h"

#include "RuleTable.h"

#include "Crossings/Callback.h"
#include "Crossings/Format.h"
#include "Crossings/Line.h"
#include "Crossings/Services.h"
#include "Observing/Backtrace.h"

#include <algorithm>
#include <cstdlib>
#include <memory>
#include <set>

#include <cxxabi.h>

namespace host {
namespace {

using crossings::Crossing;
using crossings::Side;

// The line of plugin code from which the call came, or where the called callback
// begins; empty if it is unknown.
std::string SourceOf(const Crossing &crossing) {
    const Crossing *code = PluginCodeOf(crossing);
    if (!code)
        return "";
    const auto *function = reinterpret_cast<const char *>(code->callback->function);
    if (code == &crossing)
        return SourceLineOf(function + 1);
    const char *file = FileAt(function);
    const std::vector<void *> addresses = file ? ReturnAddressesIn(file) : std::vector<void *>();
    return addresses.empty() ? "" : SourceLineOf(addresses.front());
}

// Equal for occurrences of one finding.
std::string KeyOf(const Finding &finding) {
    return std::string(finding.rule->id) + '\n' + finding.plugin + '\n' + finding.function + '\n' + finding.callback +
           '\n' + finding.subject;
}

std::string Fill(const char *sentence, FindingValues values) {
    std::string text;
    std::string_view rest = sentence;
    while (!rest.empty()) {
        const std::size_t begin = std::min(rest.find('{'), rest.size());
        text += rest.substr(0, begin);
        rest.remove_prefix(begin);
        if (rest.empty())
            break;
        const std::size_t end = rest.find('}');
        const std::string_view word = rest.substr(1, end - 1);
        for (const auto &[name, value] : values) {
            if (name == word)
                text += value;
        }
        rest.remove_prefix(end + 1);
    }
    return text;
}

std::string Times(const Finding &finding) {
    const std::string since = finding.frame > 0 ? "frame " + std::to_string(finding.frame) : "the start";
    if (finding.count == 1)
        return finding.frame > 0 ? ", in " + since : "";
    return ", " + std::to_string(finding.count) + " times since " + since;
}

} // namespace

const Crossing *PluginCodeOf(const Crossing &crossing) {
    const Crossing *code = &crossing;
    while (code && code->to != Side::Plugin)
        code = code->outer;
    return code;
}

std::string Hexadecimal(const void *pointer) {
    crossings::Line line;
    line.AddHex(reinterpret_cast<std::uintptr_t>(pointer));
    return std::string(line.Text());
}

std::string Decimal(double number) {
    crossings::Line line;
    line.Add(number);
    return std::string(line.Text());
}

std::string TypeName(const std::type_info &type) {
    const std::unique_ptr<char, decltype(&std::free)> text(abi::__cxa_demangle(type.name(), nullptr, nullptr, nullptr),
                                                           std::free);
    return text ? text.get() : type.name();
}

std::string Quoted(std::string_view text) { return '"' + std::string(text) + '"'; }

std::string Finding::Line() const {
    std::string line = plugin + ": ";
    if (!function.empty())
        line += function + ": ";
    line += text + " (" + rule->id + ")";
    if (!callback.empty())
        line += ", in " + callback;
    if (!source.empty())
        line += " at " + source;
    return line + Times(*this);
}

void Finding::Become(const Rule &other, FindingValues values) {
    rule = &other;
    subject = values.size() == 0 ? "" : values.begin()->second;
    text = Fill(other.finding, values);
}

Findings::Findings(const int &frame, std::map<std::string, std::string> allowed)
    : mFrame(frame), mAllowed(std::move(allowed)) {}

Finding Findings::Bare(const Rule &rule, const Crossing &crossing, FindingValues values) const {
    Finding finding;
    const Crossing *code = rule.BlamesHost() ? nullptr : PluginCodeOf(crossing);
    finding.plugin = crossings::LabelOf(rule.BlamesHost() ? AVSK_PLUGIN_AERIVO : (code ? code : &crossing)->plugin);
    finding.function = &crossing == code ? "" : crossing.what.name;
    if (const int slot = rule.BlamesHost() ? crossings::SlotOf(crossing.what) : 0)
        finding.function = "slot " + std::to_string(slot) + " (" + finding.function + ")";
    finding.Become(rule, values);
    if (code)
        finding.callback = crossings::TitleOf(*code);
    finding.frame = mFrame;
    return finding;
}

Finding Findings::Make(const Rule &rule, const Crossing &crossing, FindingValues values) const {
    Finding finding = Bare(rule, crossing, values);
    if (!rule.BlamesHost())
        finding.source = SourceOf(crossing);
    return finding;
}

void Findings::Add(const Rule &rule, const Crossing &crossing, FindingValues values) {
    Finding finding = Bare(rule, crossing, values);
    if (CountAgain(finding))
        return;
    if (!rule.BlamesHost())
        finding.source = SourceOf(crossing);
    Keep(std::move(finding));
}

void Findings::Add(const Rule &rule, const std::string &plugin, FindingValues values) {
    Finding finding;
    finding.plugin = plugin;
    finding.Become(rule, values);
    finding.frame = mFrame;
    Add(std::move(finding));
}

void Findings::Add(Finding finding) {
    if (!CountAgain(finding))
        Keep(std::move(finding));
}

bool Findings::CountAgain(const Finding &finding) {
    const auto known = mIndex.find(KeyOf(finding));
    if (known == mIndex.end())
        return false;
    mFindings[known->second].count += finding.count;
    return true;
}

void Findings::Keep(Finding finding) {
    mIndex.emplace(KeyOf(finding), mFindings.size());
    if (const auto excuse = mAllowed.find(finding.rule->id); excuse != mAllowed.end())
        finding.allowed = excuse->second;
    if (finding.allowed.empty())
        mLines += "  " + std::string(LevelWord(finding.rule->level)) + ": " + finding.Line() + '\n';
    mFindings.push_back(std::move(finding));
    if (mNotify)
        mNotify(mFindings.back());
}

void Findings::Rename(const std::string &before, const std::string &after) {
    const auto isMeant = [&before](const Finding &finding) { return finding.plugin == before; };
    if (before == after || std::none_of(mFindings.begin(), mFindings.end(), isMeant))
        return;
    const std::function<void(const Finding &)> notify = std::exchange(mNotify, nullptr); // it has seen them
    mIndex.clear();
    mLines.clear();
    for (Finding &finding : std::exchange(mFindings, {})) {
        if (isMeant(finding))
            finding.plugin = after;
        Add(std::move(finding));
    }
    mNotify = notify;
}

int Findings::Count(Level level) const {
    return static_cast<int>(std::count_if(mFindings.begin(), mFindings.end(), [level](const Finding &finding) {
        return finding.rule->level == level && finding.allowed.empty();
    }));
}

std::vector<std::string> Findings::Report() const {
    std::vector<std::string> lines;
    std::set<const Rule *> advised;
    std::set<std::string> used;
    for (const Finding &finding : mFindings) {
        used.insert(finding.rule->id);
        if (!finding.allowed.empty()) {
            lines.push_back("allowed: " + finding.Line() + "; the reason: " + finding.allowed);
            continue;
        }
        lines.push_back(std::string(LevelWord(finding.rule->level)) + ": " + finding.Line());
        if (advised.insert(finding.rule).second)
            lines.push_back("  " + std::string(finding.rule->advice));
    }
    for (const auto &[id, reason] : mAllowed) {
        if (!used.contains(id))
            lines.push_back("allow " + id + ": there is no such finding: the line can be removed");
    }
    if (lines.empty())
        return lines;
    const auto number = [](int count, const std::string &word) {
        return std::to_string(count) + " " + word + (count == 1 ? "" : "s");
    };
    lines.push_back(number(Count(Level::Error), "error") + ", " + number(Count(Level::Warning), "warning") + ", " +
                    number(Count(Level::Note), "note") + "; 'avsk explain RULE' explains the word in parentheses");
    return lines;
}

} // namespace host
