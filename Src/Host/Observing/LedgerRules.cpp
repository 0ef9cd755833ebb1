// The table of rules; see LedgerRules.h. Their results and refusals are those
// that the public headers document.
#include "LedgerRules.h"

#include "Ledger.h"
#include "ObservedHost.h"

#include "Crossings/Symbols.h"
#include "Crossings/ValueText.h"
#include "Crossings/Words.h"

#include "AVSK/AVSKCamera.h"
#include "AVSK/AVSKDataAccess.h"
#include "AVSK/AVSKDisplay.h"
#include "AVSK/AVSKHost.h"
#include "AVSK/AVSKMenus.h"
#include "AVSK/AVSKUtilities.h"

namespace host {
namespace {

using crossings::Value;
using crossings::WholeText;

// ---- Parts of keys

constexpr Part kMenu = Argument("menu");
constexpr Part kCallback = Argument("callback");
constexpr Part kRefcon = Argument("refcon");
constexpr Parts kDraw = {kCallback, Argument("phase"), Argument("wantsBefore"), kRefcon};
constexpr Parts kSniffer = {kCallback, Argument("beforeWindows"), kRefcon};
constexpr Parts kSubscription = {Argument("name"), Argument("type"), kCallback, kRefcon};
constexpr Parts kHandler = {Argument("command"), Argument("handler"), IsSet("before"), kRefcon};

// ---- Values

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

std::string IntegerText(const Value &value) { return std::to_string(value.integer); }

// Different for different values of a kind.
std::uintptr_t NumberFor(const Value &value) {
    switch (value.kind) {
    case Value::Kind::Integer:
    case Value::Kind::Character:
        return static_cast<std::uintptr_t>(value.integer);
    case Value::Kind::Function:
    case Value::Kind::Pointer:
        return reinterpret_cast<std::uintptr_t>(value.pointer);
    default:
        return 0;
    }
}

Value FieldOf(const Value &argument, std::string_view name) {
    if (argument.kind != Value::Kind::Structure)
        return {};
    std::string_view fields = argument.structure->fields;
    for (const Value &field : argument.structure->values) {
        if (crossings::TakeWord(fields) == name)
            return field;
    }
    return {};
}

std::string FunctionName(const Value &value) {
    const bool isOne = value.kind == Value::Kind::Function && value.pointer;
    return isOne ? crossings::SymbolAt(value.pointer) : "no function";
}

std::string CommandName(const Call &call) {
    const std::string name = call.host.CommandName(call["command"].pointer);
    return name.empty() ? "no command" : name;
}

bool IsPluginsMenu(const Call &call) { return call.KeyOf({kMenu}) == call.KeyOf({kPluginsMenu}); }

const Possession *FindMenu(const Call &call) { return call.ledger.Find(Kind::Menu, call.KeyOf({kMenu})); }

std::string MenuName(const Call &call) {
    const Possession *menu = FindMenu(call);
    return menu ? menu->what : IsPluginsMenu(call) ? "Plugins" : "a menu of the simulator's";
}

// ---- Descriptions of possessions

std::string NameText(const Call &call) { return WholeText(call["name"]); }
std::string PathText(const Call &call) { return WholeText(call["path"]); }

std::string SubscriptionText(const Call &call) { return NameText(call) + " (" + FunctionName(call["callback"]) + ")"; }

std::string CreatedLoopText(const Call &call) {
    const std::string name = FunctionName(call.ValueOf(Field("params", "callbackFunc")));
    return IsTrue(call.ValueOf(Field("params", "phase"))) ? name + " (after the step)" : name;
}

std::string RegisteredLoopText(const Call &call) { return FunctionName(call["callback"]); }

std::string DrawText(const Call &call) {
    return FunctionName(call["callback"]) + " (" + (IsTrue(call["wantsBefore"]) ? "before" : "after") + " phase " +
           IntegerText(call["phase"]) + ")";
}

std::string SnifferText(const Call &call) {
    return FunctionName(call["callback"]) + (IsTrue(call["beforeWindows"]) ? " (before" : " (after") + " windows)";
}

// The rectangle of its creation: the source of the plugin shows that one.
std::string WindowText(const Call &call, Part (*part)(const char *name)) {
    std::string text;
    for (const char *side : {"left", "top", "right", "bottom"})
        text += (text.empty() ? "" : ",") + IntegerText(call.ValueOf(part(side)));
    return text + " (" + FunctionName(call.ValueOf(part("drawFunc"))) + ")";
}
std::string CreatedWindowText(const Call &call) { return WindowText(call, Argument); }
std::string CreatedWindowExText(const Call &call) {
    return WindowText(call, [](const char *name) { return Field("params", name); });
}

std::string HotKeyText(const Call &call) {
    return WholeText(call["description"]) + " (" +
           AVSKGetVirtualKeyDescription(static_cast<char>(call["virtualKey"].integer)) + ")";
}

std::string ItemText(const Call &call) { return NameText(call) + " in " + MenuName(call); }
std::string SeparatorText(const Call &call) { return "a separator in " + MenuName(call); }
std::string OpeningItemText(const Call &call) { return NameText(call) + " in Plugins"; }

std::string HandlerText(const Call &call) {
    return CommandName(call) + " (" + FunctionName(call["handler"]) +
           (IsTrue(call["before"]) ? ", before)" : ", after)");
}

std::string ButtonText(const Call &call) { return IntegerText(call["button"]); }
std::string ProbeText(const Call &call) { return "type " + IntegerText(call["type"]); }

std::string CameraText(const Call &call) {
    return FunctionName(call["cameraFunc"]) +
           (call["duration"].integer == AVSKCameraForever ? " (until given up)" : " (until the view changes)");
}

std::string PlanesText(const Call & /*call*/) { return "the other aircraft"; }

// ---- Conditions

// A name that is published already stays its owner's.
bool IsUnpublished(const Call &call) {
    const Value &name = call["name"];
    return name.text && !AVSKFindDataRef(name.text);
}

// A null callback shares without a subscription.
bool HasCallback(const Call &call) { return IsTrue(call["callback"]); }

// The library adds an item to the "Plugins" menu for a menu without parent.
bool HasNoParent(const Call &call) { return !IsTrue(call["parent"]); }

bool MenuExists(const Call &call) { return IsPluginsMenu(call) || FindMenu(call); }

// A command of the simulator is found, not created.
bool IsNoHostCommand(const Call &call) {
    const Value &name = call["name"];
    return name.text && !call.host.HasCommand(WholeText(name));
}

bool IsPlaneUnloaded(const Call &call) { return call["event"].integer == AVSKHostEventPlaneUnloaded; }

// ---- The rules

constexpr LedgerRule kRules[] = {
    Gain("AVSKRegisterDataAccessor", Kind::Dataref, {kResult}, NameText).OnlyIf(IsUnpublished),
    Lose("AVSKUnregisterDataAccessor", Kind::Dataref, {Argument("ref")}),
    Gain("AVSKShareData", Kind::Subscription, kSubscription, SubscriptionText).OnlyIf(HasCallback),
    Lose("AVSKUnshareData", Kind::Subscription, kSubscription),

    Gain("AVSKCreateFlightLoop", Kind::Loop, {kResult}, CreatedLoopText)
        .OtherKey({Field("params", "callbackFunc"), Field("params", "refcon")}),
    Lose("AVSKDestroyFlightLoop", Kind::Loop, {Argument("loop")}),
    Gain("AVSKRegisterFlightLoopCallback", Kind::Loop, {}, RegisteredLoopText).OtherKey({kCallback, kRefcon}),
    Lose("AVSKUnregisterFlightLoopCallback", Kind::Loop, {kCallback, kRefcon}, Whose::Anyones),

    Gain("AVSKRegisterDrawCallback", Kind::Draw, kDraw, DrawText),
    Lose("AVSKUnregisterDrawCallback", Kind::Draw, kDraw, Whose::Anyones),
    Gain("AVSKRegisterKeySniffer", Kind::Sniffer, kSniffer, SnifferText),
    Lose("AVSKUnregisterKeySniffer", Kind::Sniffer, kSniffer, Whose::Anyones),
    Gain("AVSKCreateWindow", Kind::Window, {kResult}, CreatedWindowText),
    Gain("AVSKCreateWindowEx", Kind::Window, {kResult}, CreatedWindowExText),
    Lose("AVSKDestroyWindow", Kind::Window, {Argument("window")}, Whose::Anyones),
    Gain("AVSKRegisterHotKey", Kind::HotKey, {kResult}, HotKeyText),
    Lose("AVSKUnregisterHotKey", Kind::HotKey, {Argument("hotKey")}, Whose::Anyones),

    Gain("AVSKCreateMenu", Kind::Item, {kPluginsMenu}, OpeningItemText).OnlyIf(HasNoParent),
    Gain("AVSKCreateMenu", Kind::Menu, {kResult}, NameText),
    Lose("AVSKDestroyMenu", Kind::Item, {kMenu}).As(Effect::LoseItems),
    Lose("AVSKDestroyMenu", Kind::Menu, {kMenu}),
    Gain("AVSKAppendMenuItem", Kind::Item, {kMenu}, ItemText).When(Success::IfNotNegative),
    Gain("AVSKAppendMenuSeparator", Kind::Item, {kMenu}, SeparatorText).OnlyIf(MenuExists),
    Lose("AVSKRemoveMenuItem", Kind::Item, {kMenu}).As(Effect::LoseNth),
    Lose("AVSKClearAllMenuItems", Kind::Item, {kMenu}).As(Effect::LoseItems),

    Gain("AVSKCreateCommand", Kind::Command, {kResult}, NameText).OnlyIf(IsNoHostCommand),
    Gain("AVSKRegisterCommandHandler", Kind::Handler, kHandler, HandlerText),
    Lose("AVSKUnregisterCommandHandler", Kind::Handler, kHandler),
    // The command is held even if a handler throws.
    Gain("AVSKCommandBegin", Kind::Hold, {Argument("command")}, CommandName).When(Success::Always),
    Lose("AVSKCommandEnd", Kind::Hold, {Argument("command")}),
    // A button has no owner: any plugin can release it.
    Gain("AVSKCommandButtonPress", Kind::Button, {Argument("button")}, ButtonText),
    Lose("AVSKCommandButtonRelease", Kind::Button, {Argument("button")}, Whose::CallersFirst),

    Gain("AVSKCreateProbe", Kind::Probe, {kResult}, ProbeText),
    Lose("AVSKDestroyProbe", Kind::Probe, {Argument("probe")}, Whose::Anyones),
    Gain("AVSKLoadObject", Kind::Object, {kResult}, PathText),
    Lose("AVSKUnloadObject", Kind::Object, {Argument("object")}),
    // The host's number of a load is the only thing that distinguishes loads.
    Gain("loadObjectAsync", Kind::Load, {Argument("argument")}, PathText)
        .OtherKey({OuterArgument("callback"), OuterArgument("refcon")})
        .When(Success::Before),
    On("loadObjectAsync_completion", Success::Before, Effect::Arrive),
    On("loadObjectAsync_completion", Success::Always, Effect::Settle),
    On("AVSKObjectLoaded_f", Success::Always, Effect::Settle),
    On("AVSKEnablePlugin", Success::Always, Effect::Settle),

    Gain("AVSKControlCamera", Kind::Camera, {kSingle}, CameraText),
    Lose("AVSKDontControlCamera", Kind::Camera, {kSingle}, Whose::Anyones),
    Gain("AVSKAcquirePlanes", Kind::Planes, {kSingle}, PlanesText),
    Lose("AVSKReleasePlanes", Kind::Planes, {kSingle}),

    // If a plugin has no AVPluginStop, the next event shows that it is unloaded.
    On("AVPluginStart", Success::Before, Effect::Leave),
    On("AVPluginStart", Success::IfRefused, Effect::Leave),
    On("AVPluginStop", Success::Always, Effect::Leave),
    On("AVSKReloadPlugins", Success::IfNotZero, Effect::Name),
    On("AVSKEventHook", Success::Before, Effect::Name).OnlyIf(IsPlaneUnloaded),
    On("AVSKEventHook", Success::Always, Effect::LeaveGone).OnlyIf(IsPlaneUnloaded),
    On("AVSKShutdownPlugins", Success::Before, Effect::Name),
    On("AVSKShutdownPlugins", Success::Always, Effect::LeaveGone),
};

} // namespace

std::vector<const LedgerRule *> FindRules(std::string_view function) {
    std::vector<const LedgerRule *> rules;
    for (const LedgerRule &rule : kRules) {
        if (function == rule.function)
            rules.push_back(&rule);
    }
    return rules;
}

Value Call::ValueOf(const Part &part) const {
    switch (part.source) {
    case Source::Argument:
        return crossing[part.argument];
    case Source::IsArgumentSet:
        return crossings::ValueOf(IsTrue(crossing[part.argument]) ? 1 : 0);
    case Source::Field:
        return FieldOf(crossing[part.argument], part.field);
    case Source::OuterArgument:
        return crossing.outer ? (*crossing.outer)[part.argument] : Value{};
    case Source::Result:
        return crossing.result;
    case Source::PluginsMenu:
        return crossings::ValueOf(AVSKFindPluginsMenu());
    default:
        return {};
    }
}

Key Call::KeyOf(const Parts &parts) const {
    Key key;
    for (const Part &part : parts) {
        if (part.source == Source::None)
            break;
        const Value value = ValueOf(part);
        if (value.kind == Value::Kind::Text)
            key.text = WholeText(value);
        else
            key.numbers.push_back(NumberFor(value));
    }
    return key;
}

} // namespace host
