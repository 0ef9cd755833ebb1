// The stack of functions, with names and lines as far as their files tell.
#ifndef AVSK_HOST_OBSERVING_BACKTRACE_H
#define AVSK_HOST_OBSERVING_BACKTRACE_H

#include <ucontext.h>

namespace host {

// Loads and looks up what is needed, while that can be done.
void PrepareBacktrace();

// Writes to standard error from where a signal came in, which the context says
// and which may be changed; null: from the caller on, without this program's
// own functions at the beginning. Safe in a signal handler.
void WriteBacktrace(ucontext_t *context);

// The file whose code is at an address; null if it is nobody's.
const char *FileAt(const void *address);

} // namespace host

#endif
