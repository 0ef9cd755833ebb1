// The rules about what a plugin must leave as it was; StateChecks.cpp finds what violates them.
#ifndef AVSK_HOST_RULES_STATE_RULES_H
#define AVSK_HOST_RULES_STATE_RULES_H

#include "Rule.h"

namespace host {

inline constexpr Rule kStateRules[] = {
    {"state-x87", Level::Error, "the x87 control word is {after} and was {before}",
     "Restore the control word before the callback returns, or leave it alone.",
     "The control word sets the precision and the rounding of the x87 unit, and which faults end the process. The host "
     "and all plugins compute with it, so a change falsifies their results. Static constructors may have changed it, "
     "too; then the finding is about AVPluginStart. A checked run restores it, so the run shows nothing of the "
     "damage."},
    {"state-mxcsr", Level::Error, "the control bits of the MXCSR are {after} and were {before}",
     "Restore the MXCSR before the callback returns, and link the plugin without -ffast-math.",
     "These bits set the rounding of SSE arithmetic, the treatment of denormal numbers, and which faults end the "
     "process. "
     "The host and all plugins compute with them. A library that is linked with -ffast-math changes them in a static "
     "constructor, without a line of code; then the finding is about AVPluginStart. A checked run restores what a "
     "callback changed."},
    {"state-direction", Level::Error, "the direction flag is set", "Execute cld behind the code that executes std.",
     "Every function expects that string instructions run upward. With the flag set, the next copy of memory "
     "overwrites "
     "what lies below its target. A checked run clears the flag."},
    {"state-signals", Level::Warning, "the mask of blocked signals changed: {changes}",
     "Restore the mask with pthread_sigmask() before the callback returns.",
     "The mask belongs to the host's main thread, and threads inherit it. A checked run restores it."},
    {"state-folder", Level::Warning, "the working folder is {after} and was {before}",
     "Use absolute paths; AVSKGetSystemPath() gives the simulator's folder.",
     "The whole process has one working folder. Relative paths of the host and of other plugins now lead elsewhere."},
    {"state-locale", Level::Warning, "the locale is {after} and was {before}",
     "Use functions with a locale of their own, or restore the locale before the entry point returns.",
     "The whole process has one locale. With a decimal comma, all reading and writing of numbers as text changes, in "
     "the "
     "host's files too."},
    {"state-umask", Level::Warning, "the umask is {after} and was {before}",
     "Give files their modes with chmod() and leave the umask alone.",
     "The whole process has one umask. Files that the host and other plugins create get other permissions."},
    {"state-handler", Level::Warning, "the action of {name} is {after} and was {before}",
     "Leave the actions of signals to the host; block signals in threads of the plugin, and use MSG_NOSIGNAL for "
     "SIGPIPE.",
     "The whole process has one action for each signal. The host's own handler is not called any more, and a handler "
     "of "
     "the plugin is gone when the plugin is unloaded, so the next signal ends the process."},
    {"state-environment", Level::Note, "the environment variable {name} is {after} and was {before}",
     "Pass values as arguments instead, if the reader allows it.",
     "The whole process has one environment. Another plugin may read the variable, and a thread that reads the "
     "environment "
     "meanwhile may crash. Some libraries can be configured in no other way."},
};

} // namespace host

#endif
