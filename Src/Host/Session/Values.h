// Reads numbers, points and keys from the words of a session.
#ifndef AVSK_HOST_SESSION_VALUES_H
#define AVSK_HOST_SESSION_VALUES_H

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace host {

// A finite number in decimal notation that fills the whole text.
std::optional<double> ReadNumber(std::string_view text);
std::optional<int> ReadInteger(std::string_view text);
// Exactly so many integers between separators.
std::optional<std::vector<int>> ReadIntegers(std::string_view text, char separator, std::size_t count);

// The same for words that the parser has accepted.
double Number(std::string_view text);
int Integer(std::string_view text);
std::vector<int> Integers(std::string_view text); // X,Y or L,T,R,B or WxH

// A virtual key code by the library's name of the key, in any case; 0 if there is none.
int KeyCode(std::string_view name);
std::vector<std::string> KeyNames();
// The name of a virtual key code; empty if there is no such key.
std::string_view KeyName(int code);

// A text as a word of a session: in quotes, with escapes.
std::string Written(std::string_view text);

} // namespace host

#endif
