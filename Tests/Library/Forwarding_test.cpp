// Calls that hand their arguments to one host service as they are.
#include "World.h"

#include <bit>

namespace {

// As a float each of the words from here on is a signalling NaN, which
// arithmetic and conversions would quieten.
constexpr AVSKWord kSignallingNaN = 0x7FA00001;

// A float that a function returns may pass through the x87, which quietens it as well.
template <class Argument>
void SetWord(Argument &argument, AVSKWord word) {
    static_assert(sizeof argument == sizeof word);
    if constexpr (std::is_same_v<Argument, const char *>)
        argument = "text"; // goes to the journal
    else
        std::memcpy(&argument, &word, sizeof word);
}

template <class... Arguments>
std::vector<AVSKWord> Words(Arguments... arguments) {
    return {std::bit_cast<AVSKWord>(arguments)...};
}

// Expects one call of the service, with the same words, and its answer back.
template <class Result, class... Arguments>
void ExpectForwarded(const char *name, Result (*call)(Arguments...),
                     std::function<Result(Arguments...)> HostServices::*service) {
    SCOPED_TRACE(name);
    std::vector<std::vector<AVSKWord>> received;
    Host().on.*service = [&received](Arguments... arguments) -> Result {
        received.push_back(Words(arguments...));
        if constexpr (!std::is_void_v<Result>)
            return std::bit_cast<Result>(0x89ABCDEF);
    };
    std::tuple<Arguments...> given;
    AVSKWord word = kSignallingNaN;
    std::apply([&word](Arguments &...arguments) { (SetWord(arguments, word++), ...); }, given);
    if constexpr (std::is_void_v<Result>)
        std::apply(call, given);
    else
        EXPECT_EQ(std::bit_cast<AVSKWord>(std::apply(call, given)), 0x89ABCDEF);
    ASSERT_EQ(received.size(), 1U);
    EXPECT_EQ(received.front(), std::apply(Words<Arguments...>, given));
    Host().on.*service = nullptr;
}

#define EXPECT_FORWARDED(function, service) ExpectForwarded(#function, function, &HostServices::service);

// clang-format off
#define AVSK_TEST_FORWARDERS(X)                                                                                       \
    X(AVSKGetFirstNavAid, getFirstNavAid) X(AVSKGetNextNavAid, getNextNavAid)                                         \
    X(AVSKFindFirstNavAidOfType, findFirstNavAidOfType) X(AVSKFindLastNavAidOfType, findLastNavAidOfType)             \
    X(AVSKFindNavAid, findNavAid) X(AVSKGetNavAidInfo, getNavAidInfo) X(AVSKCountFMSEntries, countFMSEntries)         \
    X(AVSKGetDisplayedFMSEntry, getDisplayedFMSEntry) X(AVSKGetDestinationFMSEntry, getDestinationFMSEntry)           \
    X(AVSKSetDisplayedFMSEntry, setDisplayedFMSEntry) X(AVSKSetDestinationFMSEntry, setDestinationFMSEntry)           \
    X(AVSKGetFMSEntryInfo, getFMSEntryInfo) X(AVSKSetFMSEntryInfo, setFMSEntryInfo)                                   \
    X(AVSKSetFMSEntryLatLon, setFMSEntryLatLon) X(AVSKClearFMSEntry, clearFMSEntry)                                   \
    X(AVSKGetGPSDestinationType, getGPSDestinationType) X(AVSKGetGPSDestination, getGPSDestination)                   \
    X(AVSKPlaceUserAtAirport, placeUserAtAirport) X(AVSKSimulateKeyPress, simulateKeyPress)                           \
    X(AVSKCommandKeyStroke, commandKeyStroke) X(AVSKSpeakString, speakString)                                         \
    X(AVSKGetLanguage, getLanguage) X(AVSKFindSymbol, findSymbol) X(AVSKDebugString, debugString)                     \
    X(AVSKBindTexture2d, bindTexture2d) X(AVSKGenerateTextureNumbers, generateTextureNumbers)                         \
    X(AVSKGetTexture, getTexture) X(AVSKGetScreenSize, getScreenSize) X(AVSKGetFontDimensions, getFontDimensions)     \
    X(AVSKDrawString, drawString) X(AVSKDrawTranslucentDarkBox, drawTranslucentDarkBox)                               \
    X(AVSKSetGraphicsState, setGraphicsState)
// clang-format on

TEST(Forwarding, EveryCallReachesItsServiceBitForBit) {
    World world;
    world.StartQuietly();
    AVSK_TEST_FORWARDERS(EXPECT_FORWARDED)
}

TEST(Forwarding, WhatIsNotAWordReachesTheHostToo) {
    World world;
    world.StartQuietly();
    double *const d[] = {reinterpret_cast<double *>(1), reinterpret_cast<double *>(2), reinterpret_cast<double *>(3)};
    int *const i[] = {reinterpret_cast<int *>(1), reinterpret_cast<int *>(2)};
    EXPECT_EQ(DOES(AVSKReloadScenery()), "reloadScenery()");
    EXPECT_EQ(DOES(AVSKWorldToLocal(1.5, 2.5, 3.5, d[0], d[1], d[2])), "worldToLocal(1.5, 2.5, 3.5, 1, 2, 3)");
    EXPECT_EQ(DOES(AVSKLocalToWorld(1.5, 2.5, 3.5, d[0], d[1], d[2])), "localToWorld(1.5, 2.5, 3.5, 1, 2, 3)");
    EXPECT_EQ(DOES(AVSKDrawNumber(nullptr, 1, 2, -3.25, 4, 5, 6, 7)), "drawNumber(null, 1, 2, -3.25, 4, 5, 6, 7)");
    EXPECT_EQ(DOES(AVSKGetMouseLocation(i[0], i[1])), "getMouseLocation(1, 2, 1)");
    Host().on.lookupObjects = [](auto...) { return 9; };
    EXPECT_EQ(DOES(AVSKLookupObjects("path", 1.5F, 2.5F, nullptr, i[0])),
              "9: lookupObjects(\"path\", 1.5, 2.5, null, 1)");
    Host().on.measureString = [](auto...) { return 1.5F; };
    EXPECT_EQ(DOES(AVSKMeasureString(1, "text", 4)), "1.5: measureString(1, \"text\", 4)");
}

} // namespace
