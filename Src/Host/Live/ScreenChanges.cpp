// Divides pictures into tiles and compares them; see ScreenChanges.h. Called by
// LiveSimulator.cpp.
#include "ScreenChanges.h"

#include <stb/stb_image_write.h>

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <utility>

namespace host {
namespace {

constexpr int kTileWidth = 64;
constexpr int kTileHeight = 32;
constexpr std::size_t kFullMessage = 2 * 1024 * 1024; // of a message: a channel's limit is 4 MiB

void AddNumber(std::string &message, std::uint32_t number, int bytes) {
    for (int i = 0; i < bytes; ++i)
        message += static_cast<char>(number >> (8 * i) & 0xFFU);
}

// Fast compression during its lifetime, for pictures that are shown once.
class FastCompression {
  public:
    FastCompression()
        : mFilter(std::exchange(stbi_write_force_png_filter, 2)), // the difference from the row above
          mLevel(std::exchange(stbi_write_png_compression_level, 1)) {}
    ~FastCompression() {
        stbi_write_force_png_filter = mFilter;
        stbi_write_png_compression_level = mLevel;
    }
    FastCompression(const FastCompression &) = delete;
    FastCompression &operator=(const FastCompression &) = delete;

  private:
    int mFilter;
    int mLevel;
};

// A part of an image as a PNG file, without alpha.
std::string MakePng(const Image &image, int left, int top, int width, int height) {
    constexpr int kChannels = 3;
    std::vector<unsigned char> colours;
    colours.reserve(static_cast<std::size_t>(width) * height * kChannels);
    for (int y = top; y < top + height; ++y) {
        for (int x = left; x < left + width; ++x) {
            for (const int shift : {0, 8, 16})
                colours.push_back(static_cast<unsigned char>(image.Row(y)[x] >> shift));
        }
    }
    std::string png;
    const auto add = [](void *text, void *bytes, int count) {
        static_cast<std::string *>(text)->append(static_cast<const char *>(bytes), static_cast<std::size_t>(count));
    };
    stbi_write_png_to_func(add, &png, width, height, kChannels, colours.data(), width * kChannels);
    return png;
}

// One message, whose head is completed when its tiles are known.
class TileMessage {
  public:
    void Add(const Image &image, int x, int y, int width, int height) {
        ++mCount;
        for (const int number : {x, y, width, height})
            AddNumber(mTiles, static_cast<std::uint32_t>(number), 2);
        const std::string png = MakePng(image, x, y, width, height);
        AddNumber(mTiles, static_cast<std::uint32_t>(png.size()), 4);
        mTiles += png;
    }

    bool IsEmpty() const { return mCount == 0; }
    bool IsFull() const { return mTiles.size() > kFullMessage; }

    std::string Text(std::uint32_t version, int frame, const Image &image) const {
        std::string message;
        AddNumber(message, version, 4);
        AddNumber(message, static_cast<std::uint32_t>(frame), 4);
        AddNumber(message, static_cast<std::uint32_t>(image.width), 2);
        AddNumber(message, static_cast<std::uint32_t>(image.height), 2);
        AddNumber(message, mCount, 2);
        return message + mTiles;
    }

  private:
    std::uint32_t mCount = 0;
    std::string mTiles;
};

} // namespace

std::vector<std::string> ScreenChanges::Update(const Image &image, int frame) {
    const bool isFirst = mSent.pixels.empty();
    if (isFirst)
        mSent = Image(image.width, image.height);
    const auto hasChanged = [&](int x, int y, int width, int height) {
        const auto bytes = static_cast<std::size_t>(width) * sizeof(std::uint32_t);
        bool changed = isFirst;
        for (int row = y; row < y + height; ++row) {
            if (!changed && std::memcmp(image.Row(row) + x, mSent.Row(row) + x, bytes) == 0)
                continue;
            changed = true;
            std::memcpy(mSent.Row(row) + x, image.Row(row) + x, bytes);
        }
        return changed;
    };
    const FastCompression fast;
    std::vector<std::string> messages;
    TileMessage message;
    const auto finish = [&] {
        if (!message.IsEmpty())
            messages.push_back(message.Text(++mVersion, frame, image));
        message = {};
    };
    for (int y = 0; y < image.height; y += kTileHeight) {
        const int height = std::min(kTileHeight, image.height - y);
        for (int x = 0; x < image.width; x += kTileWidth) {
            const int width = std::min(kTileWidth, image.width - x);
            if (hasChanged(x, y, width, height))
                message.Add(image, x, y, width, height);
            if (message.IsFull())
                finish();
        }
    }
    finish();
    return messages;
}

} // namespace host
