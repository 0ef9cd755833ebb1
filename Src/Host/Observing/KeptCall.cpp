// Copies calls and makes text of them; see KeptCall.h.
#include "KeptCall.h"

#include "Crossings/Format.h"
#include "Crossings/Symbols.h"
#include "Crossings/ValueText.h"

#include <algorithm>
#include <cassert>
#include <cstring>

namespace host {

using crossings::Crossing;
using crossings::Line;
using crossings::Side;
using crossings::Value;

KeptCall &KeptCall::operator=(const KeptCall &other) {
    if (this == &other)
        return *this;
    mHead = other.mHead;
    std::copy_n(other.mValues.begin(), mHead.values, mValues.begin());
    std::memcpy(mTexts.data(), other.mTexts.data(), mHead.texts);
    return *this;
}

inline void KeptCall::KeepValue(Value &kept, const Value &value) {
    using Kind = Value::Kind;
    kept = value;
    const bool hasText =
        value.kind == Kind::Text || value.kind == Kind::Function || (value.kind == Kind::Pointer && value.isHandle);
    if (hasText && value.pointer)
        KeepText(kept);
}

void KeptCall::KeepText(Value &kept) {
    if (kept.kind != Value::Kind::Text) {
        const std::string_view name = kept.kind == Value::Kind::Function ? crossings::KeptNameAt(kept.pointer)
                                                                         : crossings::NameOfHandle(kept.pointer);
        if (name.empty())
            return;
        kept.kind = Value::Kind::Name;
        kept.text = name.data();
        kept.length = static_cast<int>(name.size());
        return;
    }
    char *const copy = mTexts.data() + mHead.texts;
    if (mHead.texts + crossings::kShownText + 1 > kTexts ||
        !crossings::ReadText(kept.text, kept.length, copy, crossings::kShownText + 1)) {
        kept.kind = Value::Kind::Unreadable;
        return;
    }
    kept.word = mHead.texts + AVSKWord{1}; // 0 stays null
    mHead.texts = static_cast<std::uint16_t>(mHead.texts + std::strlen(copy) + 1);
}

inline void KeptCall::KeepValues(std::span<const Value> values) {
    assert(mHead.values + values.size() <= kMostValues);
    for (const Value &value : values)
        KeepValue(mValues[mHead.values++], value);
}

void KeptCall::Keep(const Crossing &crossing, const KeptCall *outer) {
    mHead.what = &crossing.what;
    mHead.plugin = crossing.plugin;
    if (crossing.callback || !outer) {
        mHead.callback = crossings::CallbackName(crossing);
        mHead.pluginName = crossings::KeptLabelOf(crossing.plugin);
    } else {
        mHead.callback = {};
        mHead.pluginName = outer->mHead.pluginName;
    }
    mHead.from = crossing.from;
    mHead.to = crossing.to;
    if (crossing.from == Side::Plugin)
        mHead.outerName = outer ? outer->mHead.pluginName : crossings::KeptLabelOf(crossing.outer->plugin);
    mHead.isReturned = false;
    mHead.values = 0;
    mHead.texts = 0;
    KeepValues(crossing.arguments);
    mHead.arguments = mHead.values;
    if (crossing.arguments.empty() || crossing.arguments.front().kind != Value::Kind::Structure)
        return;
    // A structure is the only argument.
    mHead.fields = crossing.arguments.front().structure->fields;
    KeepValues(crossing.arguments.front().structure->values);
}

void KeptCall::KeepResult(const Crossing &crossing) {
    mHead.isReturned = crossing.returned;
    KeepValue(mHead.result, crossing.result);
}

Value KeptCall::Restored(const Value &value) const {
    Value restored = value;
    if (value.kind == Value::Kind::Text)
        restored.text = value.word == 0 ? nullptr : mTexts.data() + (value.word - 1);
    return restored;
}

void KeptCall::AddTitle(Line &line) const { crossings::AddTitle(line, *mHead.what, mHead.callback); }

void KeptCall::AddCall(Line &line) const {
    line.Add(crossings::SideName(mHead.from, mHead.outerName));
    line.Add(" > ");
    line.Add(crossings::SideName(mHead.to, mHead.pluginName));
    line.Add("  ");
    AddTitle(line);
    line.Add('(');
    std::array<Value, kMostValues> values;
    std::transform(mValues.begin(), mValues.begin() + mHead.values, values.begin(),
                   [this](const Value &value) { return Restored(value); });
    const std::span<const Value> all(values.data(), mHead.values);
    const crossings::StructureView structure{mHead.fields, all.subspan(mHead.arguments)};
    for (Value &value : std::span(values).first(mHead.arguments)) {
        if (value.kind == Value::Kind::Structure)
            value.structure = &structure;
    }
    crossings::AddValues(line, mHead.what->parameters, all.first(mHead.arguments));
    line.Add(')');
}

void KeptCall::AddResult(Line &line) const { crossings::AddResult(line, mHead.isReturned, Restored(mHead.result)); }

} // namespace host
