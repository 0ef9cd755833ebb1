// The user's aeroplane. It flies a slow circle at constant speed, so that the
// values that plugins read change as in a real flight.
#ifndef AVSK_HOST_WORLD_AEROPLANE_H
#define AVSK_HOST_WORLD_AEROPLANE_H

namespace host {

class Aeroplane {
  public:
    double latitude = kStartLatitude;   // degrees, north is positive
    double longitude = kStartLongitude; // degrees, east is positive
    double altitude = kStartAltitude;   // metres above the sea
    double heading = 0;                 // degrees, 0 is north, clockwise
    double climb = 0;                   // metres per second
    double turn = kTurn;                // degrees per second, to the right

    // Advances the flight by some seconds.
    void Step(double seconds);

    static constexpr double kTurn = 3; // a full circle takes two minutes
    static constexpr double kStartLatitude = 47.5;
    static constexpr double kStartLongitude = 11.25;
    static constexpr double kStartAltitude = 1200;
};

// Metres around the start: x east, y up, z south. The earth is taken as flat,
// which is accurate enough for a few kilometres.
struct LocalPoint {
    double x, y, z;
};
struct WorldPoint {
    double latitude, longitude, altitude;
};
LocalPoint ToLocal(const WorldPoint &world);
WorldPoint ToWorld(const LocalPoint &local);

} // namespace host

#endif
