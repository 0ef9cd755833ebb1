// Explains the words of sessions on standard output.
#ifndef AVSK_HOST_SESSION_HELP_H
#define AVSK_HOST_SESSION_HELP_H

#include <string>

namespace host {

// Lists all words, a line each.
void PrintSessionWords();
// Explains a word with its parameters, or names those that are like it.
void PrintWord(const std::string &word);

} // namespace host

#endif
