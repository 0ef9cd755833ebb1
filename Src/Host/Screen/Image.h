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

} // namespace host

#endif
