// The options of a run or a session, from the command line and from the session's set-up.
#ifndef AVSK_HOST_SESSION_SESSION_OPTIONS_H
#define AVSK_HOST_SESSION_SESSION_OPTIONS_H

#include "Observing/ObservingOptions.h"
#include "Services/SimulatorOptions.h"

#include <string>
#include <vector>

namespace host {

struct Round;

struct SessionOptions {
    SimulatorOptions simulator;
    ObservingOptions observing;
    std::string file;                 // the session; empty if it is typed
    bool rootGiven = false;           // a root was named
    std::vector<std::string> plugins; // to load; empty: all plugins of the root
    Round *round = nullptr;           // of a watch; null without one
    bool acceptPictures = false;      // 'expect picture' writes the picture instead of comparing it
    std::string keptRoot;             // folder for the root of chosen plugins; empty: a temporary one
};

} // namespace host

#endif
