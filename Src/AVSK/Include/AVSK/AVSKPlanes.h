/**
 * AVSKPlanes.h: the user's aircraft (index 0), and the other aircraft
 * (indices 1 and up), which one plugin at a time may control.
 *
 * "Control" below means control of the other aircraft.
 */
#ifndef AVSK_PLANES_H
#define AVSK_PLANES_H

#include "AVSKTypes.h"

#ifdef __cplusplus
extern "C" {
#endif

/**
 * Notifies a waiting plugin that control is free. All waiting plugins are
 * notified, in the order in which they asked, and none of them waits any more.
 * The function may call AVSKAcquirePlanes(): the first plugin to do so gets
 * control, the next ones wait again. A plugin that is disabled at that time is
 * not notified and does not wait any more.
 *
 * @param refcon  the refcon given to AVSKAcquirePlanes().
 *
 * [callback, plugin enabled]
 */
typedef void (*AVSKPlanesAvailable_f)(void *refcon);

/**
 * Loads another aircraft for the user. Control is not needed. Calls the host
 * service loadAircraftModel.
 *
 * @param path  the full path of the aircraft's model, UTF-8. Null is ignored.
 *
 * [main thread, initialized]
 */
AVSK_API void AVSKSetUsersAircraft(const char *path);

/**
 * Places the user at an airport. Control is not needed. Forwards to the host
 * service placeUserAtAirport.
 *
 * @param airport  the airport, as the host names it.
 *
 * [main thread, initialized]
 */
AVSK_API void AVSKPlaceUserAtAirport(const char *airport);

/**
 * Counts aircraft. Calls the host service countAircraft.
 *
 * @param outTotal       receives the number of aircraft, may be null.
 * @param outActive      receives the number of active aircraft, may be null.
 * @param outController  receives the ID of the plugin in control, -1 for none; may be null.
 *
 * [main thread, initialized]
 */
AVSK_API void AVSKCountAircraft(int *outTotal, int *outActive, AVSKPluginID *outController);

/**
 * Reads the model of an aircraft. Calls the host service getAircraftModel.
 *
 * @param index        the aircraft, 0 for the user's. Not checked by the library.
 * @param outFileName  a buffer of 256 bytes, receives the model's file name, UTF-8; may be null.
 * @param outPath      a buffer of 512 bytes, receives the model's full path, UTF-8; may be null.
 *
 * [main thread, initialized]
 */
AVSK_API void AVSKGetNthAircraftModel(int index, char *outFileName, char *outPath);

/**
 * Takes control for the calling plugin, if no plugin has it. The plugin keeps
 * control until it calls AVSKReleasePlanes() or is disabled or unloaded. If
 * another plugin has control, the calling plugin may wait for it.
 *
 * @param paths     the full paths of models to use, UTF-8, ended by a null pointer; copied. Entry i is
 *                  for aircraft i, entry 0 is not used. Null requests no models. Ignored unless the
 *                  calling plugin gets control by this call. A path of more than 255 bytes requests
 *                  nothing, and the error callback receives
 *                  "AVSKAcquirePlanes was passed a path of more than 255 bytes."
 * @param callback  called when control becomes free, if another plugin has it now. Null: the plugin
 *                  does not wait. Each call with a callback waits once more.
 * @param refcon    passed to the callback, may be null.
 * @return 1 if the calling plugin has control now, else 0.
 *
 * [main thread, any time]
 */
AVSK_API int AVSKAcquirePlanes(char **paths, AVSKPlanesAvailable_f callback, void *refcon);

/**
 * Ends the calling plugin's control. The host flies all aircraft again, and all
 * waiting plugins are notified inside this call. Ignored without control.
 *
 * [main thread, any time]
 */
AVSK_API void AVSKReleasePlanes(void);

/**
 * Sets how many aircraft are active. Ignored without control.
 *
 * @param count  the number of aircraft, the user's included.
 *
 * [main thread, any time]
 */
AVSK_API void AVSKSetActiveAircraftCount(int count);

/**
 * Chooses the model of an aircraft. If the host simulates that aircraft, it is
 * loaded at once through the host service loadAircraftModel. Ignored without
 * control.
 *
 * @param index  the aircraft; a negative index is ignored.
 * @param path   the full path of the model, UTF-8, at most 255 bytes; copied. Null is ignored. A longer
 *               path is ignored, too, and the error callback receives
 *               "AVSKSetAircraftModel was passed a path of more than 255 bytes."
 *
 * [main thread, initialized]
 */
AVSK_API void AVSKSetAircraftModel(int index, const char *path);

/**
 * Makes the host stop flying an aircraft until a plugin releases control. Control
 * is not needed. Writes 1 to the host's dataref
 * "sim/private/net_disables/ai_loc[index]", if the host publishes it.
 *
 * @param index  the aircraft; not checked.
 *
 * [main thread, any time]
 */
AVSK_API void AVSKDisableAIForPlane(int index);

/**
 * Draws an aircraft. With control, forwards to the host service drawAircraft.
 *
 * @param a1  a word whose meaning is the host's.
 * @param a2  a word whose meaning is the host's.
 * @param a3  a word whose meaning is the host's.
 * @param a4  a word whose meaning is the host's.
 * @param a5  a word whose meaning is the host's.
 * @param a6  a word whose meaning is the host's.
 * @param a7  a word whose meaning is the host's.
 * @param a8  a word whose meaning is the host's.
 * @param a9  a word whose meaning is the host's.
 * @return the host's result; 1 without control, and nothing is drawn.
 *
 * [main thread, drawing]
 */
AVSK_API int AVSKDrawAircraft(AVSKWord a1, AVSKWord a2, AVSKWord a3, AVSKWord a4, AVSKWord a5, AVSKWord a6, AVSKWord a7,
                              AVSKWord a8, AVSKWord a9);

/**
 * Initialises the user's aircraft again through the host service
 * reinitUsersPlane. Ignored without control, and by a host whose table is short
 * (see AVSKHostHasFullTable()).
 *
 * [main thread, initialized]
 */
AVSK_API void AVSKReinitUsersPlane(void);

#ifdef __cplusplus
}
#endif

#endif
