// The observers that judge plugins by the rules while they run. They exist only
// if a command asks for them.
#ifndef AVSK_HOST_RULES_CHECKER_H
#define AVSK_HOST_RULES_CHECKER_H

#include "ArgumentChecks.h"
#include "DatarefChecks.h"
#include "Findings.h"
#include "KnownHandles.h"
#include "PlaceChecks.h"

#include <map>
#include <string>

namespace host {

class Checker {
  public:
    // Begins to observe. To be created before the library starts. The frame number must outlive it.
    Checker(const int &frame, std::map<std::string, std::string> allowed);
    Checker(const Checker &) = delete;
    Checker &operator=(const Checker &) = delete;

    Findings &Found() { return mFindings; }
    // To be called once, after the plugins are unloaded. Adds what is certain only then.
    void Finish();
    // Finishes and prints what was found. Returns the number of errors.
    int PrintReport();

  private:
    Findings mFindings;
    DatarefChecks mDatarefs;
    KnownHandles mHandles;
    ArgumentChecks mArguments;
    PlaceChecks mPlaces;
};

} // namespace host

#endif
