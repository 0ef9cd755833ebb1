// The navigation database; see NavData.h. Made once by the simulator, read by
// the navigation slots.
#include "NavData.h"

#include "Aeroplane.h"
#include "Terrain.h"

#include <cmath>
#include <utility>

namespace host {
namespace {

struct Station {
    const char *id;
    const char *name;
    double east, north; // kilometres from the start
    int frequency;
    float heading;
};

constexpr Station kAirports[] = {
    {"AVBR", "Brenn Valley", 3, 5, 0, 70},    {"AVDU", "Dunmoor", -12, 8, 0, 250},
    {"AVEL", "Elster Field", 18, -4, 0, 110}, {"AVHO", "Holm Regional", -7, -15, 0, 180},
    {"AVKE", "Kestrel Ridge", 25, 21, 0, 40}, {"AVMA", "Marsh End", -28, 3, 0, 300},
    {"AVOR", "Orra Lake", 9, 30, 0, 150},     {"AVTI", "Tilling", -20, -32, 0, 90},
};
constexpr Station kVors[] = {
    {"BRN", "Brenn", 2, 7, 11230, 0},     {"DUN", "Dunmoor", -14, 9, 11345, 0}, {"ELS", "Elster", 20, -6, 11410, 0},
    {"KES", "Kestrel", 27, 19, 11575, 0}, {"ORR", "Orra", 8, 33, 11680, 0},     {"TIL", "Tilling", -22, -30, 11795, 0},
};
constexpr Station kNdbs[] = {
    {"BV", "Brenn Outer", 0, 2, 312, 0},    {"DM", "Dunmoor Outer", -9, 7, 334, 0},
    {"EF", "Elster Outer", 14, -3, 351, 0}, {"HR", "Holm Outer", -7, -10, 368, 0},
    {"ME", "Marsh Outer", -24, 1, 389, 0},  {"OL", "Orra Outer", 7, 26, 402, 0},
};

// Approximates the squared distance: the earth is taken as flat around the start.
double Distance2(const NavAid &navAid, float latitude, float longitude) {
    const LocalPoint a = ToLocal({navAid.latitude, navAid.longitude, 0});
    const LocalPoint b = ToLocal({latitude, longitude, 0});
    return (a.x - b.x) * (a.x - b.x) + (a.z - b.z) * (a.z - b.z);
}

bool Fits(const NavAid &navAid, const NavData::Search &search) {
    return (search.types == kNavUnknown || (search.types & navAid.type) != 0) &&
           navAid.name.find(search.nameFragment) != std::string::npos &&
           navAid.id.find(search.idFragment) != std::string::npos &&
           (!search.frequency || *search.frequency == navAid.frequency);
}

} // namespace

NavData::NavData() {
    const auto addAll = [this](const auto &stations, NavAidType type) {
        for (const Station &s : stations)
            Add({type, s.id, s.name, 0, 0, 0, s.frequency, s.heading}, s.east, s.north);
    };
    addAll(kAirports, kNavAirport);
    addAll(kVors, kNavVor);
    addAll(kNdbs, kNavNdb);
    // Fixes on a square grid, named by column and row.
    constexpr int kSide = 4;
    constexpr double kSpacing = 12;
    for (int i = 0; i < kSide * kSide; ++i) {
        const int column = i % kSide;
        const int row = i / kSide;
        std::string id = "FIX";
        id += static_cast<char>('A' + column);
        id += static_cast<char>('A' + row);
        const std::string name = id;
        Add({kNavFix, std::move(id), name, 0, 0, 0, 0, 0}, (column - 1.5) * kSpacing, (row - 1.5) * kSpacing);
    }
}

void NavData::Add(NavAid navAid, double kilometresEast, double kilometresNorth) {
    LocalPoint where{kilometresEast * 1000, 0, -kilometresNorth * 1000};
    where.y = GroundAt(where.x, where.z).height;
    const WorldPoint world = ToWorld(where);
    navAid.latitude = static_cast<float>(world.latitude);
    navAid.longitude = static_cast<float>(world.longitude);
    navAid.height = static_cast<float>(world.altitude);
    mNavAids.push_back(std::move(navAid));
}

const NavAid *NavData::Find(int ref) const {
    return ref >= 0 && ref < static_cast<int>(mNavAids.size()) ? &mNavAids[static_cast<std::size_t>(ref)] : nullptr;
}

int NavData::First(int type) const {
    for (int ref = 0; const NavAid *navAid = Find(ref); ++ref) {
        if (navAid->type == type)
            return ref;
    }
    return kNone;
}

int NavData::Last(int type) const {
    int last = First(type);
    while (last != kNone && Find(last + 1) && Find(last + 1)->type == type)
        ++last;
    return last;
}

int NavData::Next(int ref) const { return Find(ref) && Find(ref + 1) ? ref + 1 : kNone; }

int NavData::Match(const Search &search) const {
    for (int ref = 0; const NavAid *navAid = Find(ref); ++ref) {
        if (Fits(*navAid, search))
            return ref;
    }
    return kNone;
}

int NavData::MatchNearest(const Search &search, float latitude, float longitude) const {
    int nearest = kNone;
    double best = HUGE_VAL;
    for (int ref = 0; const NavAid *navAid = Find(ref); ++ref) {
        if (!Fits(*navAid, search))
            continue;
        const double distance = Distance2(*navAid, latitude, longitude);
        if (distance < best) {
            best = distance;
            nearest = ref;
        }
    }
    return nearest;
}

const NavAid *NavData::Airport(std::string_view id) const {
    for (const NavAid &navAid : mNavAids) {
        if (navAid.type == kNavAirport && navAid.id == id)
            return &navAid;
    }
    return nullptr;
}

} // namespace host
