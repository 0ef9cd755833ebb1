// Line history and completion for typed sessions, by the program rlwrap.
#ifndef AVSK_HOST_SESSION_RLWRAP_H
#define AVSK_HOST_SESSION_RLWRAP_H

namespace host {

// Replaces this process by itself under rlwrap, which completes the words of
// sessions. Returns if that is already so, if standard input is no terminal, or
// if rlwrap is not installed.
void RestartUnderRlwrap(char **argv);

} // namespace host

#endif
