// The options of `avsk live`, and the simulator's side of it.
#ifndef AVSK_HOST_LIVE_LIVE_OPTIONS_H
#define AVSK_HOST_LIVE_LIVE_OPTIONS_H

#include "Session/SessionOptions.h"

#include <optional>
#include <string>
#include <vector>

namespace host {

struct LiveOptions {
    std::string aircraft; // folder of the user's aircraft, without a session; empty without one
    bool watch = false;   // the simulator starts again when a plugin was rebuilt

    // Of the server only.
    std::optional<int> port; // 0: any free one; without a value the usual one, or any free one if that is taken
    bool opensBrowser = true;
    std::vector<std::string> arguments; // of the program, for the simulator's process
};

// Serves the page, and starts the simulator in a process of its own. Returns the
// exit status after SIGINT or SIGTERM. Throws UsageError.
int LiveServe(const SessionOptions &options, const LiveOptions &live);

// The simulator's process: runs the simulator in real time until the channel
// closes. Returns the exit status. Throws UsageError. Frames per second are those of
// options.simulator, or of the session; options.round is set with --watch.
int LiveSimulate(SessionOptions options, const LiveOptions &live, int channel);

} // namespace host

#endif
