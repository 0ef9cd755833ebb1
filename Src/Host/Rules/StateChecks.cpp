// The checks of state; see StateChecks.h.
#include "StateChecks.h"

#include "StateRules.h"

#include "Crossings/Symbols.h"

#include <array>
#include <clocale>
#include <csignal>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <set>
#include <string_view>

#include <climits>
#include <unistd.h>

namespace host {
namespace {

using crossings::CallState;
using crossings::Crossing;
using ProcessState = StateChecks::ProcessState;

std::string HexDigits(std::uintptr_t number) {
    std::array<char, 16> text{};
    std::snprintf(text.data(), text.size(), "0x%04x", static_cast<unsigned>(number));
    return text.data();
}

std::string SignalName(int signal) {
    const char *name = sigabbrev_np(signal);
    return name ? std::string("SIG") + name : "signal " + std::to_string(signal);
}

std::string Umask() {
    // umask() itself would change it for a moment, in which other threads may create files.
    std::ifstream status("/proc/self/status");
    constexpr std::string_view kBegin = "Umask:\t";
    for (std::string line; std::getline(status, line);) {
        if (line.starts_with(kBegin))
            return line.substr(kBegin.size());
    }
    return "";
}

// Of a function its address, from which a finding makes the name.
std::string ActionOf(const struct sigaction &action) {
    const auto handler = reinterpret_cast<std::uintptr_t>(action.sa_handler);
    if (action.sa_handler == SIG_IGN)
        return "to ignore it";
    return action.sa_handler == SIG_DFL ? "" : HexDigits(handler);
}

ProcessState ReadProcess() {
    ProcessState state;
    std::array<char, PATH_MAX> folder{};
    if (getcwd(folder.data(), folder.size()))
        state[{&Named(kStateRules, "state-folder"), ""}] = folder.data();
    state[{&Named(kStateRules, "state-locale"), ""}] = std::setlocale(LC_ALL, nullptr);
    state[{&Named(kStateRules, "state-umask"), ""}] = Umask();
    for (int signal = 1; signal <= SIGRTMAX; ++signal) {
        struct sigaction action {};
        if (sigaction(signal, nullptr, &action) == 0 && action.sa_handler != SIG_DFL)
            state[{&Named(kStateRules, "state-handler"), SignalName(signal)}] = ActionOf(action);
    }
    for (char **variable = environ; variable && *variable; ++variable) {
        const std::string_view text = *variable;
        const std::size_t end = text.find('=');
        if (end != std::string_view::npos)
            state[{&Named(kStateRules, "state-environment"), std::string(text.substr(0, end))}] = text.substr(end + 1);
    }
    return state;
}

// A value for a reader; null if there is none.
std::string Shown(const Rule &rule, const std::string *value) {
    const bool isAction = &rule == &Named(kStateRules, "state-handler");
    if (!value)
        return isAction ? "the default" : "unset";
    if (isAction && value->starts_with("0x"))
        return crossings::SymbolAt(reinterpret_cast<const void *>(std::strtoul(value->c_str(), nullptr, 16)));
    return isAction ? *value : Quoted(*value);
}

const std::string *ValueIn(const ProcessState &state, const ProcessState::key_type &key) {
    const auto found = state.find(key);
    return found == state.end() ? nullptr : &found->second;
}

} // namespace

std::string SignalChanges(std::uint64_t before, std::uint64_t after) {
    std::string changes;
    for (int bit = 0; bit < 64; ++bit) {
        const std::uint64_t mask = std::uint64_t{1} << bit;
        if (((before ^ after) & mask) == 0)
            continue;
        changes += (changes.empty() ? "" : ", ") + SignalName(bit + 1) +
                   ((after & mask) != 0 ? " is blocked" : " is no longer blocked");
    }
    return changes;
}

StateChecks::StateChecks(Findings &findings) : mFindings(findings), mExpected(crossings::CurrentState()) {
    crossings::KeepStates(true);
    crossings::AddObserver(*this);
}

StateChecks::~StateChecks() {
    crossings::RemoveObserver(*this);
    crossings::KeepStates(false);
}

void StateChecks::Begins(const Crossing &crossing) {
    if (crossing.IsEntryPoint())
        mOpen.push_back(ReadProcess());
}

void StateChecks::Ends(const Crossing &crossing) {
    // Static constructors ran since.
    if (crossing.IsStart() && crossing.stateBefore != mExpected)
        CompareCall(crossing, mExpected, crossing.stateBefore);
    if (crossing.IsStart())
        mExpected = crossing.stateBefore;
    if (crossing.to == crossings::Side::Plugin && crossing.stateBefore != crossing.stateAfter)
        CompareCall(crossing, crossing.stateBefore, crossing.stateAfter);
    if (!crossing.IsEntryPoint())
        return;
    const ProcessState before = std::move(mOpen.back());
    mOpen.pop_back();
    CompareProcess(crossing, before);
}

void StateChecks::CompareCall(const Crossing &crossing, const CallState &before, const CallState &after) {
    if (after.x87 != before.x87)
        mFindings.Add(Named(kStateRules, "state-x87"), crossing,
                      {{"after", HexDigits(after.x87)}, {"before", HexDigits(before.x87)}});
    if (after.mxcsr != before.mxcsr)
        mFindings.Add(Named(kStateRules, "state-mxcsr"), crossing,
                      {{"after", HexDigits(after.mxcsr)}, {"before", HexDigits(before.mxcsr)}});
    if (after.isBackward)
        mFindings.Add(Named(kStateRules, "state-direction"), crossing);
    if (after.blocked != before.blocked)
        mFindings.Add(Named(kStateRules, "state-signals"), crossing,
                      {{"changes", SignalChanges(before.blocked, after.blocked)}});
}

void StateChecks::CompareProcess(const Crossing &entryPoint, const ProcessState &before) {
    const ProcessState after = ReadProcess();
    if (after == before)
        return;
    std::set<ProcessState::key_type> keys;
    for (const ProcessState *state : {&before, &after}) {
        for (const auto &[key, value] : *state)
            keys.insert(key);
    }
    for (const auto &key : keys) {
        const std::string *was = ValueIn(before, key);
        const std::string *is = ValueIn(after, key);
        if (was && is ? *was == *is : was == is)
            continue;
        const auto &[rule, name] = key;
        mFindings.Add(*rule, entryPoint, {{"name", name}, {"before", Shown(*rule, was)}, {"after", Shown(*rule, is)}});
        // No change of the entry points around this one.
        for (ProcessState &open : mOpen) {
            if (is)
                open[key] = *is;
            else
                open.erase(key);
        }
    }
}

} // namespace host
