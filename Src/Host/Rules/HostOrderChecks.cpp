// The checks of hooks; see HostOrderChecks.h. Owns the numbers of hooks that were
// called on other threads.
#include "HostOrderChecks.h"

#include "HostOrderRules.h"

#include "Crossings/CallState.h"
#include "Crossings/ValueText.h"

#include "AVSK/AVSKHost.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <climits>
#include <cmath>
#include <csignal>
#include <cstring>
#include <iterator>
#include <span>
#include <string_view>

#include <execinfo.h>
#include <unistd.h>

namespace host {
namespace {

using crossings::Crossing;
using crossings::Prototype;
using crossings::Side;

constexpr std::array<std::string_view, 16> kHooks = {
    "AVSKInitializePlugins",
    "AVSKShutdownPlugins",
    "AVSKEventHook",
    "AVSKDoDrawingHook",
    "AVSKMouseClickHook",
    "AVSKKeyPressHook",
    "AVSKCursorHook",
    "AVSKScrollWheelHook",
    "AVSKCameraHook",
    "AVSKMenuHook",
    "AVSKCommandHook",
    "AVSKCheckMenuHook",
    "AVSKMenuItemEnabled",
    "AVSKUpdatePlaneNameAndPath",
    "AVSKGetNumberPlanesToHandle",
    "loadObjectAsync_completion",
};

std::array<std::atomic<long>, kHooks.size()> gForeignHooks;
std::atomic<bool> gHasForeignHooks = false;

// The code to which a signal handler returns, of the kernel or of the C library.
bool IsSignalReturn(const void *address) {
    constexpr std::array<unsigned char, 8> kReturn = {0x58, 0xB8, 0x77, 0, 0, 0, 0xCD, 0x80};
    constexpr std::array<unsigned char, 7> kReturnWithInfo = {0xB8, 0xAD, 0, 0, 0, 0xCD, 0x80};
    std::array<unsigned char, 8> code{};
    return crossings::ReadMemory(address, code.data(), code.size()) &&
           (code == kReturn || std::equal(kReturnWithInfo.begin(), kReturnWithInfo.end(), code.begin()));
}

bool HasSignalFrame() {
    std::array<void *, 64> addresses{};
    const auto depth = static_cast<std::size_t>(backtrace(addresses.data(), static_cast<int>(addresses.size())));
    return std::any_of(addresses.begin(), addresses.begin() + static_cast<std::ptrdiff_t>(depth), IsSignalReturn);
}

bool IsOnSignalStack() {
    stack_t stack{};
    return sigaltstack(nullptr, &stack) == 0 && (stack.ss_flags & SS_ONSTACK) != 0;
}

} // namespace

bool IsHook(const Prototype &function) {
    return std::find(kHooks.begin(), kHooks.end(), function.name) != kHooks.end();
}

bool NoteHookOnThread(const Prototype &function) {
    const auto *const hook = std::find(kHooks.begin(), kHooks.end(), function.name);
    if (hook == kHooks.end())
        return false;
    ++gForeignHooks[static_cast<std::size_t>(hook - kHooks.begin())];
    gHasForeignHooks = true;
    return true;
}

constexpr CallRow<HostOrderChecks> HostOrderChecks::kBefore[] = {
    {"AVSKInitializePlugins", &HostOrderChecks::BeforeStart},
    {"AVSKShutdownPlugins", &HostOrderChecks::BeforeEnd},
    {"AVSKEventHook", &HostOrderChecks::BeforeHook},
    {"AVSKDoDrawingHook", &HostOrderChecks::BeforeHook},
    {"AVSKMouseClickHook", &HostOrderChecks::BeforeHook},
    {"AVSKKeyPressHook", &HostOrderChecks::BeforeHook},
    {"AVSKCursorHook", &HostOrderChecks::BeforeHook},
    {"AVSKScrollWheelHook", &HostOrderChecks::BeforeHook},
    {"AVSKCameraHook", &HostOrderChecks::BeforeHook},
    {"AVSKMenuHook", &HostOrderChecks::BeforeHook},
    {"AVSKCommandHook", &HostOrderChecks::BeforeHook},
    {"AVSKCheckMenuHook", &HostOrderChecks::BeforeHook},
    {"AVSKMenuItemEnabled", &HostOrderChecks::BeforeHook},
    {"AVSKUpdatePlaneNameAndPath", &HostOrderChecks::BeforeHook},
    {"AVSKGetNumberPlanesToHandle", &HostOrderChecks::BeforeHook},
    {"AVSKEventHook", &HostOrderChecks::BeforeEvent},
    {"AVSKDoDrawingHook", &HostOrderChecks::BeforeDrawing},
    {"AVSKKeyPressHook", &HostOrderChecks::BeforeKey},
    {"AVSKCameraHook", &HostOrderChecks::BeforeCamera},
    {"AVSKUpdatePlaneNameAndPath", &HostOrderChecks::BeforeModel},
    {"showMessage", &HostOrderChecks::OnReload},
    {"AVPluginStop", &HostOrderChecks::OnReload},
};

constexpr CallRow<HostOrderChecks> HostOrderChecks::kAfter[] = {
    {"AVSKShutdownPlugins", &HostOrderChecks::AfterEnd},
    {"AVSKGetNumberPlanesToHandle", &HostOrderChecks::AfterCount},
};

HostOrderChecks::HostOrderChecks(Findings &findings)
    : mFindings(findings), mBefore(kBefore), mAfter(kAfter), mBlocked(crossings::CurrentState().blocked) {
    void *here = nullptr;
    backtrace(&here, 1); // loads the unwinder, which must not happen in a signal handler
    crossings::AddObserver(*this);
}

HostOrderChecks::~HostOrderChecks() { crossings::RemoveObserver(*this); }

crossings::Interest HostOrderChecks::InterestIn(const crossings::Prototype &function) const {
    return mBefore.Has(function) || mAfter.Has(function) ? crossings::Interest::Work : crossings::Interest::None;
}

void HostOrderChecks::Begins(const Crossing &crossing) {
    TakeForeign();
    mBefore.Apply(*this, crossing);
}

void HostOrderChecks::Ends(const Crossing &crossing) { mAfter.Apply(*this, crossing); }

void HostOrderChecks::TakeForeign() {
    if (!gHasForeignHooks.exchange(false))
        return;
    for (std::size_t i = 0; i < kHooks.size(); ++i) {
        const long count = gForeignHooks[i].exchange(0);
        if (count == 0)
            continue;
        Finding finding;
        finding.plugin = crossings::LabelOf(AVSK_PLUGIN_AERIVO);
        finding.function = kHooks[i];
        finding.Become(Named(kHostOrderRules, "host-hook-thread"), {});
        finding.frame = mFindings.Frame();
        finding.count = count;
        mFindings.Add(std::move(finding));
    }
}

void HostOrderChecks::Finish() {
    TakeForeign();
    if (mPhase == Phase::Started)
        mFindings.Add(Named(kHostOrderRules, "host-end-missing"), crossings::LabelOf(AVSK_PLUGIN_AERIVO));
}

// ---- Start and end, threads and signals

void HostOrderChecks::BeforeHook(const Crossing &hook) {
    if (IsInSignalHandler(hook))
        mFindings.Add(Named(kHostOrderRules, "host-hook-signal"), hook);
    if (mPhase == Phase::Before)
        mFindings.Add(Named(kHostOrderRules, "host-hook-before-start"), hook);
    if (mPhase == Phase::Ended)
        mFindings.Add(Named(kHostOrderRules, "host-hook-after-end"), hook);
}

// Only if something is suspicious, the stack is searched.
bool HostOrderChecks::IsInSignalHandler(const Crossing &hook) {
    if (IsOnSignalStack())
        return true;
    if (hook.outer)
        return hook.outer->to != Side::Host && HasSignalFrame();
    const std::uint64_t blocked = crossings::CurrentState().blocked;
    const bool isSuspicious = (blocked & ~mBlocked) != 0;
    if (isSuspicious && HasSignalFrame())
        return true;
    mBlocked = blocked;
    return false;
}

void HostOrderChecks::BeforeStart(const Crossing &start) {
    if (IsInSignalHandler(start))
        mFindings.Add(Named(kHostOrderRules, "host-hook-signal"), start);
    else if (start.outer)
        mFindings.Add(Named(kHostOrderRules, "host-hook-in-service"), start, {{"outer", start.outer->what.name}});
    else if (mPhase == Phase::Started)
        mFindings.Add(Named(kHostOrderRules, "host-start-twice"), start);
    mPhase = Phase::Started;
    mPlaneCount = -1;
    mPlanes.clear();
    mScenery.clear();
    CheckFolder(start, "path", start["path"].text);
}

void HostOrderChecks::BeforeEnd(const Crossing &end) {
    if (IsInSignalHandler(end))
        mFindings.Add(Named(kHostOrderRules, "host-hook-signal"), end);
    else if (end.outer)
        mFindings.Add(Named(kHostOrderRules, "host-hook-in-service"), end, {{"outer", end.outer->what.name}});
    else if (mPhase != Phase::Started)
        mFindings.Add(Named(kHostOrderRules, "host-end-unstarted"), end);
}

void HostOrderChecks::AfterEnd(const Crossing & /*end*/) {
    if (mPhase == Phase::Started)
        mPhase = Phase::Ended;
}

// ---- Arguments

std::string HostOrderChecks::CheckFolder(const Crossing &hook, const char *parameter, const char *folder) {
    std::array<char, PATH_MAX> text{};
    if (!crossings::ReadText(folder, -1, text.data(), text.size())) {
        mFindings.Add(Named(kHostOrderRules, "host-hook-null"), hook, {{"parameter", parameter}});
        return "";
    }
    const std::string_view path = text.data();
    if (!path.ends_with('/'))
        mFindings.Add(Named(kHostOrderRules, "host-hook-folder"), hook, {{"folder", Quoted(path)}});
    return std::string(path);
}

void HostOrderChecks::BeforeEvent(const Crossing &hook) {
    const int event = hook["event"].integer;
    const AVSKWord parameter = hook["parameter"].word;
    if (event == AVSKHostEventPlaneLoaded || event == AVSKHostEventPlaneUnloaded)
        CheckPlane(hook, event, parameter);
    else if (event == AVSKHostEventSceneryFolder)
        CheckScenery(hook, reinterpret_cast<const char *>(parameter));
    else if (event < AVSKHostEventFrame || event > AVSKHostEventBroadcast108)
        mFindings.Add(Named(kHostOrderRules, "host-event-unknown"), hook, {{"event", std::to_string(event)}});
}

void HostOrderChecks::BeforeDrawing(const Crossing &hook) {
    constexpr int kLast = 26;
    const int code = hook["drawCode"].integer;
    const int reflection = hook["reflection"].integer;
    if (code < 1 || code > kLast)
        mFindings.Add(Named(kHostOrderRules, "host-draw-unknown"), hook, {{"code", std::to_string(code)}});
    if (reflection != 0 && reflection != 1)
        mFindings.Add(Named(kHostOrderRules, "host-draw-reflection"), hook,
                      {{"reflection", std::to_string(reflection)}});
}

void HostOrderChecks::BeforeKey(const Crossing &hook) {
    if (hook["key"].integer == 0 && hook["flags"].integer == 0 && hook["virtualKey"].integer == 0)
        mFindings.Add(Named(kHostOrderRules, "host-key-empty"), hook);
}

void HostOrderChecks::BeforeCamera(const Crossing &hook) {
    std::string parameter = "f1";
    for (const crossings::Value &argument : hook.arguments) {
        float value = 0;
        if (!crossings::ReadMemory(argument.pointer, &value, sizeof value))
            mFindings.Add(Named(kHostOrderRules, "host-hook-null"), hook, {{"parameter", parameter}});
        else if (!std::isfinite(value))
            mFindings.Add(Named(kHostOrderRules, "host-camera-invalid"), hook,
                          {{"parameter", parameter}, {"value", Decimal(value)}});
        ++parameter.back();
    }
}

// ---- Aircraft and scenery

void HostOrderChecks::CheckPlane(const Crossing &hook, int event, AVSKWord index) {
    const bool isLoading = event == AVSKHostEventPlaneLoaded;
    const bool wasLoaded = mPlanes.contains(index);
    if (isLoading == wasLoaded)
        mFindings.Add(
            Named(kHostOrderRules, "host-plane-events"), hook,
            {{"event", std::to_string(event)},
             {"index", std::to_string(index)},
             {"order", isLoading ? "after another one, without an event 8" : "without an event 3 before it"}});
    if (isLoading)
        mPlanes.insert(index);
    else
        mPlanes.erase(index);
}

void HostOrderChecks::CheckScenery(const Crossing &hook, const char *folder) {
    const std::string path = CheckFolder(hook, "parameter", folder);
    const bool isNew = path.empty() || mScenery.insert(path).second;
    if (!isNew && access((path + "plugins").c_str(), F_OK) == 0)
        mFindings.Add(Named(kHostOrderRules, "host-scenery-twice"), hook, {{"folder", Quoted(path)}});
}

// A reload unloads the plugins of scenery folders; the host reports the folders again.
void HostOrderChecks::OnReload(const Crossing & /*call*/) { mScenery.clear(); }

void HostOrderChecks::BeforeModel(const Crossing &hook) {
    const int index = hook["index"].integer;
    std::string expected;
    if (mPlaneCount < 0)
        expected = "AVSKGetNumberPlanesToHandle was not called yet";
    else if (index < 1 || index >= mPlaneCount)
        expected = "AVSKGetNumberPlanesToHandle returned " + std::to_string(mPlaneCount);
    if (!expected.empty())
        mFindings.Add(Named(kHostOrderRules, "host-plane-index"), hook,
                      {{"index", std::to_string(index)}, {"expected", expected}});
    std::array<char, AVSK_TEXT_SIZE> path{};
    if (!crossings::ReadText(static_cast<const char *>(hook["path"].pointer), -1, path.data(), path.size()))
        mFindings.Add(Named(kHostOrderRules, "host-hook-null"), hook, {{"parameter", "path"}});
}

void HostOrderChecks::AfterCount(const Crossing &hook) {
    if (hook.returned)
        mPlaneCount = hook.result.integer;
}

} // namespace host
