// The simulator's own textures, which plugins may use too.
#ifndef AVSK_HOST_SERVICES_OWN_TEXTURES_H
#define AVSK_HOST_SERVICES_OWN_TEXTURES_H

#include "Screen/Image.h"

namespace host {

// 1: the panel's face, dark brushed metal. 2: the ground around the start as a map, north upward, 12 km wide.
// 3: the halo of a light, white and transparent toward its edge. The first row is the lowest.
Image OwnTexture(int number);

} // namespace host

#endif
