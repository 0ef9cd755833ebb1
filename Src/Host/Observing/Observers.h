// What a run is watched with, as the command line asks: the trace, the times,
// who owns what, and the blame when a plugin ends the run.
#ifndef AVSK_HOST_OBSERVING_OBSERVERS_H
#define AVSK_HOST_OBSERVING_OBSERVERS_H

#include "Blame.h"
#include "Ledger.h"
#include "Loading.h"
#include "ObservingOptions.h"
#include "Profile.h"
#include "Publications.h"
#include "Trace.h"

#include <optional>
#include <string>
#include <vector>

namespace host {

struct Simulator;

// On standard output: the lines below the title, or "nothing" or the like.
void PrintList(const char *title, const std::vector<std::string> &lines, const char *none = "nothing");

class Observers {
  public:
    // Begins to watch. The simulator must outlive it. Throws UsageError.
    Observers(const Simulator &simulator, ObservingOptions options);
    Observers(const Observers &) = delete;
    Observers &operator=(const Observers &) = delete;

    Ledger &Owners() { return mLedger; }
    Profile &Times() { return mProfile; }
    const Profile &Times() const { return mProfile; }
    const Publications &Published() const { return mPublications; }

    // Print what was asked for: while the plugins are loaded, and when they are gone.
    void ReportLoaded() const;
    void ReportUnloaded() const;

  private:
    const ObservingOptions mOptions;
    Blame mBlame;
    Ledger mLedger;
    Profile mProfile;
    Publications mPublications;
    Loading mLoading;
    std::optional<Trace> mTrace;
};

} // namespace host

#endif
