/**
 * AVSKUtilities.h: the log, versions, language, speech, data files and the
 * simulator's own symbols. Calls that forward go to the simulator and mean
 * what it makes of them.
 */
#ifndef AVSK_UTILITIES_H
#define AVSK_UTILITIES_H

#include "AVSKTypes.h"

#ifdef __cplusplus
extern "C" {
#endif

/** The version of the interface that AVSKGetVersions() reports for the library. */
#define AVSK_VERSION 210

/**
 * Writes a text to the simulator's log, unchanged. End your lines with "\n".
 *
 * @param text  UTF-8, not null.
 */
AVSK_API void AVSKDebugString(const char *text);

/**
 * Has the simulator speak or show a text.
 *
 * @param text  UTF-8, not null.
 */
AVSK_API void AVSKSpeakString(const char *text);

/** Has the simulator load its scenery again. */
AVSK_API void AVSKReloadScenery(void);

/**
 * Asks for the simulator's language.
 *
 * @return the simulator's code for it.
 */
AVSK_API int AVSKGetLanguage(void);

/**
 * Asks for versions. Each pointer may be null.
 *
 * @param hostVersion  receives the simulator's version.
 * @param libVersion   receives the library's version, AVSK_VERSION.
 * @param hostValue    receives a second number of the simulator's choice.
 */
AVSK_API void AVSKGetVersions(int *hostVersion, int *libVersion, int *hostValue);

/**
 * Looks up a function that the simulator itself exports to plugins.
 *
 * @param name  its name.
 * @return its address, owned by the simulator; null if there is none.
 */
AVSK_API void *AVSKFindSymbol(const char *name);

/**
 * Tells whether the library has been started.
 *
 * @return 1 once the simulator has handed over its services, before that 0.
 */
AVSK_API int AVSKInitialized(void);

/**
 * Loads a data file through the simulator.
 *
 * @param fileType  1 or 2, the simulator's file types. Another is reported to the error
 *                  callback ("Illegal file type passed to AVSKLoadDataFile.").
 * @param path      UTF-8.
 * @return the simulator's answer; 0 for a bad file type.
 */
AVSK_API int AVSKLoadDataFile(int fileType, const char *path);

/**
 * Saves a data file through the simulator.
 *
 * @param fileType  1 or 2, the simulator's file types. Another is reported to the error
 *                  callback ("Illegal file type passed to AVSKSaveDataFile.").
 * @param path      UTF-8. Null is reported ("Null file path passed to AVSKSaveDataFile.").
 * @return the simulator's answer; 0 for a bad argument.
 */
AVSK_API int AVSKSaveDataFile(int fileType, const char *path);

#ifdef __cplusplus
}
#endif

#endif
