// The stack of functions, with names and source lines where the files have them.
#ifndef AVSK_HOST_OBSERVING_BACKTRACE_H
#define AVSK_HOST_OBSERVING_BACKTRACE_H

#include <ucontext.h>

namespace host {

// Loads and looks up everything that writing a stack needs.
void PrepareBacktrace();

// Writes the stack to standard error, from the place at which a signal came in;
// the context may be changed. With a null context from the caller on, without
// this program's own functions at the beginning. Safe in a signal handler.
void WriteBacktrace(ucontext_t *context);

// The file that an address belongs to; null if there is none.
const char *FileAt(const void *address);

} // namespace host

#endif
