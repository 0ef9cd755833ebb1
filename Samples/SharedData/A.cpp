// SharedDataA: writes a shared array each second, one element longer each time.
// No plugin owns the array: this works with B, without B, and before B is loaded.
#include "Shared.h"

#include <AVSK/AVSK.h>

#include <array>
#include <cstdio>

namespace {

AVSKDataRef gValue = nullptr;
int gHeard = 0;

// We are notified of our own writes as well.
void Changed(void * /*refcon*/) { ++gHeard; }

float Write(float /*sinceLastCall*/, float elapsed, int /*pass*/, void * /*refcon*/) {
    constexpr int kLongest = 8;
    const int length = AVSKGetDatavf(gValue, nullptr, 0, 0);
    if (length >= kLongest)
        return 0.0F;
    // A write past the end extends the array. It never becomes shorter.
    AVSKSetDatavf(gValue, &elapsed, length, 1);
    return 1.0F;
}

} // namespace

int AVPluginStart(char *outName, char *outSignature, char *outDescription) {
    std::snprintf(outName, AVSK_TEXT_SIZE, "SharedDataA");
    std::snprintf(outSignature, AVSK_TEXT_SIZE, "aerivo.samples.shareddataa");
    std::snprintf(outDescription, AVSK_TEXT_SIZE, "Writes an array that it shares with SharedDataB.");

    // The first plugin that shares the name creates the value; 0 means that the name is in use with another type.
    if (AVSKShareData(shared::kName, AVSKDataTypeFloatArray, Changed, nullptr) == 0)
        return 0;
    gValue = AVSKFindDataRef(shared::kName);
    // Initialise the array: a new one has a single element.
    float zero = 0;
    AVSKSetDatavf(gValue, &zero, 0, 1);
    AVSKRegisterFlightLoopCallback(Write, 1.0F, nullptr);
    return 1;
}

void AVPluginStop(void) {
    std::array<char, AVSK_TEXT_SIZE> line{};
    std::snprintf(line.data(), line.size(), "SharedDataA: heard of %d writes\n", gHeard);
    AVSKDebugString(line.data());
    AVSKUnshareData(shared::kName, AVSKDataTypeFloatArray, Changed, nullptr);
}

// These are empty: the log reports every entry point that a plugin lacks.
int AVPluginEnable(void) { return 1; }
void AVPluginDisable(void) {}
void AVPluginReceiveMessage(AVSKPluginID /*sender*/, int /*message*/, void * /*parameter*/) {}
