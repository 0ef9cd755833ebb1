// The rules of the ledger: which calls give a plugin something, and which take
// it away. One table, applied by Ledger.cpp.
#ifndef AVSK_HOST_OBSERVING_LEDGER_RULES_H
#define AVSK_HOST_OBSERVING_LEDGER_RULES_H

#include "Possession.h"

#include "Crossings/Crossing.h"

#include <array>
#include <cassert>
#include <cstdint>
#include <initializer_list>
#include <string>
#include <string_view>
#include <vector>

namespace host {

class Ledger;
class ObservedHost;

// Where a part of a possession's key comes from.
enum class Source : std::uint8_t {
    None,
    Argument,
    IsArgumentSet, // 1 if the argument is not 0, else 0
    Field,         // of a structure that is an argument
    OuterArgument, // of the call that led to this one
    Result,
    PluginsMenu, // the menu of that name, whatever the call
    Single,      // the same for all calls: there is at most one possession of the kind
};

struct Part {
    Source source = Source::None;
    const char *argument = "";
    const char *field = "";
};

constexpr Part Argument(const char *name) { return {Source::Argument, name}; }
constexpr Part IsSet(const char *argument) { return {Source::IsArgumentSet, argument}; }
constexpr Part Field(const char *argument, const char *field) { return {Source::Field, argument, field}; }
constexpr Part OuterArgument(const char *name) { return {Source::OuterArgument, name}; }
inline constexpr Part kResult{Source::Result};
inline constexpr Part kPluginsMenu{Source::PluginsMenu};
inline constexpr Part kSingle{Source::Single};

// The parts of a key. Those behind the last one are Source::None.
struct Parts : std::array<Part, 4> {
    constexpr Parts(std::initializer_list<Part> parts = {}) : array{} {
        assert(parts.size() <= size());
        std::size_t count = 0;
        for (const Part &part : parts)
            (*this)[count++] = part;
    }
};

// A call, with what is needed to apply a rule to it.
struct Call {
    const crossings::Crossing &crossing;
    const ObservedHost &host;
    const Ledger &ledger;

    // An argument by its name.
    const crossings::Value &operator[](const char *argument) const { return crossing[argument]; }
    // Of kind Nothing if the call has no such value.
    crossings::Value ValueOf(const Part &part) const;
    Key KeyOf(const Parts &parts) const;
};

enum class Effect : std::uint8_t {
    Gain,
    Lose,
    LoseNth,   // among the caller's own, the one at the argument "index"
    LoseItems, // all items of a menu that belongs to the caller
    Arrive,    // the host has finished a load
    Settle,    // the plugin was notified of a finished load
    Name,      // plugins are about to be unloaded: note their names
    Leave,     // the called plugin is unloaded
    LeaveGone, // all plugins that no longer exist are unloaded
};

// When the effect occurs.
enum class Success : std::uint8_t {
    IfNotZero, // at the end, if the result is not zero or there is none
    IfNotNegative,
    IfRefused, // at the end, if the result is zero or an exception ended the call
    Always,    // at the end, whatever the result
    Before,    // when the call begins
};

enum class Whose : std::uint8_t {
    Callers,
    Anyones,
    CallersFirst, // else anyone's
};

using Describe = std::string (*)(const Call &call);
using Condition = bool (*)(const Call &call);

struct LedgerRule {
    const char *function;
    Effect effect;
    Kind kind = Kind::Dataref;
    Parts key{};
    Parts otherKey{};
    Success success = Success::IfNotZero;
    Whose whose = Whose::Callers;
    Describe what = nullptr;  // of a gain
    Condition only = nullptr; // checked when the call begins

    // Copies with another column filled.
    constexpr LedgerRule OtherKey(const Parts &parts) const {
        LedgerRule rule = *this;
        rule.otherKey = parts;
        return rule;
    }
    constexpr LedgerRule When(Success when) const {
        LedgerRule rule = *this;
        rule.success = when;
        return rule;
    }
    constexpr LedgerRule OnlyIf(Condition condition) const {
        LedgerRule rule = *this;
        rule.only = condition;
        return rule;
    }
    constexpr LedgerRule As(Effect other) const {
        LedgerRule rule = *this;
        rule.effect = other;
        return rule;
    }
};

constexpr LedgerRule Gain(const char *function, Kind kind, const Parts &key, Describe what) {
    return {.function = function, .effect = Effect::Gain, .kind = kind, .key = key, .what = what};
}
constexpr LedgerRule Lose(const char *function, Kind kind, const Parts &key, Whose whose = Whose::Callers) {
    return {.function = function, .effect = Effect::Lose, .kind = kind, .key = key, .whose = whose};
}
// A rule that concerns no single kind of possession.
constexpr LedgerRule On(const char *function, Success success, Effect effect) {
    return {.function = function, .effect = effect, .success = success};
}

// The rules of a function, in the order in which they are applied.
std::vector<const LedgerRule *> FindRules(std::string_view function);

} // namespace host

#endif
