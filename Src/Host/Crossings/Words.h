// Texts that are lists of words, such as the parameters of a prototype.
#ifndef AVSK_HOST_WORDS_H
#define AVSK_HOST_WORDS_H

#include <algorithm>
#include <cstddef>
#include <initializer_list>
#include <string_view>

namespace crossings {

// Removes the first word of a list and the separator behind it. Returns the word.
inline std::string_view TakeWord(std::string_view &words, std::string_view separators = ",") {
    const std::size_t end = separators.size() == 1 ? words.find(separators.front()) : words.find_first_of(separators);
    const std::string_view first = words.substr(0, end);
    words.remove_prefix(std::min(first.size() + 1, words.size()));
    return first;
}

inline bool IsOneOf(std::string_view word, std::initializer_list<std::string_view> words) {
    return std::find(words.begin(), words.end(), word) != words.end();
}

} // namespace crossings

#endif
