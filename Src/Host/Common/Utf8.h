// Decodes UTF-8, for measuring and drawing texts.
#ifndef AVSK_HOST_COMMON_UTF8_H
#define AVSK_HOST_COMMON_UTF8_H

#include <cstddef>
#include <string_view>

namespace host {

// Removes the first character from a text, which must not be empty, and returns
// it. Each malformed byte gives one replacement character.
inline char32_t TakeCharacter(std::string_view &text) {
    constexpr char32_t kReplacement = 0xFFFD;
    const auto first = static_cast<unsigned char>(text.front());
    text.remove_prefix(1);
    if (first < 0x80)
        return first;
    const std::size_t more = first >= 0xF0 ? 3 : first >= 0xE0 ? 2 : 1;
    if (first < 0xC2 || first > 0xF4 || text.size() < more)
        return kReplacement;
    char32_t character = first & (0x3FU >> more);
    for (std::size_t i = 0; i < more; ++i) {
        const auto next = static_cast<unsigned char>(text[i]);
        if ((next & 0xC0) != 0x80)
            return kReplacement;
        character = character << 6 | (next & 0x3FU);
    }
    text.remove_prefix(more);
    return character;
}

// How many characters a text has.
inline std::size_t CountCharacters(std::string_view text) {
    std::size_t count = 0;
    for (; !text.empty(); ++count)
        TakeCharacter(text);
    return count;
}

} // namespace host

#endif
