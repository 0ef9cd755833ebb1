// PNG files by stb; see PngFile.h.
#include "PngFile.h"

#include <stb/stb_image_write.h>

#include <stdexcept>

namespace host {

void WritePng(const Image &image, const std::string &file) {
    constexpr int kChannels = 3;
    std::vector<unsigned char> colours;
    colours.reserve(image.pixels.size() * kChannels);
    for (const std::uint32_t pixel : image.pixels) {
        for (const int shift : {0, 8, 16})
            colours.push_back(static_cast<unsigned char>(pixel >> shift));
    }
    if (stbi_write_png(file.c_str(), image.width, image.height, kChannels, colours.data(), image.width * kChannels) ==
        0)
        throw std::runtime_error("cannot write the picture '" + file + "': is there room on the disk?");
}

} // namespace host
