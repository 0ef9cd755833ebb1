// Constructs the observers; see Checker.h.
#include "Checker.h"

#include "Observing/Observers.h"

#include <utility>

namespace host {

Checker::Checker(const int &frame, std::map<std::string, std::string> allowed)
    : mFindings(frame, std::move(allowed)), mDatarefs(mFindings) {}

void Checker::Finish() { mDatarefs.Finish(); }

int Checker::PrintReport() {
    Finish();
    PrintList("\nFindings:", mFindings.Report(), "none");
    return mFindings.Count(Level::Error);
}

} // namespace host
