// Finds what violates the rules about the services of a host, except those about
// texts and measures: handles, menu items, loads, counts, and what a service
// leaves behind.
#ifndef AVSK_HOST_RULES_HOST_SERVICE_CHECKS_H
#define AVSK_HOST_RULES_HOST_SERVICE_CHECKS_H

#include "CallTable.h"
#include "Findings.h"

#include "Crossings/Crossing.h"

#include <sys/types.h>

#include <array>
#include <optional>
#include <string>
#include <unordered_map>
#include <vector>

namespace host {

class HostServiceChecks : public crossings::Observer {
  public:
    // States must be kept meanwhile; see crossings::KeepStates().
    explicit HostServiceChecks(Findings &findings);
    ~HostServiceChecks() override;
    HostServiceChecks(const HostServiceChecks &) = delete;
    HostServiceChecks &operator=(const HostServiceChecks &) = delete;

    crossings::Interest InterestIn(const crossings::Prototype &function) const override;
    void Begins(const crossings::Crossing &crossing) override;
    void Ends(const crossings::Crossing &crossing) override;
    // Adds the loads that were not completed.
    void Finish();

  private:
    // A call under way.
    struct Open {
        bool hasInner = false; // it made a call itself
        bool passes = false;   // an exception of that call may pass through it
        int free = -1;         // the lowest free descriptor at its begin; -1 if it is no service
        int enumerated = 0;    // calls of its enumerator
    };
    // A descriptor that a service left open.
    struct Left {
        int descriptor = -1;
        dev_t device = 0;
        ino_t file = 0;
        bool IsOpen() const;
    };
    static constexpr std::size_t kDescriptors = 4; // a service may open its log once
    struct Service {
        std::array<Left, kDescriptors> left;
        std::size_t count = 0;
    };
    struct Item {
        int id;
        bool isSeparator;
        bool isShown; // false if it was renamed to ""
    };
    struct Load {
        long frame;
        std::string path;
        bool isComplete;
    };

    static const CallRow<HostServiceChecks> kBefore[];
    static const CallRow<HostServiceChecks> kAfter[];

    void BeforeEvent(const crossings::Crossing &call);
    void BeforeLoad(const crossings::Crossing &call);
    void BeforeCompletion(const crossings::Crossing &call);
    void BeforeEnumerator(const crossings::Crossing &call);
    void BeforePick(const crossings::Crossing &call);
    void AfterMenu(const crossings::Crossing &call);
    void AfterItem(const crossings::Crossing &call);
    void AfterName(const crossings::Crossing &call);
    void AfterRemoval(const crossings::Crossing &call);
    void AfterMenuDestruction(const crossings::Crossing &call);
    void AfterProbe(const crossings::Crossing &call);
    void AfterSymbol(const crossings::Crossing &call);
    void AfterLookup(const crossings::Crossing &call);
    void AfterCount(const crossings::Crossing &call);
    void AfterEntryCount(const crossings::Crossing &call);
    void AfterPlanChange(const crossings::Crossing &call);
    void AfterEntryIndex(const crossings::Crossing &call);

    void CheckState(const crossings::Crossing &call);
    void CheckDescriptors(const crossings::Crossing &call, const Open &open);
    Item *FindItem(const crossings::Crossing &call);

    Findings &mFindings;
    CallTable<HostServiceChecks> mBefore;
    CallTable<HostServiceChecks> mAfter;
    const int mDescriptor; // duplicated to learn the lowest free one; -1 if there is none
    std::vector<Open> mOpen;
    std::unordered_map<const crossings::Prototype *, Service> mServices; // that left descriptors
    std::unordered_map<const void *, std::vector<Item>> mMenus;          // that exist
    std::unordered_map<int, const char *> mItems;  // by ID: why it cannot be picked, null if it can
    std::unordered_map<const void *, Load> mLoads; // by argument
    std::optional<int> mEntries;                   // of the flight plan, while they are known
    long mFrames = 0;
};

} // namespace host

#endif
