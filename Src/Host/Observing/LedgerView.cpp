// The lists and queries of the ledger; see Ledger.h.
#include "Ledger.h"

#include "ObservedHost.h"

#include "Common/Columns.h"

#include "AVSK/AVSKPlugins.h"

#include <algorithm>
#include <array>
#include <iterator>

namespace host {
namespace {

using Row = std::vector<std::string>;

Row RowOf(const std::string &plugin, const Possession &possession, const ObservedHost &host) {
    return {plugin, TraitsOf(possession.kind).word, host.Shown(possession.what), possession.madeBy};
}

constexpr std::size_t kWidest = 44;

} // namespace

std::vector<std::string> Ledger::Owned(const std::string &plugin) const {
    std::vector<Possession> owned = mOwned;
    std::erase_if(owned, [](const Possession &known) { return !Exists(known); });
    std::stable_sort(owned.begin(), owned.end(),
                     [](const Possession &a, const Possession &b) { return a.owner < b.owner; });
    std::vector<Row> rows;
    for (const Possession &known : owned) {
        std::array<char, AVSK_TEXT_SIZE> name{};
        std::array<char, AVSK_TEXT_SIZE> signature{};
        AVSKGetPluginInfo(known.owner, name.data(), nullptr, signature.data(), nullptr);
        if (plugin.empty() || plugin == name.data() || plugin == signature.data())
            rows.push_back(RowOf(name.front() ? name.data() : "nobody", known, mHost));
    }
    return AlignColumns(rows, {.widest = kWidest, .numbers = {}});
}

std::vector<std::string> Ledger::LeftBehind(const std::string &plugin) const {
    std::vector<Row> rows;
    for (const Departed &departed : mDeparted) {
        const auto &[name, signature] = departed.identity;
        if (!plugin.empty() && plugin != name && plugin != signature)
            continue;
        for (const Possession &left : departed.left)
            rows.push_back(RowOf(name, left, mHost));
    }
    return AlignColumns(rows, {.widest = kWidest, .numbers = {}});
}

const std::vector<Possession> &Ledger::LeftByLast() const {
    static const Possessions nothing;
    return mDeparted.empty() ? nothing : mDeparted.back().left;
}

bool Ledger::WasUnloaded(const std::string &plugin) const {
    return std::any_of(mDeparted.begin(), mDeparted.end(), [&plugin](const Departed &departed) {
        return plugin == departed.identity.name || plugin == departed.identity.signature;
    });
}

std::vector<Possession> Ledger::OwnedBy(AVSKPluginID plugin, Kind kind) const {
    std::vector<Possession> found;
    std::copy_if(mOwned.begin(), mOwned.end(), std::back_inserter(found),
                 [&](const Possession &known) { return known.owner == plugin && known.kind == kind && Exists(known); });
    return found;
}

std::vector<Possession> Ledger::OwnedBy(AVSKPluginID plugin) const {
    std::vector<Possession> found;
    std::copy_if(mOwned.begin(), mOwned.end(), std::back_inserter(found),
                 [&](const Possession &known) { return known.owner == plugin && Exists(known); });
    return found;
}

std::vector<Possession> Ledger::StillThere(Kind kind) const {
    std::vector<Possession> found;
    const auto add = [&](const Possessions &possessions) {
        for (const Possession &known : possessions) {
            const auto isSame = [&known](const Possession &other) { return other.handle == known.handle; };
            if (known.kind == kind && Exists(known) && std::none_of(found.begin(), found.end(), isSame))
                found.push_back(known);
        }
    };
    add(mOwned);
    add(mReturned);
    for (const Departed &departed : mDeparted)
        add(departed.left);
    return found;
}

const Possession *Ledger::Find(Kind kind, const Key &key) const {
    const auto found = std::find_if(mOwned.begin(), mOwned.end(),
                                    [&](const Possession &known) { return known.kind == kind && HasKey(known, key); });
    return found == mOwned.end() ? nullptr : &*found;
}

} // namespace host
