// PNG files by stb; see PngFile.h.
#include "PngFile.h"

#include "Common/Files.h"

#include <stb/stb_image.h>
#include <stb/stb_image_write.h>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <fstream>
#include <memory>
#include <optional>
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
    // Another process may be reading the file, and a failure must not destroy it.
    const std::string written = file + ".tmp";
    std::ofstream stream(written, std::ios::binary);
    const auto write = [](void *to, void *bytes, int size) {
        static_cast<std::ofstream *>(to)->write(static_cast<const char *>(bytes), size);
    };
    const int isEncoded =
        stbi_write_png_to_func(write, &stream, image.width, image.height, kChannels, colours.data(), 0);
    stream.close();
    if (isEncoded != 0 && stream && std::rename(written.c_str(), file.c_str()) == 0)
        return;
    const std::string reason = std::strerror(errno);
    std::remove(written.c_str());
    throw std::runtime_error("cannot write the picture '" + file + "' (" + reason + ")");
}

Image ReadPng(const std::string &file) {
    const std::optional<std::string> bytes = ReadFile(file);
    if (!bytes)
        throw std::runtime_error("cannot read the picture '" + file + "' (" + std::strerror(errno) + ")");
    constexpr int kChannels = 4;
    int width = 0;
    int height = 0;
    const std::unique_ptr<unsigned char, void (*)(void *)> pixels(
        stbi_load_from_memory(reinterpret_cast<const unsigned char *>(bytes->data()), static_cast<int>(bytes->size()),
                              &width, &height, nullptr, kChannels),
        stbi_image_free);
    if (!pixels)
        throw std::runtime_error("'" + file + "' is not a complete PNG file");
    Image image(width, height);
    std::memcpy(image.pixels.data(), pixels.get(), image.pixels.size() * kChannels);
    return image;
}

} // namespace host
