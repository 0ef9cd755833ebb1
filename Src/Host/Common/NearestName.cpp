// Compares names by edit distance; see NearestName.h.
#include "NearestName.h"

#include <algorithm>
#include <cctype>
#include <numeric>
#include <utility>

namespace host {
namespace {

std::string InLowerCase(std::string_view text) {
    std::string lower(text);
    std::transform(lower.begin(), lower.end(), lower.begin(),
                   [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    return lower;
}

} // namespace

std::size_t EditDistance(std::string_view a, std::string_view b) {
    const std::string from = InLowerCase(a);
    const std::string to = InLowerCase(b);
    // Rows of the table of distances between the texts' beginnings.
    std::vector<std::size_t> beforeLast(to.size() + 1);
    std::vector<std::size_t> last(to.size() + 1);
    std::vector<std::size_t> row(to.size() + 1);
    std::iota(row.begin(), row.end(), 0U);
    for (std::size_t i = 1; i <= from.size(); ++i) {
        beforeLast.swap(last);
        last.swap(row);
        row[0] = i;
        for (std::size_t j = 1; j <= to.size(); ++j) {
            row[j] = std::min({last[j] + 1, row[j - 1] + 1, last[j - 1] + (from[i - 1] == to[j - 1] ? 0 : 1)});
            if (i > 1 && j > 1 && from[i - 1] == to[j - 2] && from[i - 2] == to[j - 1])
                row[j] = std::min(row[j], beforeLast[j - 2] + 1);
        }
    }
    return row.back();
}

std::vector<std::string> NearestNames(std::string_view wanted, std::span<const std::string> names, std::size_t most) {
    constexpr std::size_t kFarthest = 5;
    constexpr std::size_t kShortestPart = 3; // shorter texts are part of too many names
    const std::size_t limit = std::clamp((wanted.size() + 2) / 3, std::size_t{1}, kFarthest);
    std::vector<std::pair<std::size_t, std::string>> found;
    for (const std::string &name : names) {
        const std::size_t distance = EditDistance(wanted, name);
        if (distance <= limit && distance < std::max(wanted.size(), name.size()))
            found.emplace_back(distance, name);
        else if (wanted.size() >= kShortestPart && InLowerCase(name).find(InLowerCase(wanted)) != std::string::npos)
            found.emplace_back(limit + distance, name);
    }
    std::sort(found.begin(), found.end());
    found.erase(std::unique(found.begin(), found.end()), found.end());
    std::vector<std::string> nearest;
    for (std::size_t i = 0; i < std::min(most, found.size()); ++i)
        nearest.push_back(std::move(found[i].second));
    return nearest;
}

std::string DidYouMean(std::string_view wanted, std::span<const std::string> names, std::size_t most) {
    const std::vector<std::string> nearest = NearestNames(wanted, names, most);
    std::string text;
    for (std::size_t i = 0; i < nearest.size(); ++i)
        text += (i == 0 ? "; did you mean '" : i + 1 == nearest.size() ? "' or '" : "', '") + nearest[i];
    return text.empty() ? text : text + "'?";
}

} // namespace host
