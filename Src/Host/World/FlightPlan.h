// The flight plan: up to a hundred entries, of which one is shown and one is
// flown to.
#ifndef AVSK_HOST_WORLD_FLIGHT_PLAN_H
#define AVSK_HOST_WORLD_FLIGHT_PLAN_H

#include "NavData.h"

#include <vector>

namespace host {

class FlightPlan {
  public:
    static constexpr int kMost = 100;

    struct Entry {
        int type = kNavUnknown;
        int ref = NavData::kNone; // the navaid, if it is one
        float latitude = 0, longitude = 0;
        int altitude = 0; // metres
    };

    // From Brenn Valley by Dunmoor to Marsh End.
    explicit FlightPlan(const NavData &data);

    int Count() const { return static_cast<int>(mEntries.size()); }
    // Null if there is no such entry.
    const Entry *Find(int index) const;

    // Behind the last entry the plan grows, with empty ones in between if need
    // be. An index out of range and an unknown navaid change nothing.
    void SetNavAid(const NavData &data, int index, int ref, int altitude);
    void SetPosition(int index, float latitude, float longitude, int altitude);
    // Takes the entry out; those behind it move up.
    void Clear(int index);

    int Shown() const { return mShown; }
    int Destination() const { return mDestination; }
    // Ignored for an entry that is not there.
    void Show(int index);
    void FlyTo(int index);

  private:
    void Set(int index, const Entry &entry);

    std::vector<Entry> mEntries;
    int mShown = 0;
    int mDestination = 0;
};

} // namespace host

#endif
