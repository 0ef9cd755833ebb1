// The services for the navigation database and the flight plan. Every pointer
// may be null. A ref or index that does not exist gives -1 and leaves the
// outputs unchanged. Types are those of NavData.h.
//
//   findNavAid      const char *nameFragment, const char *idFragment, both case-sensitive; float *latitude,
//                   float *longitude: with both the nearest, else the first match; int *frequency; int types, 0 for all
//   getNavAidInfo   int *type, float *latitude, float *longitude, float *height (metres), int *frequency,
//                   float *heading, char *id (32 bytes), char *name (256 bytes), char *isOverTerrain (one: 0 or 1)
//   getFMSEntryInfo int *type, char *id (256 bytes), int *ref, int *altitude (metres), float *latitude,
//                   float *longitude
//   setFMSEntryInfo int ref, int altitude;  setFMSEntryLatLon: altitude last
//
// The GPS flies to the destination entry of the flight plan.
#include "Common/Text.h"
#include "ServiceTable.h"
#include "Simulator.h"
#include "World/FlightPlan.h"
#include "World/NavData.h"
#include "World/Terrain.h"

namespace host {
namespace {

constexpr std::size_t kIdRoom = 32;
constexpr std::size_t kTextRoom = 256;

// An argument that is a pointer in this host.
template <typename T>
T *PointerOf(AVSKWord word) {
    return reinterpret_cast<T *>(word);
}

int GetFirstNavAid() { return Enter().navData.Find(0) ? 0 : NavData::kNone; }
int GetNextNavAid(int navAid) { return Enter().navData.Next(navAid); }
int FindFirstNavAidOfType(int type) { return Enter().navData.First(type); }
int FindLastNavAidOfType(int type) { return Enter().navData.Last(type); }

int FindNavAid(AVSKWord nameFragment, AVSKWord idFragment, AVSKWord latitude, AVSKWord longitude, AVSKWord frequency,
               AVSKWord types) {
    const NavData &data = Enter().navData;
    NavData::Search search;
    if (const auto *text = PointerOf<const char>(nameFragment))
        search.nameFragment = text;
    if (const auto *text = PointerOf<const char>(idFragment))
        search.idFragment = text;
    if (const auto *wanted = PointerOf<const int>(frequency))
        search.frequency = *wanted;
    search.types = static_cast<int>(types);
    const auto *north = PointerOf<const float>(latitude);
    const auto *east = PointerOf<const float>(longitude);
    return north && east ? data.MatchNearest(search, *north, *east) : data.Match(search);
}

void GetNavAidInfo(int ref, AVSKWord type, AVSKWord latitude, AVSKWord longitude, AVSKWord height, AVSKWord frequency,
                   AVSKWord heading, AVSKWord id, AVSKWord name, AVSKWord isOverTerrain) {
    const NavAid *navAid = Enter().navData.Find(ref);
    if (!navAid)
        return;
    const LocalPoint where = ToLocal({navAid->latitude, navAid->longitude, navAid->height});
    Store(PointerOf<int>(type), navAid->type);
    Store(PointerOf<float>(latitude), navAid->latitude);
    Store(PointerOf<float>(longitude), navAid->longitude);
    Store(PointerOf<float>(height), navAid->height);
    Store(PointerOf<int>(frequency), navAid->frequency);
    Store(PointerOf<float>(heading), navAid->heading);
    CopyText(PointerOf<char>(id), kIdRoom, navAid->id);
    CopyText(PointerOf<char>(name), kTextRoom, navAid->name);
    Store(PointerOf<char>(isOverTerrain), static_cast<char>(IsOverTerrain(where.x, where.z) ? 1 : 0));
}

int CountEntries() { return Enter().flightPlan.Count(); }
int GetDisplayedEntry() { return Enter().flightPlan.Shown(); }
int GetDestinationEntry() { return Enter().flightPlan.Destination(); }
void SetDisplayedEntry(int index) { Enter().flightPlan.Show(index); }
void SetDestinationEntry(int index) { Enter().flightPlan.FlyTo(index); }
void ClearEntry(int index) { Enter().flightPlan.Clear(index); }

void GetEntryInfo(int index, AVSKWord type, AVSKWord id, AVSKWord ref, AVSKWord altitude, AVSKWord latitude,
                  AVSKWord longitude) {
    const Simulator &simulator = Enter();
    const FlightPlan::Entry *entry = simulator.flightPlan.Find(index);
    if (!entry)
        return;
    const NavAid *navAid = simulator.navData.Find(entry->ref);
    Store(PointerOf<int>(type), entry->type);
    CopyText(PointerOf<char>(id), kTextRoom, navAid ? navAid->id : "");
    Store(PointerOf<int>(ref), entry->ref);
    Store(PointerOf<int>(altitude), entry->altitude);
    Store(PointerOf<float>(latitude), entry->latitude);
    Store(PointerOf<float>(longitude), entry->longitude);
}

void SetEntryInfo(int index, AVSKWord ref, AVSKWord altitude) {
    Simulator &simulator = Enter();
    simulator.flightPlan.SetNavAid(simulator.navData, index, static_cast<int>(ref), static_cast<int>(altitude));
}

void SetEntryLatLon(int index, float latitude, float longitude, AVSKWord altitude) {
    Enter().flightPlan.SetPosition(index, latitude, longitude, static_cast<int>(altitude));
}

// An empty plan has no destination.
FlightPlan::Entry Destination() {
    const FlightPlan &plan = Enter().flightPlan;
    const FlightPlan::Entry *entry = plan.Find(plan.Destination());
    return entry ? *entry : FlightPlan::Entry();
}

int GetGPSDestinationType() { return Destination().type; }
int GetGPSDestination() { return Destination().ref; }

} // namespace

void FillNavigationSlots(AVSKHostCallbacks &table) {
    table.getFirstNavAid = GetFirstNavAid;
    table.getNextNavAid = GetNextNavAid;
    table.findFirstNavAidOfType = FindFirstNavAidOfType;
    table.findLastNavAidOfType = FindLastNavAidOfType;
    table.findNavAid = FindNavAid;
    table.getNavAidInfo = GetNavAidInfo;
    table.countFMSEntries = CountEntries;
    table.getDisplayedFMSEntry = GetDisplayedEntry;
    table.getDestinationFMSEntry = GetDestinationEntry;
    table.setDisplayedFMSEntry = SetDisplayedEntry;
    table.setDestinationFMSEntry = SetDestinationEntry;
    table.getFMSEntryInfo = GetEntryInfo;
    table.setFMSEntryInfo = SetEntryInfo;
    table.setFMSEntryLatLon = SetEntryLatLon;
    table.clearFMSEntry = ClearEntry;
    table.getGPSDestinationType = GetGPSDestinationType;
    table.getGPSDestination = GetGPSDestination;
}

} // namespace host
