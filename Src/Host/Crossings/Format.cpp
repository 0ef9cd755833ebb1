// Calls as text; see Format.h.
#include "Format.h"

#include "Callback.h"
#include "ValueText.h"

#include <string_view>

namespace crossings {
std::string_view SideName(Side side, std::string_view plugin) {
    return side == Side::Host      ? "host"
           : side == Side::Library ? "library"
           : side == Side::OpenGL  ? "OpenGL"
                                   : std::string_view(plugin);
}

std::string_view CallbackName(const Crossing &crossing) {
    const bool isNamed = crossing.callback && crossing.callback->owner != NO_PLUGIN_ID;
    return isNamed ? KeptNameOf(*crossing.callback) : std::string_view();
}

void AddTitle(Line &line, const Crossing &crossing) { AddTitle(line, crossing.what, CallbackName(crossing)); }

void AddTitle(Line &line, const Prototype &function, std::string_view callback) {
    line.Add(function.name);
    if (callback.empty())
        return;
    line.Add(' ');
    line.Add(callback);
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

void AddResult(Line &line, const Crossing &crossing) { AddResult(line, crossing.returned, crossing.result); }

void AddResult(Line &line, bool isReturned, const Value &result) {
    if (!isReturned)
        return line.Add(" threw");
    if (result.kind == Value::Kind::Nothing)
        return;
    line.Add(" = ");
    AddValue(line, result);
}

} // namespace crossings
