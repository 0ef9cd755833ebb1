// Reads numbers, points and keys from the words of a session.
#ifndef AVSK_HOST_SESSION_VALUES_H
#define AVSK_HOST_SESSION_VALUES_H

#include <cstddef>
#include <optional>
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

} // namespace host

#endif
