// The slots about the navigation database and the flight plan. Both are empty
// here: searches find nothing, edits have nothing to change, and what would
// describe an entry leaves the plugin's variables as they were.
#include "HostTable.h"
#include "Simulator.h"

namespace host {
namespace {

constexpr int kNoNavAid = -1;
constexpr int kUnknownType = 0;

int GetFirstNavAid() {
    Enter();
    return kNoNavAid;
}
// Serves the next navaid, and the first and last of a type.
int SearchNavAid(int /*navAidOrType*/) {
    Enter();
    return kNoNavAid;
}
int FindNavAid(AVSKWord, AVSKWord, AVSKWord, AVSKWord, AVSKWord, AVSKWord) {
    Enter();
    return kNoNavAid;
}
void GetNavAidInfo(int, AVSKWord, AVSKWord, AVSKWord, AVSKWord, AVSKWord, AVSKWord, AVSKWord, AVSKWord, AVSKWord) {
    Enter();
}

// Serves the number of entries, the entry shown and the entry flown to.
int NoEntry() {
    Enter();
    return 0;
}
// Serves showing, flying to and clearing an entry.
void ChangeEntry(int /*index*/) { Enter(); }
void GetFMSEntryInfo(int, AVSKWord, AVSKWord, AVSKWord, AVSKWord, AVSKWord, AVSKWord) { Enter(); }
void SetFMSEntryInfo(int, AVSKWord, AVSKWord) { Enter(); }
void SetFMSEntryLatLon(int, float, float, AVSKWord) { Enter(); }

int GetGPSDestinationType() {
    Enter();
    return kUnknownType;
}
int GetGPSDestination() {
    Enter();
    return kNoNavAid;
}

} // namespace

void FillNavigationSlots(AVSKHostCallbacks &table) {
    table.getFirstNavAid = GetFirstNavAid;
    table.getNextNavAid = SearchNavAid;
    table.findFirstNavAidOfType = SearchNavAid;
    table.findLastNavAidOfType = SearchNavAid;
    table.findNavAid = FindNavAid;
    table.getNavAidInfo = GetNavAidInfo;
    table.countFMSEntries = NoEntry;
    table.getDisplayedFMSEntry = NoEntry;
    table.getDestinationFMSEntry = NoEntry;
    table.setDisplayedFMSEntry = ChangeEntry;
    table.setDestinationFMSEntry = ChangeEntry;
    table.getFMSEntryInfo = GetFMSEntryInfo;
    table.setFMSEntryInfo = SetFMSEntryInfo;
    table.setFMSEntryLatLon = SetFMSEntryLatLon;
    table.clearFMSEntry = ChangeEntry;
    table.getGPSDestinationType = GetGPSDestinationType;
    table.getGPSDestination = GetGPSDestination;
}

} // namespace host
