// The flight and the map; see Aeroplane.h. Stepped by Simulator.cpp once a frame.
#include "Aeroplane.h"

#include <cmath>
#include <numbers>

namespace host {
namespace {

constexpr double kSpeed = 55;       // metres per second
constexpr double kLowest = 150;     // metres; the aeroplane never lands
constexpr double kHighest = 4000;   // metres
constexpr double kDegree = 111'320; // metres per degree of latitude

double Radians(double degrees) { return degrees * std::numbers::pi / 180; }

double DegreeOfLongitude() { return kDegree * std::cos(Radians(Aeroplane::kStartLatitude)); }

} // namespace

void Aeroplane::Step(double seconds) {
    heading = std::fmod(heading + turn * seconds, 360);
    LocalPoint here = ToLocal({latitude, longitude, altitude});
    here.x += kSpeed * seconds * std::sin(Radians(heading));
    here.z -= kSpeed * seconds * std::cos(Radians(heading));
    here.y = std::fmin(std::fmax(here.y + climb * seconds, kLowest), kHighest);
    const WorldPoint there = ToWorld(here);
    latitude = there.latitude;
    longitude = there.longitude;
    altitude = there.altitude;
}

LocalPoint ToLocal(const WorldPoint &world) {
    return {(world.longitude - Aeroplane::kStartLongitude) * DegreeOfLongitude(), world.altitude,
            (Aeroplane::kStartLatitude - world.latitude) * kDegree};
}

WorldPoint ToWorld(const LocalPoint &local) {
    return {Aeroplane::kStartLatitude - local.z / kDegree, Aeroplane::kStartLongitude + local.x / DegreeOfLongitude(),
            local.y};
}

} // namespace host
