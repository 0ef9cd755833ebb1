// Who owns what: everything plugins have made and not given back, with the
// call that made it. Kept from the calls that cross the library's border.
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

struct Simulator;

class Ledger : public crossings::Observer {
  public:
    explicit Ledger(const Simulator &simulator);
    ~Ledger() override;
    Ledger(const Ledger &) = delete;
    Ledger &operator=(const Ledger &) = delete;

    void Begins(const crossings::Crossing &crossing) override;
    void Ends(const crossings::Crossing &crossing) override;

    // One line each, grouped by plugin: what a plugin owns now, and, of those
    // that were unloaded, what they left for the library to clear away. Of one
    // plugin, by name or signature, or of all.
    std::vector<std::string> Owned(const std::string &plugin = "") const;
    std::vector<std::string> LeftBehind(const std::string &plugin = "") const;
    // Whether a plugin of this name or signature was unloaded.
    bool WasUnloaded(const std::string &plugin) const;

    // In the order in which they were made.
    std::vector<Possession> OwnedBy(AVSKPluginID plugin, Kind kind) const;
    // What the library still has, whoever made it, of a kind that it can be asked about.
    std::vector<Possession> StillThere(Kind kind) const;
    // Anyone's; null if there is none.
    const Possession *Find(Kind kind, const std::string &key) const;

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
    struct Refusal {
        const crossings::Crossing *crossing;
        const Rule *rule;
    };

    const std::vector<const Rule *> &RulesOf(const crossings::Prototype &function);
    void Apply(const Rule &rule, const Call &call);
    void Gain(const Rule &rule, const Call &call);
    void Lose(const Rule &rule, const Call &call);
    void LoseNth(const Rule &rule, const Call &call);
    void LoseItems(const Rule &rule, const Call &call);
    void Arrive(const Call &call);
    void Settle(const Call &call);
    void SettleLoad(Possessions::iterator load);
    void NoteNames();
    void Leave(AVSKPluginID plugin, bool isCleared);
    void LeaveGone();

    const Simulator &mSimulator;
    std::unordered_map<const crossings::Prototype *, std::vector<const Rule *>> mRules; // of functions seen so far
    std::vector<Refusal> mRefusals;                                                     // of calls under way
    Possessions mOwned;
    Possessions mReturned; // though the library still has them
    std::map<AVSKPluginID, Identity> mNames;
    std::vector<Departed> mDeparted;
};

} // namespace host

#endif
