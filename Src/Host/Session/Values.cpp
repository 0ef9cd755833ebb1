// Reads values from text; see Values.h.
#include "Values.h"

#include "Crossings/Words.h"

#include "AVSK/AVSKUtilities.h"

#include <algorithm>
#include <cctype>
#include <charconv>
#include <cmath>

namespace host {
namespace {

template <typename T>
std::optional<T> Read(std::string_view text) {
    T value{};
    const char *end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data(), end, value);
    return error == std::errc() && stop == end ? std::optional(value) : std::nullopt;
}

constexpr int kKeyCodes = 256;

} // namespace

std::string_view KeyName(int code) {
    const char *name = AVSKGetVirtualKeyDescription(static_cast<char>(code));
    return name ? name : "";
}

std::string Written(std::string_view text) {
    std::string written = "\"";
    for (const char c : text) {
        if (c == '\n' || c == '\t')
            written += c == '\n' ? "\\n" : "\\t";
        else
            written.append(c == '"' || c == '\\' ? "\\" : "").push_back(c);
    }
    return written + '"';
}

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
    const auto same = [](char a, char b) {
        return std::tolower(static_cast<unsigned char>(a)) == std::tolower(static_cast<unsigned char>(b));
    };
    for (int code = 1; code < kKeyCodes; ++code) {
        const std::string_view known = KeyName(code);
        if (!known.empty() && std::equal(known.begin(), known.end(), name.begin(), name.end(), same))
            return code;
    }
    return 0;
}

std::vector<std::string> KeyNames() {
    std::vector<std::string> names;
    for (int code = 1; code < kKeyCodes; ++code) {
        if (const std::string_view known = KeyName(code); !known.empty())
            names.emplace_back(known);
    }
    return names;
}

} // namespace host
