// Compares two runs; see Differences.h. Called by the watch after each round.
#include "Differences.h"

#include <algorithm>
#include <cstdint>
#include <span>

namespace host {
namespace {

using Lines = std::span<const std::string>;

// The checks by their text and, for equal ones, their number: lines may have moved.
std::map<std::pair<std::string, int>, const Check *> ByText(const std::vector<Check> &checks) {
    std::map<std::string, int> counts;
    std::map<std::pair<std::string, int>, const Check *> found;
    for (const Check &check : checks)
        found[{check.text, counts[check.text]++}] = &check;
    return found;
}

// A failure without the place, which moves when lines are inserted: "seen: 3".
std::string Seen(const Check &check) {
    const std::size_t text = check.failure.find(check.text);
    return text == std::string::npos ? check.failure : check.failure.substr(text);
}

void CompareChecks(const RoundOutcome &before, const RoundOutcome &now, std::vector<Difference> &differences) {
    const auto earlier = ByText(before.checks);
    std::map<std::string, int> counts;
    for (const Check &check : now.checks) {
        const auto found = earlier.find({check.text, counts[check.text]++});
        const bool hasFailed = found != earlier.end() && !found->second->failure.empty();
        if (check.failure.empty() && hasFailed)
            differences.push_back({"came right: " + check.text});
        else if (!check.failure.empty() && !hasFailed)
            differences.push_back({"failed: " + check.failure, true});
        else if (!check.failure.empty() && Seen(check) != Seen(*found->second))
            differences.push_back({"fails differently: " + check.failure, true});
    }
    const auto later = ByText(now.checks);
    for (const auto &[key, check] : earlier) {
        if (!check->failure.empty() && !later.contains(key))
            differences.push_back({"no longer checked: " + check->text});
    }
}

void ComparePictures(const RoundOutcome &before, const RoundOutcome &now, std::vector<Difference> &differences) {
    for (const auto &[file, bytes] : now.pictures) {
        const auto found = before.pictures.find(file);
        if (found == before.pictures.end())
            differences.push_back({"picture is new: " + file});
        else if (found->second != bytes)
            differences.push_back({"picture differs: " + file});
    }
    for (const auto &[file, bytes] : before.pictures) {
        if (!now.pictures.contains(file))
            differences.push_back({"picture is no longer written: " + file});
    }
}

// How many lines the longest common subsequences of the rests have, by the begins of the rests.
std::vector<std::uint16_t> CommonLengths(Lines before, Lines now) {
    const std::size_t width = now.size() + 1;
    std::vector<std::uint16_t> lengths((before.size() + 1) * width);
    for (std::size_t i = before.size(); i-- > 0;) {
        for (std::size_t j = now.size(); j-- > 0;)
            lengths[i * width + j] = before[i] == now[j]
                                         ? static_cast<std::uint16_t>(lengths[(i + 1) * width + j + 1] + 1)
                                         : std::max(lengths[(i + 1) * width + j], lengths[i * width + j + 1]);
    }
    return lengths;
}

void CompareOutput(Lines before, Lines now, std::vector<Difference> &differences) {
    constexpr std::size_t kMostCompared = 2000;
    constexpr std::size_t kMostShown = 40;
    while (!before.empty() && !now.empty() && before.front() == now.front()) {
        before = before.subspan(1);
        now = now.subspan(1);
    }
    while (!before.empty() && !now.empty() && before.back() == now.back()) {
        before = before.first(before.size() - 1);
        now = now.first(now.size() - 1);
    }
    before = before.first(std::min(before.size(), kMostCompared));
    now = now.first(std::min(now.size(), kMostCompared));
    const std::size_t width = now.size() + 1;
    const std::vector<std::uint16_t> lengths = CommonLengths(before, now);
    std::vector<Difference> found;
    for (std::size_t i = 0, j = 0; i < before.size() || j < now.size();) {
        if (i < before.size() && j < now.size() && before[i] == now[j]) {
            ++i;
            ++j;
        } else if (j == now.size() ||
                   (i < before.size() && lengths[(i + 1) * width + j] >= lengths[i * width + j + 1])) {
            found.push_back({"  - " + before[i++]});
        } else {
            found.push_back({"  + " + now[j++]});
        }
    }
    const std::size_t shown = std::min(found.size(), kMostShown);
    differences.insert(differences.end(), found.begin(), found.begin() + static_cast<std::ptrdiff_t>(shown));
    if (shown < found.size())
        differences.push_back({"  ... and " + std::to_string(found.size() - shown) + " more lines"});
}

} // namespace

std::vector<Difference> Compare(const RoundOutcome &before, const RoundOutcome &now) {
    std::vector<Difference> differences;
    CompareChecks(before, now, differences);
    ComparePictures(before, now, differences);
    CompareOutput(before.output, now.output, differences);
    return differences;
}

} // namespace host
