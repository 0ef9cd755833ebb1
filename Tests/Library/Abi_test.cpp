// What crosses the border: the layout of every structure, every constant, and
// every slot. A failure names what changed, and from what to what.
#include "FakeHost.h"

#include "AVSK/AVSK.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <regex>

namespace {

struct Fact {
    std::string name;
    long is;
    long was;
};
using Facts = std::vector<Fact>;

// Two lists, in both directions.
Lines Differences(Lines listed, Lines found) {
    std::sort(listed.begin(), listed.end());
    std::sort(found.begin(), found.end());
    Lines gone;
    Lines added{"unlisted:"};
    std::set_difference(listed.begin(), listed.end(), found.begin(), found.end(), std::back_inserter(gone));
    std::set_difference(found.begin(), found.end(), listed.begin(), listed.end(), std::back_inserter(added));
    if (added.size() > 1)
        gone.insert(gone.end(), added.begin(), added.end());
    return gone;
}

Lines Names(const Facts &facts) {
    Lines names;
    for (const Fact &fact : facts)
        names.push_back(fact.name);
    return names;
}

// What the groups of the pattern match in the public headers, joined.
Lines InHeaders(const char *pattern) {
    const std::regex regex(pattern, std::regex::ECMAScript | std::regex::multiline);
    Lines found;
    for (const auto &header : std::filesystem::directory_iterator(AVSK_TEST_HEADERS)) {
        std::ifstream file(header.path());
        const std::string text((std::istreambuf_iterator<char>(file)), {});
        for (std::sregex_iterator match(text.begin(), text.end(), regex), end; match != end; ++match)
            found.push_back(match->str(1) + match->str(2));
    }
    return found;
}

// clang-format off
#define IS(name, value) {#name, name, value},
const Facts kConstants = {
    IS(AVSK_HOST_SLOTS, 72) IS(AVSK_HOST_INTERFACE, 18) IS(AVSK_VERSION, 210) IS(AVSK_PLUGIN_AERIVO, 0)
    IS(NO_PLUGIN_ID, -1) IS(AVSK_TEXT_SIZE, 256) IS(AVSK_PATH_SIZE, 512) IS(AVSK_HOT_KEY_TEXT_SIZE, 512)
    IS(AVSK_PROBE_Y, 0) IS(AVSKCameraUncontrolled, 0) IS(AVSKCameraUntilViewChanges, 1) IS(AVSKCameraForever, 2)
    IS(AVSKDataTypeInt, 1) IS(AVSKDataTypeFloat, 2) IS(AVSKDataTypeDouble, 4) IS(AVSKDataTypeFloatArray, 8)
    IS(AVSKDataTypeIntArray, 16) IS(AVSKDataTypeData, 32) IS(AVSKMouseDown, 1) IS(AVSKMouseDrag, 2) IS(AVSKMouseUp, 3)
    IS(AVSKHostEventFrame, 0) IS(AVSKHostEventViewChanged, 1) IS(AVSKHostEventBroadcast101, 2)
    IS(AVSKHostEventPlaneLoaded, 3) IS(AVSKHostEventBroadcast103, 4) IS(AVSKHostEventUnused, 5)
    IS(AVSKHostEventBroadcast104, 6) IS(AVSKHostEventBroadcast105, 7) IS(AVSKHostEventPlaneUnloaded, 8)
    IS(AVSKHostEventCommands, 9) IS(AVSKHostEventFrameEnd, 10) IS(AVSKHostEventBroadcast107, 11)
    IS(AVSKHostEventSceneryFolder, 12) IS(AVSKHostEventBroadcast108, 13) IS(AVSKMessagePlaneLoaded, 102)
    IS(AVSKMessagePlaneUnloaded, 106) IS(AVSKMenuNoCheck, 0) IS(AVSKMenuUnchecked, 1) IS(AVSKMenuChecked, 2)
    IS(AVSKFlightLoopPhaseBefore, 0) IS(AVSKFlightLoopPhaseAfter, 1) IS(AVSKProbeHit, 0) IS(AVSKProbeError, 1)
    IS(AVSKProbeMissed, 2) IS(AVSKCommandPhaseBegin, 0) IS(AVSKCommandPhaseContinue, 1) IS(AVSKCommandPhaseEnd, 2)
};
#undef IS
#define IS(type, size) {#type, sizeof(type), size},
const Facts kStructures = {
    IS(AVSKCreateFlightLoopParams, 16) IS(AVSKCreateWindowParams, 48) IS(AVSKProbeInfo, 44) IS(AVSKDrawInfo, 28)
    IS(AVSKCameraPosition, 28) IS(AVSKHostCallbacks, 288)
};
const Facts kTypes = {
    IS(AVSKWord, 4) IS(AVSKPluginID, 4) IS(AVSKNavRef, 4) IS(AVSKDataRef, 4) IS(AVSKDataTypeBits, 4)
    IS(AVSKMouseStatus, 4) IS(AVSKHostEvent, 4) IS(AVSKMenuCheck, 4) IS(AVSKProbeResult, 4) IS(AVSKCommandPhase, 4)
    IS(AVSKCameraControlDuration, 4)
};
#undef IS
#define AT(type, field, offset) {#type "." #field, offsetof(type, field), offset},
const Facts kFields = {
#define LOOP(field, offset) AT(AVSKCreateFlightLoopParams, field, offset)
    LOOP(structSize, 0) LOOP(phase, 4) LOOP(callbackFunc, 8) LOOP(refcon, 12)
#define WINDOW(field, offset) AT(AVSKCreateWindowParams, field, offset)
    WINDOW(structSize, 0) WINDOW(left, 4) WINDOW(top, 8) WINDOW(right, 12) WINDOW(bottom, 16) WINDOW(visible, 20)
    WINDOW(drawFunc, 24) WINDOW(mouseClickFunc, 28) WINDOW(keyFunc, 32) WINDOW(cursorFunc, 36)
    WINDOW(mouseWheelFunc, 40) WINDOW(refcon, 44)
#define PROBE(field, offset) AT(AVSKProbeInfo, field, offset)
    PROBE(structSize, 0) PROBE(triple1, 4) PROBE(triple2, 16) PROBE(triple3, 28) PROBE(flag, 40)
#define DRAW(field, offset) AT(AVSKDrawInfo, field, offset)
    DRAW(structSize, 0) DRAW(x, 4) DRAW(y, 8) DRAW(z, 12) DRAW(angle1, 16) DRAW(angle2, 20) DRAW(angle3, 24)
#define CAMERA(field, offset) AT(AVSKCameraPosition, field, offset)
    CAMERA(f1, 0) CAMERA(f2, 4) CAMERA(f3, 8) CAMERA(f4, 12) CAMERA(f5, 16) CAMERA(f6, 20) CAMERA(f7, 24)
};

#define AVSK_SLOT(number, name) {#name, offsetof(AVSKHostCallbacks, name) / 4, number},
const Facts kSlots = {AVSK_SLOT(0, version) AVSK_SLOT(1, sizeInBytes) AVSK_TEST_SLOTS(AVSK_SLOT)};
// clang-format on

TEST(Abi, NothingChanged) {
    for (const Facts *facts : {&kConstants, &kStructures, &kTypes, &kFields, &kSlots})
        for (const Fact &fact : *facts)
            EXPECT_EQ(fact.is, fact.was) << fact.name;
    EXPECT_EQ(kSlots.size(), static_cast<std::size_t>(AVSK_HOST_SLOTS));
}

TEST(Abi, EverythingInThePublicHeadersIsListedHere) {
    EXPECT_EQ(Differences(Names(kConstants), InHeaders(R"(^(?:#define | {4}(?=AVSK))(\w+) (?:= )?[(\d-])")), Lines());
    EXPECT_EQ(Differences(Names(kStructures), InHeaders(R"(^typedef struct (\w+) \{)")), Lines());
    // A slot is its comment "Slot N: ..." and the name declared behind it.
    Lines slots;
    for (const Fact &slot : kSlots)
        slots.push_back(Line(slot.was, slot.name));
    EXPECT_EQ(Differences(slots, InHeaders(R"(Slot (\d+):[\s\S]*?\*/\n    [^;(]*?(?:\(\*)?(\w+)(?:\)\(|;))")), Lines());
}

} // namespace
