// Names of OpenGL's constants.
#ifndef AVSK_HOST_OPENGL_ENUMERANTS_H
#define AVSK_HOST_OPENGL_ENUMERANTS_H

#include "Crossings/Line.h"

#include <cstdint>
#include <string_view>

namespace opengl {

// The name of a constant in a group of the registry, or of any if the group is -1 or has no such constant. Empty if
// there is none.
std::string_view NameOf(std::uint32_t value, int group = -1);

// "GL_TRIANGLES", or the number.
void AddEnumerant(crossings::Line &line, std::uint32_t value, int group);
// "GL_COLOR_BUFFER_BIT|GL_DEPTH_BUFFER_BIT", and a number for bits that have no name.
void AddBits(crossings::Line &line, std::uint32_t bits, int group);

// The group of a parameter; -1: none. Counts from a function's Function::groups the parameters of type E and B.
int GroupOfParameter(std::size_t index);

} // namespace opengl

#endif
