// Checks values against a dataref's type and writes them; see DatarefWriting.h.
#include "DatarefWriting.h"

#include "Values.h"

#include <cmath>
#include <limits>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <type_traits>
#include <vector>

namespace host {
namespace {

// The number of a text, if the type can hold it.
template <typename T>
std::optional<T> ReadAs(std::string_view text) {
    const auto number = ReadNumber(text);
    if (!number || *number < static_cast<double>(std::numeric_limits<T>::lowest()) ||
        *number > static_cast<double>(std::numeric_limits<T>::max()))
        return std::nullopt;
    if (std::is_integral_v<T> && *number != std::trunc(*number))
        return std::nullopt;
    return static_cast<T>(*number);
}

// The values, or in failure why there are none.
template <typename T>
std::vector<T> ReadAll(std::span<const Word> words, Failure &failure) {
    std::vector<T> values;
    for (const Word &word : words) {
        const auto value = word.quoted ? std::nullopt : ReadAs<T>(word.text);
        if (!value) {
            failure = {word.quoted ? "'" + word.text + "' is a text: write a number without quotes"
                                   : "'" + word.text + "' is not " +
                                         (std::is_integral_v<T> ? "a whole number from -2147483648 to 2147483647"
                                                                : "a number that fits, such as 47.5"),
                       word.column};
            return {};
        }
        values.push_back(*value);
    }
    return values;
}

// Whether so many elements fit from the index on.
Failure CheckRange(AVSKDataRef ref, int index, std::size_t count, const Word &first) {
    const auto size = CountElements(ref);
    if (!size || static_cast<std::size_t>(index) + count <= static_cast<std::size_t>(*size))
        return {};
    return {"it has " + std::to_string(*size) + " elements, the last one is [" + std::to_string(*size - 1) + "]",
            first.column};
}

template <typename T, typename Write>
Failure WriteArray(const FoundDataref &target, const Step &step, Write write) {
    Failure failure;
    std::vector<T> values = ReadAll<T>(std::span(step.words).subspan(1), failure);
    const int index = target.index.value_or(0);
    if (failure.why.empty())
        failure = CheckRange(target.ref, index, values.size(), step.words[0]);
    if (failure.why.empty())
        write(target.ref, values.data(), index, static_cast<int>(values.size()));
    return failure;
}

template <typename T, typename Write>
Failure WriteNumber(const FoundDataref &target, const Step &step, Write write) {
    if (target.index)
        return {"it has no elements", step.words[0].column};
    if (step.Count() > 2)
        return {"it takes one number", step.words[2].column};
    Failure failure;
    const std::vector<T> values = ReadAll<T>(std::span(step.words).subspan(1), failure);
    if (failure.why.empty())
        write(target.ref, values[0]);
    return failure;
}

Failure WriteText(const FoundDataref &target, const Step &step) {
    if (step.Count() > 2)
        return {"it takes one text", step.words[2].column};
    std::string text = step[1]; // may be longer than the present text, so its length is not checked
    AVSKSetDatab(target.ref, text.data(), target.index.value_or(0), static_cast<int>(text.size()));
    return {};
}

Failure Write(const FoundDataref &target, const Step &step) {
    const int types = AVSKGetDataRefTypes(target.ref);
    const auto has = [types](int type) { return (types & type) != 0; };
    if (AVSKCanWriteDataRef(target.ref) == 0)
        return {"it cannot be written", step.words[0].column};
    if (has(AVSKDataTypeData) && (step.words[1].quoted || types == AVSKDataTypeData))
        return WriteText(target, step);
    if (has(AVSKDataTypeFloatArray))
        return WriteArray<float>(target, step, AVSKSetDatavf);
    if (has(AVSKDataTypeIntArray))
        return WriteArray<int>(target, step, AVSKSetDatavi);
    if (has(AVSKDataTypeDouble))
        return WriteNumber<double>(target, step, AVSKSetDatad);
    if (has(AVSKDataTypeFloat))
        return WriteNumber<float>(target, step, AVSKSetDataf);
    return WriteNumber<int>(target, step, AVSKSetDatai);
}

} // namespace

Failure WriteDataref(const FoundDataref &target, const Step &step) {
    Failure failure = Write(target, step);
    if (!failure.why.empty())
        failure.why +=
            "; its type is " + DatarefTypes(target.ref) + (AVSKCanWriteDataRef(target.ref) == 0 ? ", read-only" : "");
    return failure;
}

} // namespace host
