// History and completion for typed sessions, where rlwrap is installed.
#ifndef AVSK_HOST_SESSION_PROMPT_H
#define AVSK_HOST_SESSION_PROMPT_H

namespace host {

// Starts this program anew under rlwrap, with the words of sessions to
// complete, and does not come back. Comes back at once if somebody else edits
// the lines, if nobody types them, or if there is no rlwrap.
void EditLines(char **argv);

} // namespace host

#endif
