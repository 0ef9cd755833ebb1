// Where exceptions were thrown. This program's __cxa_throw notes the stack of each
// exception that is thrown during an observed call, and hands it on.
#ifndef AVSK_HOST_OBSERVING_THROWN_H
#define AVSK_HOST_OBSERVING_THROWN_H

namespace host {

// Looks up the files of the noted stacks. To be called while they are loaded.
void KeepThrownStacks();

// The address of a file's code that threw an exception, or called what threw it;
// null if its stack was not noted.
const void *ThrowingAddress(const void *exception, const char *file);

// Writes the stack of the exception that is being handled to standard error;
// nothing if it was not noted.
void WriteThrownStack();

} // namespace host

#endif
