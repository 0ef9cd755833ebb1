// The names of everything that crosses the library's border.
#ifndef AVSK_HOST_PROTOTYPES_H
#define AVSK_HOST_PROTOTYPES_H

#include <string>
#include <vector>

namespace crossings {

// The exported functions, the host's services, the callback types and the entry points of plugins.
std::vector<std::string> PrototypeNames();

// The names of OpenGL's functions; empty in programs that do not serve them.
std::vector<std::string> OpenGLNames();
void SetOpenGLNames(std::vector<std::string> (*names)());

} // namespace crossings

#endif
