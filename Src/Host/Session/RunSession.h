// Runs a session from a file or from standard input.
#ifndef AVSK_HOST_SESSION_RUN_SESSION_H
#define AVSK_HOST_SESSION_RUN_SESSION_H

#include "SessionOptions.h"

namespace host {

// Runs the session of the options' file, or the lines of standard input if
// there is no file. Returns the exit status. Throws UsageError.
int RunSession(SessionOptions options);

} // namespace host

#endif
