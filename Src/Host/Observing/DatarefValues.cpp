// Reads datarefs through the library; see DatarefValues.h.
#include "DatarefValues.h"

#include "Common/Text.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cstdio>
#include <utility>

namespace host {
namespace {

constexpr int kMostElements = 1 << 20; // a plugin may return any count

template <typename T>
std::vector<std::string> TextsOf(const std::vector<T> &numbers) {
    std::vector<std::string> texts;
    for (const T number : numbers) {
        std::array<char, 32> text{};
        std::snprintf(text.data(), text.size(), "%.9g", static_cast<double>(number));
        texts.emplace_back(text.data());
    }
    return texts;
}

template <typename T, typename Read>
std::vector<std::string> ReadArray(AVSKDataRef ref, Read read) {
    const int size = std::clamp(read(ref, nullptr, 0, 0), 0, kMostElements);
    std::vector<T> numbers(static_cast<std::size_t>(size));
    if (size > 0)
        numbers.resize(static_cast<std::size_t>(std::clamp(read(ref, numbers.data(), 0, size), 0, size)));
    return TextsOf(numbers);
}

std::string ReadBytes(AVSKDataRef ref) {
    const int size = std::clamp(AVSKGetDatab(ref, nullptr, 0, 0), 0, kMostElements);
    std::string bytes(static_cast<std::size_t>(size), '\0');
    if (size > 0)
        AVSKGetDatab(ref, bytes.data(), 0, size);
    return bytes.substr(0, bytes.find('\0'));
}

} // namespace

AVSKDataRef FindPublished(const std::string &name) {
    AVSKDataRef ref = AVSKFindDataRef(name.c_str());
    return ref && AVSKIsDataRefGood(ref) != 0 ? ref : nullptr;
}

std::string DatarefTypes(AVSKDataRef ref) {
    static constexpr std::pair<int, const char *> kTypes[] = {{AVSKDataTypeInt, "int"},
                                                              {AVSKDataTypeFloat, "float"},
                                                              {AVSKDataTypeDouble, "double"},
                                                              {AVSKDataTypeFloatArray, "float array"},
                                                              {AVSKDataTypeIntArray, "int array"},
                                                              {AVSKDataTypeData, "data"}};
    const int types = AVSKGetDataRefTypes(ref);
    std::vector<std::string> names;
    for (const auto &[type, name] : kTypes) {
        if ((types & type) != 0)
            names.emplace_back(name);
    }
    return names.empty() ? "no type" : Join(names);
}

std::optional<int> CountElements(AVSKDataRef ref) {
    const int types = AVSKGetDataRefTypes(ref);
    const int count = (types & AVSKDataTypeFloatArray) != 0 ? AVSKGetDatavf(ref, nullptr, 0, 0)
                      : (types & AVSKDataTypeIntArray) != 0 ? AVSKGetDatavi(ref, nullptr, 0, 0)
                      : (types & AVSKDataTypeData) != 0     ? AVSKGetDatab(ref, nullptr, 0, 0)
                                                            : 0;
    return count > 0 ? std::optional(count) : std::nullopt;
}

FoundDataref FindDataref(const std::string &name) {
    const std::size_t open = name.rfind('[');
    AVSKDataRef whole = FindPublished(name);
    if (whole || open == std::string::npos || !name.ends_with(']'))
        return {whole, std::nullopt};
    const char *end = name.data() + name.size() - 1;
    int index = 0;
    const auto [stop, error] = std::from_chars(name.data() + open + 1, end, index);
    if (error != std::errc() || stop != end || index < 0)
        return {};
    return {FindPublished(name.substr(0, open)), index};
}

std::vector<std::string> ReadDataref(AVSKDataRef ref) {
    const int types = AVSKGetDataRefTypes(ref);
    if ((types & AVSKDataTypeDouble) != 0)
        return TextsOf(std::vector<double>{AVSKGetDatad(ref)});
    if ((types & AVSKDataTypeFloat) != 0)
        return TextsOf(std::vector<float>{AVSKGetDataf(ref)});
    if ((types & AVSKDataTypeInt) != 0)
        return {std::to_string(AVSKGetDatai(ref))};
    if ((types & AVSKDataTypeFloatArray) != 0)
        return ReadArray<float>(ref, AVSKGetDatavf);
    if ((types & AVSKDataTypeIntArray) != 0)
        return ReadArray<int>(ref, AVSKGetDatavi);
    return {ReadBytes(ref)};
}

} // namespace host
