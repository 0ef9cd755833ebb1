// Draws the simulator's own textures; see OwnTextures.h. Called when a context is made.
#include "OwnTextures.h"

#include "World/Terrain.h"

#include <algorithm>
#include <cmath>

namespace host {
namespace {

constexpr int kSize = 256; // pixels

std::uint32_t Pixel(double red, double green, double blue, double alpha = 1) {
    const auto byte = [](double share) {
        return static_cast<std::uint32_t>(std::lround(std::clamp(share, 0.0, 1.0) * 255));
    };
    return byte(red) | byte(green) << 8 | byte(blue) << 16 | byte(alpha) << 24;
}

// The same number from 0 to 1 for the same place.
double Noise(int x, int y) {
    std::uint32_t bits = static_cast<std::uint32_t>(x) * 374761393U + static_cast<std::uint32_t>(y) * 668265263U;
    bits = (bits ^ bits >> 13) * 1274126177U;
    return static_cast<double>((bits ^ bits >> 16) & 0xFFFF) / 0xFFFF;
}

// Scratches run along the rows.
std::uint32_t PanelAt(int x, int y) {
    const double scratch = Noise(0, y) * 0.05 + Noise(x / 24 + 1, y) * 0.03 + Noise(x, y) * 0.015;
    return Pixel(0.15 + scratch, 0.155 + scratch, 0.165 + scratch);
}

// Coloured by height, lit from the north-west, with a line each kilometre.
std::uint32_t MapAt(int x, int y) {
    constexpr double kWidth = 12'000; // metres
    constexpr double kMetres = kWidth / kSize;
    constexpr double kLowest = 20;
    constexpr double kRange = 80;
    constexpr double kRelief = 4;
    constexpr double kGrid = 1000;
    const double east = (x + 0.5) * kMetres - kWidth / 2;
    const double south = kWidth / 2 - (y + 0.5) * kMetres;
    const Ground ground = GroundAt(east, south);
    const double height = (ground.height - kLowest) / kRange;
    const bool isLine = std::fmod(east + kWidth, kGrid) < kMetres || std::fmod(south + kWidth, kGrid) < kMetres;
    const double light = (1 + kRelief * (ground.slopeX + ground.slopeZ)) * (isLine ? 0.85 : 1);
    return Pixel((0.42 + 0.34 * height) * light, (0.58 + 0.12 * height) * light, (0.36 + 0.10 * height) * light);
}

std::uint32_t HaloAt(int x, int y) {
    constexpr double kMiddle = kSize / 2.0;
    const double share = 1 - std::hypot(x + 0.5 - kMiddle, y + 0.5 - kMiddle) / kMiddle;
    return Pixel(1, 1, 1, share > 0 ? share * share : 0);
}

} // namespace

Image OwnTexture(int number) {
    Image image(kSize, kSize);
    for (int y = 0; y < kSize; ++y) {
        for (int x = 0; x < kSize; ++x)
            image.Row(y)[x] = number == 1 ? PanelAt(x, y) : number == 2 ? MapAt(x, y) : HaloAt(x, y);
    }
    return image;
}

} // namespace host
