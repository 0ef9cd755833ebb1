// Constructs the observers; see Checker.h.
#include "Checker.h"

#include "Observing/Blame.h"
#include "Observing/History.h"
#include "Observing/Observers.h"

#include <utility>

namespace host {
namespace {

const Findings *gFindings = nullptr; // for reports of fatal signals

void WriteFindings() {
    if (!gFindings || gFindings->Lines().empty())
        return;
    WriteError("Findings until then:\n");
    WriteError(gFindings->Lines());
}

} // namespace

Checker::Checker(const int &frame, const Ledger &owners, std::map<std::string, std::string> allowed)
    : mFindings(frame, std::move(allowed)), mArguments(mFindings, mHandles), mDatarefs(mFindings),
      mLife(mFindings, owners), mPlaces(mFindings, mHandles), mState(mFindings), mMemory(mFindings),
      mHostTable(mFindings), mHostOrder(mFindings), mHostFrames(mFindings), mHostTexts(mFindings),
      mHostNumbers(mFindings), mHostServices(mFindings), mHostReports(mFindings) {
    gFindings = &mFindings;
    AddToBlame(WriteFindings);
}

Checker::~Checker() {
    gFindings = nullptr;
    if (mIsReported)
        return;
    mLife.TakeForeign();
    if (!mFindings.All().empty())
        PrintList("\nFindings:", mFindings.Report());
}

void Checker::Finish() {
    mDatarefs.Finish();
    mPlaces.Finish();
    mLife.Finish();
    mMemory.Finish();
    mHostOrder.Finish();
    mHostServices.Finish();
}

std::vector<std::string> Checker::Notes() const {
    std::vector<std::string> notes;
    for (const std::unique_ptr<MoreChecks> &checks : mMore) {
        if (std::string note = checks->Note(); !note.empty())
            notes.push_back(std::move(note));
    }
    return notes;
}

int Checker::PrintReport() {
    Finish();
    mIsReported = true;
    std::vector<std::string> lines = mFindings.Report();
    if (lines.empty())
        lines.emplace_back("none");
    for (std::string &note : Notes())
        lines.push_back(std::move(note));
    PrintList("\nFindings:", lines);
    return mFindings.Count(Level::Error);
}

} // namespace host
