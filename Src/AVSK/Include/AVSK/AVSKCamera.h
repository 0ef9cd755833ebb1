/**
 * AVSKCamera.h: the camera, which one plugin at a time may place.
 */
#ifndef AVSK_CAMERA_H
#define AVSK_CAMERA_H

#include "AVSKTypes.h"

#ifdef __cplusplus
extern "C" {
#endif

/** How long control of the camera is asked for. */
typedef enum AVSKCameraControlDuration {
    /** Nobody has control; never asked for. */
    AVSKCameraUncontrolled = 0,
    /** Until the user changes the view. */
    AVSKCameraUntilViewChanges = 1,
    /** Until the plugin gives it up. */
    AVSKCameraForever = 2
} AVSKCameraControlDuration;

/** Where the camera is: seven numbers in the simulator's order, the first three a place. */
typedef struct AVSKCameraPosition {
    float f1;
    float f2;
    float f3;
    float f4;
    float f5;
    float f6;
    float f7;
} AVSKCameraPosition;

/**
 * Places the camera, once per update.
 *
 * @param position         in and out: where the camera is, and is to be. Null with losing control.
 * @param isLosingControl  1 if control goes, else 0.
 * @param refcon           what was given to AVSKControlCamera().
 * @return 1 to place the camera; 0 to end control, after which it is not called again.
 */
typedef int (*AVSKCameraControl_f)(AVSKCameraPosition *position, int isLosingControl, void *refcon);

/**
 * Takes control of the camera for the calling plugin. A plugin that had it is not told.
 *
 * @param duration    one of AVSKCameraControlDuration.
 * @param cameraFunc  called at each update. Null ends control at the first.
 * @param refcon      passed to it, may be null.
 */
AVSK_API void AVSKControlCamera(int duration, AVSKCameraControl_f cameraFunc, void *refcon);

/** Ends control of the camera, whoever has it, without a call. */
AVSK_API void AVSKDontControlCamera(void);

/**
 * Asks whether a plugin controls the camera.
 *
 * @param outDuration  receives how long it asked for, if so; may be null.
 * @return 1 or 0.
 */
AVSK_API int AVSKIsCameraBeingControlled(int *outDuration);

/**
 * Asks where the camera is. Control is not needed.
 *
 * @param outPosition  receives it; null is ignored.
 */
AVSK_API void AVSKReadCameraPosition(AVSKCameraPosition *outPosition);

#ifdef __cplusplus
}
#endif

#endif
