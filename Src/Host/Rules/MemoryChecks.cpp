// Measures the process after each load; see MemoryChecks.h.
#include "MemoryChecks.h"

#include "RunRules.h"

#include "Crossings/Format.h"

#include <algorithm>
#include <fstream>
#include <iterator>
#include <string_view>
#include <utility>

#include <malloc.h>

// Of the sanitizers' runtime, if there is one; mallinfo2() knows nothing of its heap.
// NOLINTNEXTLINE(bugprone-reserved-identifier)
extern "C" __attribute__((weak)) std::size_t __sanitizer_get_current_allocated_bytes();

namespace host {
namespace {

using crossings::Crossing;

constexpr std::size_t kFirst = 4; // the 5th load: tables and caches have their size by then
constexpr std::size_t kFewest = 20;
constexpr double kMappingsAllowed = 0.7; // for each reload
// The observers of this program grow with each reload too: they keep what was left behind.
constexpr std::size_t kBytesAllowed = 16 * 1024; // for each reload
constexpr std::size_t kBytesForEach = 1024;      // for each thing that the plugin made since then

bool MakesSomething(const Crossing &crossing) {
    const std::string_view name = crossing.what.name;
    return crossing.from == crossings::Side::Plugin &&
           (name.starts_with("AVSKRegister") || name.starts_with("AVSKCreate") || name.starts_with("AVSKAppend") ||
            name.starts_with("AVSKShare") || name.starts_with("AVSKLoad"));
}

std::size_t BytesInUse() {
    if (__sanitizer_get_current_allocated_bytes)
        return __sanitizer_get_current_allocated_bytes();
    const struct mallinfo2 heap = mallinfo2();
    return heap.uordblks + heap.hblkhd;
}

// The sanitizers map memory for themselves with each file.
std::size_t CountMappings() {
    if (__sanitizer_get_current_allocated_bytes)
        return 0;
    std::ifstream maps("/proc/self/maps");
    return static_cast<std::size_t>(
        std::count(std::istreambuf_iterator<char>(maps), std::istreambuf_iterator<char>(), '\n'));
}

} // namespace

MemoryChecks::MemoryChecks(Findings &findings) : mFindings(findings) { crossings::AddObserver(*this); }
MemoryChecks::~MemoryChecks() { crossings::RemoveObserver(*this); }

void MemoryChecks::Begins(const Crossing &crossing) { mMade += MakesSomething(crossing) ? 1 : 0; }

void MemoryChecks::Ends(const Crossing &crossing) {
    if (crossing.IsStart() && mPlugin.empty())
        mPlugin = crossings::LabelOf(crossing.plugin);
    if (crossing.depth > 0 || mPlugin.empty())
        return;
    // A call of the host in which plugins were started.
    if (mSamples.empty())
        mReloaded = mPlugin;
    mPlugin.clear();
    mSamples.push_back({BytesInUse(), CountMappings(), mMade});
}

void MemoryChecks::Finish() {
    if (mSamples.size() < kFewest)
        return;
    const Sample &first = mSamples[kFirst];
    const Sample &last = mSamples.back();
    const std::size_t reloads = mSamples.size() - 1 - kFirst;
    const std::size_t bytes = (std::max(last.heap, first.heap) - first.heap) / reloads;
    const double mappings =
        static_cast<double>(std::max(last.mappings, first.mappings) - first.mappings) / static_cast<double>(reloads);
    if (bytes > kBytesAllowed + kBytesForEach * (last.made - first.made) / reloads)
        mFindings.Add(Named(kRunRules, "memory-grows"), mReloaded,
                      {{"what", std::to_string(bytes / 1024) + " KiB of the heap, over " + std::to_string(reloads) +
                                    " reloads"}});
    if (mappings > kMappingsAllowed)
        mFindings.Add(Named(kRunRules, "memory-grows"), mReloaded,
                      {{"what", std::to_string(last.mappings - first.mappings) + " mappings of memory in " +
                                    std::to_string(reloads) + " reloads"}});
}

} // namespace host
