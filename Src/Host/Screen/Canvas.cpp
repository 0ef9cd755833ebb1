// Drawing on an image; see Canvas.h.
#include "Canvas.h"

#include "Common/Utf8.h"
#include "Font.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace host {
namespace {

constexpr unsigned kOpaque = 255;

// The four bytes of a pixel, each multiplied by share / 255 and rounded.
std::uint32_t Scaled(std::uint32_t pixel, unsigned share) {
    constexpr std::uint32_t kEven = 0x00FF00FF;
    constexpr std::uint32_t kHalf = 0x00800080;
    std::uint32_t even = (pixel & kEven) * share + kHalf;
    std::uint32_t odd = ((pixel >> 8) & kEven) * share + kHalf;
    even = ((even + ((even >> 8) & kEven)) >> 8) & kEven;
    odd = (odd + ((odd >> 8) & kEven)) & ~kEven;
    return even | odd;
}

std::uint32_t Over(std::uint32_t above, std::uint32_t below) { return above + Scaled(below, kOpaque - (above >> 24)); }

unsigned ByteOf(float share) {
    const float inRange = share > 0 ? std::min(share, 1.0F) : 0; // plugins may pass NaN
    return static_cast<unsigned>(std::lround(inRange * 255));
}

std::uint32_t PixelOf(Colour colour) {
    return ByteOf(colour.red) | ByteOf(colour.green) << 8 | ByteOf(colour.blue) << 16 | kOpaque << 24;
}

} // namespace

Canvas::Canvas(Image image) : mImage(std::move(image)), mTouched{mImage.width, mImage.height, 0, 0} {}

PixelRectangle Canvas::Touch(PixelRectangle rectangle) {
    rectangle.left = std::max(rectangle.left, 0);
    rectangle.top = std::max(rectangle.top, 0);
    rectangle.right = std::min(rectangle.right, mImage.width);
    rectangle.bottom = std::min(rectangle.bottom, mImage.height);
    if (!rectangle.IsEmpty()) {
        mTouched.left = std::min(mTouched.left, rectangle.left);
        mTouched.top = std::min(mTouched.top, rectangle.top);
        mTouched.right = std::max(mTouched.right, rectangle.right);
        mTouched.bottom = std::max(mTouched.bottom, rectangle.bottom);
    }
    return rectangle;
}

void Canvas::Clear() {
    if (mTouched.IsEmpty())
        return;
    for (int row = mTouched.top; row < mTouched.bottom; ++row)
        std::fill(mImage.Row(row) + mTouched.left, mImage.Row(row) + mTouched.right, 0);
    mTouched = {mImage.width, mImage.height, 0, 0};
}

void Canvas::Fill(int left, int top, int right, int bottom, Colour colour, float opacity) {
    // Clipped here: the differences to the height would overflow otherwise.
    top = std::clamp(top, 0, mImage.height);
    bottom = std::clamp(bottom, 0, mImage.height);
    const PixelRectangle area = Touch({left, mImage.height - top, right, mImage.height - bottom});
    const std::uint32_t pixel = Scaled(PixelOf(colour), ByteOf(opacity));
    if (area.IsEmpty())
        return;
    for (int y = area.top; y < area.bottom; ++y) {
        std::uint32_t *const row = mImage.Row(y);
        if (pixel >> 24 == kOpaque)
            std::fill(row + area.left, row + area.right, pixel);
        else
            std::transform(row + area.left, row + area.right, row + area.left,
                           [pixel](std::uint32_t below) { return Over(pixel, below); });
    }
}

void Canvas::Text(const Font &font, int x, int baseline, std::string_view text, Colour colour) {
    // Far outside the image nothing is visible, and sums of positions would overflow.
    constexpr int kFar = 1 << 24;
    x = std::clamp(x, -kFar, kFar);
    baseline = std::clamp(baseline, -kFar, kFar);
    const std::uint32_t pixel = PixelOf(colour);
    while (!text.empty()) {
        const Glyph &glyph = font.Find(TakeCharacter(text));
        const int left = x + glyph.left;
        // The baseline is the lower edge of its row of pixels, as a box's bottom is.
        const int top = mImage.height - baseline + glyph.top;
        x += glyph.advance;
        const PixelRectangle area = Touch({left, top, left + glyph.width, top + glyph.height});
        if (area.IsEmpty())
            continue;
        for (int y = area.top; y < area.bottom; ++y) {
            const unsigned char *coverage = &glyph.coverage[static_cast<std::size_t>(y - top) * glyph.width];
            std::uint32_t *const row = mImage.Row(y);
            for (int column = area.left; column < area.right; ++column) {
                if (const unsigned covered = coverage[column - left]; covered != 0)
                    row[column] = Over(Scaled(pixel, covered), row[column]);
            }
        }
    }
}

} // namespace host
