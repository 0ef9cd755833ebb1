// Control of the camera by one plugin at a time. Owns gIsControlled,
// gControlDuration, gCurrentControlFunc, gCurrentControlPlugin,
// gCameraControlRef and gLosing; called by plugins, by the host at each camera
// update and view change, and by the core when a plugin is disabled or unloaded.
#include "AVSK/AVSKCamera.h"

#include "AVSKDispatch.h"
#include "AVSKHostTable.h"
#include "AVSKModules.h"
#include "AVSKScopedValue.h"

// Outside readers rely on these globals.
int gIsControlled = 0;
int gControlDuration = AVSKCameraUncontrolled;
AVSKCameraControl_f gCurrentControlFunc = nullptr;
int gCurrentControlPlugin = NO_PLUGIN_ID;
void *gCameraControlRef = nullptr;

namespace {

struct Controller {
    int plugin;
    AVSKCameraControl_f function;
    void *refcon;
    bool operator==(const Controller &) const = default;
};
Controller gLosing = {NO_PLUGIN_ID, nullptr, nullptr}; // is being notified that it loses control

// Notifies the controller, except during that same notification: a function
// that disables its plugin there would otherwise recurse forever.
void NotifyControlLoss() {
    const Controller current = {gCurrentControlPlugin, gCurrentControlFunc, gCameraControlRef};
    if (!gCurrentControlFunc || gLosing == current)
        return;
    const AVSKScopedValue notifying(gLosing, current);
    if (const StDispatchCallback guard(gCurrentControlPlugin); guard())
        gCurrentControlFunc(nullptr, 1, gCameraControlRef);
}

// Lets the controller position the camera. One that declines or is disabled
// loses control without a notification.
int AskController(AVSKCameraPosition &position) {
    const StDispatchCallback guard(gCurrentControlPlugin);
    if (!guard()) {
        gIsControlled = 0;
        gCurrentControlPlugin = NO_PLUGIN_ID;
        return 0;
    }
    const int keep = gCurrentControlFunc ? gCurrentControlFunc(&position, 0, gCameraControlRef) : 0;
    if (!keep)
        gIsControlled = 0;
    return keep;
}

void ReleaseFrom(int pluginID) {
    if (pluginID == gCurrentControlPlugin)
        AVSKReleaseCameraInternal(1);
}

} // namespace

void AVSKReleaseCameraInternal(int force) {
    if (!gIsControlled || (!force && gControlDuration != AVSKCameraUntilViewChanges))
        return;
    NotifyControlLoss();
    gIsControlled = 0;
    gCurrentControlPlugin = NO_PLUGIN_ID;
}

void AVSKControlCamera(int duration, AVSKCameraControl_f cameraFunc, void *refcon) {
    gIsControlled = 1;
    gControlDuration = duration;
    gCurrentControlFunc = cameraFunc;
    gCurrentControlPlugin = AVSKGetDispatchedPlugin();
    gCameraControlRef = refcon;
}

void AVSKDontControlCamera() { gIsControlled = 0; }

int AVSKIsCameraBeingControlled(int *outDuration) {
    if (gIsControlled && outDuration)
        *outDuration = gControlDuration;
    return gIsControlled;
}

void AVSKReadCameraPosition(AVSKCameraPosition *outPosition) {
    if (outPosition)
        gHooks->readCameraPosition(&outPosition->f1, &outPosition->f2, &outPosition->f3, &outPosition->f4,
                                   &outPosition->f5, &outPosition->f6, &outPosition->f7);
}

int AVSKAdjustCamera(float *f1, float *f2, float *f3, float *f4, float *f5, float *f6, float *f7) {
    if (!gIsControlled)
        return 1;
    AVSKCameraPosition position = {*f1, *f2, *f3, *f4, *f5, *f6, *f7};
    const int keep = AskController(position);
    if (keep) {
        *f1 = position.f1;
        *f2 = position.f2;
        *f3 = position.f3;
        *f4 = position.f4;
        *f5 = position.f5;
        *f6 = position.f6;
        *f7 = position.f7;
    }
    return 1 - keep;
}

void AVSKReleaseCamera() { AVSKReleaseCameraInternal(0); }

void AVSKCameraDisableHook(int pluginID) { ReleaseFrom(pluginID); }

void AVSKCameraCleanupHook(int pluginID) { ReleaseFrom(pluginID); }

bool CameraHolds(int pluginID) { return gIsControlled && pluginID == gCurrentControlPlugin; }
