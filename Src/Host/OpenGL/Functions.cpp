// The table of functions; see Functions.h.
#include "Functions.h"

#include <cstring>

// Compilers take longer literals than they have to.
#pragma GCC diagnostic ignored "-Woverlength-strings"

namespace opengl {
namespace {

constexpr const char kFunctionTexts[] =
#include "FunctionTexts.inc"
    ;

} // namespace

const Function kFunctions[kFunctionCount] = {
#define AVSK_OPENGL(name, text, types, words, flags, groups) {text, types, words, flags, groups},
#include "Functions.inc"
#undef AVSK_OPENGL
};

const char *Function::Name() const { return kFunctionTexts + text; }
const char *Function::Parameters() const { return Name() + std::strlen(Name()) + 1; }
const char *Function::Types() const { return kFunctionTexts + types; }

} // namespace opengl
