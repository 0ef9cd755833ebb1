// The table of services that the library gets instead of the host's. Owns both
// the replacement and the pointer to the host's table.
#include "Services.h"

#include "Forward.h"
#include "Kinds.h"
#include "PrototypeTable.h"
#include "ValueText.h"

#include <algorithm>
#include <cstddef>

namespace crossings {
namespace {

const AVSKHostCallbacks *gTable = nullptr; // the host's own

template <class T>
T Neutral() {
    return T();
}

// NOLINTBEGIN(bugprone-macro-parentheses): a declaration cannot have them
#define AVSK_CALLBACK(result, name, parameters, entry, names, ...)
#define AVSK_FUNCTION(result, name, parameters, names, ...)
#define AVSK_SERVICE(result, name, parameters, names, ...)                                                             \
    result Serve_##name parameters {                                                                                   \
        if (AreByObserver()) /* the host must not notice */                                                            \
            return Neutral<result>();                                                                                  \
        const Forward handOn{gPrototypes[kIndex_##name], Side::Host, nullptr, gTable->name};                           \
        return handOn(__VA_ARGS__);                                                                                    \
    }
#include "Prototypes.inc"
#undef AVSK_SERVICE
// NOLINTEND(bugprone-macro-parentheses)

constexpr const Prototype *kServices[] = {
#define AVSK_SERVICE(result, name, parameters, names, ...) &gPrototypes[kIndex_##name],
#include "Prototypes.inc"
#undef AVSK_SERVICE
};

// The library keeps the pointer for ever.
AVSKHostCallbacks gReplacement = {
    .version = 0,
    .sizeInBytes = 0,
#define AVSK_SERVICE(result, name, parameters, names, ...) .name = Serve_##name,
#include "Prototypes.inc"
#undef AVSK_SERVICE
};

} // namespace

const AVSKHostCallbacks *Structure<AVSKHostCallbacks>::Replaced() const {
    if (!mGiven)
        return nullptr;
    gTable = mGiven;
    gReplacement.version = mGiven->version;
    gReplacement.sizeInBytes = mGiven->sizeInBytes;
    // What the host leaves out, the library must find missing. The size may be wrong, so the memory may not be there.
    AVSKHostCallbacks given{};
    const auto size = std::min(static_cast<std::size_t>(std::max(mGiven->sizeInBytes, 0)), sizeof given);
    const bool isKnown = ReadMemory(mGiven, &given, size);
#define AVSK_SERVICE(result, name, parameters, names, ...)                                                             \
    gReplacement.name = isKnown && offsetof(AVSKHostCallbacks, name) < size && !given.name ? nullptr : Serve_##name;
#include "Prototypes.inc"
#undef AVSK_SERVICE
#undef AVSK_FUNCTION
#undef AVSK_CALLBACK
    return &gReplacement;
}

const Prototype *FindService(std::string_view name) {
    const auto *const found = std::find_if(std::begin(kServices), std::end(kServices),
                                           [name](const Prototype *service) { return service->name == name; });
    return found == std::end(kServices) ? nullptr : *found;
}

std::vector<std::string> ServiceNames() {
    std::vector<std::string> names;
    for (const Prototype *service : kServices)
        names.emplace_back(service->name);
    return names;
}

int SlotOf(const Prototype &service) {
    constexpr int kNumbers = 2; // version and size, before the slots
    const auto *const found = std::find(std::begin(kServices), std::end(kServices), &service);
    return found == std::end(kServices) ? 0 : kNumbers + static_cast<int>(found - std::begin(kServices));
}

int CountParameters(const Prototype &function) {
    const std::string_view names = function.parameters;
    return names.empty() ? 0 : 1 + static_cast<int>(std::count(names.begin(), names.end(), ','));
}

} // namespace crossings
