// The end of the process by _exit(), which runs none of the functions that exit() runs.
#ifndef AVSK_HOST_OBSERVING_END_AT_ONCE_H
#define AVSK_HOST_OBSERVING_END_AT_ONCE_H

namespace host {

// Called by _exit() and _Exit() with the status; answers the status with which the
// process ends. It may run in a handler of a signal and in a forked child. Null for none.
void OnEndAtOnce(int (*prepare)(int status));

// Ends the process without anything else. Safe in a signal handler.
[[noreturn]] void EndProcess(int status);

} // namespace host

#endif
