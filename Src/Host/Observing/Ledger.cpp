// Applies the rules to the calls; see Ledger.h.
#include "Ledger.h"

#include "ObservedHost.h"

#include "Crossings/Callback.h"
#include "Crossings/Format.h"

#include "AVSK/AVSKPlugins.h"

#include <algorithm>
#include <array>
#include <iterator>
#include <set>

namespace host {
namespace {

using crossings::Crossing;
using crossings::Side;
using crossings::Value;

bool IsRefused(const Crossing &crossing) {
    const Value &result = crossing.result;
    if (!crossing.returned)
        return true;
    return result.kind == Value::Kind::Integer   ? result.integer == 0
           : result.kind == Value::Kind::Pointer ? result.pointer == nullptr
                                                 : false;
}

bool Succeeded(Success success, const Crossing &crossing) {
    switch (success) {
    case Success::IfNotZero:
        return !IsRefused(crossing);
    case Success::IfNotNegative:
        return crossing.returned && crossing.result.integer >= 0;
    case Success::IfRefused:
        return IsRefused(crossing);
    case Success::Always:
        return true;
    case Success::Before:
        return false; // the effect occurred when the call began
    }
    return false;
}

// "AVSKRegisterHotKey in AVSKFlightLoop_f Tick, frame 37"
std::string MadeBy(const Crossing &crossing, int frame) {
    const Crossing &call = crossing.to == Side::Host && crossing.outer ? *crossing.outer : crossing;
    std::string text = call.what.name;
    const Crossing *outer = call.outer;
    while (outer && outer->to != Side::Plugin)
        outer = outer->outer;
    if (outer)
        text += " in " + crossings::TitleOf(*outer);
    return frame > 0 ? text + ", frame " + std::to_string(frame) : text;
}

// Fit for one line of a table.
std::string Printable(std::string text) {
    std::replace_if(
        text.begin(), text.end(), [](char c) { return static_cast<unsigned char>(c) < ' '; }, '?');
    return text;
}

// Whether the plugin gave no callback, so that it is not notified.
bool IsSilent(const Possession &load) { return !load.otherKey.numbers.empty() && load.otherKey.numbers[0] == 0; }

} // namespace

Ledger::Ledger(const ObservedHost &host) : mHost(host) { crossings::AddObserver(*this); }
Ledger::~Ledger() { crossings::RemoveObserver(*this); }

crossings::Interest Ledger::InterestIn(const crossings::Prototype &function) const {
    return FindRules(function.name).empty() ? crossings::Interest::None : crossings::Interest::Work;
}

const std::vector<const LedgerRule *> &Ledger::RulesOf(const crossings::Prototype &function) {
    const auto [rules, isNew] = mRules.try_emplace(&function);
    if (isNew)
        rules->second = FindRules(function.name);
    return rules->second;
}

void Ledger::Begins(const Crossing &crossing) {
    const Call call{crossing, mHost, *this};
    for (const LedgerRule *rule : RulesOf(crossing.what)) {
        if (rule->only && !rule->only(call))
            mRefusals.push_back({&crossing, rule});
        else if (rule->success == Success::Before)
            Apply(*rule, call);
    }
}

void Ledger::Ends(const Crossing &crossing) {
    const Call call{crossing, mHost, *this};
    for (const LedgerRule *rule : RulesOf(crossing.what)) {
        const bool isRefused = std::any_of(mRefusals.begin(), mRefusals.end(), [&](const Refusal &refusal) {
            return refusal.crossing == &crossing && refusal.rule == rule;
        });
        if (!isRefused && Succeeded(rule->success, crossing))
            Apply(*rule, call);
    }
    std::erase_if(mRefusals, [&crossing](const Refusal &refusal) { return refusal.crossing == &crossing; });
}

void Ledger::Apply(const LedgerRule &rule, const Call &call) {
    switch (rule.effect) {
    case Effect::Gain:
        return Gain(rule, call);
    case Effect::Lose:
        return Lose(rule, call);
    case Effect::LoseNth:
        return LoseNth(rule, call);
    case Effect::LoseItems:
        return LoseItems(rule, call);
    case Effect::Arrive:
        return Arrive(call);
    case Effect::Settle:
        return Settle(call);
    case Effect::Name:
        return NoteNames();
    case Effect::Leave:
        return Leave(call.crossing.plugin, rule.success == Success::Before);
    case Effect::LeaveGone:
        return LeaveGone();
    }
}

// ---- Gains and losses

void Ledger::Gain(const LedgerRule &rule, const Call &call) {
    Possession made;
    made.kind = rule.kind;
    made.owner = call.crossing.dispatched;
    if (made.owner == AVSK_PLUGIN_AERIVO)
        return;
    made.key = call.KeyOf(rule.key);
    made.otherKey = call.KeyOf(rule.otherKey);
    const Uniqueness uniqueness = TraitsOf(made.kind).uniqueness;
    const auto isSame = [&made](const Possession &known) {
        return known.kind == made.kind && !made.key.IsEmpty() && known.key == made.key;
    };
    if (uniqueness == Uniqueness::OnePerPlugin &&
        std::any_of(mOwned.begin(), mOwned.end(),
                    [&](const Possession &known) { return isSame(known) && known.owner == made.owner; }))
        return;
    // The library reuses addresses, and a second plugin can take what only one can have.
    if (uniqueness == Uniqueness::One)
        std::erase_if(mOwned, isSame);
    if (call.crossing.result.kind == Value::Kind::Pointer)
        made.handle = call.crossing.result.pointer;
    made.what = Printable(rule.what(call));
    made.madeBy = MadeBy(call.crossing, mHost.Frame());
    mOwned.push_back(std::move(made));
}

void Ledger::Lose(const LedgerRule &rule, const Call &call) {
    const Key key = call.KeyOf(rule.key);
    const auto find = [&](bool callersOnly) {
        return std::find_if(mOwned.rbegin(), mOwned.rend(), [&](const Possession &known) {
            return known.kind == rule.kind && HasKey(known, key) &&
                   (!callersOnly || known.owner == call.crossing.dispatched);
        });
    };
    auto found = find(rule.whose != Whose::Anyones);
    if (found == mOwned.rend() && rule.whose == Whose::CallersFirst)
        found = find(/*callersOnly=*/false);
    if (found == mOwned.rend())
        return;
    const auto at = std::next(found).base();
    std::erase_if(mReturned, [](const Possession &returned) { return !Exists(returned); });
    if (TraitsOf(rule.kind).exists && Exists(*at))
        mReturned.push_back(*at);
    mOwned.erase(at);
}

void Ledger::LoseNth(const LedgerRule &rule, const Call &call) {
    const Key key = call.KeyOf(rule.key);
    int index = call["index"].integer;
    const auto found = std::find_if(mOwned.begin(), mOwned.end(), [&](const Possession &known) {
        return known.kind == rule.kind && known.owner == call.crossing.dispatched && HasKey(known, key) && index-- == 0;
    });
    if (found != mOwned.end())
        mOwned.erase(found);
}

void Ledger::LoseItems(const LedgerRule &rule, const Call &call) {
    const Key key = call.KeyOf(rule.key);
    const Possession *menu = Find(Kind::Menu, key);
    if (menu && menu->owner == call.crossing.dispatched)
        std::erase_if(mOwned, [&](const Possession &known) { return known.kind == rule.kind && HasKey(known, key); });
}

// ---- Asynchronous loads, which become objects

void Ledger::Arrive(const Call &call) {
    const Key key = call.KeyOf({Argument("argument")});
    for (Possession &load : mOwned) {
        if (load.kind == Kind::Load && load.key == key) {
            load.handle = call["object"].pointer;
            load.arrived = true;
        }
    }
}

void Ledger::Settle(const Call &call) {
    const Crossing &crossing = call.crossing;
    if (crossing.to == Side::Plugin && crossing.callback) {
        const Key key{{reinterpret_cast<std::uintptr_t>(crossing.callback->function),
                       reinterpret_cast<std::uintptr_t>(call["refcon"].pointer)},
                      ""};
        const void *object = call["object"].pointer;
        const auto load = std::find_if(mOwned.begin(), mOwned.end(), [&](const Possession &known) {
            return known.kind == Kind::Load && known.arrived && known.owner == crossing.plugin &&
                   known.handle == object && known.otherKey == key;
        });
        if (load != mOwned.end())
            SettleLoad(load);
        return;
    }
    const auto isDone = [](const Possession &known) {
        return known.kind == Kind::Load && known.arrived && IsSilent(known) && AVSKIsPluginEnabled(known.owner) != 0;
    };
    for (auto load = mOwned.begin(); (load = std::find_if(load, mOwned.end(), isDone)) != mOwned.end();
         load = mOwned.begin())
        SettleLoad(load);
}

void Ledger::SettleLoad(Possessions::iterator load) {
    if (!load->handle) {
        mOwned.erase(load);
        return;
    }
    load->kind = Kind::Object;
    load->key = {{reinterpret_cast<std::uintptr_t>(load->handle)}, ""};
    load->otherKey = {};
}

// ---- Unloaded plugins

void Ledger::NoteNames() {
    for (int i = 1; i < AVSKCountPlugins(); ++i) {
        const AVSKPluginID plugin = AVSKGetNthPlugin(i);
        std::array<char, AVSK_TEXT_SIZE> name{};
        std::array<char, AVSK_TEXT_SIZE> signature{};
        std::array<char, AVSK_TEXT_SIZE> path{};
        AVSKGetPluginInfo(plugin, name.data(), path.data(), signature.data(), nullptr);
        if (path.front())
            mNames[plugin] = {name.data(), signature.data()};
    }
}

// After a stop call the library has yet to clear away what the plugin left;
// without a stop call it has done so (isCleared).
void Ledger::Leave(AVSKPluginID plugin, bool isCleared) {
    if (!isCleared)
        NoteNames();
    const auto isOwn = [plugin](const Possession &known) { return known.owner == plugin; };
    const auto name = mNames.find(plugin);
    if (name == mNames.end() && std::none_of(mOwned.begin(), mOwned.end(), isOwn))
        return;
    Departed departed{name == mNames.end() ? Identity{} : name->second, {}};
    for (const Possession &known : mOwned) {
        const KindTraits &traits = TraitsOf(known.kind);
        if (isOwn(known) && traits.canBeGivenBack && (isCleared ? !traits.canBeTaken : Exists(known)))
            departed.left.push_back(known);
    }
    // Items of other plugins in its menus are destroyed with the menus.
    for (const Possession &menu : Possessions(mOwned)) {
        if (menu.kind == Kind::Menu && isOwn(menu))
            std::erase_if(mOwned,
                          [&](const Possession &known) { return known.kind == Kind::Item && known.key == menu.key; });
    }
    std::erase_if(mOwned, isOwn);
    mNames.erase(plugin);
    mDeparted.push_back(std::move(departed));
}

void Ledger::LeaveGone() {
    std::set<AVSKPluginID> plugins;
    for (const Possession &known : mOwned)
        plugins.insert(known.owner);
    for (const auto &[plugin, identity] : mNames)
        plugins.insert(plugin);
    for (const AVSKPluginID plugin : plugins) {
        std::array<char, AVSK_TEXT_SIZE> path{};
        AVSKGetPluginInfo(plugin, nullptr, path.data(), nullptr, nullptr);
        if (!path.front())
            Leave(plugin, /*isCleared=*/true);
    }
}

} // namespace host
