// The rules about datarefs; DatarefChecks.cpp finds what violates them.
#ifndef AVSK_HOST_RULES_DATAREF_RULES_H
#define AVSK_HOST_RULES_DATAREF_RULES_H

#include "Rule.h"

namespace host {

inline constexpr Rule kDatarefRules[] = {
    {"dataref-misspelt", Level::Warning, "nothing is published as {name}; the nearest names are {nearest}",
     "Correct the name; 'avsk datarefs' lists those of the simulator and of the plugins.",
     "AVSKFindDataRef() found no dataref of this name during the whole run, and a name much like it exists. The call "
     "returns null, and every read of a null handle returns 0."},
    {"dataref-unknown", Level::Note, "nothing is published as {name}",
     "Check that the plugin works without it, or look again after the plugin that publishes it has started.",
     "AVSKFindDataRef() found no dataref of this name during the whole run. This is no fault if the dataref belongs to "
     "a plugin that is not always there."},
    {"dataref-null", Level::Error, "the handle is null, nothing was {done}",
     "Test the result of AVSKFindDataRef() before the handle is used.",
     "A read of a null handle returns 0, and a write has no effect. The handle is null because AVSKFindDataRef() found "
     "no dataref of the name, or because it was never called."},
    {"dataref-handle", Level::Error, "the pointer {handle} is no dataref",
     "Pass only handles that AVSKFindDataRef() or AVSKRegisterDataAccessor() returned.",
     "The library does not check handles when it reads and writes. A pointer to anything else makes it read memory "
     "that is no dataref, and call what it finds there."},
    {"dataref-unpublished", Level::Warning, "nothing publishes {name} now, nothing was {done}",
     "Ask AVSKIsDataRefGood() whether a plugin publishes the dataref, or stop using it when its plugin stops.",
     "The handle of a dataref stays valid when its owner unregisters the dataref or is unloaded. Until the name is "
     "published again, reads return 0 and writes have no effect."},
    {"dataref-type", Level::Error, "{name} has no {type}, nothing was {done}; its types are {types}",
     "Use a function for one of its types; AVSKGetDataRefTypes() returns them.",
     "The library converts nothing. If the owner of a dataref gave no accessor for a type, reads of that type return 0 "
     "and writes have no effect."},
    {"dataref-readonly", Level::Error, "{name} is read-only, nothing was written",
     "Ask AVSKCanWriteDataRef() first, or look for another dataref or a command that does it.",
     "The owner registered the dataref as not writable. Every write is ignored without an error."},
    {"dataref-range", Level::Warning, "{name} has {length} elements, but elements {first} to {last} were {done}",
     "Ask for the length with a null array, and keep offset and count within it.",
     "Elements beyond the length of an array do not exist. The owner of the dataref decides what happens: most ignore "
     "them, some write past their own array. A negative offset or count is always a fault."},
    {"dataref-taken", Level::Error, "{owner} already publishes {name}, the registration had no effect",
     "Publish under a name of your own, which begins with your organisation and the plugin's name.",
     "A name belongs to the plugin that published it first. AVSKRegisterDataAccessor() returns the handle of that "
     "dataref, so the caller reads and writes the other plugin's value."},
    {"dataref-foreign", Level::Error, "{name} belongs to {owner}, it stays registered",
     "Unregister only what the plugin itself has registered.",
     "Only its owner can unregister a dataref. The call has no effect, and the error callback is called."},
    {"dataref-lookup", Level::Warning, "{name} is looked up again in every frame",
     "Look it up once, for example in AVPluginEnable, and keep the handle, which stays valid.",
     "A look-up compares names, a read through a handle does not. Handles stay valid until the process ends, also "
     "while nothing publishes the name."},
    {"dataref-name", Level::Note, "{name} does not begin with an organisation",
     "Use a name such as \"organisation/plugin/value\".",
     "All plugins share one space of names. A name without a prefix of its own is soon used twice, and then only the "
     "plugin that starts first can publish it."},
    {"dataref-promise", Level::Warning, "{name} promises {promise}, but no accessor for it was given",
     "Give an accessor for every type that is promised, and promise no others.",
     "Readers ask AVSKGetDataRefTypes() and AVSKCanWriteDataRef() what a dataref can do. If no accessor serves a type "
     "that is promised, their reads return 0 and their writes have no effect."},
    {"dataref-answer", Level::Error, "the accessor returned {returned}, but {written} elements were {meant}",
     "Return the number of elements that were written, at most max, or the length of the array if the array is null.",
     "The reader trusts the number that an array accessor returns. If it is too large, the reader uses memory that was "
     "never written. If it is too small, values are lost."},
};

} // namespace host

#endif
