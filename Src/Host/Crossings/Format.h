// Calls as text.
#ifndef AVSK_HOST_FORMAT_H
#define AVSK_HOST_FORMAT_H

#include "Crossing.h"
#include "Line.h"

#include <string>
#include <string_view>

namespace crossings {

// The function's name, and that of a callback's function if it is not empty.
void AddTitle(Line &line, const Prototype &function, std::string_view callback);
// The name of a callback's function; empty for other calls and for entry points. It is never freed.
std::string_view CallbackName(const Crossing &crossing);
// What is called: "AVSKDrawString", or "AVSKFlightLoop_f Tick" with the name of
// a callback's function.
void AddTitle(Line &line, const Crossing &crossing);
std::string TitleOf(const Crossing &crossing);

// A side; a plugin by its name.
std::string_view SideName(Side side, std::string_view plugin);
// Who calls whom: "Menu > library".
void AddSides(Line &line, const Crossing &crossing);
// The title with its arguments: "AVSKDrawString(colour=null, x=1, ...)".
void AddCall(Line &line, const Crossing &crossing);
// " = 3"; empty without a result; " threw" if an exception ended the call.
void AddResult(Line &line, const Crossing &crossing);
void AddResult(Line &line, bool isReturned, const Value &result);

} // namespace crossings

#endif
