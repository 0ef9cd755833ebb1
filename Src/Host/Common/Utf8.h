// Decodes UTF-8, for measuring, cutting and drawing texts.
#ifndef AVSK_HOST_COMMON_UTF8_H
#define AVSK_HOST_COMMON_UTF8_H

#include <cstddef>
#include <string>
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

// Where the first malformed byte is; npos if there is none.
inline std::size_t FindMalformed(std::string_view text) {
    constexpr char32_t kReplacement = 0xFFFD; // well-formed, it has three bytes
    std::string_view rest = text;
    while (!rest.empty()) {
        const std::size_t before = rest.size();
        if (TakeCharacter(rest) == kReplacement && before - rest.size() == 1)
            return text.size() - before;
    }
    return std::string_view::npos;
}

// How many characters a text has.
inline std::size_t CountCharacters(std::string_view text) {
    std::size_t count = 0;
    for (; !text.empty(); ++count)
        TakeCharacter(text);
    return count;
}

// A text for one line of a table: control characters become '?', and a text of
// more characters than that is cut and ends in "...".
inline std::string OneLine(std::string_view text, std::size_t most) {
    constexpr std::string_view kCut = "...";
    const bool isCut = CountCharacters(text) > most;
    std::string_view left = text;
    for (std::size_t count = isCut ? most - kCut.size() : most; count > 0 && !left.empty(); --count)
        TakeCharacter(left);
    std::string line(text.substr(0, text.size() - left.size()));
    for (char &c : line) {
        if (static_cast<unsigned char>(c) < ' ')
            c = '?';
    }
    return isCut ? line.append(kCut) : line;
}

// The characters of a name in a table.
constexpr std::size_t kWidestName = 40;

} // namespace host

#endif
