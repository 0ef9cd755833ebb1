// The state that plugins must leave as they found it: read from the context, and restored.
#ifndef AVSK_HOST_OPENGL_STATE_H
#define AVSK_HOST_OPENGL_STATE_H

#include "Api.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>

namespace opengl {

enum class StateKind : std::uint8_t {
    Attributes,
    Unit,
    Mode,
    Matrices,
    Arrays,
    Program,
    Framebuffer,
    Scissor,
    Graphics,
    Texture,
};

struct StatePart {
    StateKind kind;
    const char *what; // "GL_BLEND", "the texture of unit 0"
    GLenum name;      // of the value
    GLenum target;    // or another name that goes with it
    int (*read)(const StatePart &part);
    void (*restore)(const StatePart &part, int was);
    std::string (*text)(int value);
};

// Restoring one may change those behind it, none before it.
inline constexpr std::size_t kStateParts = 44;
extern const std::array<StatePart, kStateParts> kState;

using State = std::array<int, kStateParts>;

// These need a context, and no plugin may be between glBegin and glEnd or compile a list.
State ReadState();

} // namespace opengl

#endif
