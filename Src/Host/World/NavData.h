// The navigation database: three dozen airports, radio beacons and fixes
// around the start, always the same.
#ifndef AVSK_HOST_WORLD_NAV_DATA_H
#define AVSK_HOST_WORLD_NAV_DATA_H

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace host {

// Bits, so that a search can combine types.
enum NavAidType {
    kNavUnknown = 0,
    kNavAirport = 1,
    kNavVor = 2,
    kNavNdb = 4,
    kNavFix = 8,
    kNavPosition = 16, // flight plans only: a position without a navaid
};

struct NavAid {
    int type;
    std::string id;
    std::string name;
    float latitude, longitude; // degrees
    float height;              // of the ground, metres
    int frequency;             // VOR: 10 kHz, NDB: kHz, else 0
    float heading;             // airport: of the runway, degrees; else 0
};

class NavData {
  public:
    static constexpr int kNone = -1;

    NavData();

    // Null if there is no such navaid.
    const NavAid *Find(int ref) const;
    // Navaids of a type have consecutive numbers. kNone if there is none.
    int First(int type) const;
    int Last(int type) const;
    int Next(int ref) const;

    // A condition that is not set matches every navaid.
    struct Search {
        std::string_view nameFragment;
        std::string_view idFragment;
        std::optional<int> frequency;
        int types = kNavUnknown; // sum of types; kNavUnknown stands for all
    };
    // The first match or, with a place, the one that is nearest to it. kNone if there is none.
    int Match(const Search &search) const;
    int MatchNearest(const Search &search, float latitude, float longitude) const;
    // The airport with exactly this ID; null if there is none.
    const NavAid *Airport(std::string_view id) const;

  private:
    void Add(NavAid navAid, double kilometresEast, double kilometresNorth);

    std::vector<NavAid> mNavAids;
};

} // namespace host

#endif
