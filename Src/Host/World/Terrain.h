// The ground: hills between 20 and 100 metres high, without water.
// At x east and z south of the start, in metres, it is
//
//     60 + 40 * sin(x / 900) * cos(z / 700)
//
// metres high, so that a plugin's arithmetic can be checked. The terrain ends
// 50 km from the start on all four sides.
#ifndef AVSK_HOST_WORLD_TERRAIN_H
#define AVSK_HOST_WORLD_TERRAIN_H

namespace host {

struct Ground {
    double height; // metres
    double slopeX; // metres up per metre east
    double slopeZ; // metres up per metre south
};

inline constexpr double kTerrainExtent = 50'000;

// Tells whether there is terrain; false if a coordinate is NaN.
bool IsOverTerrain(double x, double z);
Ground GroundAt(double x, double z);

} // namespace host

#endif
