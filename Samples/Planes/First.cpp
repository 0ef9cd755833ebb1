// PlanesFirst: takes control of the other aircraft, flies one with its own
// model, and releases them after two seconds.
#include <AVSK/AVSK.h>

#include <array>
#include <cstdio>
#include <string>

namespace {

constexpr int kDrone = 1; // the aircraft we fly

AVSKDataRef gHeights = nullptr;
int gFrames = 0;

float Fly(float /*sinceLastCall*/, float /*elapsed*/, int /*pass*/, void * /*refcon*/) {
    float height = 500.0F + static_cast<float>(++gFrames);
    if (gHeights) // not every host publishes it
        AVSKSetDatavf(gHeights, &height, kDrone, 1);
    return -1.0F;
}

float Release(float /*sinceLastCall*/, float /*elapsed*/, int /*pass*/, void * /*refcon*/) {
    std::array<char, AVSK_TEXT_SIZE> line{};
    std::snprintf(line.data(), line.size(), "PlanesFirst: flew aircraft %d for %d frames, releases\n", kDrone, gFrames);
    AVSKDebugString(line.data());
    AVSKUnregisterFlightLoopCallback(Fly, nullptr);
    AVSKReleasePlanes(); // the simulator flies all of them again; waiting plugins are called inside this call
    return 0.0F;
}

} // namespace

int AVPluginStart(char *outName, char *outSignature, char *outDescription) {
    std::snprintf(outName, AVSK_TEXT_SIZE, "PlanesFirst");
    std::snprintf(outSignature, AVSK_TEXT_SIZE, "aerivo.samples.planesfirst");
    std::snprintf(outDescription, AVSK_TEXT_SIZE, "Controls the other aircraft for two seconds.");

    gHeights = AVSKFindDataRef("sim/aircraft/y");
    // A model in the plugin's folder.
    std::array<char, AVSK_TEXT_SIZE> folder{};
    AVSKGetPluginInfo(AVSKGetMyID(), nullptr, folder.data(), nullptr, nullptr);
    AVSKExtractFileAndPath(folder.data());
    std::string drone = std::string(folder.data()) + AVSKGetDirectorySeparator() + "Drone.acf";

    // One path per aircraft, terminated by null. The first stands for the user's aircraft and is ignored.
    std::string none;
    std::array<char *, 3> paths{none.data(), drone.data(), nullptr};
    if (AVSKAcquirePlanes(paths.data(), nullptr, nullptr) == 0) {
        AVSKDebugString("PlanesFirst: somebody else has the aircraft\n");
        return 1;
    }
    constexpr int kUserAndThree = 4;
    AVSKSetActiveAircraftCount(kUserAndThree);
    AVSKDisableAIForPlane(kDrone);
    AVSKRegisterFlightLoopCallback(Fly, -1.0F, nullptr);
    AVSKRegisterFlightLoopCallback(Release, 2.0F, nullptr);
    AVSKDebugString("PlanesFirst: has the aircraft\n");
    return 1;
}

// The library releases control when we are disabled.
void AVPluginDisable(void) {}

// These are empty: the log reports every entry point that a plugin lacks.
void AVPluginStop(void) {}
int AVPluginEnable(void) { return 1; }
void AVPluginReceiveMessage(AVSKPluginID /*sender*/, int /*message*/, void * /*parameter*/) {}
