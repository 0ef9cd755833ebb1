// The terrain; see Terrain.h. Used by probes, the navigation data and the camera.
#include "Terrain.h"

#include <cmath>

namespace host {

bool IsOverTerrain(double x, double z) { return std::fabs(x) <= kTerrainExtent && std::fabs(z) <= kTerrainExtent; }

Ground GroundAt(double x, double z) {
    constexpr double kMean = 60;
    constexpr double kSwing = 40;
    constexpr double kLengthX = 900;
    constexpr double kLengthZ = 700;
    const double u = x / kLengthX;
    const double v = z / kLengthZ;
    return {kMean + kSwing * std::sin(u) * std::cos(v), kSwing / kLengthX * std::cos(u) * std::cos(v),
            -kSwing / kLengthZ * std::sin(u) * std::sin(v)};
}

} // namespace host
