// The navigation database and the flight plan: every call is the host's.
#include "Forwarding.h"
#include "World.h"

#include "AVSK/AVSKNavigation.h"

namespace {

TEST(Navigation, EveryCallReachesItsServiceBitForBit) {
    World world;
    world.StartQuietly();
    EXPECT_FORWARDED(AVSKGetFirstNavAid, getFirstNavAid);
    EXPECT_FORWARDED(AVSKGetNextNavAid, getNextNavAid);
    EXPECT_FORWARDED(AVSKFindFirstNavAidOfType, findFirstNavAidOfType);
    EXPECT_FORWARDED(AVSKFindLastNavAidOfType, findLastNavAidOfType);
    EXPECT_FORWARDED(AVSKFindNavAid, findNavAid);
    EXPECT_FORWARDED(AVSKGetNavAidInfo, getNavAidInfo);
    EXPECT_FORWARDED(AVSKCountFMSEntries, countFMSEntries);
    EXPECT_FORWARDED(AVSKGetDisplayedFMSEntry, getDisplayedFMSEntry);
    EXPECT_FORWARDED(AVSKGetDestinationFMSEntry, getDestinationFMSEntry);
    EXPECT_FORWARDED(AVSKSetDisplayedFMSEntry, setDisplayedFMSEntry);
    EXPECT_FORWARDED(AVSKSetDestinationFMSEntry, setDestinationFMSEntry);
    EXPECT_FORWARDED(AVSKGetFMSEntryInfo, getFMSEntryInfo);
    EXPECT_FORWARDED(AVSKSetFMSEntryInfo, setFMSEntryInfo);
    EXPECT_FORWARDED(AVSKSetFMSEntryLatLon, setFMSEntryLatLon);
    EXPECT_FORWARDED(AVSKClearFMSEntry, clearFMSEntry);
    EXPECT_FORWARDED(AVSKGetGPSDestinationType, getGPSDestinationType);
    EXPECT_FORWARDED(AVSKGetGPSDestination, getGPSDestination);
}

} // namespace
