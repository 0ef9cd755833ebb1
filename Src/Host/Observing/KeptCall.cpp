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

void KeptCall::Keep(const Crossing &crossing) {
    mHead.what = &crossing.what;
    mHead.callback = crossings::CallbackName(crossing);
    mHead.plugin = crossing.plugin;
    mHead.pluginName = crossings::KeptLabelOf(crossing.plugin);
    mHead.from = crossing.from;
    mHead.to = crossing.to;
    if (crossing.from == Side::Plugin)
        mHead.outerName = crossings::KeptLabelOf(crossing.outer->plugin);
    mHead.isReturned = false;
    mHead.values = 0;
    mHead.texts = 0;
    KeepValues(crossing.arguments);
    mHead.arguments = mHead.values;
    for (const Value &value : crossing.arguments) {
        if (value.kind != Value::Kind::Structure)
            continue;
        mHead.fields = value.structure->fields;
        KeepValues(value.structure->values);
        break; // no function has two
    }
}

void KeptCall::KeepValues(std::span<const Value> values) {
    assert(mHead.values + values.size() <= kMostValues);
    for (const Value &value : values)
        mValues[mHead.values++] = Kept(value);
}

void KeptCall::KeepResult(const Crossing &crossing) {
    mHead.isReturned = crossing.returned;
    mHead.result = Kept(crossing.result);
}

Value KeptCall::Kept(const Value &value) {
    Value kept = value;
    const auto show = [&kept](std::string_view name) {
        if (name.empty())
            return;
        kept.kind = Value::Kind::Name;
        kept.text = name.data();
        kept.length = static_cast<int>(name.size());
    };
    if (value.kind == Value::Kind::Text && value.text) {
        char *const copy = mTexts.data() + mHead.texts;
        if (mHead.texts + crossings::kShownText + 1 > kTexts ||
            !crossings::ReadText(value.text, value.length, copy, crossings::kShownText + 1)) {
            kept.kind = Value::Kind::Unreadable;
            return kept;
        }
        kept.word = mHead.texts + AVSKWord{1}; // 0 stays null
        mHead.texts = static_cast<std::uint16_t>(mHead.texts + std::strlen(copy) + 1);
    } else if (value.kind == Value::Kind::Function && value.pointer) {
        show(crossings::KeptNameAt(value.pointer));
    } else if (value.kind == Value::Kind::Pointer && value.isHandle && value.pointer) {
        show(crossings::NameOfHandle(value.pointer));
    }
    return kept;
}

Value KeptCall::Restored(const Value &value) const {
    Value restored = value;
    if (value.kind == Value::Kind::Text)
        restored.text = value.word == 0 ? nullptr : mTexts.data() + (value.word - 1);
    return restored;
}

void KeptCall::AddTitle(Line &line) const { crossings::AddTitle(line, *mHead.what, mHead.callback); }

void KeptCall::AddCall(Line &line) const {
    const auto side = [](Side one, std::string_view plugin) {
        return one == Side::Host ? std::string_view("host") : one == Side::Library ? "library" : plugin;
    };
    line.Add(side(mHead.from, mHead.outerName));
    line.Add(" > ");
    line.Add(side(mHead.to, mHead.pluginName));
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
