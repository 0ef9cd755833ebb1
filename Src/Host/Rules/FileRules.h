// The rules about files; FileChecks of the room Verdict finds what violates them.
#ifndef AVSK_HOST_RULES_FILE_RULES_H
#define AVSK_HOST_RULES_FILE_RULES_H

#include "Rule.h"

namespace host {

inline constexpr Rule kFileRules[] = {
    {"file-unreadable", Level::Error, "the file {fault}", "Build it again, or copy it again.",
     "A plugin is a shared library in the ELF format. The simulator cannot load anything else."},
    {"file-machine", Level::Error, "the file {fault}",
     "Compile and link it as a 32-bit x86 shared library: -m32 -fPIC -shared.",
     "The simulator is a 32-bit x86 program. It can load only shared libraries of the same kind."},
    {"file-entry-missing", Level::Error, "the file {fault}", "Define AVPluginStart and the other entry points.",
     "The library looks up AVPluginStart in each file. It unloads a file that has none."},
    {"file-entry-misspelt", Level::Error, "the file {fault}", "Correct the name.",
     "Entry points are found by their names. An entry point with another name is never called."},
    {"file-entry-mangled", Level::Error, "the file {fault}", "Declare the entry point extern \"C\".",
     "A C++ compiler adds the types of the parameters to the name of a function, unless it is declared extern \"C\". "
     "The library looks for the plain name."},
    {"file-entry-hidden", Level::Error, "the file {fault}", "Give the entry point default visibility.",
     "A function that is static or has hidden visibility cannot be found by its name."},
    {"file-entry-unknown", Level::Warning, "the file exports {names}, which the library never calls",
     "Remove the function, or correct its name: there are AVPluginStart, AVPluginStop, AVPluginEnable, "
     "AVPluginDisable and AVPluginReceiveMessage.",
     "A plugin has five entry points. Other functions whose names begin with AVPlugin are not called."},
    {"file-undefined", Level::Error, "the file {fault}", "Link the library that defines it, or correct the name.",
     "The simulator binds all names of a plugin when it loads it. If one of them is defined by no library and by no "
     "plugin, the file is not loaded."},
    {"file-library", Level::Error, "the file {fault}",
     "Install the 32-bit library, link it statically, or put it beside the plugin and link with -rpath=$ORIGIN.",
     "A library that a plugin needs must be on the system of each user. If it is missing, the file is not loaded."},
    {"file-exports", Level::Note, "the file exports {names} beside its entry points",
     "Compile with -fvisibility=hidden and link with -Bsymbolic; avsk_add_plugin() does both.",
     "All plugins share one space of names. If two plugins export the same name, both use the definition of the "
     "plugin that was loaded first."},
    {"file-shared", Level::Warning, "the file exports {names}, like {others}",
     "Compile with -fvisibility=hidden and link with -Bsymbolic; avsk_add_plugin() does both.",
     "All plugins share one space of names. Both plugins use the function or the variable of the plugin that was "
     "loaded first, with its data."},
    {"file-unique", Level::Warning, "the file exports {names} as unique, so it stays loaded until the process ends",
     "Compile with -fno-gnu-unique; avsk_add_plugin() does.",
     "A process has one definition of a unique symbol, so the dynamic linker never unmaps the file that defines it. "
     "After a reload the plugin's variables still have their old values. Inline functions and templates of C++ with "
     "static variables make such symbols."},
    {"file-stays", Level::Warning, "the file is linked with -z nodelete, so it stays loaded until the process ends",
     "Link without -z nodelete.",
     "The dynamic linker never unmaps such a file. After a reload the plugin's variables still have their old values."},
    {"file-text-relocations", Level::Warning, "the code of the file is changed while it is loaded",
     "Compile all of it with -fPIC, static libraries included.",
     "Code that is not position-independent must be changed for the address at which it is loaded. Its pages cannot be "
     "shared or protected, and some systems refuse to load it."},
    {"file-executable-stack", Level::Warning, "the file makes the stack of the simulator executable",
     "Link with -z noexecstack. Assembler sources need a section .note.GNU-stack.",
     "When the file is loaded, the whole process loses the protection of its stacks. Newer systems refuse to load such "
     "a file."},
    {"file-debug", Level::Note, "the file has no {what}",
     "Compile with -g1, and strip only the copy that is given to users.",
     "Reports of crashes and traces then name addresses instead of functions and lines."},
    {"file-place", Level::Warning, "the file {advice}", "Move or rename the file.",
     "The simulator loads Resources/plugins/NAME.avp, NAME/lin.avp and NAME/32/lin.avp there, and nothing else."},
};

} // namespace host

#endif
