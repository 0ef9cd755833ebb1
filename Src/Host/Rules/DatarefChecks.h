// Finds what violates the rules about datarefs.
#ifndef AVSK_HOST_RULES_DATAREF_CHECKS_H
#define AVSK_HOST_RULES_DATAREF_CHECKS_H

#include "CallTable.h"
#include "Findings.h"

#include "Crossings/Crossing.h"

#include "AVSK/AVSKTypes.h"

#include <map>
#include <set>
#include <string>
#include <tuple>
#include <unordered_map>
#include <vector>

namespace host {

class DatarefChecks : public crossings::Observer {
  public:
    explicit DatarefChecks(Findings &findings);
    ~DatarefChecks() override;
    DatarefChecks(const DatarefChecks &) = delete;
    DatarefChecks &operator=(const DatarefChecks &) = delete;

    void Begins(const crossings::Crossing &crossing) override;
    void Ends(const crossings::Crossing &crossing) override;
    // Adds the names that nothing has published until now.
    void Finish();

  private:
    struct Known {
        std::string name;
        std::string owner; // the label of its plugin; empty for shared data
        int readable = 0;  // AVSKDataTypeBits of the accessors
        int writable = 0;  // likewise
        int length = -1;   // of its array, as its owner said; -1: unknown
    };
    // A look-up that found nothing.
    struct Miss {
        std::string name;
        Finding finding;
    };
    // What an array accessor was given.
    struct Read {
        const crossings::Crossing *crossing;
        std::vector<unsigned char> before;
    };
    using Caller = std::tuple<AVSKPluginID, const crossings::Callback *, std::string>;

    static const CallRow<DatarefChecks> kBefore[];
    static const CallRow<DatarefChecks> kAfter[];

    void BeforeUse(const crossings::Crossing &crossing);
    void BeforeRegistration(const crossings::Crossing &crossing);
    void BeforeUnregistration(const crossings::Crossing &crossing);
    void AfterRegistration(const crossings::Crossing &crossing);
    void AfterSharing(const crossings::Crossing &crossing);
    void AfterStart(const crossings::Crossing &crossing);
    void AfterLookUp(const crossings::Crossing &crossing);
    void BeforeAccessor(const crossings::Crossing &crossing);
    void AfterAccessor(const crossings::Crossing &crossing);
    void CheckRange(const Known &known, const crossings::Crossing &crossing, const char *done);

    Findings &mFindings;
    CallTable<DatarefChecks> mBefore;
    CallTable<DatarefChecks> mAfter;
    std::unordered_map<const void *, Known> mKnown; // by handle
    std::set<std::string> mPublished;               // names that were published at any time
    std::map<Caller, Miss> mMisses;                 // by who looked for what
    std::map<Caller, std::pair<int, int>> mLookUps; // the last frame, and the number of frames
    std::set<const crossings::Crossing *> mRefused; // registrations under way that have no effect
    std::vector<Read> mReads;                       // under way
};

} // namespace host

#endif
