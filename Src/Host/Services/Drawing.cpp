// The services for the screen: size, mouse, drawing, text, coordinates. The
// interface leaves the meaning of these arguments to the host:
//
//   colour     three floats from 0 to 1: red, green, blue; null is white
//   x, y       left end and baseline of a text
//   word wrap  greatest width of a line in pixels; null or 0 never breaks lines
//   digits     minimum number before the point, filled with zeros
//   show sign  non-zero: positive numbers get a plus sign
//   font       see Font.h
#include "Screen/Display.h"

#include "Common/Text.h"
#include "Common/Utf8.h"
#include "ServiceTable.h"
#include "Simulator.h"

#include <array>
#include <cstdio>

namespace host {
namespace {

void GetScreenSize(int *width, int *height) {
    const Display &display = Enter().display;
    Store(width, display.width);
    Store(height, display.height);
}

void GetMouseLocation(int *x, int *y, int /*fromPlugin*/) {
    const Display &display = Enter().display;
    Store(x, display.mouseX);
    Store(y, display.mouseY);
}

void WorldToLocal(double latitude, double longitude, double altitude, double *x, double *y, double *z) {
    Enter();
    const LocalPoint local = ToLocal({latitude, longitude, altitude});
    Store(x, local.x);
    Store(y, local.y);
    Store(z, local.z);
}

void LocalToWorld(double x, double y, double z, double *latitude, double *longitude, double *altitude) {
    Enter();
    const WorldPoint world = ToWorld({x, y, z});
    Store(latitude, world.latitude);
    Store(longitude, world.longitude);
    Store(altitude, world.altitude);
}

void DrawTranslucentDarkBox(int left, int top, int right, int bottom) {
    constexpr Colour kDark{0.05F, 0.05F, 0.06F};
    constexpr float kOpacity = 0.65F;
    if (Canvas *canvas = Enter().display.canvas)
        canvas->Fill(left, top, right, bottom, kDark, kOpacity);
}

Colour ColourOf(const float *colour) { return colour ? Colour{colour[0], colour[1], colour[2]} : Colour{1, 1, 1}; }

// Removes one line from a text: as many words as fit, at least one.
std::string_view TakeLine(const Font &font, std::string_view &text, int width) {
    std::size_t end = 0;
    while (end < text.size()) {
        const std::size_t word = text.find(' ', end == 0 ? 0 : end + 1);
        const std::size_t next = word == std::string_view::npos ? text.size() : word;
        if (end != 0 && font.Width(text.substr(0, next)) > width)
            break;
        end = next == 0 ? 1 : next;
    }
    const std::string_view line = text.substr(0, end);
    text.remove_prefix(end);
    if (text.starts_with(' '))
        text.remove_prefix(1);
    return line;
}

void DrawString(float *colour, int x, int y, char *text, int *wordWrapWidth, int font) {
    Display &display = Enter().display;
    if (!display.canvas || !text)
        return;
    const Font &face = display.fonts[font];
    std::string_view rest = text;
    if (!wordWrapWidth || *wordWrapWidth <= 0) {
        display.canvas->Text(face, x, y, rest, ColourOf(colour));
        return;
    }
    for (; !rest.empty() && y > -face.Height(); y -= face.Height())
        display.canvas->Text(face, x, y, TakeLine(face, rest, *wordWrapWidth), ColourOf(colour));
}

void DrawNumber(float *colour, int x, int y, double value, int digits, int decimals, int showSign, int font) {
    constexpr int kMost = 20;
    Display &display = Enter().display;
    if (!display.canvas)
        return;
    digits = std::clamp(digits, 0, kMost);
    decimals = std::clamp(decimals, 0, kMost);
    const bool sign = showSign != 0 || value < 0;
    const int width = digits + (decimals > 0 ? decimals + 1 : 0) + (sign ? 1 : 0);
    std::array<char, 400> text{}; // the largest double has 309 digits before the point
    std::snprintf(text.data(), text.size(), showSign != 0 ? "%+0*.*f" : "%0*.*f", width, decimals, value);
    display.canvas->Text(display.fonts[font], x, y, text.data(), ColourOf(colour));
}

void GetFontDimensions(int font, int *charWidth, int *charHeight, int *digitsOnly) {
    const Font &face = Enter().display.fonts[font];
    Store(charWidth, face.Find('0').advance);
    Store(charHeight, face.Height());
    Store(digitsOnly, 0);
}

// A text that is shorter than the count is measured to its end.
float MeasureString(int font, const char *text, int count) {
    const Font &face = Enter().display.fonts[font];
    std::string_view rest = text ? text : std::string_view();
    int width = 0;
    for (int i = 0; i < count && !rest.empty(); ++i)
        width += face.Find(TakeCharacter(rest)).advance;
    return static_cast<float>(width);
}

} // namespace

void FillDisplaySlots(AVSKHostCallbacks &table) {
    table.getScreenSize = GetScreenSize;
    table.getMouseLocation = GetMouseLocation;
    table.worldToLocal = WorldToLocal;
    table.localToWorld = LocalToWorld;
    table.drawTranslucentDarkBox = DrawTranslucentDarkBox;
    table.drawString = DrawString;
    table.drawNumber = DrawNumber;
    table.getFontDimensions = GetFontDimensions;
    table.measureString = MeasureString;
}

} // namespace host
