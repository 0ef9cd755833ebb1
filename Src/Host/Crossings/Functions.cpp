// Defines the library's exported names; each definition hands the call on to the
// library. Plugins bind to these definitions because the dynamic linker looks in
// the program first. The library is linked so that its own calls stay inside it.
#include "Forward.h"
#include "Kinds.h"
#include "PrototypeTable.h"
#include "RealSymbols.h"

#include "AVSK/AVSK.h"
#include "AVSK/AVSKHost.h"

using namespace crossings;

// NOLINTBEGIN(bugprone-macro-parentheses): a declaration cannot have them
#define AVSK_CALLBACK(result, name, parameters, entry, names, ...)
#define AVSK_SERVICE(result, name, parameters, names, ...)
#define AVSK_FUNCTION(result, name, parameters, names, ...)                                                            \
    result name parameters {                                                                                           \
        static const auto next = reinterpret_cast<decltype(&name)>(NextSymbol(#name));                                 \
        const Forward handOn{gPrototypes[kIndex_##name], Side::Library, nullptr, next};                                \
        return handOn(__VA_ARGS__);                                                                                    \
    }
#include "Prototypes.inc"
// NOLINTEND(bugprone-macro-parentheses)
