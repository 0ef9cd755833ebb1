// A run of a number of frames, without a session.
#ifndef AVSK_HOST_COMMAND_LINE_SIMPLE_RUN_H
#define AVSK_HOST_COMMAND_LINE_SIMPLE_RUN_H

#include "Session/SessionOptions.h"

#include <functional>
#include <string>

namespace host {

class Observers;
struct Simulator;

struct SimpleRun {
    SessionOptions options;
    std::string aircraft;                                 // the folder of the user's aircraft; empty without one
    bool needsPlugins = true;                             // fail if no plugin is loaded
    bool namesRoot = false;                               // the log names the root; else it reads <root>/
    std::function<void(Simulator &, Observers &)> report; // called after the last frame; may be empty
};

// Runs the frames that the options ask for, reports, and prints what the options
// observe. Returns the exit status. Throws UsageError.
int RunFrames(SimpleRun run);

} // namespace host

#endif
