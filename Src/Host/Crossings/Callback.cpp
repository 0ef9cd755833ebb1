// Makes thunks; see Callback.h. They are allocated by the page and never freed,
// because the library may call one until the process ends. Owns the pages and the
// map from functions to thunks.
#include "Callback.h"

#include "Symbols.h"

#include <array>
#include <cstddef>
#include <cstring>
#include <memory>
#include <new>
#include <unordered_map>
#include <utility>
#include <vector>

#include <sys/mman.h>

namespace crossings {
namespace {

//     mov eax, callback
//     jmp [eax]
struct __attribute__((packed)) Thunk {
    std::uint8_t mov = 0xB8;
    Callback *callback = nullptr;
    std::uint8_t jmp[2] = {0xFF, 0x20};
    std::uint8_t padding = 0xCC;
};
static_assert(sizeof(Thunk) == 8);
static_assert(offsetof(Callback, entry) == 0);

constexpr std::size_t kPage = 4096;
constexpr std::size_t kThunks = kPage / sizeof(Thunk);

// One page of thunks, filled before it becomes executable, and their callbacks.
struct Page {
    std::array<Callback, kThunks> callbacks;
    Thunk *thunks;
    std::size_t used = 0;

    Page() {
        void *memory = mmap(nullptr, kPage, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
        if (memory == MAP_FAILED)
            throw std::bad_alloc();
        thunks = static_cast<Thunk *>(memory);
        for (std::size_t i = 0; i < kThunks; ++i)
            new (thunks + i) Thunk{.callback = &callbacks[i]};
        if (mprotect(memory, kPage, PROT_READ | PROT_EXEC) != 0)
            throw std::bad_alloc();
    }

    bool Contains(const void *function) const { return function >= thunks && function < thunks + kThunks; }
};

using Key = std::pair<Function, const CallbackKind *>;

struct KeyHash {
    std::size_t operator()(const Key &key) const {
        return reinterpret_cast<std::size_t>(key.first) + 31 * reinterpret_cast<std::size_t>(key.second);
    }
};

std::vector<std::unique_ptr<Page>> &gPages = *new std::vector<std::unique_ptr<Page>>;
std::unordered_map<Key, std::pair<Callback *, Function>, KeyHash> &gThunks =
    *new std::unordered_map<Key, std::pair<Callback *, Function>, KeyHash>;

std::pair<Callback *, Function> NewThunk() {
    if (gPages.empty() || gPages.back()->used == kThunks)
        gPages.push_back(std::make_unique<Page>());
    Page &page = *gPages.back();
    const std::size_t index = page.used++;
    page.callbacks[index].number = (gPages.size() - 1) * kThunks + index;
    return {&page.callbacks[index], reinterpret_cast<Function>(page.thunks + index)};
}

} // namespace

Function Wrap(Function function, const CallbackKind &kind, Side side, AVSKPluginID owner) {
    // The library passes some callbacks on to the host: those are thunks already.
    if (!function || CallbackOf(reinterpret_cast<const void *>(function)))
        return function;
    auto &[callback, thunk] = gThunks[{function, &kind}];
    if (!thunk)
        std::tie(callback, thunk) = NewThunk();
    // A plugin that was loaded since may have other code at this address.
    const InternedText *name = callback->owner == owner && owner != NO_PLUGIN_ID ? callback->name : nullptr;
    *callback = {kind.entry, function, &kind, side, owner, callback->number, name};
    return thunk;
}

const Callback *CallbackOf(const void *function) {
    for (const auto &page : gPages) {
        if (page->Contains(function))
            return static_cast<const Thunk *>(function)->callback;
    }
    return nullptr;
}

const InternedText &LearnName(const Callback &callback) {
    return *(callback.name = &Interned(SymbolAt(reinterpret_cast<const void *>(callback.function))));
}

} // namespace crossings
