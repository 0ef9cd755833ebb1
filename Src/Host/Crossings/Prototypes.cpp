// The table of prototypes; see PrototypeTable.h. Crossing.cpp notes in it who observes what.
// Owns the source of the names of OpenGL.
#include "Prototypes.h"

#include "PrototypeTable.h"

#include "AVSK/AVSK.h"
#include "AVSK/AVSKHost.h"

#include <string_view>

namespace crossings {
namespace {

std::vector<std::string> (*gOpenGLNames)() = nullptr;

constexpr Prototype::Form FormOfCallback(std::string_view name) {
    return name == "AVPluginStart"        ? Prototype::Form::Start
           : name.starts_with("AVPlugin") ? Prototype::Form::EntryPoint
                                          : Prototype::Form::Callback;
}

} // namespace

constinit Prototype gPrototypes[] = {
#define AVSK_FUNCTION(result, name, parameters, names, ...) {#name, names, Prototype::Form::Function, KindOf<result>()},
#define AVSK_SERVICE(result, name, parameters, names, ...) {#name, names, Prototype::Form::Service, KindOf<result>()},
#define AVSK_CALLBACK(result, name, parameters, entry, names, ...)                                                     \
    {#name, names, FormOfCallback(#name), KindOf<result>()},
#include "Prototypes.inc"
#undef AVSK_CALLBACK
#undef AVSK_SERVICE
#undef AVSK_FUNCTION
};

std::vector<std::string> PrototypeNames() {
    std::vector<std::string> names;
    for (const Prototype &function : gPrototypes)
        names.emplace_back(function.name);
    return names;
}

std::vector<std::string> OpenGLNames() { return gOpenGLNames ? gOpenGLNames() : std::vector<std::string>(); }
void SetOpenGLNames(std::vector<std::string> (*names)()) { gOpenGLNames = names; }

} // namespace crossings
