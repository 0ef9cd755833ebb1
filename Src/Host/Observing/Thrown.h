// Where exceptions were thrown. This program's __cxa_throw notes the stack of each
// exception that is thrown during an observed call, and hands it on.
#ifndef AVSK_HOST_OBSERVING_THROWN_H
#define AVSK_HOST_OBSERVING_THROWN_H

namespace host {

// Looks up the files of the noted stacks. To be called while they are loaded.
void KeepThrownStacks();

// Writes the stack of the exception that is being handled to standard error;
// nothing if it was not noted.
void WriteThrownStack();

} // namespace host

#endif
