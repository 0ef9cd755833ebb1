// OpenGL as plugins find it: the state at each draw code, and the services for
// graphics state and textures.
#ifndef AVSK_HOST_SERVICES_GRAPHICS_H
#define AVSK_HOST_SERVICES_GRAPHICS_H

namespace host {

struct Simulator;

// Makes the simulator's textures when a plugin's first call has made the context. Called by Prepare() of Lifetime.h.
void ServeOpenGL();

// Sets the matrices and the graphics state that plugins find at a draw code, if there is a context.
void BeginDrawCode(Simulator &simulator, int drawCode);

} // namespace host

#endif
