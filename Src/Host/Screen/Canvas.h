// An image to draw on, by software. Coordinates are those of the drawing
// services: pixels, y upward; a rectangle excludes its right column and its top
// row. Drawing is clipped to the image. Colours in the image are premultiplied by
// their alpha, so that a canvas can be laid over another image.
#ifndef AVSK_HOST_SCREEN_CANVAS_H
#define AVSK_HOST_SCREEN_CANVAS_H

#include "Image.h"

#include <string_view>
#include <utility>
#include <vector>

namespace host {

class Font;

// Red, green, blue from 0 to 1.
struct Colour {
    float red, green, blue;
};

// Rows count from the top of the image; the right column and the bottom row are excluded.
struct PixelRectangle {
    int left, top, right, bottom;

    bool IsEmpty() const { return left >= right || top >= bottom; }
    int Area() const { return (right - left) * (bottom - top); }
};

class Canvas {
  public:
    explicit Canvas(Image image); // draws over the image

    void Fill(int left, int top, int right, int bottom, Colour colour, float opacity = 1);
    // Draws a text on one line.
    void Text(const Font &font, int x, int baseline, std::string_view text, Colour colour);

    const Image &Pixels() const { return mImage; }
    Image Take() && { return std::move(mImage); }
    // What was drawn on since the beginning or the last Clear. No two rectangles overlap.
    const std::vector<PixelRectangle> &Touched() const { return mTouched; }
    // Makes what was drawn on transparent.
    void Clear();

  private:
    // The part of the rectangle that is inside the image.
    PixelRectangle Inside(PixelRectangle rectangle) const;
    void Touch(PixelRectangle rectangle);

    Image mImage;
    std::vector<PixelRectangle> mTouched;
};

} // namespace host

#endif
