/**
 * AVSKNavigation.h: the host's navigation database and flight plan.
 *
 * Each function forwards to one host service and returns its result. The
 * library checks no argument. Navaid references, navaid types and entry
 * indices are the host's numbers; the host decides what it does with an
 * unknown one.
 */
#ifndef AVSK_NAVIGATION_H
#define AVSK_NAVIGATION_H

#include "AVSKTypes.h"

#ifdef __cplusplus
extern "C" {
#endif

/** Identifies a navaid, airport or fix: a number of the host's. */
typedef int AVSKNavRef;

/**
 * Returns the first navaid. Forwards to the host service getFirstNavAid.
 *
 * @return the navaid.
 *
 * [main thread, initialized]
 */
AVSK_API AVSKNavRef AVSKGetFirstNavAid(void);

/**
 * Returns the navaid after another one. Forwards to the host service
 * getNextNavAid.
 *
 * @param navAid  the other navaid.
 * @return the navaid.
 *
 * [main thread, initialized]
 */
AVSK_API AVSKNavRef AVSKGetNextNavAid(AVSKNavRef navAid);

/**
 * Returns the first navaid of a type. Forwards to the host service
 * findFirstNavAidOfType.
 *
 * @param type  the type.
 * @return the navaid.
 *
 * [main thread, initialized]
 */
AVSK_API AVSKNavRef AVSKFindFirstNavAidOfType(int type);

/**
 * Returns the last navaid of a type. Forwards to the host service
 * findLastNavAidOfType.
 *
 * @param type  the type.
 * @return the navaid.
 *
 * [main thread, initialized]
 */
AVSK_API AVSKNavRef AVSKFindLastNavAidOfType(int type);

/**
 * Searches for a navaid. Forwards to the host service findNavAid.
 *
 * @param a1  a word whose meaning is the host's.
 * @param a2  a word whose meaning is the host's.
 * @param a3  a word whose meaning is the host's.
 * @param a4  a word whose meaning is the host's.
 * @param a5  a word whose meaning is the host's.
 * @param a6  a word whose meaning is the host's.
 * @return the navaid.
 *
 * [main thread, initialized]
 */
AVSK_API AVSKNavRef AVSKFindNavAid(AVSKWord a1, AVSKWord a2, AVSKWord a3, AVSKWord a4, AVSKWord a5, AVSKWord a6);

/**
 * Describes a navaid. Forwards to the host service getNavAidInfo.
 *
 * @param navAid  the navaid.
 * @param a2      a word whose meaning is the host's.
 * @param a3      a word whose meaning is the host's.
 * @param a4      a word whose meaning is the host's.
 * @param a5      a word whose meaning is the host's.
 * @param a6      a word whose meaning is the host's.
 * @param a7      a word whose meaning is the host's.
 * @param a8      a word whose meaning is the host's.
 * @param a9      a word whose meaning is the host's.
 * @param a10     a word whose meaning is the host's.
 *
 * [main thread, initialized]
 */
AVSK_API void AVSKGetNavAidInfo(AVSKNavRef navAid, AVSKWord a2, AVSKWord a3, AVSKWord a4, AVSKWord a5, AVSKWord a6,
                                AVSKWord a7, AVSKWord a8, AVSKWord a9, AVSKWord a10);

/**
 * Counts the entries of the flight plan. Forwards to the host service
 * countFMSEntries.
 *
 * @return the number of entries.
 *
 * [main thread, initialized]
 */
AVSK_API int AVSKCountFMSEntries(void);

/**
 * Returns the displayed entry. Forwards to the host service
 * getDisplayedFMSEntry.
 *
 * @return the entry's index.
 *
 * [main thread, initialized]
 */
AVSK_API int AVSKGetDisplayedFMSEntry(void);

/**
 * Returns the destination entry. Forwards to the host service
 * getDestinationFMSEntry.
 *
 * @return the entry's index.
 *
 * [main thread, initialized]
 */
AVSK_API int AVSKGetDestinationFMSEntry(void);

/**
 * Displays an entry. Forwards to the host service setDisplayedFMSEntry.
 *
 * @param index  the entry's index.
 *
 * [main thread, initialized]
 */
AVSK_API void AVSKSetDisplayedFMSEntry(int index);

/**
 * Makes an entry the destination. Forwards to the host service
 * setDestinationFMSEntry.
 *
 * @param index  the entry's index.
 *
 * [main thread, initialized]
 */
AVSK_API void AVSKSetDestinationFMSEntry(int index);

/**
 * Describes an entry. Forwards to the host service getFMSEntryInfo.
 *
 * @param index  the entry's index.
 * @param a2     a word whose meaning is the host's.
 * @param a3     a word whose meaning is the host's.
 * @param a4     a word whose meaning is the host's.
 * @param a5     a word whose meaning is the host's.
 * @param a6     a word whose meaning is the host's.
 * @param a7     a word whose meaning is the host's.
 *
 * [main thread, initialized]
 */
AVSK_API void AVSKGetFMSEntryInfo(int index, AVSKWord a2, AVSKWord a3, AVSKWord a4, AVSKWord a5, AVSKWord a6,
                                  AVSKWord a7);

/**
 * Sets an entry. Forwards to the host service setFMSEntryInfo.
 *
 * @param index  the entry's index.
 * @param a2     a word whose meaning is the host's.
 * @param a3     a word whose meaning is the host's.
 *
 * [main thread, initialized]
 */
AVSK_API void AVSKSetFMSEntryInfo(int index, AVSKWord a2, AVSKWord a3);

/**
 * Sets an entry to a position. Forwards to the host service setFMSEntryLatLon.
 *
 * @param index      the entry's index.
 * @param latitude   the latitude, in the host's unit.
 * @param longitude  the longitude, in the host's unit.
 * @param a4         a word whose meaning is the host's.
 *
 * [main thread, initialized]
 */
AVSK_API void AVSKSetFMSEntryLatLon(int index, float latitude, float longitude, AVSKWord a4);

/**
 * Clears an entry. Forwards to the host service clearFMSEntry.
 *
 * @param index  the entry's index.
 *
 * [main thread, initialized]
 */
AVSK_API void AVSKClearFMSEntry(int index);

/**
 * Returns the type of the GPS destination. Forwards to the host service
 * getGPSDestinationType.
 *
 * @return the navaid type.
 *
 * [main thread, initialized]
 */
AVSK_API int AVSKGetGPSDestinationType(void);

/**
 * Returns the GPS destination. Forwards to the host service getGPSDestination.
 *
 * @return the navaid.
 *
 * [main thread, initialized]
 */
AVSK_API AVSKNavRef AVSKGetGPSDestination(void);

#ifdef __cplusplus
}
#endif

#endif
