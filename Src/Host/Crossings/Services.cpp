// The table that the library gets in the place of the host's.
#include "Forward.h"
#include "Kinds.h"

namespace crossings {
namespace {

const AVSKHostCallbacks *gTable = nullptr; // the host's own

#define AVSK_CALLBACK(result, name, names, arguments, ...)
#define AVSK_FUNCTION(result, name, parameters, names, arguments)
#define AVSK_SERVICE(result, name, parameters, names, arguments)                                                       \
    result Serve_##name parameters {                                                                                   \
        static constexpr Prototype what{#name, names};                                                                 \
        return Forward{what, Side::Host, nullptr, gTable->name} arguments;                                             \
    }
#include "Prototypes.inc"
#undef AVSK_SERVICE

// The library keeps the pointer for ever.
AVSKHostCallbacks gReplacement = {
    .version = 0,
    .sizeInBytes = 0,
#define AVSK_SERVICE(result, name, parameters, names, arguments) .name = Serve_##name,
#include "Prototypes.inc"
};

} // namespace

const AVSKHostCallbacks *Structure<AVSKHostCallbacks>::Replaced() const {
    if (!mGiven)
        return nullptr;
    gTable = mGiven;
    gReplacement.version = mGiven->version;
    gReplacement.sizeInBytes = mGiven->sizeInBytes;
    return &gReplacement;
}

} // namespace crossings
