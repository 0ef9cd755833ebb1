// Lists the table of prototypes; see Prototypes.h.
#include "Prototypes.h"

namespace crossings {

std::vector<std::string> PrototypeNames() {
    return {
#define AVSK_FUNCTION(result, name, parameters, names, ...) #name,
#define AVSK_SERVICE(result, name, parameters, names, ...) #name,
#define AVSK_CALLBACK(result, name, parameters, entry, names, ...) #name,
#include "Prototypes.inc"
    };
}

} // namespace crossings
