// Where a run is, for the report of its end: the line of a session. Sessions set
// it before each step; Blame.cpp reads it.
#ifndef AVSK_HOST_OBSERVING_PLACE_H
#define AVSK_HOST_OBSERVING_PLACE_H

#include <string_view>

namespace host {

// Copies the text, "Menu.avs:5: frames 10", without allocation. Long texts are cut.
void SetPlace(std::string_view text);
// Empty if none was set. Safe in a signal handler.
std::string_view Place();

} // namespace host

#endif
