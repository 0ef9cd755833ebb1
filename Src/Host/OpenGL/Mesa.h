// Finds and opens Mesa's library for drawing into memory, OSMesa.
#ifndef AVSK_HOST_OPENGL_MESA_H
#define AVSK_HOST_OPENGL_MESA_H

#include <string>

namespace opengl {

struct Mesa {
    using Context = struct osmesa_context *;
    using Function = void (*)();

    Context (*create)(unsigned format, int depthBits, int stencilBits, int accumulationBits, Context shared) = nullptr;
    void (*destroy)(Context context) = nullptr;
    void (*pixelStore)(int name, int value) = nullptr;
    unsigned char (*makeCurrent)(Context context, void *buffer, unsigned type, int width, int height) = nullptr;
    Function (*find)(const char *name) = nullptr;
    std::string fault; // why it cannot be used; empty if it can
};

// The same object at each call. Opens it at the first call.
const Mesa &OpenMesa();

} // namespace opengl

#endif
