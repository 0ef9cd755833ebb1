// Which calls give a plugin something, and which take it away again: one table.
#ifndef AVSK_HOST_OBSERVING_LEDGER_RULES_H
#define AVSK_HOST_OBSERVING_LEDGER_RULES_H

#include "Possession.h"

#include "Crossings/Crossing.h"

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace host {

class Ledger;
struct Simulator;

// A call, with what is needed to judge it.
struct Call {
    const crossings::Crossing &crossing;
    const Simulator &simulator;
    const Ledger &ledger;

    // An argument by its name: "refcon", or "params.refcon" for a field of a
    // structure, or "^refcon" for one of the call that led to this one. "=" is
    // the result. Of kind Nothing if there is none.
    crossings::Value operator[](std::string_view name) const;
    // The values of names that are separated by commas. "?before" is whether
    // it is not 0, "@Plugins" the menu of that name, "@" always the same.
    std::string Key(std::string_view names) const;
};

enum class Effect : std::uint8_t {
    Gain,
    Lose,
    LoseNth,   // the one at the caller's "index" among its own
    LoseItems, // all of a menu, if it is the caller's
    Arrive,    // a load has its object, or none
    Settle,    // its plugin has been told
    Name,      // plugins are about to go: their names are noted
    Leave,     // the plugin that was called is gone
    LeaveGone, // all that are gone
};

enum class Success : std::uint8_t {
    IfNotZero, // or no result at all
    IfNotNegative,
    IfRefused, // the opposite of the first
    Always,    // whatever comes of it
    Before,    // not even that: as soon as the call begins
};

enum class Whose : std::uint8_t {
    Callers,
    Anyones,
    CallersFirst,
};

struct Rule {
    const char *function;
    Effect effect;
    Kind kind = Kind::Dataref;
    const char *keys = ""; // names for Call::Key(); a second set behind '|'
    Success success = Success::IfNotZero;
    Whose whose = Whose::Callers;
    std::string (*what)(const Call &call) = nullptr; // of a gain
    bool (*only)(const Call &call) = nullptr;        // judged before the call
};

// The rules of a function, in the order they are to be applied.
std::vector<const Rule *> FindRules(std::string_view function);

} // namespace host

#endif
