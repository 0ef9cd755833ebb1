// The checks of arguments and results; see ArgumentChecks.h.
#include "ArgumentChecks.h"

#include "ArgumentRules.h"

#include "Common/NearestName.h"
#include "Common/Utf8.h"
#include "Crossings/Line.h"
#include "Crossings/ValueText.h"
#include "Crossings/Words.h"

#include "AVSK/AVSKCamera.h"
#include "AVSK/AVSKMenus.h"
#include "AVSK/AVSKPlugins.h"
#include "AVSK/AVSKScenery.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstring>
#include <limits>
#include <string>
#include <string_view>
#include <vector>

namespace host {
namespace {

using crossings::Crossing;
using crossings::Side;
using crossings::Value;

// The beginning of a text, long enough for all limits.
class TextStart {
  public:
    explicit TextStart(const Value &value) : TextStart(value.text, value.length) {}
    explicit TextStart(const char *text, int length = -1) {
        if (text && crossings::ReadText(text, length, mBytes.data(), mBytes.size()))
            mSize = std::strlen(mBytes.data());
    }

    std::string_view Text() const { return {mBytes.data(), mSize}; }
    // The last character may be incomplete if the text goes on, or if the caller cuts it.
    bool MayEndEarly(const Value &value) const { return value.length >= 0 || mSize + 1 == mBytes.size(); }

