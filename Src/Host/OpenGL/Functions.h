// The functions of OpenGL by number, and what is known of each.
#ifndef AVSK_HOST_OPENGL_FUNCTIONS_H
#define AVSK_HOST_OPENGL_FUNCTIONS_H

#include <cstdint>

namespace opengl {

// kNumber_glBegin and so on.
enum Number : std::uint16_t {
#define AVSK_OPENGL(name, text, types, words, flags, groups) kNumber_##name,
#include "Functions.inc"
#undef AVSK_OPENGL
    kFunctionCount
};

enum Flags : std::uint8_t {
    kDraws = 1, // changes pixels of the screen
    kReads = 2, // its effect or result depends on them
};

struct Function {
    std::uint32_t text;
    std::uint32_t types;
    std::uint8_t words; // of its arguments
    std::uint8_t flags;
    std::uint16_t groups;

    const char *Name() const;
    // "mode,first,count"
    const char *Parameters() const;
    // The letter of the result and those of the parameters; see generate_opengl.py.
    const char *Types() const;
};

extern const Function kFunctions[kFunctionCount];

} // namespace opengl

#endif
