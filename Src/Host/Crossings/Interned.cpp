// Stores texts for ever; see Interned.h. Owns them. Only the observed thread calls it.
#include "Interned.h"

#include <algorithm>
#include <cstddef>
#include <unordered_map>

#include <sys/mman.h>

namespace crossings {
namespace {

char *gFree = nullptr;
std::size_t gFreeBytes = 0;

std::string_view Keep(const std::string &text) {
    constexpr std::size_t kBlock = 64 * 1024;
    if (text.size() > gFreeBytes) {
        const std::size_t size = std::max(kBlock, text.size());
        void *block = mmap(nullptr, size, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
        if (block == MAP_FAILED)
            return "?";
        gFree = static_cast<char *>(block);
        gFreeBytes = size;
    }
    const std::string_view kept(gFree, text.size());
    std::copy(text.begin(), text.end(), gFree);
    gFree += text.size();
    gFreeBytes -= text.size();
    return kept;
}

} // namespace

const InternedText &Interned(const std::string &text) {
    static auto &texts = *new std::unordered_map<std::string, InternedText>;
    const auto [known, isNew] = texts.try_emplace(text);
    if (isNew)
        known->second = {text, Keep(text)};
    return known->second;
}

} // namespace crossings