  private:
    std::array<char, 1024> mBytes{};
    std::size_t mSize = 0;
};

std::string UnusableNumber(double value) {
    return std::isnan(value) ? "not a number" : value > 0 ? "infinite" : "minus infinite";
}

// The value of a row: the argument, or a field of it. Null if the structure has another size.
const Value *ValueOf(const char *parameter, const Value &argument) {
    std::string_view path = parameter;
    crossings::TakeWord(path, ".");
    if (path.empty())
        return &argument;
    if (argument.kind != Value::Kind::Structure)
        return nullptr;
    std::string_view fields = argument.structure->fields;
    for (const Value &field : argument.structure->values) {
        if (crossings::TakeWord(fields) == path)
            return &field;
    }
    return nullptr;
}

// A structure has no null view: its values were read.
bool IsNull(const Value &value) { return value.kind != Value::Kind::Structure && !value.pointer; }

} // namespace

constexpr CallRow<ArgumentChecks> ArgumentChecks::kResults[] = {
    {"AVPluginStart", &ArgumentChecks::AfterStart},
    {"AVSKFlightLoop_f", &ArgumentChecks::AfterFlightLoop},
    {"AVSKDrawCallback_f", &ArgumentChecks::AfterDrawing},
    {"AVSKCameraControl_f", &ArgumentChecks::AfterCamera},
};

ArgumentChecks::ArgumentChecks(Findings &findings, const KnownHandles &handles)
    : mFindings(findings), mHandles(handles), mRows(ArgumentRows()), mResults(kResults) {
    crossings::AddObserver(*this);
}

ArgumentChecks::~ArgumentChecks() { crossings::RemoveObserver(*this); }

void ArgumentChecks::Begins(const Crossing &crossing) {
    if (crossing.from != Side::Plugin || crossing.to != Side::Library)
        return;
    for (const auto &[row, argument] : mRows.Of(crossing.what)) {
        if (const Value *value = ValueOf(row->parameter, crossing.arguments[argument]))
            Check({crossing, *row, *value});
    }
}

void ArgumentChecks::Ends(const Crossing &crossing) {
    if (crossing.to == Side::Plugin && crossing.returned)
        mResults.Apply(*this, crossing);
}

void ArgumentChecks::Add(const Rule &rule, const Case &one, std::string_view name, std::string value) {
    mFindings.Add(rule, one.call, {{"parameter", one.row.parameter}, {name, std::move(value)}});
}

void ArgumentChecks::Check(const Case &one) {
    const Value &value = one.value;
    switch (one.row.must) {
    case Must::BeFunction:
        return IsNull(value) ? Add(Named(kArgumentRules, "callback-null"), one) : void();
    case Must::BeSet:
        return IsNull(value) ? Add(Named(kArgumentRules, "argument-null"), one) : void();
    case Must::BeSetForHost:
        return IsNull(value) ? Add(Named(kArgumentRules, "argument-null-host"), one) : void();
    case Must::BeText:
        return IsNull(value) ? Add(Named(kArgumentRules, "argument-null"), one) : CheckText(one);
    case Must::BeTextOrNull:
        return CheckText(one);
    case Must::BeShort:
        return CheckLength(one, Named(kArgumentRules, "text-long"));
    case Must::BeShown:
        return CheckLength(one, Named(kArgumentRules, "text-cut"));
    case Must::BeShortPaths:
        return CheckPaths(one);
    case Must::HaveSize:
        return CheckSize(one);
    case Must::BeNumber:
        return std::isnan(value.real) ? CheckNumber(one) : void();
    case Must::BeFinite:
    case Must::BeFiniteValue:
        return CheckNumber(one);
    case Must::BePlaces:
        return CheckPlaces(one);
    case Must::BeItem:
        return CheckItem(one);
    case Must::BeBelow:
        return CheckIndex(one);
    case Must::BeOneOf:
        if (!one.row.allows(value.integer))
            mFindings.Add(Named(kArgumentRules, "value-unknown"), one.call,
                          {{"parameter", one.row.parameter},
                           {"value", std::to_string(value.integer)},
                           {"allowed", one.row.text}});
        return;
    case Must::BePlugin:
    case Must::BePluginOrAll:
        if (value.integer != NO_PLUGIN_ID || one.row.must == Must::BePlugin) {
            std::array<char, AVSK_TEXT_SIZE> path{};
            AVSKGetPluginInfo(value.integer, nullptr, path.data(), nullptr, nullptr);
            if (!path.front())
                mFindings.Add(Named(kArgumentRules, "plugin-unknown"), one.call,
                              {{"plugin", std::to_string(value.integer)}});
        }
        return;
    case Must::BeFeature:
        return CheckFeature(one);
    case Must::BeOwnName:
        if (const TextStart name(value); name.Text().starts_with("sim/"))
            mFindings.Add(Named(kArgumentRules, "command-prefix"), one.call, {{"name", Quoted(name.Text())}});
        return;
    case Must::BeginRectangle:
        return CheckRectangle(one);
    case Must::BeHandle:
    case Must::BeHandleOrNull:
    case Must::BeOwnHandle:
    case Must::BeOwnHandleOrNull:
        return CheckHandle(one);
    }
}

// ---- Texts

void ArgumentChecks::CheckText(const Case &one) {
    const TextStart start(one.value);
    const std::string_view text = start.Text();
    const std::size_t at = FindMalformed(text);
    constexpr std::size_t kLongestPart = 3; // of an incomplete character
    if (at == std::string_view::npos || (start.MayEndEarly(one.value) && text.size() - at <= kLongestPart))
        return;
    crossings::Line byte;
    byte.AddHex(static_cast<unsigned char>(text[at]));
    mFindings.Add(
        Named(kArgumentRules, "text-utf8"), one.call,
        {{"parameter", one.row.parameter}, {"byte", std::string(byte.Text())}, {"offset", std::to_string(at)}});
}

void ArgumentChecks::CheckLength(const Case &one, const Rule &rule) {
    if (TextStart(one.value).Text().size() > static_cast<std::size_t>(one.row.limit))
        Add(rule, one, "limit", std::to_string(one.row.limit));
}

void ArgumentChecks::CheckPaths(const Case &one) {
    constexpr int kMost = 64;
    const auto *paths = static_cast<const char *const *>(one.value.pointer);
    const char *path = nullptr;
    for (int i = 0; paths && i < kMost && crossings::ReadMemory(&paths[i], &path, sizeof path) && path; ++i) {
        if (TextStart(path).Text().size() > static_cast<std::size_t>(one.row.limit))
            return Add(Named(kArgumentRules, "text-long"), one, "limit", std::to_string(one.row.limit));
    }
}

void ArgumentChecks::CheckFeature(const Case &one) {
    if (AVSKHasFeature(one.value.text) != 0)
        return;
    std::vector<std::string> features;
    const auto add = [](const char *name, void *list) {
        static_cast<std::vector<std::string> *>(list)->push_back(name);
    };
    AVSKEnumerateFeatures(add, &features);
    const std::string name = crossings::WholeText(one.value);
    mFindings.Add(
        Named(kArgumentRules, "feature-unknown"), one.call,
        {{"name", one.value.text ? Quoted(name) : std::string("null")}, {"nearest", DidYouMean(name, features)}});
}

// ---- Structures and numbers

void ArgumentChecks::CheckSize(const Case &one) {
    int size = 0;
    if (one.value.kind == Value::Kind::Structure || !crossings::ReadMemory(one.value.pointer, &size, sizeof size) ||
        size == one.row.limit)
        return;
    mFindings.Add(
        Named(kArgumentRules, "struct-size"), one.call,
        {{"parameter", one.row.parameter}, {"seen", std::to_string(size)}, {"size", std::to_string(one.row.limit)}});
}

void ArgumentChecks::CheckNumber(const Case &one) {
    if (std::isfinite(one.value.real))
        return;
    const bool isDataref = one.row.must == Must::BeFiniteValue;
    Add(isDataref ? Named(kArgumentRules, "dataref-finite") : Named(kArgumentRules, "number-finite"), one, "value",
        UnusableNumber(one.value.real));
}

// The first place stands for all: plugins fill them in one loop.
void ArgumentChecks::CheckPlaces(const Case &one) {
    AVSKDrawInfo info{};
    if (one.call["count"].integer <= 0)
        return;
    if (!one.value.pointer)
        return Add(Named(kArgumentRules, "argument-null"), one);
    if (!crossings::ReadMemory(one.value.pointer, &info, sizeof info))
        return;
    if (info.structSize != static_cast<int>(sizeof info))
        return mFindings.Add(Named(kArgumentRules, "struct-size"), one.call,
                             {{"parameter", one.row.parameter},
                              {"seen", std::to_string(info.structSize)},
                              {"size", std::to_string(sizeof info)}});
    for (const float number : {info.x, info.y, info.z, info.angle1, info.angle2, info.angle3}) {
        if (!std::isfinite(number))
            return Add(Named(kArgumentRules, "number-finite"), one, "value", UnusableNumber(number));
    }
}

void ArgumentChecks::CheckRectangle(const Case &one) {
    const Value *sides = &one.value; // left, top, right, bottom
    if (sides[2].integer >= sides[0].integer && sides[1].integer >= sides[3].integer)
        return;
    std::string rectangle;
    for (int i = 0; i < 4; ++i)
        rectangle += (i > 0 ? "," : "") + std::to_string(sides[i].integer);
    mFindings.Add(Named(kArgumentRules, "window-inverted"), one.call,
                  {{"parameter", one.row.parameter}, {"rectangle", rectangle}});
}

// ---- Indices and handles

// The library writes the check mark of an item that exists, and nothing else.
void ArgumentChecks::CheckItem(const Case &one) {
    const bool isParent = std::string_view(one.row.parameter) == "parentItem";
    const void *handle = one.call[isParent ? "parent" : "menu"].pointer;
    const KnownHandle *known = mHandles.Find(handle);
    if (!known || known->kind != HandleKind::Menu || known->isGone)
        return;
    constexpr int kNothing = std::numeric_limits<int>::min();
    const auto menu = static_cast<AVSKMenuID>(const_cast<void *>(handle));
    int check = kNothing;
    AVSKCheckMenuItemState(menu, one.value.integer, &check);
    if (check == kNothing)
        Add(Named(kArgumentRules, "index-item"), one, "index", std::to_string(one.value.integer));
}

void ArgumentChecks::CheckIndex(const Case &one) {
    const int index = one.value.integer;
    const int count = one.row.count();
    if (index < 0 || index >= count)
        mFindings.Add(
            Named(kArgumentRules, "index-range"), one.call,
            {{"parameter", one.row.parameter}, {"index", std::to_string(index)}, {"count", std::to_string(count)}});
}

void ArgumentChecks::CheckHandle(const Case &one) {
    const Must must = one.row.must;
    const void *handle = one.value.pointer;
    if (!handle) {
        if (must == Must::BeHandle || must == Must::BeOwnHandle)
            Add(Named(kArgumentRules, "handle-null"), one);
        return;
    }
    const KnownHandle *known = mHandles.Find(handle);
    if (!known)
        return Add(Named(kArgumentRules, "handle-unknown"), one, "handle", Hexadecimal(handle));
    const std::string kind = WordFor(known->kind);
    if (known->kind != one.row.kind)
        return mFindings.Add(Named(kArgumentRules, "handle-kind"), one.call,
                             {{"parameter", one.row.parameter}, {"kind", kind}, {"wanted", WordFor(one.row.kind)}});
    if (mHandles.IsUnusable(*known))
        return Add(Named(kArgumentRules, "handle-gone"), one, "kind", kind);
    const bool isOwners = must == Must::BeOwnHandle || must == Must::BeOwnHandleOrNull;
    if (isOwners && !known->isGone && known->owner != one.call.dispatched)
        Add(Named(kArgumentRules, "handle-foreign"), one, "owner",
            known->owner == NO_PLUGIN_ID         ? "nobody yet"
            : known->owner == AVSK_PLUGIN_AERIVO ? "the host"
                                                 : crossings::LabelOf(known->owner));
}

// ---- Results

void ArgumentChecks::AfterStart(const Crossing &call) {
    for (const char *parameter : {"outName", "outSignature", "outDescription"}) {
        std::array<char, AVSK_TEXT_SIZE> text{};
        if (!crossings::ReadMemory(call[parameter].pointer, text.data(), text.size()))
            continue;
        if (std::find(text.begin(), text.end(), '\0') == text.end())
            mFindings.Add(Named(kArgumentRules, "text-unterminated"), call,
                          {{"parameter", parameter}, {"size", std::to_string(text.size())}});
    }
}

void ArgumentChecks::AfterFlightLoop(const Crossing &call) {
    if (std::isnan(call.result.real))
        mFindings.Add(Named(kArgumentRules, "result-number"), call, {{"value", UnusableNumber(call.result.real)}});
}

void ArgumentChecks::AfterDrawing(const Crossing &call) {
    const int result = call.result.integer;
    if (call["isBefore"].integer != 0 && result != 0 && result != 1)
        mFindings.Add(Named(kArgumentRules, "result-unknown"), call,
                      {{"allowed", "0 or 1"}, {"value", std::to_string(result)}});
}

void ArgumentChecks::AfterCamera(const Crossing &call) {
    const auto *position = static_cast<const AVSKCameraPosition *>(call["position"].pointer);
    const int result = call.result.integer;
    if (!position || result == 0)
        return;
    if (result != 1)
        mFindings.Add(Named(kArgumentRules, "result-unknown"), call,
                      {{"allowed", "0 or 1"}, {"value", std::to_string(result)}});
    const AVSKCameraPosition &p = *position;
    for (const float number : {p.f1, p.f2, p.f3, p.f4, p.f5, p.f6, p.f7}) {
        if (!std::isfinite(number))
            return mFindings.Add(Named(kArgumentRules, "result-number"), call,
                                 {{"value", "a position that is " + UnusableNumber(number)}});
    }
}

} // namespace host
