// The services that load and save data files. Both types are plain text: a line
// that names the format, then a line "seconds latitude longitude altitude
// heading" for each point. A situation has one point, a track any number.
#include "DataFiles.h"

#include "Common/Text.h"
#include "ServiceTable.h"
#include "Simulator.h"

#include <fstream>
#include <iomanip>
#include <limits>
#include <optional>
#include <utility>

namespace host {
namespace {

enum DataFileType {
    kSituation = 1,
    kTrack = 2,
};

const char *Heading(int type) { return type == kSituation ? "avsk situation 1" : "avsk track 1"; }

Track::Point PointOf(double seconds, const Aeroplane &plane) {
    return {seconds, {plane.latitude, plane.longitude, plane.altitude}, plane.heading};
}

std::optional<std::vector<Track::Point>> ReadPoints(const std::string &path, int type) {
    std::ifstream file(path);
    std::string heading;
    if (!std::getline(file, heading) || heading != Heading(type))
        return std::nullopt;
    std::vector<Track::Point> points;
    Track::Point p{};
    while (file >> p.seconds >> p.where.latitude >> p.where.longitude >> p.where.altitude >> p.heading)
        points.push_back(p);
    if (!file.eof() || file.bad())
        return std::nullopt;
    return points;
}

bool WritePoints(const std::string &path, int type, const std::vector<Track::Point> &points) {
    std::ofstream file(path);
    file << Heading(type) << '\n' << std::setprecision(std::numeric_limits<double>::max_digits10);
    for (const Track::Point &p : points)
        file << p.seconds << ' ' << p.where.latitude << ' ' << p.where.longitude << ' ' << p.where.altitude << ' '
             << p.heading << '\n';
    file.close();
    return !file.fail();
}

int LoadDataFile(int type, const char *path) {
    Simulator &simulator = Enter();
    if (!path || (type != kSituation && type != kTrack))
        return 0;
    auto points = ReadPoints(ResolvePath(simulator.options.root, path), type);
    if (!points || (type == kSituation && points->size() != 1))
        return 0;
    if (type == kTrack) {
        simulator.track.Replace(std::move(*points));
        return 1;
    }
    const Track::Point &p = points->front();
    Aeroplane &plane = simulator.aeroplane;
    plane.latitude = p.where.latitude;
    plane.longitude = p.where.longitude;
    plane.altitude = p.where.altitude;
    plane.heading = p.heading;
    return 1;
}

int SaveDataFile(int type, const char *path) {
    const Simulator &simulator = Enter();
    if (!path || (type != kSituation && type != kTrack))
        return 0;
    const std::string file = ResolvePath(simulator.options.root, path);
    if (type == kTrack)
        return WritePoints(file, type, simulator.track.Points()) ? 1 : 0;
    return WritePoints(file, type, {PointOf(simulator.Elapsed(), simulator.aeroplane)}) ? 1 : 0;
}

} // namespace

void Track::Record(double seconds, const Aeroplane &aeroplane) {
    if (mPoints.empty() || seconds - mPoints.back().seconds >= 1)
        mPoints.push_back(PointOf(seconds, aeroplane));
}

void FillFileSlots(AVSKHostCallbacks &table) {
    table.loadDataFile = LoadDataFile;
    table.saveDataFile = SaveDataFile;
}

} // namespace host
