// Puts the observers together; see Observers.h.
#include "Observers.h"

#include <cstdio>
#include <utility>

namespace host {

void PrintList(const char *title, const std::vector<std::string> &lines, const char *none) {
    std::printf("%s\n", title);
    for (const std::string &line : lines)
        std::printf("  %s\n", line.c_str());
    if (lines.empty())
        std::printf("  %s\n", none);
    std::fflush(stdout);
}

Observers::Observers(const Simulator &simulator, ObservingOptions options)
    : mOptions(std::move(options)), mBlame(mOptions.timeout), mLedger(simulator), mProfile(simulator), mLoading(simulator) {
    if (mOptions.budget > 0)
        mProfile.SetBudget("", mOptions.budget);
    if (!mOptions.trace.file.empty())
        mTrace.emplace(mOptions.trace);
}

void Observers::ReportLoaded() const {
    if (mOptions.owners)
        PrintList("\nOwned by plugins:", mLedger.Owned());
}

void Observers::ReportUnloaded() const {
    if (mOptions.owners)
        PrintList("\nLeft behind when they were unloaded:", mLedger.LeftBehind());
    if (mOptions.profile)
        PrintList("\nTime in plugins:", mProfile.Table(), "none");
}

} // namespace host
