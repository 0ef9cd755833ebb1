// The flight plan: up to a hundred entries. One is displayed, one is the destination.
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
        int ref = NavData::kNone; // the navaid; kNone for a position
        float latitude = 0, longitude = 0;
        int altitude = 0; // metres
    };

    // From Brenn Valley by Dunmoor to Marsh End.
    explicit FlightPlan(const NavData &data);

    int Count() const { return static_cast<int>(mEntries.size()); }
    // Null if there is no such entry.
    const Entry *Find(int index) const;

    // An index past the last entry extends the plan, with empty entries in
    // between if needed. An index out of range or an unknown navaid changes nothing.
    void SetNavAid(const NavData &data, int index, int ref, int altitude);
    void SetPosition(int index, float latitude, float longitude, int altitude);
    // Removes the entry; later entries move up.
    void Clear(int index);

    int Shown() const { return mShown; }
    int Destination() const { return mDestination; }
    // Ignored if there is no such entry.
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
