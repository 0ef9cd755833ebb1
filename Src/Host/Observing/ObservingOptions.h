// The options of the observers.
#ifndef AVSK_HOST_OBSERVING_OBSERVING_OPTIONS_H
#define AVSK_HOST_OBSERVING_OBSERVING_OPTIONS_H

#include <map>
#include <string>
#include <vector>

namespace host {

struct TraceOptions {
    std::string file;                   // empty: no trace
    std::vector<std::string> plugins;   // patterns of names; all if empty
    std::vector<std::string> functions; // patterns of names; all if empty
};

struct ObservingOptions {
    TraceOptions trace;
    bool check = false;                         // judge the plugins by the rules
    std::map<std::string, std::string> allowed; // reasons, by the IDs of excused rules
    std::string record;                         // file for `avsk check`, see Session/Record.h; empty: none
    bool owners = false;
    bool profile = false;
    bool openGL = false; // count what plugins ask of OpenGL
    double budget = 0;   // milliseconds that a plugin may take in a frame; 0: no limit
    double timeout = 0;  // seconds that a call may take; 0: no limit
    std::string report;  // file for the reports of an observed program; empty: standard error
};

} // namespace host

#endif
