// A picture of the screen, drawn by software. Coordinates are those of the
// drawing services: pixels, y upward; a rectangle excludes its right column and
// its top row. Drawing is clipped to the picture.
#ifndef AVSK_HOST_SCREEN_CANVAS_H
#define AVSK_HOST_SCREEN_CANVAS_H

#include <string>
#include <string_view>
#include <vector>

namespace host {

class Font;

// Red, green, blue from 0 to 1.
struct Colour {
    float red, green, blue;
};

class Canvas {
  public:
    Canvas(int width, int height); // black

    void Fill(int left, int top, int right, int bottom, Colour colour, float opacity = 1);
    // Draws a text on one line and returns the x of the next character.
    int Text(const Font &font, int x, int baseline, std::string_view text, Colour colour);

    // False if the file cannot be written.
    bool WritePng(const std::string &file) const;

  private:
    void Blend(int x, int y, Colour colour, float opacity);

    int mWidth;
    int mHeight;
    std::vector<unsigned char> mPixels; // three bytes each, top row first
};

} // namespace host

#endif
