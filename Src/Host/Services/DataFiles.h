// Data files: type 1 holds the aeroplane's situation, type 2 the track flown.
#ifndef AVSK_HOST_SERVICES_DATA_FILES_H
#define AVSK_HOST_SERVICES_DATA_FILES_H

#include "World/Aeroplane.h"

#include <string>
#include <vector>

namespace host {

// Where the aeroplane was, one point a second.
class Track {
  public:
    struct Point {
        double seconds;
        WorldPoint where;
        double heading;
    };

    void Record(double seconds, const Aeroplane &aeroplane);
    const std::vector<Point> &Points() const { return mPoints; }
    void Replace(std::vector<Point> points) { mPoints = std::move(points); }

  private:
    std::vector<Point> mPoints;
};

} // namespace host

#endif
