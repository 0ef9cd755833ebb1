// The table of rules; see LedgerRules.h. Results and refusals are those that
// the public headers document.
#include "LedgerRules.h"

#include "Crossings/Format.h"
#include "Crossings/Symbols.h"
#include "Crossings/Words.h"
#include "Ledger.h"
#include "Services/Simulator.h"

#include "AVSK/AVSKCamera.h"
#include "AVSK/AVSKDataAccess.h"
#include "AVSK/AVSKDisplay.h"
#include "AVSK/AVSKMenus.h"
#include "AVSK/AVSKUtilities.h"

#include <array>

namespace host {
namespace {

using crossings::Value;

// ---- Values as text

std::string TextOf(const Value &value) {
    std::array<char, AVSK_PATH_SIZE> text{};
    if (value.kind != Value::Kind::Text || !value.text)
        return "";
    return crossings::ReadText(value.text, -1, text.data(), text.size()) ? text.data() : "unreadable";
}

std::string NumberOf(const Value &value) { return std::to_string(value.integer); }

bool IsTrue(const Value &value) {
    switch (value.kind) {
    case Value::Kind::Nothing:
        return false;
    case Value::Kind::Integer:
    case Value::Kind::Character:
        return value.integer != 0;
    case Value::Kind::Word:
        return value.word != 0;
    case Value::Kind::Real:
        return value.real != 0;
    default:
        return value.pointer != nullptr;
    }
}

std::string KeyPart(const Value &value) {
    switch (value.kind) {
    case Value::Kind::Integer:
    case Value::Kind::Character:
        return NumberOf(value);
    case Value::Kind::Text:
        return TextOf(value);
    case Value::Kind::Function:
    case Value::Kind::Pointer:
        return std::to_string(reinterpret_cast<std::uintptr_t>(value.pointer));
    default:
        return "";
    }
}

std::string FunctionName(const Value &value) {
    const bool isOne = value.kind == Value::Kind::Function && value.pointer;
    return isOne ? crossings::SymbolAt(value.pointer) : "no function";
}

std::string CommandName(const Call &call) {
    const Command *command = call.simulator.commands.Known(call["command"].pointer);
    return command ? command->name : "no command";
}

std::string MenuName(const Call &call) {
    const Possession *menu = call.ledger.Find(Kind::Menu, call.Key("menu"));
    return menu ? menu->what : call.Key("menu") == call.Key("@Plugins") ? "Plugins" : "a menu of the simulator's";
}

// ---- What was made

std::string NameText(const Call &call) { return TextOf(call["name"]); }
std::string PathText(const Call &call) { return TextOf(call["path"]); }

std::string SubscriptionText(const Call &call) { return NameText(call) + " (" + FunctionName(call["callback"]) + ")"; }

std::string CreatedLoopText(const Call &call) {
    const std::string name = FunctionName(call["params.callbackFunc"]);
    return IsTrue(call["params.phase"]) ? name + " (after the step)" : name;
}

std::string RegisteredLoopText(const Call &call) { return FunctionName(call["callback"]); }

std::string DrawText(const Call &call) {
    return FunctionName(call["callback"]) + " (" + (IsTrue(call["wantsBefore"]) ? "before" : "after") + " phase " +
           NumberOf(call["phase"]) + ")";
}

std::string SnifferText(const Call &call) {
    return FunctionName(call["callback"]) + (IsTrue(call["beforeWindows"]) ? " (before" : " (after") + " windows)";
}

// As it was made, though it may have moved since: that is what its source says.
std::string WindowText(const Call &call, const std::string &prefix) {
    std::string text;
    for (const char *side : {"left", "top", "right", "bottom"})
        text += (text.empty() ? "" : ",") + NumberOf(call[prefix + side]);
    return text + " (" + FunctionName(call[prefix + "drawFunc"]) + ")";
}
std::string WindowText(const Call &call) { return WindowText(call, ""); }
std::string WindowExText(const Call &call) { return WindowText(call, "params."); }

std::string HotKeyText(const Call &call) {
    return TextOf(call["description"]) + " (" +
           AVSKGetVirtualKeyDescription(static_cast<char>(call["virtualKey"].integer)) + ")";
}

std::string ItemText(const Call &call) { return NameText(call) + " in " + MenuName(call); }
std::string SeparatorText(const Call &call) { return "a separator in " + MenuName(call); }
std::string OpeningItemText(const Call &call) { return NameText(call) + " in Plugins"; }

std::string HandlerText(const Call &call) {
    return CommandName(call) + " (" + FunctionName(call["handler"]) +
           (IsTrue(call["before"]) ? ", before)" : ", after)");
}

std::string ButtonText(const Call &call) { return NumberOf(call["button"]); }
std::string ProbeText(const Call &call) { return "type " + NumberOf(call["type"]); }

std::string CameraText(const Call &call) {
    return FunctionName(call["cameraFunc"]) +
           (call["duration"].integer == AVSKCameraForever ? " (until given up)" : " (until the view changes)");
}

std::string PlanesText(const Call & /*call*/) { return "the other aircraft"; }

// ---- When a call has its effect

// A name that somebody publishes stays theirs.
bool IsUnpublished(const Call &call) {
    const Value name = call["name"];
    return name.text && !AVSKFindDataRef(name.text);
}

// Null shares without subscribing.
bool HasCallback(const Call &call) { return IsTrue(call["callback"]); }

// Then an item of the "Plugins" menu opens it.
bool HasNoParent(const Call &call) { return !IsTrue(call["parent"]); }

bool MenuExists(const Call &call) {
    return call.Key("menu") == call.Key("@Plugins") || call.ledger.Find(Kind::Menu, call.Key("menu"));
}

// The simulator's own are found, not created.
bool IsNoHostCommand(const Call &call) {
    const Value name = call["name"];
    const Command *command = name.text ? call.simulator.commands.Find(name.text) : nullptr;
    return name.text && (!command || !command->act);
}

bool PlaneGoes(const Call &call) { return call["event"].integer == AVSKHostEventPlaneUnloaded; }

// ---- The rules

using E = Effect;
using K = Kind;
using S = Success;
using W = Whose;

constexpr Rule kRules[] = {
    {"AVSKRegisterDataAccessor", E::Gain, K::Dataref, "=", S::IfNotZero, W::Callers, NameText, IsUnpublished},
    {"AVSKUnregisterDataAccessor", E::Lose, K::Dataref, "ref"},
    {"AVSKShareData", E::Gain, K::Subscription, "name,type,callback,refcon", S::IfNotZero, W::Callers, SubscriptionText,
     HasCallback},
    {"AVSKUnshareData", E::Lose, K::Subscription, "name,type,callback,refcon"},

    {"AVSKCreateFlightLoop", E::Gain, K::Loop, "=|params.callbackFunc,params.refcon", S::IfNotZero, W::Callers,
     CreatedLoopText},
    {"AVSKDestroyFlightLoop", E::Lose, K::Loop, "loop"},
    {"AVSKRegisterFlightLoopCallback", E::Gain, K::Loop, "|callback,refcon", S::IfNotZero, W::Callers,
     RegisteredLoopText},
    {"AVSKUnregisterFlightLoopCallback", E::Lose, K::Loop, "callback,refcon", S::IfNotZero, W::Anyones},

    {"AVSKRegisterDrawCallback", E::Gain, K::Draw, "callback,phase,wantsBefore,refcon", S::IfNotZero, W::Callers,
     DrawText},
    {"AVSKUnregisterDrawCallback", E::Lose, K::Draw, "callback,phase,wantsBefore,refcon", S::IfNotZero, W::Anyones},
    {"AVSKRegisterKeySniffer", E::Gain, K::Sniffer, "callback,beforeWindows,refcon", S::IfNotZero, W::Callers,
     SnifferText},
    {"AVSKUnregisterKeySniffer", E::Lose, K::Sniffer, "callback,beforeWindows,refcon", S::IfNotZero, W::Anyones},
    {"AVSKCreateWindow", E::Gain, K::Window, "=", S::IfNotZero, W::Callers, WindowText},
    {"AVSKCreateWindowEx", E::Gain, K::Window, "=", S::IfNotZero, W::Callers, WindowExText},
    {"AVSKDestroyWindow", E::Lose, K::Window, "window", S::IfNotZero, W::Anyones},
    {"AVSKRegisterHotKey", E::Gain, K::HotKey, "=", S::IfNotZero, W::Callers, HotKeyText},
    {"AVSKUnregisterHotKey", E::Lose, K::HotKey, "hotKey", S::IfNotZero, W::Anyones},

    {"AVSKCreateMenu", E::Gain, K::Item, "@Plugins", S::IfNotZero, W::Callers, OpeningItemText, HasNoParent},
    {"AVSKCreateMenu", E::Gain, K::Menu, "=", S::IfNotZero, W::Callers, NameText},
    {"AVSKDestroyMenu", E::LoseItems, K::Item, "menu"},
    {"AVSKDestroyMenu", E::Lose, K::Menu, "menu"},
    {"AVSKAppendMenuItem", E::Gain, K::Item, "menu", S::IfNotNegative, W::Callers, ItemText},
    {"AVSKAppendMenuSeparator", E::Gain, K::Item, "menu", S::IfNotZero, W::Callers, SeparatorText, MenuExists},
    {"AVSKRemoveMenuItem", E::LoseNth, K::Item, "menu"},
    {"AVSKClearAllMenuItems", E::LoseItems, K::Item, "menu"},

    {"AVSKCreateCommand", E::Gain, K::Command, "=", S::IfNotZero, W::Callers, NameText, IsNoHostCommand},
    {"AVSKRegisterCommandHandler", E::Gain, K::Handler, "command,handler,?before,refcon", S::IfNotZero, W::Callers,
     HandlerText},
    {"AVSKUnregisterCommandHandler", E::Lose, K::Handler, "command,handler,?before,refcon"},
    // Held also if a handler throws.
    {"AVSKCommandBegin", E::Gain, K::Hold, "command", S::Always, W::Callers, CommandName},
    {"AVSKCommandEnd", E::Lose, K::Hold, "command"},
    // A button knows no owner: any release will do.
    {"AVSKCommandButtonPress", E::Gain, K::Button, "button", S::IfNotZero, W::Callers, ButtonText},
    {"AVSKCommandButtonRelease", E::Lose, K::Button, "button", S::IfNotZero, W::CallersFirst},

    {"AVSKCreateProbe", E::Gain, K::Probe, "=", S::IfNotZero, W::Callers, ProbeText},
    {"AVSKDestroyProbe", E::Lose, K::Probe, "probe", S::IfNotZero, W::Anyones},
    {"AVSKLoadObject", E::Gain, K::Object, "=", S::IfNotZero, W::Callers, PathText},
    {"AVSKUnloadObject", E::Lose, K::Object, "object"},
    // The host's number of a load is the only thing that tells loads apart.
    {"loadObjectAsync", E::Gain, K::Load, "argument|^callback,^refcon", S::Before, W::Callers, PathText},
    {"loadObjectAsync_completion", E::Arrive, K::Load, "argument", S::Before},
    {"loadObjectAsync_completion", E::Settle, K::Load, "argument", S::Always},
    {"AVSKObjectLoaded_f", E::Settle, K::Load, "", S::Always},
    {"AVSKEnablePlugin", E::Settle, K::Load, "", S::Always},

    {"AVSKControlCamera", E::Gain, K::Camera, "@", S::IfNotZero, W::Callers, CameraText},
    {"AVSKDontControlCamera", E::Lose, K::Camera, "@", S::IfNotZero, W::Anyones},
    {"AVSKAcquirePlanes", E::Gain, K::Planes, "@", S::IfNotZero, W::Callers, PlanesText},
    {"AVSKReleasePlanes", E::Lose, K::Planes, "@"},

    // A plugin without AVPluginStop shows only by what comes after it.
    {"AVPluginStart", E::Leave, K::Dataref, "", S::Before},
    {"AVPluginStart", E::Leave, K::Dataref, "", S::IfRefused},
    {"AVPluginStop", E::Leave, K::Dataref, "", S::Always},
    {"AVSKReloadPlugins", E::Name},
    {"AVSKEventHook", E::Name, K::Dataref, "", S::Before, W::Callers, nullptr, PlaneGoes},
    {"AVSKEventHook", E::LeaveGone, K::Dataref, "", S::Always, W::Callers, nullptr, PlaneGoes},
    {"AVSKShutdownPlugins", E::Name, K::Dataref, "", S::Before},
    {"AVSKShutdownPlugins", E::LeaveGone, K::Dataref, "", S::Always},
};

} // namespace

std::vector<const Rule *> FindRules(std::string_view function) {
    std::vector<const Rule *> rules;
    for (const Rule &rule : kRules) {
        if (function == rule.function)
            rules.push_back(&rule);
    }
    return rules;
}

Value Call::operator[](std::string_view name) const {
    const crossings::Crossing *call = &crossing;
    if (name == "=")
        return call->result;
    if (name.starts_with('^')) {
        name.remove_prefix(1);
        call = call->outer;
    }
    if (!call)
        return {};
    const std::size_t dot = name.find('.');
    const Value argument = (*call)[std::string(name.substr(0, dot)).c_str()];
    if (dot == std::string_view::npos)
        return argument;
    if (argument.kind != Value::Kind::Structure)
        return {};
    const crossings::StructureView &structure = *argument.structure;
    std::string_view fields = structure.fields;
    for (const Value &field : structure.values) {
        if (crossings::TakeWord(fields) == name.substr(dot + 1))
            return field;
    }
    return {};
}

std::string Call::Key(std::string_view names) const {
    std::string key;
    while (!names.empty()) {
        const std::string_view name = crossings::TakeWord(names);
        if (name == "@Plugins")
            key += KeyPart(crossings::ValueOf(AVSKFindPluginsMenu()));
        else if (name == "@")
            key += name;
        else if (name.starts_with('?'))
            key += IsTrue((*this)[name.substr(1)]) ? '1' : '0';
        else
            key += KeyPart((*this)[name]);
        key += ';';
    }
    return key;
}

} // namespace host
