// The observers of the crossings in a run: handle book, blame, ledger and profile,
// and the trace if the command line asks for it. Sessions add a call log.
#ifndef AVSK_HOST_OBSERVING_OBSERVERS_H
#define AVSK_HOST_OBSERVING_OBSERVERS_H

#include "Blame.h"
#include "HandleBook.h"
#include "Ledger.h"
#include "Loading.h"
#include "ObservingOptions.h"
#include "Profile.h"
#include "Trace.h"

#include <cstdio>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace host {

class ObservedHost;

// Prints a title and the lines below it, or another text if there are none: to
// standard output, unless another stream was set.
void PrintList(const char *title, const std::vector<std::string> &lines, const char *none = "nothing");

void PrintListsTo(std::FILE *stream);

class Observers {
  public:
    enum class Extent {
        Everything, // sessions ask for owners and times, whatever the options say
        AsAsked,    // owners and times only if an option needs them: the others cost nothing
    };

    // Begins to observe. Throws UsageError.
    Observers(std::unique_ptr<const ObservedHost> host, ObservingOptions options, Extent extent = Extent::Everything);
    Observers(const Observers &) = delete;
    Observers &operator=(const Observers &) = delete;

    // Only if they are observed.
    Ledger &Owners() { return mLedger.value(); }
    Profile &Times() { return mProfile.value(); }
    const Profile &Times() const { return mProfile.value(); }
    Loading &Loaded() { return mLoading; }

    // The calling thread is now the one that calls the library.
    void MoveToThisThread() { mBlame.MoveToThisThread(); }

    // Ends the last frame: unloading, which follows, has no budget.
    void EndFrames();
    // Print what the options ask for. To be called after the last frame, and after
    // the plugins are unloaded.
    void ReportLoaded();
    void ReportUnloaded();
    // A line for each reason why the run failed that the observers know: a budget
    // that was exceeded, a filter or budget for a plugin that was not there, a file
    // that could not be written. To be called once, at the end.
    std::vector<std::string> Failures();

  private:
    const std::unique_ptr<const ObservedHost> mHost;
    const ObservingOptions mOptions;
    HandleBook mHandles;
    Blame mBlame;
    std::optional<Ledger> mLedger;
    std::optional<Profile> mProfile;
    Loading mLoading;
    std::optional<Trace> mTrace;
};

} // namespace host

#endif
