// The library's exported names, each handed on to the library. Plugins bind to
// these first; the library itself is linked so that it does not.
#include "Forward.h"
#include "Kinds.h"
#include "RealSymbols.h"

#include "AVSK/AVSK.h"
#include "AVSK/AVSKHost.h"

using namespace crossings;

// NOLINTBEGIN(bugprone-macro-parentheses): declarations cannot have them
#define AVSK_CALLBACK(result, name, names, arguments, ...)
#define AVSK_SERVICE(result, name, parameters, names, arguments)
#define AVSK_FUNCTION(result, name, parameters, names, arguments)                                                      \
    result name parameters {                                                                                           \
        static constexpr Prototype what{#name, names};                                                                 \
        static const auto next = reinterpret_cast<decltype(&name)>(NextSymbol(#name));                                 \
        return Forward{what, Side::Library, nullptr, next} arguments;                                                  \
    }
#include "Prototypes.inc"
// NOLINTEND(bugprone-macro-parentheses)
