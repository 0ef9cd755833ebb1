// Options of a simulator: folders, clock, screen, and the keys and pictures that
// were requested in advance.
#ifndef AVSK_HOST_SERVICES_SIMULATOR_OPTIONS_H
#define AVSK_HOST_SERVICES_SIMULATOR_OPTIONS_H

#include <string>
#include <vector>

namespace host {

struct Screenshot {
    std::string file;
    int frame; // 1 is the first
};

struct KeyPress {
    char character; // 0 for a key without one
    char virtualKey;
    int frame;
};

struct SimulatorOptions {
    std::string root = "."; // once checked: absolute, ends in a separator
    int frames = 300;
    double fps = 60;
    std::string aircraftModel;        // file of the user's aircraft; empty without one
    std::vector<std::string> scenery; // folders, each ends in a separator
    std::string logFile;              // empty without one
    bool quiet = false;
    int screenWidth = 1024;
    int screenHeight = 768;
    std::vector<Screenshot> screenshots;
    std::vector<KeyPress> keys;
};

// Checks that the folders exist and completes their paths. The aircraft is a
// folder, empty without one. Throws UsageError.
void CheckFolders(SimulatorOptions &options, const std::string &aircraft);

} // namespace host

#endif
