// The checks of reports; see HostReportChecks.h.
#include "HostReportChecks.h"

#include "HostServiceRules.h"

#include "Crossings/ValueText.h"

#include "AVSK/AVSKHost.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <utility>

namespace host {
namespace {

using crossings::Crossing;
using crossings::Side;

// The innermost service around a call; null if the host makes it on its own.
const Crossing *ServiceAround(const Crossing &call) {
    const Crossing *outer = call.outer;
    while (outer && (outer->to != Side::Host || outer->callback))
        outer = outer->outer;
    return outer;
}

// Whether a plugin decides which phases there are.
bool IsForPlugin(const Crossing *service) {
    if (!service)
        return false;
    const std::string_view name = service->what.name;
    return name == "beginCommand" || name == "continueCommand" || name == "endCommand";
}

bool IsUsers(const Crossing &event, AVSKHostEvent which) {
    return event["event"].integer == which && event["parameter"].word == 0;
}

// A text in a buffer of the caller. False if it cannot be read whole.
template <std::size_t N>
bool ReadWhole(const void *text, std::array<char, N> &bytes) {
    return text && crossings::ReadText(static_cast<const char *>(text), -1, bytes.data(), N) &&
           std::strlen(bytes.data()) + 1 < N;
}

} // namespace

constexpr CallRow<HostReportChecks> HostReportChecks::kBefore[] = {
    {"AVSKCommandHook", &HostReportChecks::BeforeCommand}, {"beginCommand", &HostReportChecks::BeforeRun},
    {"continueCommand", &HostReportChecks::BeforeRun},     {"endCommand", &HostReportChecks::BeforeRun},
    {"AVSKEventHook", &HostReportChecks::BeforeEvent},
};

constexpr CallRow<HostReportChecks> HostReportChecks::kAfter[] = {
    {"AVSKCommandHook", &HostReportChecks::AfterCommand}, {"findCommand", &HostReportChecks::AfterFind},
    {"beginCommand", &HostReportChecks::AfterRun},        {"continueCommand", &HostReportChecks::AfterRun},
    {"endCommand", &HostReportChecks::AfterRun},          {"AVSKEventHook", &HostReportChecks::AfterEvent},
    {"getAircraftModel", &HostReportChecks::AfterModel},  {"AVSKShutdownPlugins", &HostReportChecks::AfterStop},
};

HostReportChecks::HostReportChecks(Findings &findings) : mFindings(findings), mBefore(kBefore), mAfter(kAfter) {
    crossings::AddObserver(*this);
}

HostReportChecks::~HostReportChecks() { crossings::RemoveObserver(*this); }

crossings::Interest HostReportChecks::InterestIn(const crossings::Prototype &function) const {
    const bool isWatched =
        mBefore.Has(function) || mAfter.Has(function) || function.form == crossings::Prototype::Form::Service;
    return isWatched ? crossings::Interest::Work : crossings::Interest::None;
}

void HostReportChecks::Begins(const Crossing &crossing) { mBefore.Apply(*this, crossing); }

void HostReportChecks::Ends(const Crossing &crossing) {
    mAfter.Apply(*this, crossing);
    if (crossing.to == Side::Host)
        EndService(crossing);
}

// ---- Commands

std::string HostReportChecks::NameOf(const void *command) const {
    const auto known = mNames.find(command);
    return known == mNames.end() ? Hexadecimal(command) : Quoted(known->second);
}

void HostReportChecks::AfterFind(const Crossing &call) {
    std::array<char, AVSK_TEXT_SIZE> bytes{};
    if (!call.returned || !ReadWhole(call["name"].text, bytes) || !bytes[0])
        return;
    const std::string_view name = bytes.data();
    const void *command = call.result.pointer;
    const auto known = mCommands.find(name);
    if (known != mCommands.end() && known->second != command) {
        mFindings.Add(Named(kHostServiceRules, "host-command-changed"), call,
                      {{"name", Quoted(name)}, {"now", Hexadecimal(command)}, {"before", Hexadecimal(known->second)}});
        known->second = command;
    } else if (!command && call["create"].integer != 0) {
        mFindings.Add(Named(kHostServiceRules, "host-handle-null"), call, {{"where", "instead of a command"}});
    } else if (command && known == mCommands.end()) {
        mCommands.emplace(name, command);
        const auto [other, isNew] = mNames.try_emplace(command, name);
        if (!isNew)
            mFindings.Add(Named(kHostServiceRules, "host-command-shared"), call,
                          {{"name", Quoted(name)}, {"other", Quoted(other->second)}});
    }
}

// A plugin may pass a pointer that is no command.
void HostReportChecks::BeforeRun(const Crossing &call) {
    mRuns.push_back({&call, !mNames.contains(call["command"].pointer)});
}

void HostReportChecks::AfterRun(const Crossing &call) {
    const Run run = mRuns.back();
    mRuns.pop_back();
    if (!run.isReported && call.returned)
        mFindings.Add(Named(kHostServiceRules, "host-command-silent"), call,
                      {{"name", NameOf(call["command"].pointer)}});
}

void HostReportChecks::BeforeCommand(const Crossing &call) {
    const Crossing *service = ServiceAround(call);
    for (Run &run : mRuns)
        run.isReported = run.isReported || run.service == service;
    if (call["before"].integer == 0)
        CheckSecond(call);
    else if (!IsForPlugin(service))
        CheckPairing(call);
}

void HostReportChecks::CheckPairing(const Crossing &call) {
    const void *command = call["command"].pointer;
    const bool begin = call["begin"].integer != 0;
    const bool end = call["end"].integer != 0;
    int &held = mHeld[command];
    if (begin)
        ++held;
    if (held == 0)
        mFindings.Add(Named(kHostServiceRules, "host-command-unpaired"), call,
                      {{"name", NameOf(command)}, {"phase", end ? "the end" : "a continuation"}});
    else if (end)
        --held;
}

void HostReportChecks::AfterCommand(const Crossing &call) {
    if (!call.returned || call["before"].integer == 0)
        return;
    const void *command = call["command"].pointer;
    const Crossing *outer = ServiceAround(call);
    const auto earlier = std::find_if(mPhases.begin(), mPhases.end(), [=](const Phase &phase) {
        return phase.outer == outer && phase.command == command;
    });
    if (earlier != mPhases.end()) {
        AddMissing(*earlier, call);
        mPhases.erase(earlier);
    }
    mPhases.push_back({outer, command, call["begin"].integer != 0, call["end"].integer != 0, call.result.integer == 0});
}

void HostReportChecks::CheckSecond(const Crossing &call) {
    const void *command = call["command"].pointer;
    const Crossing *outer = ServiceAround(call);
    const auto first = std::find_if(mPhases.begin(), mPhases.end(), [=](const Phase &phase) {
        return phase.outer == outer && phase.command == command;
    });
    const char *why = nullptr;
    if (first == mPhases.end())
        why = "comes without the first one";
    else if (first->isStopped)
        why = "is made, although a plugin stopped the phase in the first one";
    else if (first->begin != (call["begin"].integer != 0) || first->end != (call["end"].integer != 0))
        why = "has other numbers than the first one";
    if (first != mPhases.end())
        mPhases.erase(first);
    if (why)
        mFindings.Add(Named(kHostServiceRules, "host-command-after"), call, {{"why", why}, {"name", NameOf(command)}});
}

void HostReportChecks::AddMissing(const Phase &phase, const Crossing &call) {
    if (!phase.isStopped)
        mFindings.Add(Named(kHostServiceRules, "host-command-after"), call,
                      {{"why", "is missing"}, {"name", NameOf(phase.command)}});
}

void HostReportChecks::EndService(const Crossing &service) {
    if (mPhases.empty())
        return;
    for (const Phase &phase : mPhases) {
        if (phase.outer == &service && service.returned)
            AddMissing(phase, service);
    }
    std::erase_if(mPhases, [&service](const Phase &phase) { return phase.outer == &service; });
}

// ---- The user's aircraft

void HostReportChecks::BeforeEvent(const Crossing &call) {
    if (IsUsers(call, AVSKHostEventPlaneUnloaded) || IsUsers(call, AVSKHostEventPlaneLoaded))
        mMayChange = true;
}

void HostReportChecks::AfterEvent(const Crossing &call) {
    if (IsUsers(call, AVSKHostEventPlaneLoaded))
        mMayChange = false;
}

void HostReportChecks::AfterModel(const Crossing &call) {
    std::array<char, AVSK_TEXT_SIZE> path{};
    if (!call.returned || call["index"].integer != 0 || !ReadWhole(call["outPath"].pointer, path))
        return;
    if (!mMayChange && mModel && *mModel != path.data())
        mFindings.Add(Named(kHostServiceRules, "host-aircraft-replaced"), call,
                      {{"now", Quoted(path.data())}, {"before", Quoted(*mModel)}});
    if (!mModel || *mModel != path.data())
        mModel = path.data();
}

void HostReportChecks::AfterStop(const Crossing & /*call*/) { mMayChange = true; }

} // namespace host
