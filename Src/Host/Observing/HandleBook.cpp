// Learns the names of handles; see HandleBook.h.
#include "HandleBook.h"

#include "Crossings/Words.h"

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

// Functions whose results are handles, or other pointers.
crossings::Interest HandleBook::InterestIn(const crossings::Prototype &function) const {
    return function.result == Value::Kind::Pointer ? crossings::Interest::Work : crossings::Interest::None;
}

void HandleBook::Ends(const Crossing &crossing) {
    if (!crossing.returned || crossing.result.kind != Value::Kind::Pointer || !crossing.result.pointer)
        return;
    Line line;
    AddName(line, crossing.what.parameters, crossing.arguments);
    if (std::string_view(crossing.what.name) == "AVSKFindPluginsMenu")
        line.Add("\"Plugins\"");
    if (line.Text().empty())
        return;
    const std::string shown(line.Text());
    const std::string name = crossing.what.name + (" " + shown);
    Entry &entry = mEntries[crossing.result.pointer];
    if (entry.name == name || entry.shown == shown)
        return;
    const int number = ++mCounts[name];
    entry = {name, number > 1 ? shown + "#" + std::to_string(number) : shown};
}

std::string_view HandleBook::NameOf(const void *handle) const {
    const auto entry = mEntries.find(handle);
    return entry == mEntries.end() ? std::string_view() : entry->second.shown;
}

} // namespace host
