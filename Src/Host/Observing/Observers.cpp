// Constructs the observers and prints their lists; see Observers.h.
#include "Observers.h"

#include "ObservedHost.h"

#include <cstdio>
#include <utility>

namespace host {

namespace {

std::FILE *gLists = nullptr; // null: standard output

} // namespace

void PrintList(const char *title, const std::vector<std::string> &lines, const char *none) {
    std::FILE *const stream = gLists ? gLists : stdout;
    std::fprintf(stream, "%s\n", title);
    for (const std::string &line : lines)
        std::fprintf(stream, "  %s\n", line.c_str());
    if (lines.empty())
        std::fprintf(stream, "  %s\n", none);
    std::fflush(stream);
}

void PrintListsTo(std::FILE *stream) { gLists = stream; }

Observers::Observers(std::unique_ptr<const ObservedHost> host, ObservingOptions options, Extent extent)
    : mHost(std::move(host)), mOptions(std::move(options)), mBlame(mHost->Frame(), mOptions.timeout), mLoading(*mHost) {
    const bool isAll = extent == Extent::Everything;
    if (isAll || mOptions.owners || mOptions.check)
        mLedger.emplace(*mHost);
    if (isAll || mOptions.profile || mOptions.budget > 0)
        mProfile.emplace(*mHost, mOptions.profile);
    if (mOptions.budget > 0)
        mProfile->SetBudget("", mOptions.budget);
    if (!mOptions.trace.file.empty())
        mTrace.emplace(mOptions.trace);
}

void Observers::EndFrames() {
    if (mProfile)
        mProfile->EndFrames();
}

void Observers::ReportLoaded() {
    EndFrames();
    if (mOptions.owners)
        PrintList("\nOwned by plugins:", mLedger->Owned());
}

void Observers::ReportUnloaded() {
    if (mOptions.owners)
        PrintList("\nLeft behind when they were unloaded:", mLedger->LeftBehind());
    if (mOptions.profile)
        PrintList("\nTime in plugins:", mProfile->Table(), "none");
}

std::vector<std::string> Observers::Failures() {
    std::vector<std::string> failures;
    if (mProfile) {
        for (const std::vector<std::string> &lines : {mProfile->OverBudget(), mProfile->UnusedBudgets()}) {
            for (const std::string &line : lines)
                failures.push_back("budget: " + line);
        }
    }
    if (mTrace) {
        for (std::string &line : mTrace->Finish())
            failures.push_back(std::move(line));
    }
    if (const std::string fault = mHost->LogFault(); !fault.empty())
        failures.push_back(fault);
    return failures;
}

} // namespace host
