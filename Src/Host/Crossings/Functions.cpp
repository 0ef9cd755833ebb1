// Defines the library's exported names; each definition hands the call on to the
// library. Plugins bind to these definitions because the dynamic linker looks in
// the program first. The library is linked so that its own calls stay inside it.
#include "Forward.h"
#include "Kinds.h"
#include "PrototypeTable.h"
#include "RealSymbols.h"

#include "AVSK/AVSK.h"
#include "AVSK/AVSKHost.h"

#include <atomic>
#include <cstdio>
#include <cstdlib>

using namespace crossings;

namespace {

std::atomic<void (*)()> gOnFirstCall = nullptr;

void *PrepareCall(const char *name) {
    if (const auto prepare = gOnFirstCall.exchange(nullptr))
        prepare();
    if (void *const next = NextSymbol(name))
        return next;
    std::fprintf(stderr, "avsk: the program called %s, but libAVSK.so is not loaded or does not have it\n", name);
    std::abort();
}

} // namespace

void crossings::OnFirstCall(void (*prepare)()) { gOnFirstCall = prepare; }

// NOLINTBEGIN(bugprone-macro-parentheses): a declaration cannot have them
#define AVSK_CALLBACK(result, name, parameters, entry, names, ...)
#define AVSK_SERVICE(result, name, parameters, names, ...)
#define AVSK_FUNCTION(result, name, parameters, names, ...)                                                            \
    result name parameters {                                                                                           \
        static const auto next = reinterpret_cast<decltype(&name)>(PrepareCall(#name));                                \
        const Forward handOn{gPrototypes[kIndex_##name], Side::Library, nullptr, next};                                \
        return handOn(__VA_ARGS__);                                                                                    \
    }
#include "Prototypes.inc"
#undef AVSK_FUNCTION
// NOLINTEND(bugprone-macro-parentheses)

const Export crossings::kExports[] = {
#define AVSK_FUNCTION(result, name, parameters, names, ...) {#name, reinterpret_cast<void *>(&name)},
#include "Prototypes.inc"
#undef AVSK_FUNCTION
#undef AVSK_SERVICE
#undef AVSK_CALLBACK
    {nullptr, nullptr},
};
