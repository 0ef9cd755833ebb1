// Runs plugins again whenever their files, the session or its data change, and
// prints what differs from the last run.
#ifndef AVSK_HOST_WATCHING_WATCH_H
#define AVSK_HOST_WATCHING_WATCH_H

#include "Session/SessionOptions.h"

#include <functional>
#include <string>

namespace host {

struct WatchRequest {
    SessionOptions options; // with or without a session
    std::string aircraft;   // the folder of the user's aircraft, without a session
    // Runs once, in a process of its own. Returns the exit status.
    std::function<int(const SessionOptions &)> run;
};

// Watches until SIGINT or SIGTERM arrives. Returns the exit status of the last run.
// Throws UsageError.
int Watch(const WatchRequest &request);

} // namespace host

#endif
