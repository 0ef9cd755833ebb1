// The table of functions; see Functions.h.
#include "Functions.h"

#include <cstring>

namespace opengl {
namespace {

constexpr const char kTexts[] =
#include "FunctionTexts.inc"
    ;

const char *Next(const char *text) { return text + std::strlen(text) + 1; }

} // namespace

const Function kFunctions[kFunctionCount] = {
#define AVSK_OPENGL(name, text, words, flags, groups) {text, words, flags, groups},
#include "Functions.inc"
#undef AVSK_OPENGL
};

const char *Function::Name() const { return kTexts + text; }
const char *Function::Parameters() const { return Next(Name()); }
std::string_view Function::Types() const { return Next(Parameters()); }

} // namespace opengl
