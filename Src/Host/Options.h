// What the command line asks for. Read once by Main.cpp, seen by everything else.
#ifndef AVSK_HOST_OPTIONS_H
#define AVSK_HOST_OPTIONS_H

#include "Bench/BenchOptions.h"

#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

namespace host {

// A request that cannot be met as it was made: one line, exit status 2.
struct UsageError : std::runtime_error {
    using std::runtime_error::runtime_error;
};

struct Screenshot {
    std::string file;
    int frame; // 1 is the first
};

struct KeyPress {
    char character; // 0 for a key without one
    char virtualKey;
    int frame;
};

struct Options {
    std::string root = "."; // once checked: absolute, ends in a separator
    int frames = 300;
    double fps = 60;
    std::string aircraftModel;        // file of the user's aircraft; empty without one
    std::vector<std::string> scenery; // folders, each ends in a separator
    std::string logFile;              // empty without one
    bool quiet = false;
    int screenWidth = 1024;
    int screenHeight = 768;
    std::string session;              // a session's file; empty without one
    bool interactive = false;         // the session is typed
    bool rootGiven = false;           // on the command line: it has the last word over a session's
    std::vector<std::string> plugins; // of a session: those to load, all of the root's if empty
    std::vector<Screenshot> screenshots;
    std::vector<KeyPress> keys;
    BenchOptions bench;
    bool report = true; // the run, at its end
};

// Parses and checks the command line. Without a value the program has done
// what was asked (help, version) and ends. Throws UsageError.
std::optional<Options> ParseOptions(int argc, char **argv);

// Checks the folders and completes their paths. Throws UsageError.
void CheckPlaces(Options &options, const std::string &aircraft);

} // namespace host

#endif
