// 'expect picture': compares the screen with a PNG file beside the session.
#ifndef AVSK_HOST_SESSION_PICTURE_CHECK_H
#define AVSK_HOST_SESSION_PICTURE_CHECK_H

#include "Forms.h"

#include <optional>
#include <string>
#include <string_view>

namespace host {

// How much two equal pictures may differ: another version of a font or of a graphics library draws edges differently.
struct Tolerance {
    int channel = 48;      // of a colour channel, of 255
    double percent = 0.01; // of the pixels may differ by more
};

// DIFFERENCE or DIFFERENCE,PERCENT%.
std::optional<Tolerance> ReadTolerance(std::string_view text);

// Why no picture can be taken; empty if it can.
std::string WhyNoPicture(SessionRunner &run);

Outcome PictureShown(SessionRunner &run, const Step &step);

} // namespace host

#endif
