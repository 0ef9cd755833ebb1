// Calls as text; see Format.h.
#include "Format.h"

#include "Callback.h"
#include "ValueText.h"

#include <string_view>

namespace crossings {
namespace {

std::string_view SideName(Side side, const std::string &plugin) {
    return side == Side::Host ? "host" : side == Side::Library ? "library" : std::string_view(plugin);
}

bool IsEntryPoint(const Callback &callback) { return callback.owner == NO_PLUGIN_ID; }

} // namespace

void AddTitle(Line &line, const Crossing &crossing) {
    line.Add(crossing.what.name);
    if (crossing.callback && !IsEntryPoint(*crossing.callback)) {
        line.Add(' ');
        line.Add(NameOf(*crossing.callback));
    }
}

std::string TitleOf(const Crossing &crossing) {
    Line line;
    AddTitle(line, crossing);
    return std::string(line.Text());
}

void AddSides(Line &line, const Crossing &crossing) {
    line.Add(SideName(crossing.from, LabelOf(crossing.outer ? crossing.outer->plugin : AVSK_PLUGIN_AERIVO)));
    line.Add(" > ");
    line.Add(SideName(crossing.to, LabelOf(crossing.plugin)));
}

void AddCall(Line &line, const Crossing &crossing) {
    AddTitle(line, crossing);
    line.Add('(');
    AddValues(line, crossing.what.parameters, crossing.arguments);
    line.Add(')');
}

void AddResult(Line &line, const Crossing &crossing) {
    if (!crossing.returned)
        return line.Add(" threw");
    if (crossing.result.kind == Value::Kind::Nothing)
        return;
    line.Add(" = ");
    AddValue(line, crossing.result);
}

} // namespace crossings
