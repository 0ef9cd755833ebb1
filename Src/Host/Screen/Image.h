// Pixels in memory, as pictures of the screen are passed around.
#ifndef AVSK_HOST_SCREEN_IMAGE_H
#define AVSK_HOST_SCREEN_IMAGE_H

#include <cstddef>
#include <cstdint>
#include <vector>

namespace host {

// Four bytes per pixel: red, green, blue, alpha. The top row comes first.
struct Image {
    Image() = default;
    Image(int imageWidth, int imageHeight)
        : width(imageWidth), height(imageHeight), pixels(static_cast<std::size_t>(imageWidth) * imageHeight) {}

    int width = 0;
    int height = 0;
    std::vector<std::uint32_t> pixels; // red in the lowest byte

    std::uint32_t *Row(int row) { return &pixels[static_cast<std::size_t>(row) * width]; }
    const std::uint32_t *Row(int row) const { return &pixels[static_cast<std::size_t>(row) * width]; }
    const unsigned char *Bytes() const { return reinterpret_cast<const unsigned char *>(pixels.data()); }
};

constexpr std::uint32_t kOpaque = 0xFF000000;

// The four bytes of a pixel, each multiplied by share / 255 and rounded.
inline std::uint32_t Scaled(std::uint32_t pixel, unsigned share) {
    constexpr std::uint32_t kEven = 0x00FF00FF;
    constexpr std::uint32_t kHalf = 0x00800080;
    std::uint32_t even = (pixel & kEven) * share + kHalf;
    std::uint32_t odd = ((pixel >> 8) & kEven) * share + kHalf;
    even = ((even + ((even >> 8) & kEven)) >> 8) & kEven;
    odd = (odd + ((odd >> 8) & kEven)) & ~kEven;
    return even | odd;
}

// A pixel with what is above it. Both are premultiplied by their alpha.
inline std::uint32_t Over(std::uint32_t above, std::uint32_t below) {
    return above >= kOpaque ? above : above + Scaled(below, 255 - (above >> 24));
}

} // namespace host

#endif
