// Reads values from text; see Values.h.
#include "Values.h"

#include "Crossings/Words.h"

#include "AVSK/AVSKUtilities.h"

#include <algorithm>
#include <cctype>
#include <charconv>
#include <cmath>
#include <string>

namespace host {
namespace {

template <typename T>
std::optional<T> Read(std::string_view text) {
    T value{};
    const char *end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data(), end, value);
    return error == std::errc() && stop == end ? std::optional(value) : std::nullopt;
}

} // namespace

std::optional<double> ReadNumber(std::string_view text) {
    const auto number = Read<double>(text);
    return number && std::isfinite(*number) ? number : std::nullopt;
}

std::optional<int> ReadInteger(std::string_view text) { return Read<int>(text); }

std::optional<std::vector<int>> ReadIntegers(std::string_view text, char separator, std::size_t count) {
    std::vector<int> numbers;
    for (bool more = true; more;) {
        const std::size_t end = text.find(separator);
        const auto number = ReadInteger(text.substr(0, end));
        if (!number)
            return std::nullopt;
        numbers.push_back(*number);
        more = end != std::string_view::npos;
        text.remove_prefix(more ? end + 1 : text.size());
    }
    return numbers.size() == count ? std::optional(numbers) : std::nullopt;
}

double Number(std::string_view text) { return ReadNumber(text).value_or(0); }
int Integer(std::string_view text) { return ReadInteger(text).value_or(0); }

std::vector<int> Integers(std::string_view text) {
    std::vector<int> numbers;
    while (!text.empty())
        numbers.push_back(Integer(crossings::TakeWord(text, ",x")));
    return numbers;
}

int KeyCode(std::string_view name) {
    constexpr int kCodes = 256;
    const auto same = [](char a, char b) {
        return std::tolower(static_cast<unsigned char>(a)) == std::tolower(static_cast<unsigned char>(b));
    };
    for (int code = 1; code < kCodes; ++code) {
        const char *known = AVSKGetVirtualKeyDescription(static_cast<char>(code));
        const std::string_view text = known ? known : "";
        if (!text.empty() && std::equal(text.begin(), text.end(), name.begin(), name.end(), same))
            return code;
    }
    return 0;
}

} // namespace host
