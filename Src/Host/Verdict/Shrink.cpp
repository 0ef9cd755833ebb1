// Delta debugging; see Shrink.h.
#include "Shrink.h"

#include <algorithm>
#include <cstddef>

namespace host {

std::vector<std::string> Shrink(std::vector<std::string> lines,
                                const std::function<bool(const std::vector<std::string> &)> &fails,
                                const std::function<bool()> &isOver) {
    for (std::size_t size = (lines.size() + 1) / 2; size > 0 && lines.size() > 1;) {
        bool hasShrunk = false;
        for (std::size_t begin = 0; begin < lines.size() && !isOver();) {
            std::vector<std::string> fewer = lines;
            const auto first = fewer.begin() + static_cast<std::ptrdiff_t>(begin);
            fewer.erase(first, first + static_cast<std::ptrdiff_t>(std::min(size, lines.size() - begin)));
            if (!fewer.empty() && fails(fewer)) {
                lines = std::move(fewer);
                hasShrunk = true;
            } else {
                begin += size;
            }
        }
        if (isOver() || (size == 1 && !hasShrunk))
            break;
        size = size == 1 ? 1 : (size + 1) / 2;
    }
    return lines;
}

} // namespace host
