// The rules about a plugin's life: its start, its end, its threads and what it
// leaves; LifeChecks.cpp finds what violates them.
#ifndef AVSK_HOST_RULES_LIFE_RULES_H
#define AVSK_HOST_RULES_LIFE_RULES_H

#include "Rule.h"

namespace host {

inline constexpr Rule kLifeRules[] = {
    {"start-signature", Level::Error, "the signature is empty, so the plugin is unloaded",
     "Copy a signature such as \"organisation.project.plugin\" into outSignature.",
     "AVPluginStart() returned 1 and filled in no signature. The library unloads such a plugin at once."},
    {"start-duplicate", Level::Error, "the signature {signature} is that of {owner}, so the plugin is unloaded",
     "Give the plugin a signature of its own, and install it once.",
     "AVPluginStart() returned 1 with a signature that a loaded plugin has. The library unloads the second plugin at "
     "once."},
    {"call-constructor", Level::Warning, "was called by a static constructor, before AVPluginStart",
     "Make the call in AVPluginStart.",
     "Static constructors run while the file is being loaded. Other plugins may not be there yet, the plugin may still "
     "refuse to start, and an exception leaves the dynamic linker locked."},
    {"call-destructor", Level::Warning, "was called by a static destructor, after the end of the plugin",
     "Make the call in AVPluginStop.",
     "Static destructors run while the file is being unloaded. By then the library has removed everything that the "
     "plugin "
     "owned: its handles are invalid, and what a destructor registers is removed at once."},
    {"call-thread", Level::Error, "was called on a thread other than the host's",
     "Queue the work, and make the call in a flight loop or another callback.",
     "The library takes no locks, and the host's services expect its main thread. Only AVSKAllocTLS(), AVSKGetTLS() "
     "and AVSKSetTLS() may be called on any thread. The lines are the plugin's part of that thread's stack."},
    {"left-behind", Level::Note, "leaves to the library what it still owns after AVPluginStop: {things}",
     "Release it in AVPluginStop, if the plugin should be complete; 'avsk ps' lists it.",
     "The library removes what a plugin still owns when its AVPluginStop returns, so this is no fault. Only a plugin "
     "that "
     "releases everything itself can also stop and start by its own code."},
    {"left-pressed", Level::Warning, "button {button} is still pressed after AVPluginStop",
     "Call AVSKCommandButtonRelease() in AVPluginStop.",
     "A joystick button that a plugin pressed stays pressed until it is released. A button has no owner, so the "
     "library "
     "does not release it when the plugin is unloaded."},
    {"left-descriptor", Level::Warning, "the descriptor of {target} is still open after AVPluginStop",
     "Close the file, pipe or socket in AVPluginStop.",
     "The descriptor was opened between the plugin's start and its end. It stays open until the process ends, and each "
     "reload of the plugin opens another."},
    {"left-thread", Level::Error, "the thread {name} still runs in the plugin's file after AVPluginStop",
     "Tell the thread to end, and join it, in AVPluginStop.",
     "After AVPluginStop the file is unmapped. A thread whose code is gone crashes the process as soon as it runs."},
    {"left-mapped", Level::Warning, "the file is still mapped after the plugin was unloaded; {reason}",
     "Remove the cause, so that the file can be replaced and loaded anew.",
     "The dynamic linker keeps a file that something still needs. A reload then runs the old code with the old values "
     "of "
     "its variables, even if the file was replaced."},
    {"exception-left", Level::Error, "an exception of type {type} left the plugin's code",
     "Catch exceptions in the callback.",
     "The library lets the exception pass to the host's call. Its type and its destructor live in the plugin, and a "
     "host "
     "that does not expect it ends. The line is that of the throw."},
};

} // namespace host

#endif
