// The rules about whole runs: how a run ends, and what it costs.
#ifndef AVSK_HOST_RULES_RUN_RULES_H
#define AVSK_HOST_RULES_RUN_RULES_H

#include "Rule.h"

namespace host {

inline constexpr Rule kRunRules[] = {
    {"run-crash", Level::Error, "the run ended early: {cause}",
     "The report below says where. The scenario can be repeated alone, also in a debugger with --in-process.",
     "A signal, an exit() or an exception that leaves the plugin ends the simulator too, with the user's flight."},
    {"run-hang", Level::Error, "the run did not end: {cause}",
     "The report below says where. The scenario can be repeated alone, also in a debugger with --in-process.",
     "All plugins and the simulator share one thread. While one call does not return, nothing else happens."},
    {"run-load", Level::Error, "the plugin {fault}", "Correct this first: the other results depend on it.",
     "The plugin was not loaded, refused to start, or was not enabled. None of its callbacks is called."},
    {"run-enable", Level::Warning, "AVPluginEnable returned 0 after {disabled}",
     "Release in AVPluginDisable what AVPluginEnable acquires, so that it can be acquired again.",
     "A user can disable a plugin and enable it again at any time. A plugin whose AVPluginEnable returns 0 then stays "
     "disabled."},
    {"memory-grows", Level::Warning, "each reload costs {what}",
     "Free in AVPluginStop what was allocated since AVPluginStart, end threads, and close files.",
     "Memory that a plugin does not free when it stops is lost until the simulator ends, also if the plugin is loaded "
     "again. The 5th and the last of at least 20 loads are compared."},
};

} // namespace host

#endif
