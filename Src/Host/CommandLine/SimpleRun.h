// A run of a number of frames, without a session.
#ifndef AVSK_HOST_COMMAND_LINE_SIMPLE_RUN_H
#define AVSK_HOST_COMMAND_LINE_SIMPLE_RUN_H

#include "Session/SessionOptions.h"

namespace host {

// Runs the frames that the options ask for and prints what they observe, with
// a table of the plugins if report is set. Answers the exit status. Throws
// UsageError.
int RunFrames(SessionOptions options, bool report);

} // namespace host

#endif
