// The checks of where and when calls are made; see PlaceChecks.h.
#include "PlaceChecks.h"

#include "PlaceRules.h"

#include "Crossings/Callback.h"
#include "Crossings/Symbols.h"

#include "AVSK/AVSKPlanes.h"
#include "AVSK/AVSKPlugins.h"
#include "AVSK/AVSKProcessing.h"

#include <algorithm>
#include <chrono>
#include <initializer_list>
#include <string_view>

namespace host {
namespace {

using crossings::Crossing;
using crossings::Side;
using crossings::Value;

bool IsInside(const Crossing &call, std::initializer_list<std::string_view> names) {
    for (const Crossing *outer = call.outer; outer; outer = outer->outer) {
        if (std::find(names.begin(), names.end(), outer->what.name) != names.end())
            return true;
    }
    return false;
}

bool IsDrawing(const Crossing &call) {
    return IsInside(call, {"AVSKDrawWindow_f", "AVSKDrawCallback_f", "AVSKDoDrawingHook"});
}

bool IsByPlugin(const Crossing &call) { return call.from == Side::Plugin && call.to == Side::Library; }

// Equal for calls that register and unregister the same: "AVSKUnregister..." becomes "egister...".
std::string ValuesOf(const Crossing &call) {
    const std::string_view name = call.what.name;
    std::string text(name.substr(name.find("egister")));
    for (const Value &value : call.arguments) {
        if (value.kind == Value::Kind::Integer)
            text += value.integer != 0 ? " 1" : " 0"; // a flag
        else if (value.kind != Value::Kind::Real)     // an interval
            text += ' ' + std::to_string(reinterpret_cast<std::uintptr_t>(value.pointer));
    }
    return text;
}

// The function that a call registers, by name; null for none.
const void *FunctionOf(const Crossing &call) {
    const auto function = std::find_if(call.arguments.begin(), call.arguments.end(),
                                       [](const Value &value) { return value.kind == Value::Kind::Function; });
    return function == call.arguments.end() ? nullptr : function->pointer;
}

} // namespace

constexpr CallRow<PlaceChecks> PlaceChecks::kBefore[] = {
    {"AVSKDrawTranslucentDarkBox", &PlaceChecks::BeforeDrawing},
    {"AVSKDrawString", &PlaceChecks::BeforeDrawing},
    {"AVSKDrawNumber", &PlaceChecks::BeforeDrawing},
    {"AVSKDrawObjects", &PlaceChecks::BeforeDrawing},
    {"AVSKDrawAircraft", &PlaceChecks::BeforeDrawing},
    {"AVSKSetGraphicsState", &PlaceChecks::BeforeState},
    {"AVSKBindTexture2d", &PlaceChecks::BeforeState},
    {"AVSKTakeKeyboardFocus", &PlaceChecks::BeforeFocus},
    {"AVSKSetActiveAircraftCount", &PlaceChecks::BeforeAircraft},
    {"AVSKSetAircraftModel", &PlaceChecks::BeforeAircraft},
    {"AVSKDrawAircraft", &PlaceChecks::BeforeAircraft},
    {"AVSKReinitUsersPlane", &PlaceChecks::BeforeAircraft},
    {"AVSKDrawWindow_f", &PlaceChecks::BeforeWindows},
    {"AVSKCreateWindow", &PlaceChecks::BeforeWindow},
    {"AVSKCreateWindowEx", &PlaceChecks::BeforeWindow},
    {"AVSKDestroyWindow", &PlaceChecks::BeforeLookUp},
    {"AVSKGetWindowGeometry", &PlaceChecks::BeforeLookUp},
    {"AVSKSetWindowGeometry", &PlaceChecks::BeforeLookUp},
    {"AVSKGetWindowIsVisible", &PlaceChecks::BeforeLookUp},
    {"AVSKSetWindowIsVisible", &PlaceChecks::BeforeLookUp},
    {"AVSKGetWindowRefCon", &PlaceChecks::BeforeLookUp},
    {"AVSKSetWindowRefCon", &PlaceChecks::BeforeLookUp},
    {"AVSKTakeKeyboardFocus", &PlaceChecks::BeforeLookUp},
    {"AVSKBringWindowToFront", &PlaceChecks::BeforeLookUp},
    {"AVSKIsWindowInFront", &PlaceChecks::BeforeLookUp},
    {"AVSKDestroyFlightLoop", &PlaceChecks::BeforeDestruction},
    {"AVPluginStart", &PlaceChecks::BeforeStart},
};

constexpr CallRow<PlaceChecks> PlaceChecks::kAfter[] = {
    {"AVSKRegisterDrawCallback", &PlaceChecks::AfterUnique},
    {"AVSKRegisterKeySniffer", &PlaceChecks::AfterUnique},
    {"AVSKRegisterCommandHandler", &PlaceChecks::AfterRegistration},
    {"AVSKUnregisterCommandHandler", &PlaceChecks::AfterUnregistration},
    {"AVSKRegisterFlightLoopCallback", &PlaceChecks::AfterRegistration},
    {"AVSKUnregisterFlightLoopCallback", &PlaceChecks::AfterUnregistration},
    {"AVSKCommandBegin", &PlaceChecks::AfterBegin},
    {"AVSKCommandEnd", &PlaceChecks::AfterEnd},
    {"AVSKCreateFlightLoop", &PlaceChecks::AfterLoop},
    {"AVSKScheduleFlightLoop", &PlaceChecks::AfterSchedule},
    {"AVSKSetFlightLoopCallbackInterval", &PlaceChecks::AfterInterval},
    {"AVPluginStop", &PlaceChecks::AfterStop},
};

PlaceChecks::PlaceChecks(Findings &findings, const KnownHandles &handles)
    : mFindings(findings), mHandles(handles), mBefore(kBefore), mAfter(kAfter) {
    crossings::AddObserver(*this);
}

PlaceChecks::~PlaceChecks() { crossings::RemoveObserver(*this); }

void PlaceChecks::Begins(const Crossing &crossing) {
    mInner.emplace_back();
    mBefore.Apply(*this, crossing);
}

void PlaceChecks::Ends(const Crossing &crossing) {
    mAfter.Apply(*this, crossing);
    CheckTime(crossing);
}

void PlaceChecks::CheckTime(const Crossing &call) {
    using namespace std::chrono_literals;
    constexpr auto kLong = 100ms;
    const auto all = call.Duration();
    const auto own = all - mInner.back();
    mInner.pop_back();
    if (!mInner.empty())
        mInner.back() += all;
    // Entry points may take longer: they load files.
    if (own < kLong || call.to != Side::Plugin || std::string_view(call.what.name).starts_with("AVPlugin"))
        return;
    const auto milliseconds = std::chrono::duration_cast<std::chrono::milliseconds>(own).count();
    mFindings.Add(Named(kPlaceRules, "callback-slow"), call, {{"frame", "17"}, {"time", std::to_string(milliseconds)}});
}

// ---- Places

void PlaceChecks::BeforeDrawing(const Crossing &call) {
    if (IsByPlugin(call) && !IsDrawing(call))
        mFindings.Add(Named(kPlaceRules, "draw-outside"), call);
}

void PlaceChecks::BeforeState(const Crossing &call) {
    if (IsByPlugin(call) && !IsDrawing(call))
        mFindings.Add(Named(kPlaceRules, "draw-state-outside"), call);
}

void PlaceChecks::BeforeFocus(const Crossing &call) {
    const KnownHandle *window = mHandles.Find(call["window"].pointer);
    if (IsByPlugin(call) && window && window->kind == HandleKind::Window && !window->isGone &&
        AVSKIsPluginEnabled(window->owner) == 0)
        mFindings.Add(Named(kPlaceRules, "focus-disabled"), call);
}

void PlaceChecks::BeforeAircraft(const Crossing &call) {
    if (!IsByPlugin(call))
        return;
    AVSKPluginID controller = NO_PLUGIN_ID;
    AVSKCountAircraft(nullptr, nullptr, &controller);
    if (controller != call.dispatched)
        mFindings.Add(Named(kPlaceRules, "aircraft-uncontrolled"), call);
}

void PlaceChecks::BeforeWindows(const Crossing & /*call*/) { mHasLookedUp = false; }
void PlaceChecks::BeforeLookUp(const Crossing & /*call*/) { mHasLookedUp = true; }

void PlaceChecks::BeforeWindow(const Crossing &call) {
    if (IsByPlugin(call) && !mHasLookedUp && IsInside(call, {"AVSKDrawWindow_f"}))
        mFindings.Add(Named(kPlaceRules, "window-in-drawing"), call);
}

// ---- Registrations

// The library refuses a second one. Without a plugin it refuses all.
void PlaceChecks::AfterUnique(const Crossing &call) {
    const bool isRefused = call.returned && call.result.integer == 0 && call.dispatched != NO_PLUGIN_ID;
    if (IsByPlugin(call) && isRefused && FunctionOf(call))
        mFindings.Add(Named(kPlaceRules, "registered-twice"), call, {{"what", crossings::SymbolAt(FunctionOf(call))}});
}

void PlaceChecks::AfterRegistration(const Crossing &call) {
    if (!IsByPlugin(call) || !FunctionOf(call) || call.dispatched == NO_PLUGIN_ID)
        return;
    if (++mRegistrations[{call.dispatched, ValuesOf(call)}] > 1)
        mFindings.Add(Named(kPlaceRules, "registered-twice"), call, {{"what", crossings::SymbolAt(FunctionOf(call))}});
}

// A flight loop can be unregistered by any plugin.
void PlaceChecks::AfterUnregistration(const Crossing &call) {
    const std::string values = ValuesOf(call);
    for (auto &[registration, count] : mRegistrations) {
        if (registration.second == values && count > 0)
            --count;
    }
}

// ---- Commands and flight loops

void PlaceChecks::AfterBegin(const Crossing &call) {
    const void *command = call["command"].pointer;
    const KnownHandle *known = mHandles.Find(command);
    if (!IsByPlugin(call) || !known || known->kind != HandleKind::Command)
        return;
    const auto [hold, isNew] = mHolds.try_emplace({call.dispatched, command});
    if (isNew)
        hold->second.finding =
            mFindings.Make(Named(kPlaceRules, "command-held"), call, {{"name", Quoted(known->name)}});
    hold->second.isHeld = true;
}

void PlaceChecks::AfterEnd(const Crossing &call) {
    const auto hold = mHolds.find({call.dispatched, call["command"].pointer});
    if (hold != mHolds.end())
        hold->second.isHeld = false;
}

void PlaceChecks::AfterLoop(const Crossing &call) {
    const Value &argument = call["params"];
    if (!IsByPlugin(call) || !call.returned || !call.result.pointer || argument.kind != Value::Kind::Structure)
        return;
    const auto values = argument.structure->values; // structSize, phase, callbackFunc, refcon
    const bool canRun = values[1].integer == AVSKFlightLoopPhaseBefore || values[1].integer == AVSKFlightLoopPhaseAfter;
    const void *callback = values[2].pointer;
    if (!canRun || !callback)
        return;
    Finding finding =
        mFindings.Make(Named(kPlaceRules, "loop-unscheduled"), call, {{"loop", crossings::SymbolAt(callback)}});
    mLoops.insert_or_assign(call.result.pointer,
                            Loop{call.dispatched, callback, values[3].pointer, std::move(finding)});
}

void PlaceChecks::AfterSchedule(const Crossing &call) {
    if (call["interval"].real != 0)
        mLoops.erase(call["loop"].pointer);
}

void PlaceChecks::AfterInterval(const Crossing &call) {
    if (call["interval"].real == 0)
        return;
    const void *callback = call["callback"].pointer;
    const void *refcon = call["refcon"].pointer;
    std::erase_if(mLoops,
                  [&](const auto &loop) { return loop.second.callback == callback && loop.second.refcon == refcon; });
}

void PlaceChecks::BeforeDestruction(const Crossing &call) {
    const auto loop = mLoops.find(call["loop"].pointer);
    if (loop == mLoops.end() || loop->second.owner != call.dispatched)
        return;
    mFindings.Add(std::move(loop->second.finding));
    mLoops.erase(loop);
}

// ---- The end of a plugin, and of the run

// An earlier plugin of this ID may have had no AVPluginStop.
void PlaceChecks::BeforeStart(const Crossing &call) {
    std::erase_if(mRegistrations,
                  [&call](const auto &registration) { return registration.first.first == call.plugin; });
}

void PlaceChecks::AfterStop(const Crossing &call) { Leave(call.plugin); }

void PlaceChecks::Leave(AVSKPluginID plugin) {
    const auto isOf = [plugin](AVSKPluginID owner) { return plugin == NO_PLUGIN_ID || owner == plugin; };
    for (auto &[key, hold] : mHolds) {
        if (isOf(key.first) && hold.isHeld)
            mFindings.Add(std::move(hold.finding));
    }
    for (auto &[handle, loop] : mLoops) {
        if (isOf(loop.owner))
            mFindings.Add(std::move(loop.finding));
    }
    std::erase_if(mHolds, [&](const auto &hold) { return isOf(hold.first.first); });
    std::erase_if(mLoops, [&](const auto &loop) { return isOf(loop.second.owner); });
    std::erase_if(mRegistrations, [&](const auto &registration) { return isOf(registration.first.first); });
}

void PlaceChecks::Finish() { Leave(NO_PLUGIN_ID); }

} // namespace host
