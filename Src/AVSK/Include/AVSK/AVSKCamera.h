/**
 * AVSKCamera.h: the camera position, and control of it by one plugin at a time.
 */
#ifndef AVSK_CAMERA_H
#define AVSK_CAMERA_H

#include "AVSKTypes.h"

#ifdef __cplusplus
extern "C" {
#endif

/** How long a plugin controls the camera. */
typedef enum AVSKCameraControlDuration {
    /** No plugin controls the camera. Not a value to pass. */
    AVSKCameraUncontrolled = 0,
    /** Until the user changes the view. */
    AVSKCameraUntilViewChanges = 1,
    /** Until the plugin gives up control. */
    AVSKCameraForever = 2
} AVSKCameraControlDuration;

/** A camera position: seven numbers in the host's order. The first three are a place. */
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
 * Positions the camera. Called once per camera update, and once when the
 * plugin loses control because the view changes or the plugin is disabled or
 * unloaded. The function is not called when another plugin takes control, nor
 * after AVSKDontControlCamera().
 *
 * @param position         in: the host's position; out: the position to use. Owned by the library,
 *                         valid during the call. Null if isLosingControl is 1.
 * @param isLosingControl  1 if the plugin loses control, else 0.
 * @param refcon           the refcon given to AVSKControlCamera().
 * @return 1 to use the position; 0 to end control, after which the function is not called again.
 *         Ignored if isLosingControl is 1.
 *
 * [callback, plugin enabled]
 */
typedef int (*AVSKCameraControl_f)(AVSKCameraPosition *position, int isLosingControl, void *refcon);

/**
 * Takes control of the camera for the calling plugin. This always succeeds. A
 * plugin that had control is not notified.
 *
 * @param duration    one of AVSKCameraControlDuration; not checked.
 * @param cameraFunc  called at each camera update. With null, control ends at the first update.
 * @param refcon      passed to cameraFunc, may be null.
 *
 * [main thread, any time]
 */
AVSK_API void AVSKControlCamera(int duration, AVSKCameraControl_f cameraFunc, void *refcon);

/**
 * Ends control of the camera by any plugin. The plugin is not notified.
 *
 * [main thread, any time]
 */
AVSK_API void AVSKDontControlCamera(void);

/**
 * Tells whether a plugin controls the camera.
 *
 * @param outDuration  receives the duration that the plugin asked for. Written only if the result
 *                     is 1. May be null.
 * @return 1 if a plugin controls the camera, else 0.
 *
 * [main thread, any time]
 */
AVSK_API int AVSKIsCameraBeingControlled(int *outDuration);

/**
 * Reads the camera position. Control is not needed. Forwards to the host
 * service readCameraPosition.
 *
 * @param outPosition  receives the position. Null is ignored.
 *
 * [main thread, initialized]
 */
AVSK_API void AVSKReadCameraPosition(AVSKCameraPosition *outPosition);

#ifdef __cplusplus
}
#endif

#endif
