// The flight plan; see FlightPlan.h. Changed only through the navigation slots.
#include "FlightPlan.h"

#include <algorithm>

namespace host {

FlightPlan::FlightPlan(const NavData &data) {
    constexpr int kAltitude = 1200;
    SetNavAid(data, 0, data.Match({"Brenn", "", {}, kNavAirport}), 0);
    SetNavAid(data, 1, data.Match({"Dunmoor", "", {}, kNavVor}), kAltitude);
    SetNavAid(data, 2, data.Match({"Marsh", "", {}, kNavAirport}), 0);
    mDestination = 1;
}

const FlightPlan::Entry *FlightPlan::Find(int index) const {
    return index >= 0 && index < Count() ? &mEntries[static_cast<std::size_t>(index)] : nullptr;
}

void FlightPlan::Set(int index, const Entry &entry) {
    if (index < 0 || index >= kMost)
        return;
    const auto at = static_cast<std::size_t>(index);
    if (at >= mEntries.size())
        mEntries.resize(at + 1);
    mEntries[at] = entry;
}

void FlightPlan::SetNavAid(const NavData &data, int index, int ref, int altitude) {
    if (const NavAid *navAid = data.Find(ref))
        Set(index, {navAid->type, ref, navAid->latitude, navAid->longitude, altitude});
}

void FlightPlan::SetPosition(int index, float latitude, float longitude, int altitude) {
    Set(index, {kNavPosition, NavData::kNone, latitude, longitude, altitude});
}

void FlightPlan::Clear(int index) {
    if (!Find(index))
        return;
    mEntries.erase(mEntries.begin() + index);
    // The displayed entry and the destination stay the same entries. If one of
    // them is removed, the next entry takes its place, or else the last.
    for (int *marked : {&mShown, &mDestination}) {
        if (*marked > index || *marked >= Count())
            *marked = std::max(*marked - 1, 0);
    }
}

void FlightPlan::Show(int index) {
    if (Find(index))
        mShown = index;
}

void FlightPlan::FlyTo(int index) {
    if (Find(index))
        mDestination = index;
}

} // namespace host
