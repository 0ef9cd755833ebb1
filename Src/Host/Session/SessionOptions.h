// The options of a run or a session, from the command line and from the session's set-up.
#ifndef AVSK_HOST_SESSION_SESSION_OPTIONS_H
#define AVSK_HOST_SESSION_SESSION_OPTIONS_H

#include "Observing/ObservingOptions.h"
#include "Services/SimulatorOptions.h"

#include <string>
#include <vector>

namespace host {

struct SessionOptions {
    SimulatorOptions simulator;
    ObservingOptions observing;
    std::string file;                 // the session; empty if it is typed
    bool rootGiven = false;           // a root was named
    std::vector<std::string> plugins; // to load; empty: all plugins of the root
};

} // namespace host

#endif
