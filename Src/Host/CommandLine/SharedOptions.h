// Options that several commands have.
#ifndef AVSK_HOST_COMMAND_LINE_SHARED_OPTIONS_H
#define AVSK_HOST_COMMAND_LINE_SHARED_OPTIONS_H

#include "Observing/ObservingFlags.h"
#include "Session/SessionOptions.h"

#include <CLI/CLI.hpp>

#include <filesystem>
#include <string>
#include <vector>

namespace host {

// The options of a command that runs a while and prints a list: 60 frames, no log.
SessionOptions QuietOptions();

CLI::Option *AddRoot(CLI::App &command, std::string &root);
CLI::Option *AddFrames(CLI::App &command, int &frames);
CLI::Option *AddPlugins(CLI::App &command, std::vector<std::string> &plugins, const std::string &help);
// Selects names; see SelectNames().
void AddPattern(CLI::App &command, std::string &pattern);

// Whether a path given where a session is expected is a plugin instead: a
// library, whatever its name, a .avp file, or a plugin's folder.
bool IsPlugin(const std::filesystem::path &path);

void PrintLines(const std::vector<std::string> &lines);

} // namespace host

#endif
