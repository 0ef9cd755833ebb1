// Appends to a text of limited length; see Line.h.
#include "Line.h"

#include <algorithm>
#include <charconv>
#include <cstring>
#include <span>

namespace crossings {
namespace {

constexpr std::string_view kMore = "...";

template <class... N>
std::string_view Digits(std::span<char> buffer, N... number) {
    const auto end = std::to_chars(buffer.data(), buffer.data() + buffer.size(), number...).ptr;
    return {buffer.data(), static_cast<std::size_t>(end - buffer.data())};
}

} // namespace

void Line::Add(std::string_view text) {
    const std::size_t length = std::min(text.size(), kSize - mLength);
    std::memcpy(mText + mLength, text.data(), length);
    mLength += length;
    if (length < text.size())
        std::memcpy(mText + kSize - kMore.size(), kMore.data(), kMore.size());
}

void Line::Add(int number) {
    char buffer[16];
    Add(Digits(buffer, number));
}

void Line::Add(double number) {
    char buffer[32];
    // A number that was a float has few digits.
    const auto rounded = static_cast<float>(number);
    Add(rounded == number ? Digits(buffer, rounded) : Digits(buffer, number));
}

void Line::AddHex(std::uintptr_t number) {
    char buffer[16];
    Add("0x");
    Add(Digits(buffer, number, 16));
}

} // namespace crossings
