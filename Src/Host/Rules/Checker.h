// The observers that judge plugins and the host by the rules while they run. They
// exist only if a command asks for them.
#ifndef AVSK_HOST_RULES_CHECKER_H
#define AVSK_HOST_RULES_CHECKER_H

#include "ArgumentChecks.h"
#include "DatarefChecks.h"
#include "Findings.h"
#include "HostFrameChecks.h"
#include "HostNumberChecks.h"
#include "HostOrderChecks.h"
#include "HostReportChecks.h"
#include "HostServiceChecks.h"
#include "HostTableChecks.h"
#include "HostTextChecks.h"
#include "KnownHandles.h"
#include "LifeChecks.h"
#include "MemoryChecks.h"
#include "PlaceChecks.h"
#include "StateChecks.h"

#include <map>
#include <memory>
#include <string>
#include <vector>

namespace host {

class Ledger;

// Checks that only some programs have.
class MoreChecks : public crossings::Observer {
  public:
    // A sentence for the end of the report; empty for none.
    virtual std::string Note() const = 0;
};

class Checker {
  public:
    // Begins to observe. To be created before the library starts, one at a time.
    // The frame number and the ledger must outlive it.
    Checker(const int &frame, const Ledger &owners, std::map<std::string, std::string> allowed);
    // Prints what was found if an exception ended the run before the report. Reports
    // of fatal signals contain it too.
    ~Checker();
    Checker(const Checker &) = delete;
    Checker &operator=(const Checker &) = delete;

    // The clock follows a session and not real time, so frames may take any time.
    void AcceptLongSteps() { mHostFrames.AcceptLongSteps(); }

    void Add(std::unique_ptr<MoreChecks> checks) { mMore.push_back(std::move(checks)); }

    Findings &Found() { return mFindings; }
    const Findings &Found() const { return mFindings; }
    // To be called once, after the plugins are unloaded. Adds what is certain only then.
    void Finish();
    // Sentences about what could not be judged.
    std::vector<std::string> Notes() const;
    // Finishes and prints what was found. Returns the number of errors.
    int PrintReport();

  private:
    Findings mFindings;
    KnownHandles mHandles;
    ArgumentChecks mArguments;
    DatarefChecks mDatarefs;
    LifeChecks mLife;
    PlaceChecks mPlaces;
    StateChecks mState;
    MemoryChecks mMemory;
    HostTableChecks mHostTable;
    HostOrderChecks mHostOrder;
    HostFrameChecks mHostFrames;
    HostTextChecks mHostTexts;
    HostNumberChecks mHostNumbers;
    HostServiceChecks mHostServices;
    HostReportChecks mHostReports;
    std::vector<std::unique_ptr<MoreChecks>> mMore;
    bool mIsReported = false;
};

} // namespace host

#endif
