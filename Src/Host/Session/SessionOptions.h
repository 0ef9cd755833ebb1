// What a run or a session is asked for, on the command line or by the session's own set-up.
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
    std::string file;                 // the session; empty when it is typed
    bool rootGiven = false;           // on the command line: it overrides the session's own
    std::vector<std::string> plugins; // those to load; all of the root's if empty
};

} // namespace host

#endif
