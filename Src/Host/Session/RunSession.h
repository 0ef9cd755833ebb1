// Runs a session from a file or from standard input.
#ifndef AVSK_HOST_SESSION_RUN_SESSION_H
#define AVSK_HOST_SESSION_RUN_SESSION_H

#include "SessionOptions.h"
#include "Step.h"

#include <string>
#include <vector>

namespace host {

class SetUp;

// Reads the options' file and applies its set-up. Returns the lines that are
// right, and adds the first faults of the others, and how many more there are. Throws UsageError if there is no
// session, or if it has only set-up lines and steps are needed.
std::vector<Step> ReadSession(SetUp &setUp, std::vector<std::string> &faults, bool needsSteps = true);

// Runs the session of the options' file, or the lines of standard input if
// there is no file. Returns the exit status. Throws UsageError.
int RunSession(SessionOptions options);

} // namespace host

#endif
