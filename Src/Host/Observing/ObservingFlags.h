// The observers' options on a command line. Commands of avsk have them, and so has
// the environment variable that reaches other hosts.
#ifndef AVSK_HOST_OBSERVING_OBSERVING_FLAGS_H
#define AVSK_HOST_OBSERVING_OBSERVING_FLAGS_H

#include "ObservingOptions.h"

#include <CLI/CLI.hpp>

namespace host {

// Accepts finite numbers above 0.
const CLI::Validator &PositiveNumber();

// Judges the plugins by the rules.
void AddCheck(CLI::App &command, ObservingOptions &options);
// Counts calls of OpenGL. Only for programs that serve it.
void AddOpenGLCount(CLI::App &command, ObservingOptions &options);
// The options of the observers, --check included.
void AddObservingOptions(CLI::App &command, ObservingOptions &options);

} // namespace host

#endif
