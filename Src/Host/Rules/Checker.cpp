// Constructs the observers; see Checker.h.
#include "Checker.h"

#include "Observing/Observers.h"

#include <utility>

namespace host {

Checker::Checker(const int &frame, std::map<std::string, std::string> allowed)
    : mFindings(frame, std::move(allowed)), mDatarefs(mFindings), mArguments(mFindings, mHandles),
      mPlaces(mFindings, mHandles) {}

void Checker::Finish() {
    mDatarefs.Finish();
    mPlaces.Finish();
}

int Checker::PrintReport() {
    Finish();
    PrintList("\nFindings:", mFindings.Report(), "none");
    return mFindings.Count(Level::Error);
}

} // namespace host
