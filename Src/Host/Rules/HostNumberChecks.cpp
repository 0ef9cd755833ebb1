// The checks of numbers; see HostNumberChecks.h.
#include "HostNumberChecks.h"

#include "HostServiceRules.h"

#include "Crossings/ValueText.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <functional>
#include <iterator>
#include <string>
#include <string_view>
#include <utility>

namespace host {
namespace {

using crossings::Crossing;
using crossings::Side;
using crossings::Value;

constexpr NumberRow kNumbers[] = {
    {"worldToLocal", "x", true, 1},         {"worldToLocal", "y", true, 1},
    {"worldToLocal", "z", true, 1},         {"localToWorld", "a", true, 1},
    {"localToWorld", "b", true, 1},         {"localToWorld", "c", true, 1},
    {"readCameraPosition", "f1", false, 1}, {"readCameraPosition", "f2", false, 1},
    {"readCameraPosition", "f3", false, 1}, {"readCameraPosition", "f4", false, 1},
    {"readCameraPosition", "f5", false, 1}, {"readCameraPosition", "f6", false, 1},
    {"readCameraPosition", "f7", false, 1}, {"probeTerrain", "triple1", false, 3},
    {"probeTerrain", "triple2", false, 3},  {"probeTerrain", "triple3", false, 3},
};

template <class T>
std::optional<T> Read(const void *from) {
    T value{};
    if (!from || !crossings::ReadMemory(from, &value, sizeof value))
        return std::nullopt;
    return value;
}

std::optional<double> ReadNumber(const NumberRow &row, const void *output, int index) {
    if (!output)
        return std::nullopt;
    if (row.isDouble)
        return Read<double>(static_cast<const double *>(output) + index);
    return Read<float>(static_cast<const float *>(output) + index);
}

std::string NumberText(double number) {
    std::array<char, 32> text{};
    std::snprintf(text.data(), text.size(), "%g", number);
    return text.data();
}

std::string PointText(const std::array<double, 3> &point) {
    return NumberText(point[0]) + ", " + NumberText(point[1]) + ", " + NumberText(point[2]);
}

bool AreArgumentsFinite(const Crossing &call) {
    for (const Value &value : call.arguments) {
        if (value.kind == Value::Kind::Real && !std::isfinite(value.real))
            return false;
    }
    if (std::string_view(call.what.name) != "probeTerrain")
        return true;
    const auto point = Read<std::array<float, 3>>(call["xyz"].pointer);
    return point && std::all_of(point->begin(), point->end(), [](float number) { return std::isfinite(number); });
}

} // namespace

constexpr CallRow<HostNumberChecks> HostNumberChecks::kBefore[] = {
    {"AVSKEventHook", &HostNumberChecks::ForgetPoint},       {"AVSKDoDrawingHook", &HostNumberChecks::ForgetPoint},
    {"AVSKMouseClickHook", &HostNumberChecks::BeforeMouse},  {"AVSKCursorHook", &HostNumberChecks::BeforeMouse},
    {"AVSKScrollWheelHook", &HostNumberChecks::BeforeMouse}, {"getFontDimensions", &HostNumberChecks::BeforeFont},
};

constexpr CallRow<HostNumberChecks> HostNumberChecks::kAfter[] = {
    {"AVSKEventHook", &HostNumberChecks::ForgetPoint},
    {"AVSKDoDrawingHook", &HostNumberChecks::ForgetPoint},
    {"generateTextureNumbers", &HostNumberChecks::AfterTextures},
    {"getFontDimensions", &HostNumberChecks::AfterFont},
    {"getScreenSize", &HostNumberChecks::AfterScreen},
    {"getMouseLocation", &HostNumberChecks::AfterMouse},
    {"localToWorld", &HostNumberChecks::AfterToWorld},
    {"worldToLocal", &HostNumberChecks::AfterToLocal},
    {"measureString", &HostNumberChecks::AfterMeasure},
};

HostNumberChecks::HostNumberChecks(Findings &findings)
    : mFindings(findings), mBefore(kBefore), mAfter(kAfter), mNumbers(kNumbers) {
    crossings::AddObserver(*this);
}

HostNumberChecks::~HostNumberChecks() { crossings::RemoveObserver(*this); }

crossings::Interest HostNumberChecks::InterestIn(const crossings::Prototype &function) const {
    const bool isWatched = mBefore.Has(function) || mAfter.Has(function) ||
                           std::any_of(std::begin(kNumbers), std::end(kNumbers), [&function](const NumberRow &row) {
                               return row.function == std::string_view(function.name);
                           });
    return isWatched ? crossings::Interest::Work : crossings::Interest::None;
}

void HostNumberChecks::Begins(const Crossing &crossing) { mBefore.Apply(*this, crossing); }

void HostNumberChecks::Ends(const Crossing &crossing) {
    if (!crossing.returned)
        return;
    mAfter.Apply(*this, crossing);
    if (crossing.to == Side::Host)
        CheckNumbers(crossing);
}

// ---- Places and sizes

void HostNumberChecks::AfterScreen(const Crossing &call) {
    constexpr int kMost = 65536;
    const std::optional<int> width = Read<int>(call["width"].pointer);
    const std::optional<int> height = Read<int>(call["height"].pointer);
    const auto isOdd = [](const std::optional<int> &size) { return size && (*size <= 0 || *size > kMost); };
    const auto shown = [](const std::optional<int> &size) { return size ? std::to_string(*size) : "?"; };
    if (isOdd(width) || isOdd(height))
        mFindings.Add(Named(kHostServiceRules, "host-screen-size"), call,
                      {kOneFinding, {"width", shown(width)}, {"height", shown(height)}});
}

void HostNumberChecks::CheckPlace(const Crossing &call, int x, int y) {
    constexpr int kMost = 1'000'000;
    if (x < -kMost || x > kMost || y < -kMost || y > kMost)
        mFindings.Add(Named(kHostServiceRules, "host-mouse-place"), call,
                      {kOneFinding, {"x", std::to_string(x)}, {"y", std::to_string(y)}});
}

void HostNumberChecks::AfterMouse(const Crossing &call) {
    CheckPlace(call, Read<int>(call["x"].pointer).value_or(0), Read<int>(call["y"].pointer).value_or(0));
}

void HostNumberChecks::BeforeMouse(const Crossing &call) { CheckPlace(call, call["x"].integer, call["y"].integer); }

void HostNumberChecks::CheckNumbers(const Crossing &call) {
    const auto &rows = mNumbers.Of(call.what);
    if (rows.empty() || !AreArgumentsFinite(call))
        return;
    if (std::string_view(call.what.name) == "probeTerrain" && call.result.integer == 0)
        return; // a miss writes nothing
    for (const auto &[row, argument] : rows) {
        for (int i = 0; i < row->count; ++i) {
            const std::optional<double> number = ReadNumber(*row, call.arguments[argument].pointer, i);
            if (number && !std::isfinite(*number))
                return mFindings.Add(Named(kHostServiceRules, "host-not-finite"), call,
                                     {{"output", row->parameter}, {"value", NumberText(*number)}});
        }
    }
}

void HostNumberChecks::ForgetPoint(const Crossing &hook) {
    if (!hook.outer)
        mLocal.reset(); // the host may move the origin between its calls
}

// Local coordinates have no turns and wraps, so only local points are compared.
void HostNumberChecks::AfterToWorld(const Crossing &call) {
    const auto a = Read<double>(call["a"].pointer);
    const auto b = Read<double>(call["b"].pointer);
    const auto c = Read<double>(call["c"].pointer);
    mLocal.reset();
    if (a && b && c) {
        mLocal = {call["x"].real, call["y"].real, call["z"].real};
        mWorld = {*a, *b, *c};
    }
}

void HostNumberChecks::AfterToLocal(const Crossing &call) {
    constexpr double kFar = 1e6; // the host may cut what is beyond its world
    const auto x = Read<double>(call["x"].pointer);
    const auto y = Read<double>(call["y"].pointer);
    const auto z = Read<double>(call["z"].pointer);
    if (!mLocal || !x || !y || !z || mWorld != Point{call["a"].real, call["b"].real, call["c"].real})
        return;
    const Point point{*x, *y, *z};
    for (std::size_t i = 0; i < point.size(); ++i) {
        const double before = (*mLocal)[i];
        if (!(std::abs(before) < kFar) || !std::isfinite(point[i]))
            return;
    }
    const auto differs = [](double is, double was) { return std::abs(is - was) > 1 + std::abs(was) / 1000; };
    if (!std::equal(point.begin(), point.end(), mLocal->begin(), std::not_fn(differs)))
        mFindings.Add(Named(kHostServiceRules, "host-conversion"), call,
                      {kOneFinding, {"point", PointText(*mLocal)}, {"other", PointText(point)}});
}

// ---- Fonts and textures

// Outputs that keep their values were perhaps not written: the font may be unknown.
void HostNumberChecks::BeforeFont(const Crossing &call) {
    for (std::size_t i = 0; i < mFont.size(); ++i)
        mFont[i] = Read<int>(call.arguments[i + 1].pointer).value_or(0);
}

void HostNumberChecks::AfterFont(const Crossing &call) {
    static constexpr const char *kOutputs[] = {"charWidth", "charHeight", "digitsOnly"};
    for (std::size_t i = 0; i < mFont.size(); ++i) {
        const int value = Read<int>(call.arguments[i + 1].pointer).value_or(0);
        const bool isFlag = i == 2;
        if (value != mFont[i] && (value < 0 || (isFlag && value > 1)))
            mFindings.Add(Named(kHostServiceRules, "host-font"), call,
                          {{"output", kOutputs[i]},
                           {"font", std::to_string(call["font"].integer)},
                           {"value", std::to_string(value)}});
    }
}

void HostNumberChecks::AfterMeasure(const Crossing &call) {
    std::array<char, 256> bytes{};
    const Value &given = call["text"];
    const int count = call["count"].integer;
    const double width = call.result.real;
    if (given.text && !crossings::ReadText(given.text, -1, bytes.data(), bytes.size()))
        return;
    const std::string_view text = bytes.data();
    if (!std::isfinite(width) || width < 0)
        return mFindings.Add(Named(kHostServiceRules, "host-width"), call,
                             {kOneFinding, {"text", Quoted(text)}, {"width", NumberText(width)}});
    if (count < 0 || text.size() + 1 == bytes.size())
        return;
    std::uint64_t hash = 14695981039346656037U; // FNV-1a
    const auto add = [&hash](unsigned char byte) { hash = (hash ^ byte) * 1099511628211U; };
    for (int shift = 0; shift < 32; shift += 8)
        add(static_cast<unsigned char>(call["font"].integer >> shift));
    std::for_each(text.begin(), text.end(), add);
    Width &known = mWidths[hash % mWidths.size()];
    const Width before = std::exchange(known, {hash, count, width});
    constexpr double kRounding = 1; // a ligature may be narrower than its first character
    if (before.text != hash || before.count < 0)
        return;
    const bool isOther = before.count == count  ? before.width != width
                         : before.count < count ? width < before.width - kRounding
                                                : width > before.width + kRounding;
    if (isOther)
        mFindings.Add(Named(kHostServiceRules, "host-width-contradicts"), call,
                      {kOneFinding,
                       {"text", Quoted(text)},
                       {"count", std::to_string(count)},
                       {"width", NumberText(width)},
                       {"before", std::to_string(before.count)},
                       {"other", NumberText(before.width)}});
}

void HostNumberChecks::AfterTextures(const Crossing &call) {
    std::array<int, 64> numbers{};
    const auto count = static_cast<std::size_t>(std::clamp(call["count"].integer, 0, static_cast<int>(numbers.size())));
    const void *textures = call["textures"].pointer;
    if (!textures || !crossings::ReadMemory(textures, numbers.data(), count * sizeof(int)))
        return;
    auto *end = numbers.begin() + count;
    std::sort(numbers.begin(), end);
    const auto *twice = std::adjacent_find(numbers.begin(), end);
    if (twice != end)
        mFindings.Add(Named(kHostServiceRules, "host-textures"), call,
                      {kOneFinding, {"number", std::to_string(*twice)}});
}

} // namespace host
