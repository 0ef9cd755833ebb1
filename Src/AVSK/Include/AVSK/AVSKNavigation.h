/**
 * AVSKNavigation.h: the simulator's navigation database and flight plan.
 *
 * Each call reaches one service of the simulator with the arguments as they
 * are, bit for bit, and returns its answer. Refs, types and indices are the
 * simulator's numbers; the library tests none of them.
 */
#ifndef AVSK_NAVIGATION_H
#define AVSK_NAVIGATION_H

#include "AVSKTypes.h"

#ifdef __cplusplus
extern "C" {
#endif

/** Names a navaid, airport or fix: a number of the simulator's. */
typedef int AVSKNavRef;

/** Asks for the first navaid. @return the navaid. */
AVSK_API AVSKNavRef AVSKGetFirstNavAid(void);

/**
 * Asks for the navaid after another.
 *
 * @param navAid  the other.
 * @return the navaid.
 */
AVSK_API AVSKNavRef AVSKGetNextNavAid(AVSKNavRef navAid);

/**
 * Asks for the first navaid of a type.
 *
 * @param type  the type.
 * @return the navaid.
 */
AVSK_API AVSKNavRef AVSKFindFirstNavAidOfType(int type);

/**
 * Asks for the last navaid of a type.
 *
 * @param type  the type.
 * @return the navaid.
 */
AVSK_API AVSKNavRef AVSKFindLastNavAidOfType(int type);

/**
 * Searches for a navaid.
 *
 * @param a1,a2,a3,a4,a5,a6  six words whose meaning is the simulator's.
 * @return the navaid.
 */
AVSK_API AVSKNavRef AVSKFindNavAid(AVSKWord a1, AVSKWord a2, AVSKWord a3, AVSKWord a4, AVSKWord a5, AVSKWord a6);

/**
 * Describes a navaid.
 *
 * @param navAid                        the navaid.
 * @param a2,a3,a4,a5,a6,a7,a8,a9,a10   nine words whose meaning is the simulator's.
 */
AVSK_API void AVSKGetNavAidInfo(AVSKNavRef navAid, AVSKWord a2, AVSKWord a3, AVSKWord a4, AVSKWord a5, AVSKWord a6,
                                AVSKWord a7, AVSKWord a8, AVSKWord a9, AVSKWord a10);

/** Counts the entries of the flight plan. @return their number. */
AVSK_API int AVSKCountFMSEntries(void);

/** Asks which entry is shown. @return its index. */
AVSK_API int AVSKGetDisplayedFMSEntry(void);

/** Asks which entry is flown to. @return its index. */
AVSK_API int AVSKGetDestinationFMSEntry(void);

/** Shows an entry. @param index its index. */
AVSK_API void AVSKSetDisplayedFMSEntry(int index);

/** Flies to an entry. @param index its index. */
AVSK_API void AVSKSetDestinationFMSEntry(int index);

/**
 * Describes an entry.
 *
 * @param index              its index.
 * @param a2,a3,a4,a5,a6,a7  six words whose meaning is the simulator's.
 */
AVSK_API void AVSKGetFMSEntryInfo(int index, AVSKWord a2, AVSKWord a3, AVSKWord a4, AVSKWord a5, AVSKWord a6,
                                  AVSKWord a7);

/**
 * Sets an entry.
 *
 * @param index  its index.
 * @param a2,a3  two words whose meaning is the simulator's.
 */
AVSK_API void AVSKSetFMSEntryInfo(int index, AVSKWord a2, AVSKWord a3);

/**
 * Sets an entry to a position.
 *
 * @param index               its index.
 * @param latitude,longitude  the position.
 * @param a4                  a word whose meaning is the simulator's.
 */
AVSK_API void AVSKSetFMSEntryLatLon(int index, float latitude, float longitude, AVSKWord a4);

/** Clears an entry. @param index its index. */
AVSK_API void AVSKClearFMSEntry(int index);

/** Asks for the type of the GPS destination. @return the navaid type. */
AVSK_API int AVSKGetGPSDestinationType(void);

/** Asks for the GPS destination. @return the navaid. */
AVSK_API AVSKNavRef AVSKGetGPSDestination(void);

#ifdef __cplusplus
}
#endif

#endif
