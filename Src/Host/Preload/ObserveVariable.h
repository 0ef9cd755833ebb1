// The environment variable that carries the options into the observed program. Its
// value is written like the options of `avsk exec`: --check --trace "/tmp/my trace.txt"
#ifndef AVSK_HOST_PRELOAD_OBSERVE_VARIABLE_H
#define AVSK_HOST_PRELOAD_OBSERVE_VARIABLE_H

#include "Observing/ObservingOptions.h"

#include <CLI/CLI.hpp>

#include <string>

namespace host {

inline constexpr const char *kObserveVariable = "AVSK_OBSERVE";

// The options of an observed program: those of the observers and --report.
void AddExecOptions(CLI::App &command, ObservingOptions &options);

// Both throw UsageError.
ObservingOptions ReadObserveVariable(const std::string &value);
std::string WriteObserveVariable(const ObservingOptions &options);

} // namespace host

#endif
