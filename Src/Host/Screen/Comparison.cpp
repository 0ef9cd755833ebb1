// Compares pixels; see Comparison.h.
#include "Comparison.h"

#include <algorithm>
#include <cstdlib>

namespace host {
namespace {

int GreatestDifference(std::uint32_t a, std::uint32_t b) {
    int greatest = 0;
    for (const int shift : {0, 8, 16}) {
        const int channelA = static_cast<int>(a >> shift & 0xFF);
        const int channelB = static_cast<int>(b >> shift & 0xFF);
        greatest = std::max(greatest, std::abs(channelA - channelB));
    }
    return greatest;
}

} // namespace

Comparison Compare(const Image &wanted, const Image &seen, int allowed) {
    constexpr std::uint32_t kBright = 0xFF00FFFF; // yellow
    constexpr std::uint32_t kQuarter = 0x3F3F3F;
    Comparison found;
    found.marked = Image(seen.width, seen.height);
    for (std::size_t i = 0; i < seen.pixels.size(); ++i) {
        const int difference = GreatestDifference(wanted.pixels[i], seen.pixels[i]);
        found.greatest = std::max(found.greatest, difference);
        found.different += difference > allowed ? 1 : 0;
        found.marked.pixels[i] = difference > allowed ? kBright : kOpaque | (seen.pixels[i] >> 2 & kQuarter);
    }
    return found;
}

} // namespace host
