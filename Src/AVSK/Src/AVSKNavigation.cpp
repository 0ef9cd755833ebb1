// The navigation database and the flight plan: each function passes its
// arguments unchanged to one host service, without checks. Owns no globals;
// called by plugins.
#include "AVSK/AVSKNavigation.h"

#include "AVSKHostTable.h"

int AVSKGetFirstNavAid() { return gHooks->getFirstNavAid(); }

int AVSKGetNextNavAid(int navAid) { return gHooks->getNextNavAid(navAid); }

int AVSKFindFirstNavAidOfType(int type) { return gHooks->findFirstNavAidOfType(type); }

int AVSKFindLastNavAidOfType(int type) { return gHooks->findLastNavAidOfType(type); }

int AVSKFindNavAid(AVSKWord a1, AVSKWord a2, AVSKWord a3, AVSKWord a4, AVSKWord a5, AVSKWord a6) {
    return gHooks->findNavAid(a1, a2, a3, a4, a5, a6);
}

void AVSKGetNavAidInfo(int navAid, AVSKWord a2, AVSKWord a3, AVSKWord a4, AVSKWord a5, AVSKWord a6, AVSKWord a7,
                       AVSKWord a8, AVSKWord a9, AVSKWord a10) {
    gHooks->getNavAidInfo(navAid, a2, a3, a4, a5, a6, a7, a8, a9, a10);
}

int AVSKCountFMSEntries() { return gHooks->countFMSEntries(); }

int AVSKGetDisplayedFMSEntry() { return gHooks->getDisplayedFMSEntry(); }

int AVSKGetDestinationFMSEntry() { return gHooks->getDestinationFMSEntry(); }

void AVSKSetDisplayedFMSEntry(int index) { gHooks->setDisplayedFMSEntry(index); }

void AVSKSetDestinationFMSEntry(int index) { gHooks->setDestinationFMSEntry(index); }

void AVSKGetFMSEntryInfo(int index, AVSKWord a2, AVSKWord a3, AVSKWord a4, AVSKWord a5, AVSKWord a6, AVSKWord a7) {
    gHooks->getFMSEntryInfo(index, a2, a3, a4, a5, a6, a7);
}

void AVSKSetFMSEntryInfo(int index, AVSKWord a2, AVSKWord a3) { gHooks->setFMSEntryInfo(index, a2, a3); }

void AVSKSetFMSEntryLatLon(int index, float latitude, float longitude, AVSKWord a4) {
    gHooks->setFMSEntryLatLon(index, latitude, longitude, a4);
}

void AVSKClearFMSEntry(int index) { gHooks->clearFMSEntry(index); }

int AVSKGetGPSDestinationType() { return gHooks->getGPSDestinationType(); }

int AVSKGetGPSDestination() { return gHooks->getGPSDestination(); }
