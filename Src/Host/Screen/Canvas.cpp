// Drawing on an image; see Canvas.h.
#include "Canvas.h"

#include "Common/Utf8.h"
#include "Font.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace host {
namespace {

PixelRectangle Union(const PixelRectangle &a, const PixelRectangle &b) {
    return {std::min(a.left, b.left), std::min(a.top, b.top), std::max(a.right, b.right), std::max(a.bottom, b.bottom)};
}

bool Overlap(const PixelRectangle &a, const PixelRectangle &b) {
    return a.left < b.right && b.left < a.right && a.top < b.bottom && b.top < a.bottom;
}

unsigned ByteOf(float share) {
    const float inRange = share > 0 ? std::min(share, 1.0F) : 0; // plugins may pass NaN
    return static_cast<unsigned>(std::lround(inRange * 255));
}

std::uint32_t PixelOf(Colour colour) {
    return ByteOf(colour.red) | ByteOf(colour.green) << 8 | ByteOf(colour.blue) << 16 | kOpaque;
}

} // namespace

Canvas::Canvas(Image image) : mImage(std::move(image)) {}

PixelRectangle Canvas::Inside(PixelRectangle rectangle) const {
    return {std::max(rectangle.left, 0), std::max(rectangle.top, 0), std::min(rectangle.right, mImage.width),
            std::min(rectangle.bottom, mImage.height)};
}

void Canvas::Touch(PixelRectangle rectangle) {
    constexpr std::size_t kMost = 32;
    constexpr int kWorthMerging = 2048; // pixels that a rectangle costs in any case
    rectangle = Inside(rectangle);
    if (rectangle.IsEmpty())
        return;
    // A merged rectangle may overlap others.
    for (std::size_t i = 0; i < mTouched.size();) {
        const PixelRectangle both = Union(mTouched[i], rectangle);
        if (mTouched.size() < kMost && !Overlap(mTouched[i], rectangle) &&
            both.Area() > mTouched[i].Area() + rectangle.Area() + kWorthMerging) {
            ++i;
            continue;
        }
        rectangle = both;
        mTouched[i] = mTouched.back();
        mTouched.pop_back();
        i = 0;
    }
    mTouched.push_back(rectangle);
}

void Canvas::Clear() {
    for (const PixelRectangle &area : mTouched) {
        for (int row = area.top; row < area.bottom; ++row)
            std::fill(mImage.Row(row) + area.left, mImage.Row(row) + area.right, 0);
    }
    mTouched.clear();
}

void Canvas::Fill(int left, int top, int right, int bottom, Colour colour, float opacity) {
    // Clipped here: the differences to the height would overflow otherwise.
    top = std::clamp(top, 0, mImage.height);
    bottom = std::clamp(bottom, 0, mImage.height);
    const PixelRectangle area = Inside({left, mImage.height - top, right, mImage.height - bottom});
    Touch(area);
    const std::uint32_t pixel = Scaled(PixelOf(colour), ByteOf(opacity));
    if (area.IsEmpty())
        return;
    for (int y = area.top; y < area.bottom; ++y) {
        std::uint32_t *const row = mImage.Row(y);
        if (pixel >= kOpaque)
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
    PixelRectangle all{mImage.width, mImage.height, 0, 0};
    while (!text.empty()) {
        const Glyph &glyph = font.Find(TakeCharacter(text));
        const int left = x + glyph.left;
        // The baseline is the lower edge of its row of pixels, as a box's bottom is.
        const int top = mImage.height - baseline + glyph.top;
        x += glyph.advance;
        const PixelRectangle area = Inside({left, top, left + glyph.width, top + glyph.height});
        if (area.IsEmpty())
            continue;
        all = Union(all, area);
        for (int y = area.top; y < area.bottom; ++y) {
            const unsigned char *coverage = &glyph.coverage[static_cast<std::size_t>(y - top) * glyph.width];
            std::uint32_t *const row = mImage.Row(y);
            for (int column = area.left; column < area.right; ++column) {
                if (const unsigned covered = coverage[column - left]; covered != 0)
                    row[column] = Over(Scaled(pixel, covered), row[column]);
            }
        }
    }
    Touch(all);
}

} // namespace host
