// The checks of frames and of the clock; see HostFrameChecks.h.
#include "HostFrameChecks.h"

#include "HostOrderRules.h"

#include "AVSK/AVSKHost.h"

#include <chrono>
#include <cmath>
#include <string>

namespace host {
namespace {

using crossings::Crossing;

constexpr int kLastCode = 26;

std::string SecondsText(double value) { return Decimal(value) + " s"; }

double SecondsSince(Crossing::Clock::time_point begin) {
    return std::chrono::duration<double>(Crossing::Clock::now() - begin).count();
}

// "3, 20"
std::string MissingCodes(std::uint32_t drawn) {
    std::string codes;
    for (int code = 1; code <= kLastCode; ++code) {
        if ((drawn >> code & 1) == 0)
            codes += (codes.empty() ? "" : ", ") + std::to_string(code);
    }
    return codes;
}

} // namespace

constexpr CallRow<HostFrameChecks> HostFrameChecks::kBefore[] = {
    {"AVSKInitializePlugins", &HostFrameChecks::BeforeStart},
    {"AVSKShutdownPlugins", &HostFrameChecks::BeforeEnd},
    {"AVSKEventHook", &HostFrameChecks::BeforeEvent},
    {"AVSKDoDrawingHook", &HostFrameChecks::BeforeDrawing},
};

constexpr CallRow<HostFrameChecks> HostFrameChecks::kAfter[] = {
    {"getElapsedTime", &HostFrameChecks::AfterTime},
};

HostFrameChecks::HostFrameChecks(Findings &findings) : mFindings(findings), mBefore(kBefore), mAfter(kAfter) {
    crossings::AddObserver(*this);
}

HostFrameChecks::~HostFrameChecks() { crossings::RemoveObserver(*this); }

crossings::Interest HostFrameChecks::InterestIn(const crossings::Prototype &function) const {
    return mBefore.Has(function) || mAfter.Has(function) ? crossings::Interest::Work : crossings::Interest::None;
}

void HostFrameChecks::Begins(const Crossing &crossing) {
    if (!crossing.outer)
        mBefore.Apply(*this, crossing);
}

void HostFrameChecks::Ends(const Crossing &crossing) {
    if (!crossing.outer && !crossing.returned)
        mFrame.isBroken = true;
    mAfter.Apply(*this, crossing);
}

void HostFrameChecks::BeforeStart(const Crossing & /*start*/) {
    mFrame = {};
    mEvents.last = mService.last = mBegin = -1;
    mStanding = 0;
}

void HostFrameChecks::BeforeEnd(const Crossing & /*end*/) {
    if (mFrame.hasBegun && mFrame.hasEnded)
        JudgeFrame();
    constexpr int kEnough = 60;
    if (mFrames >= kEnough && !mHasDrawn)
        Report(Named(kHostOrderRules, "host-draw-never"), {{"frames", std::to_string(mFrames)}});
    mFrame = {};
}

// ---- Frames

void HostFrameChecks::BeforeEvent(const Crossing &hook) {
    const int event = hook["event"].integer;
    if (event == AVSKHostEventFrame)
        BeginFrame();
    else if (event == AVSKHostEventFrameEnd)
        EndFrame();
    else if (event == AVSKHostEventCommands) {
        if (mFrame.hasBegun && mFrame.hasEnded && !mFrame.isDrawnLate)
            Report(Named(kHostOrderRules, "host-frame-order"), {{"first", "event 10"}, {"second", "event 9"}});
        mFrame.hasCommands = true;
    }
    if (event != AVSKHostEventFrame && event != AVSKHostEventFrameEnd)
        return;
    mEventAt = Crossing::Clock::now();
    const double time = hook["elapsed"].real;
    if (!IsTime(hook, mEvents, time))
        return;
    CheckClock(hook, mEvents, time);
    if (event == AVSKHostEventFrame)
        CheckStep(hook, time);
}

void HostFrameChecks::BeginFrame() {
    if (mFrame.isDrawnLate)
        Report(Named(kHostOrderRules, "host-frame-order"), {{"first", "a draw pass"}, {"second", "event 0"}});
    if (mFrame.hasBegun)
        JudgeFrame();
    mFrame = {};
    mFrame.hasBegun = true;
    ++mFrames;
}

void HostFrameChecks::EndFrame() {
    // An event 10 alone, before the first frame, makes a reload.
    const bool isWithoutBegin = !mFrame.hasBegun && (mFrame.hasCommands || mFrame.drawn != 0);
    if (mFrame.isDrawnLate || isWithoutBegin || (mFrame.hasBegun && mFrame.hasEnded)) {
        Report(Named(kHostOrderRules, "host-frame-event"), {{"event", "0"}});
        mFrame = {};
    }
    mFrame.hasEnded = true;
}

void HostFrameChecks::BeforeDrawing(const Crossing &hook) {
    mHasDrawn = true;
    if (mFrame.hasBegun && mFrame.hasEnded) {
        mFrame.isDrawnLate = true;
        return;
    }
    if (mFrame.hasCommands && mFrame.hasBegun)
        Report(Named(kHostOrderRules, "host-frame-order"), {{"first", "event 9"}, {"second", "a draw pass"}});
    const int code = hook["drawCode"].integer;
    if (code < 1 || code > kLastCode)
        return;
    mFrame.drawn |= std::uint32_t{1} << code;
    const std::size_t reflection = hook["reflection"].integer != 0 ? 1 : 0;
    int &first = mFrame.first[reflection];
    int &last = mFrame.last[reflection];
    if (first == 0 || code <= first)
        first = code; // of a new pass
    else if (code <= last)
        mFindings.Add(Named(kHostOrderRules, "host-draw-order"), hook,
                      {{"code", std::to_string(code)}, {"before", std::to_string(last)}});
    last = code;
}

void HostFrameChecks::JudgeFrame() {
    if (mFrame.isBroken)
        return;
    if (!mFrame.hasCommands)
        Report(Named(kHostOrderRules, "host-frame-event"), {{"event", "9"}});
    if (!mFrame.hasEnded)
        Report(Named(kHostOrderRules, "host-frame-event"), {{"event", "10"}});
    const std::string missing = mFrame.drawn != 0 ? MissingCodes(mFrame.drawn) : "";
    if (!missing.empty())
        Report(Named(kHostOrderRules, "host-draw-missing"), {{"codes", missing}});
}

// A finding about the frame, whichever hook completes it.
void HostFrameChecks::Report(const Rule &rule, FindingValues values) {
    mFindings.Add(rule, crossings::LabelOf(AVSK_PLUGIN_AERIVO), values);
}

// ---- The clock

bool HostFrameChecks::IsTime(const Crossing &call, const Clock &clock, double time) {
    if (std::isfinite(time) && time >= 0)
        return true;
    mFindings.Add(Named(kHostOrderRules, "host-time-invalid"), call,
                  {{"name", clock.name}, {"value", SecondsText(time)}});
    return false;
}

void HostFrameChecks::CheckClock(const Crossing &call, Clock &clock, double time) {
    if (time < clock.last)
        mFindings.Add(Named(kHostOrderRules, "host-time-backwards"), call,
                      {{"name", clock.name}, {"after", SecondsText(time)}, {"before", SecondsText(clock.last)}});
    clock.last = time;
}

// From one event 0 to the next. A step may be as long as the process took for it.
void HostFrameChecks::CheckStep(const Crossing &hook, double time) {
    constexpr int kManyStanding = 120; // frames
    constexpr double kLong = 2;
    const double before = mBegin;
    const double step = time - before;
    const double most = kLong + SecondsSince(mBeganAt);
    mBegin = time;
    mBeganAt = Crossing::Clock::now();
    if (before < 0)
        return;
    mStanding = step == 0 ? mStanding + 1 : 0;
    if (mStanding == kManyStanding)
        mFindings.Add(Named(kHostOrderRules, "host-time-stands"), hook,
                      {{"name", mEvents.name}, {"frames", std::to_string(kManyStanding)}});
    if (step > most && !mAcceptsLongSteps)
        mFindings.Add(Named(kHostOrderRules, "host-time-jumps"), hook,
                      {{"name", mEvents.name}, {"before", SecondsText(before)}, {"after", SecondsText(time)}});
}

void HostFrameChecks::AfterTime(const Crossing &service) {
    const double time = service.result.real;
    if (!service.returned || !IsTime(service, mService, time))
        return;
    CheckClock(service, mService, time);
    const Crossing *outermost = &service;
    while (outermost->outer)
        outermost = outermost->outer;
    if (outermost == &service || std::string_view(outermost->what.name) != "AVSKEventHook")
        return;
    const int event = (*outermost)["event"].integer;
    const double passed = (*outermost)["elapsed"].real;
    constexpr double kTolerance = 0.5; // a clock that runs on during the event
    const double difference = time - passed;
    if ((event == AVSKHostEventFrame || event == AVSKHostEventFrameEnd) && std::isfinite(passed) &&
        (difference < -kTolerance || difference > kTolerance + SecondsSince(mEventAt)))
        mFindings.Add(Named(kHostOrderRules, "host-time-differs"), service,
                      {{"name", mService.name}, {"service", SecondsText(time)}, {"event", SecondsText(passed)}});
}

} // namespace host
