// What violates rules, found while plugins run or in their files. Each violation
// is kept once, with the number of times it occurred.
#ifndef AVSK_HOST_RULES_FINDINGS_H
#define AVSK_HOST_RULES_FINDINGS_H

#include "Rule.h"

#include "Crossings/Crossing.h"

#include <functional>
#include <initializer_list>
#include <map>
#include <string>
#include <typeinfo>
#include <utility>
#include <vector>

namespace host {

// The values of a rule's sentence, by the words in its braces. The first one
// distinguishes findings: the name of what is misused, if there is one.
using FindingValues = std::initializer_list<std::pair<std::string_view, std::string>>;

struct Finding {
    const Rule *rule = nullptr;
    std::string plugin;   // its name or its file; "host" if the rule is for hosts
    std::string function; // that was called, "AVSKSetDataf"; empty if the finding concerns no call
    std::string subject;  // the first value: violations that differ in other values only are one finding
    std::string text;     // the rule's sentence with its values, those of the first occurrence
    std::string callback; // that made the call, "AVSKFlightLoop_f Steer"; empty outside of plugins
    std::string source;   // of the call, or the begin of the callback: "Pilot.cpp:58"; empty without debug information
    int frame = 0;        // of the first occurrence; 0 before the first frame
    long count = 1;
    std::string allowed; // the reason why it is excused; empty if it is not

    // "Pilot: AVSKSetDataf: "sim/x" is read-only, nothing was written (dataref-readonly), in
    // AVSKFlightLoop_f Steer at Pilot.cpp:58, 240 times since frame 3"
    std::string Line() const;
    // Makes it a violation of another rule, with the place that it has.
    void Become(const Rule &other, FindingValues values);
};

class Findings {
  public:
    // The frame number is read when something is found, so it must outlive this.
    // The map gives reasons for the IDs of excused rules.
    Findings(const int &frame, std::map<std::string, std::string> allowed);

    // A violation by the call that is under way, or by a callback that it calls. A rule
    // for hosts blames the host, with the call's function and without a place in a plugin.
    void Add(const Rule &rule, const crossings::Crossing &crossing, FindingValues values = {});
    // A violation that concerns no call.
    void Add(const Rule &rule, const std::string &plugin, FindingValues values = {});
    // The same in two steps, for a violation that is certain only later.
    Finding Make(const Rule &rule, const crossings::Crossing &crossing, FindingValues values = {}) const;
    void Add(Finding finding);

    // A plugin has another label now: also its findings.
    void Rename(const std::string &before, const std::string &after);

    // The number of the frame that runs.
    int Frame() const { return mFrame; }

    // Called with each finding that is new. A process that may crash reports it at once.
    void OnNew(std::function<void(const Finding &)> notify) { mNotify = std::move(notify); }

    // In the order of the first occurrences.
    const std::vector<Finding> &All() const { return mFindings; }
    // Of a level, without those that are excused.
    int Count(Level level) const;
    // For a reader: a line for each finding, the advice below the first one of each
    // rule, a line for each excuse that excused nothing, and the numbers of findings.
    std::vector<std::string> Report() const;
    // A line for each finding, prepared for the handler of a fatal signal.
    const std::string &Lines() const { return mLines; }

  private:
    Finding Bare(const Rule &rule, const crossings::Crossing &crossing, FindingValues values) const;
    bool CountAgain(const Finding &finding);
    void Keep(Finding finding);

    const int &mFrame;
    const std::map<std::string, std::string> mAllowed;
    std::vector<Finding> mFindings;
    std::map<std::string, std::size_t> mIndex; // of findings by rule, plugin, call and subject
    std::string mLines;
    std::function<void(const Finding &)> mNotify;
};

// The innermost call of plugin code that is under way, the given call included;
// null if the host's code made the call.
const crossings::Crossing *PluginCodeOf(const crossings::Crossing &crossing);

// The text of a value in a finding, in quotes: a name that a plugin gave.
std::string Quoted(std::string_view text);
// Likewise an address.
std::string Hexadecimal(const void *pointer);
// Likewise a number, with as many digits as it needs.
std::string Decimal(double number);
// The type of an exception, for a reader: "std::runtime_error".
std::string TypeName(const std::type_info &type);

} // namespace host

#endif
