/**
 * AVSKPlanes.h: the user's aircraft (index 0), and the other aircraft
 * (indices 1 and up), which one plugin at a time may control.
 */
#ifndef AVSK_PLANES_H
#define AVSK_PLANES_H

#include "AVSKTypes.h"

#ifdef __cplusplus
extern "C" {
#endif

/**
 * Tells a waiting plugin that the other aircraft are free. It may acquire
 * them; the first that does wins, and the next may queue again.
 *
 * @param refcon  what was given to AVSKAcquirePlanes().
 */
typedef void (*AVSKPlanesAvailable_f)(void *refcon);

/**
 * Loads another aircraft for the user.
 *
 * @param path  the model's full path, UTF-8. Null is ignored.
 */
AVSK_API void AVSKSetUsersAircraft(const char *path);

/**
 * Places the user at an airport.
 *
 * @param airport  the airport, as the simulator names it.
 */
AVSK_API void AVSKPlaceUserAtAirport(const char *airport);

/**
 * Counts aircraft. Each pointer may be null.
 *
 * @param outTotal       receives how many there are.
 * @param outActive      receives how many of them are active.
 * @param outController  receives the plugin that controls the others, -1 for none.
 */
AVSK_API void AVSKCountAircraft(int *outTotal, int *outActive, AVSKPluginID *outController);

/**
 * Asks for an aircraft's model.
 *
 * @param index        the aircraft; passed on as it is.
 * @param outFileName  256 bytes for the model's file name, may be null.
 * @param outPath      512 bytes for its full path, UTF-8, may be null.
 */
AVSK_API void AVSKGetNthAircraftModel(int index, char *outFileName, char *outPath);

/**
 * Takes control of the other aircraft for the calling plugin. It keeps it
 * until it releases it or is disabled.
 *
 * @param paths     models to use, UTF-8, ended by null; entry i is for aircraft i, entry 0 is
 *                  not used. Null asks for none. Copied.
 * @param callback  called once control is free, if another plugin has it; null does not wait.
 * @param refcon    passed to it, may be null.
 * @return 1 if the calling plugin now has control, or had it; else 0.
 */
AVSK_API int AVSKAcquirePlanes(char **paths, AVSKPlanesAvailable_f callback, void *refcon);

/** Gives up control, if the calling plugin has it, and offers it to those that wait. */
AVSK_API void AVSKReleasePlanes(void);

/**
 * Sets how many aircraft are active. Ignored without control.
 *
 * @param count  their number, the user's included.
 */
AVSK_API void AVSKSetActiveAircraftCount(int count);

/**
 * Chooses the model of an aircraft. Ignored without control.
 *
 * @param index  the aircraft; a negative index is ignored.
 * @param path   the model's full path, UTF-8. Null is ignored.
 */
AVSK_API void AVSKSetAircraftModel(int index, const char *path);

/**
 * Has the simulator stop flying an aircraft, until control is released. Control is not needed.
 *
 * @param index  the aircraft; any index, of which the simulator knows some.
 */
AVSK_API void AVSKDisableAIForPlane(int index);

/**
 * Draws an aircraft, from a draw callback.
 *
 * @param a1,a2,a3,a4,a5,a6,a7,a8,a9  nine words whose meaning is the simulator's.
 * @return the simulator's answer; 1, and nothing is drawn, without control.
 */
AVSK_API int AVSKDrawAircraft(AVSKWord a1, AVSKWord a2, AVSKWord a3, AVSKWord a4, AVSKWord a5, AVSKWord a6, AVSKWord a7,
                              AVSKWord a8, AVSKWord a9);

/** Sets the user's aircraft up afresh. Ignored without control, and by a simulator too old for it. */
AVSK_API void AVSKReinitUsersPlane(void);

#ifdef __cplusplus
}
#endif

#endif
