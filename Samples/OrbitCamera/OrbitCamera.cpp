// OrbitCamera: after a second, moves the camera once around the aeroplane, for
// three seconds or until the user changes the view.
#include <AVSK/AVSK.h>

#include <array>
#include <cmath>
#include <cstdio>
#include <numbers>

namespace {

constexpr float kSeconds = 3.0F;
constexpr double kRadius = 80; // metres
constexpr double kAbove = 20;

float gBegan = 0;
AVSKDataRef gLatitude = nullptr;
AVSKDataRef gLongitude = nullptr;
AVSKDataRef gAltitude = nullptr;

// Called before each frame is drawn, with the simulator's own position, which it may change.
int Orbit(AVSKCameraPosition *position, int isLosingControl, void * /*refcon*/) {
    if (isLosingControl != 0) { // the view was changed or we are being disabled; position is null
        AVSKDebugString("OrbitCamera: has lost the camera\n");
        return 0;
    }
    const float share = (AVSKGetElapsedTime() - gBegan) / kSeconds;
    if (share >= 1) {
        AVSKDebugString("OrbitCamera: once around, gives the camera back\n");
        return 0; // releases the camera
    }
    double x = 0;
    double y = 0;
    double z = 0;
    AVSKWorldToLocal(AVSKGetDatad(gLatitude), AVSKGetDatad(gLongitude), AVSKGetDataf(gAltitude), &x, &y, &z);
    // x is east and z is south. The position is followed by pitch, heading, roll and zoom.
    const double angle = 2 * std::numbers::pi * share;
    position->f1 = static_cast<float>(x + kRadius * std::sin(angle));
    position->f2 = static_cast<float>(y + kAbove);
    position->f3 = static_cast<float>(z - kRadius * std::cos(angle));
    position->f4 = static_cast<float>(-std::atan2(kAbove, kRadius) * 180 / std::numbers::pi);
    position->f5 = std::fmod(share * 360 + 180, 360.0F); // towards the aeroplane
    position->f6 = 0;
    position->f7 = 1;
    return 1;
}

float Begin(float /*sinceLastCall*/, float elapsed, int /*pass*/, void * /*refcon*/) {
    gBegan = elapsed;
    // This always succeeds, and a plugin that controls the camera loses it without a call. So check first.
    if (AVSKIsCameraBeingControlled(nullptr) != 0)
        return 1.0F;
    AVSKDebugString("OrbitCamera: takes the camera\n");
    AVSKControlCamera(AVSKCameraUntilViewChanges, Orbit, nullptr);
    return 0.0F;
}

} // namespace

int AVPluginStart(char *outName, char *outSignature, char *outDescription) {
    std::snprintf(outName, AVSK_TEXT_SIZE, "OrbitCamera");
    std::snprintf(outSignature, AVSK_TEXT_SIZE, "aerivo.samples.orbitcamera");
    std::snprintf(outDescription, AVSK_TEXT_SIZE, "Takes the camera around the aeroplane.");
    gLatitude = AVSKFindDataRef("sim/flight/latitude");
    gLongitude = AVSKFindDataRef("sim/flight/longitude");
    gAltitude = AVSKFindDataRef("sim/flight/altitude");
    AVSKRegisterFlightLoopCallback(Begin, 1.0F, nullptr);
    return 1;
}

// The library releases the camera when we are disabled.
void AVPluginDisable(void) {}

// These are empty: the log reports every entry point that a plugin lacks.
void AVPluginStop(void) {}
int AVPluginEnable(void) { return 1; }
void AVPluginReceiveMessage(AVSKPluginID /*sender*/, int /*message*/, void * /*parameter*/) {}
