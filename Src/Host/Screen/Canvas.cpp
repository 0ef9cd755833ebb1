// Pixels; see Canvas.h.
#include "Canvas.h"

#include "Common/Utf8.h"
#include "Font.h"

#include <stb/stb_image_write.h>

#include <algorithm>
#include <cmath>

namespace host {
namespace {

constexpr int kChannels = 3;

unsigned char Mix(unsigned char below, float above, float opacity) {
    const float light = above > 0 ? std::min(above, 1.0F) : 0; // plugins may pass NaN
    const float value = static_cast<float>(below) * (1 - opacity) + light * 255 * opacity;
    return static_cast<unsigned char>(std::lround(value));
}

} // namespace

Canvas::Canvas(int width, int height)
    : mWidth(width), mHeight(height), mPixels(static_cast<std::size_t>(width) * height * kChannels) {}

void Canvas::Blend(int x, int y, Colour colour, float opacity) {
    if (x < 0 || x >= mWidth || y < 0 || y >= mHeight)
        return;
    const int row = mHeight - 1 - y;
    unsigned char *pixel = &mPixels[(static_cast<std::size_t>(row) * mWidth + x) * kChannels];
    pixel[0] = Mix(pixel[0], colour.red, opacity);
    pixel[1] = Mix(pixel[1], colour.green, opacity);
    pixel[2] = Mix(pixel[2], colour.blue, opacity);
}

void Canvas::Fill(int left, int top, int right, int bottom, Colour colour, float opacity) {
    left = std::max(left, 0);
    right = std::min(right, mWidth);
    bottom = std::max(bottom, 0);
    top = std::min(top, mHeight);
    for (int y = bottom; y < top; ++y) {
        for (int x = left; x < right; ++x)
            Blend(x, y, colour, opacity);
    }
}

int Canvas::Text(const Font &font, int x, int baseline, std::string_view text, Colour colour) {
    // Far outside the picture nothing is visible, and sums of positions would overflow.
    constexpr int kFar = 1 << 24;
    x = std::clamp(x, -kFar, kFar);
    baseline = std::clamp(baseline, -kFar, kFar);
    while (!text.empty()) {
        const Glyph &glyph = font.Find(TakeCharacter(text));
        auto coverage = glyph.coverage.begin();
        for (int row = 0; row < glyph.height; ++row) {
            for (int column = 0; column < glyph.width; ++column) {
                // The baseline is the lower edge of its row of pixels, as a box's bottom is.
                Blend(x + glyph.left + column, baseline - 1 - glyph.top - row, colour,
                      static_cast<float>(*coverage++) / 255);
            }
        }
        x += glyph.advance;
    }
    return x;
}

bool Canvas::WritePng(const std::string &file) const {
    return stbi_write_png(file.c_str(), mWidth, mHeight, kChannels, mPixels.data(), mWidth * kChannels) != 0;
}

} // namespace host
