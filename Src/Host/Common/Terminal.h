// Colours of text on a terminal.
#ifndef AVSK_HOST_COMMON_TERMINAL_H
#define AVSK_HOST_COMMON_TERMINAL_H

#include <string>
#include <string_view>

namespace host {

enum class Emphasis {
    Failure, // red
    Heading, // bold
};

// Whether a standard stream is a terminal that shows colours: not if NO_COLOR is
// set or TERM is "dumb". Decided when the program starts; safe in a signal handler.
bool HasColours(int descriptor);

// The escape sequences around an emphasised text; empty without colours.
std::string_view EmphasisBegin(Emphasis emphasis, int descriptor);
std::string_view EmphasisEnd(int descriptor);

std::string Emphasised(Emphasis emphasis, std::string_view text, int descriptor);

} // namespace host

#endif
