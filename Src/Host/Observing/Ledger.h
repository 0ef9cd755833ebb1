// Who owns what: everything that plugins have created and not given back, with
// the call that created it. Learned from the calls across the library's border.
#ifndef AVSK_HOST_OBSERVING_LEDGER_H
#define AVSK_HOST_OBSERVING_LEDGER_H

#include "LedgerRules.h"
#include "Possession.h"

#include "Crossings/Crossing.h"

#include <map>
#include <string>
#include <unordered_map>
#include <utility>
#include <vector>

namespace host {

class ObservedHost;

class Ledger : public crossings::Observer {
  public:
    explicit Ledger(const ObservedHost &host);
    ~Ledger() override;
    Ledger(const Ledger &) = delete;
    Ledger &operator=(const Ledger &) = delete;

    crossings::Interest InterestIn(const crossings::Prototype &function) const override;
    void Begins(const crossings::Crossing &crossing) override;
    void Ends(const crossings::Crossing &crossing) override;

    // One line for each possession, grouped by plugin: what loaded plugins own,
    // and what unloaded plugins left to the library. Of one plugin, by name or
    // signature, or of all.
    std::vector<std::string> Owned(const std::string &plugin = "") const;
    std::vector<std::string> LeftBehind(const std::string &plugin = "") const;
    // What the plugin that was unloaded last left to the library.
    const std::vector<Possession> &LeftByLast() const;
    // Whether a plugin of this name or signature was unloaded.
    bool WasUnloaded(const std::string &plugin) const;

    // In the order of their creation.
    std::vector<Possession> OwnedBy(AVSKPluginID plugin, Kind kind) const;
    std::vector<Possession> OwnedBy(AVSKPluginID plugin) const;
    // What still exists in the library, of any plugin. For kinds of which the library can tell.
    std::vector<Possession> StillThere(Kind kind) const;
    // Of any plugin; null if there is none.
    const Possession *Find(Kind kind, const Key &key) const;

  private:
    using Possessions = std::vector<Possession>;
    struct Identity {
        std::string name;
        std::string signature;
    };
    struct Departed {
        Identity identity;
        Possessions left;
    };
    // A rule whose condition was false when the call began.
    struct Refusal {
        const crossings::Crossing *crossing;
        const LedgerRule *rule;
    };

    const std::vector<const LedgerRule *> &RulesOf(const crossings::Prototype &function);
    void Apply(const LedgerRule &rule, const Call &call);
    void Gain(const LedgerRule &rule, const Call &call);
    void Lose(const LedgerRule &rule, const Call &call);
    void LoseNth(const LedgerRule &rule, const Call &call);
    void LoseItems(const LedgerRule &rule, const Call &call);
    void Arrive(const Call &call);
    void Settle(const Call &call);
    void SettleLoad(Possessions::iterator load);
    void NoteNames();
    void Leave(AVSKPluginID plugin, bool isCleared);
    void LeaveGone();

    const ObservedHost &mHost;
    std::unordered_map<const crossings::Prototype *, std::vector<const LedgerRule *>>
        mRules;                     // of functions seen so far
    std::vector<Refusal> mRefusals; // of calls under way
    Possessions mOwned;
    Possessions mReturned; // but still in the library
    std::map<AVSKPluginID, Identity> mNames;
    std::vector<Departed> mDeparted;
};

} // namespace host

#endif
