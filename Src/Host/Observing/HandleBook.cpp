// Learns the names of handles; see HandleBook.h.
#include "HandleBook.h"

#include "Crossings/Interned.h"
#include "Crossings/Words.h"

#include <array>
#include <cstdint>
#include <span>

namespace host {
namespace {

using crossings::Crossing;
using crossings::Line;
using crossings::Value;

// A name from arguments or fields; empty if there is none.
void AddName(Line &line, std::string_view names, std::span<const Value> values) {
    for (const Value &value : values) {
        const std::string_view name = crossings::TakeWord(names);
        if (value.kind == Value::Kind::Text && value.text)
            return crossings::AddValue(line, value);
        if (value.kind == Value::Kind::Structure)
            return AddName(line, value.structure->fields, value.structure->values);
        if (name == "callbackFunc")
            return crossings::AddValue(line, value);
        if (name == "left" || name == "top" || name == "right" || name == "bottom") {
            line.Add(name == "left" ? '(' : ',');
            line.Add(value.integer);
        }
        if (name == "bottom")
            return line.Add(')');
    }
}

} // namespace

HandleBook::HandleBook() {
    crossings::AddObserver(*this);
    crossings::SetHandleNames(this);
}

HandleBook::~HandleBook() {
    crossings::SetHandleNames(nullptr);
    crossings::RemoveObserver(*this);
}

// Functions whose results are handles, or other pointers. Only a new name takes long.
crossings::Interest HandleBook::InterestIn(const crossings::Prototype &function) const {
    return function.result == Value::Kind::Pointer ? crossings::Interest::Calls : crossings::Interest::None;
}

void HandleBook::Ends(const Crossing &crossing) {
    if (!crossing.returned || crossing.result.kind != Value::Kind::Pointer || !crossing.result.pointer)
        return;
    // Plugins look the same datarefs up again and again, mostly with the same constant.
    std::array<char, crossings::kShownText + 1> text;
    text.front() = '\0';
    const Value *const first = crossing.arguments.empty() ? nullptr : &crossing.arguments.front();
    const bool isNamed = first && first->kind == Value::Kind::Text && first->text;
    if (isNamed) {
        const auto &recent = mRecent[IndexOf(crossing.result.pointer)];
        if (recent.handle == crossing.result.pointer && recent.source == first->text &&
            recent.entry->function == &crossing.what)
            return;
    }
    if (isNamed && crossings::ReadText(first->text, first->length, text.data(), text.size()) &&
        IsKnown(crossing, text.data())) {
        mRecent[IndexOf(crossing.result.pointer)].source = first->text;
        return;
    }
    Line line;
    AddName(line, crossing.what.parameters, crossing.arguments);
    if (std::string_view(crossing.what.name) == "AVSKFindPluginsMenu")
        line.Add("\"Plugins\"");
    if (line.Text().empty())
        return;
    // A plugin that creates without end must not fill the memory. Further handles are shown by address.
    constexpr std::size_t kMost = 20000;
    if (mEntries.size() >= kMost && !mEntries.contains(crossing.result.pointer))
        return;
    Entry &entry = mEntries[crossing.result.pointer];
    if (entry.name == line.Text() && (entry.function == &crossing.what || entry.shown == entry.name))
        return;
    entry = {&crossing.what, std::string(line.Text()), text.data(), {}};
    const int number = ++mCounts[crossing.what.name + (" " + entry.name)];
    entry.shown = crossings::Interned(number > 1 ? entry.name + "#" + std::to_string(number) : entry.name).kept;
}

// Whether the handle has the name that this call would give to it.
bool HandleBook::IsKnown(const Crossing &crossing, std::string_view text) const {
    const Entry *known = Find(crossing.result.pointer);
    return known && !text.empty() && known->text == text &&
           (known->function == &crossing.what || known->shown == known->name);
}

std::size_t HandleBook::IndexOf(const void *handle) { return reinterpret_cast<std::uintptr_t>(handle) / 16 % kRecent; }

const HandleBook::Entry *HandleBook::Find(const void *handle) const {
    Recent &recent = mRecent[IndexOf(handle)];
    if (recent.handle == handle)
        return recent.entry;
    const auto known = mEntries.find(handle);
    if (known == mEntries.end())
        return nullptr;
    recent = {handle, &known->second, nullptr};
    return recent.entry;
}

std::string_view HandleBook::NameOf(const void *handle) const {
    const Entry *entry = Find(handle);
    return entry ? entry->shown : std::string_view();
}

} // namespace host
