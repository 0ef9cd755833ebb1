// Calls as text.
#ifndef AVSK_HOST_FORMAT_H
#define AVSK_HOST_FORMAT_H

#include "Crossing.h"
#include "Line.h"

#include <string>

namespace crossings {

// What is called: "AVSKDrawString", or "AVSKFlightLoop_f Tick" with the name of
// a callback's function.
void AddTitle(Line &line, const Crossing &crossing);
std::string TitleOf(const Crossing &crossing);

// Who calls whom: "Menu > library".
void AddSides(Line &line, const Crossing &crossing);
// The title with its arguments: "AVSKDrawString(colour=null, x=1, ...)".
void AddCall(Line &line, const Crossing &crossing);
// " = 3"; empty without a result; " threw" if an exception ended the call.
void AddResult(Line &line, const Crossing &crossing);

} // namespace crossings

#endif
