/**
 * AVSKUtilities.h: the log, versions, data files, commands, keys, buttons,
 * paths and folders.
 */
#ifndef AVSK_UTILITIES_H
#define AVSK_UTILITIES_H

#include "AVSKTypes.h"

#ifdef __cplusplus
extern "C" {
#endif

/** The library's version, as AVSKGetVersions() reports it. */
#define AVSK_VERSION 210

/**
 * Writes a text to the host's log, unchanged. End a line with "\n". Forwards to
 * the host service debugString.
 *
 * @param text  UTF-8, not null.
 *
 * [main thread, initialized]
 */
AVSK_API void AVSKDebugString(const char *text);

/**
 * Makes the host speak or show a text. Forwards to the host service speakString.
 *
 * @param text  UTF-8, not null.
 *
 * [main thread, initialized]
 */
AVSK_API void AVSKSpeakString(const char *text);

/**
 * Makes the host load its scenery again. Calls the host service reloadScenery.
 *
 * [main thread, initialized]
 */
AVSK_API void AVSKReloadScenery(void);

/**
 * Returns the host's language. Forwards to the host service getLanguage.
 *
 * @return the host's code for the language.
 *
 * [main thread, initialized]
 */
AVSK_API int AVSKGetLanguage(void);

/**
 * Reads the versions of the host and the library. Calls the host service
 * getVersions.
 *
 * @param hostVersion  receives the host's version, may be null.
 * @param libVersion   receives the library's version, AVSK_VERSION; may be null.
 * @param hostValue    receives a second number of the host's choice, may be null.
 *
 * [main thread, initialized]
 */
AVSK_API void AVSKGetVersions(int *hostVersion, int *libVersion, int *hostValue);

/**
 * Finds a function that the host exports. Forwards to the host service
 * findSymbol.
 *
 * @param name  the function's name.
 * @return the function's address, owned by the host; null if the host has no such function.
 *
 * [main thread, initialized]
 */
AVSK_API void *AVSKFindSymbol(const char *name);

/**
 * Tells whether the host has called AVSKInitializePlugins().
 *
 * @return 1 if it has, else 0.
 *
 * [main thread, any time]
 */
AVSK_API int AVSKInitialized(void);

/**
 * Loads a data file through the host service loadDataFile.
 *
 * @param fileType  1 or 2, the host's file types. With another type the error callback receives
 *                  "Illegal file type passed to AVSKLoadDataFile."
 * @param path      UTF-8. With null nothing is loaded.
 * @return the host's result; 0 for an illegal file type or a null path.
 *
 * [main thread, initialized]
 */
AVSK_API int AVSKLoadDataFile(int fileType, const char *path);

/**
 * Saves a data file through the host service saveDataFile.
 *
 * @param fileType  1 or 2, the host's file types. With another type the error callback receives
 *                  "Illegal file type passed to AVSKSaveDataFile."
 * @param path      UTF-8. With null the error callback receives
 *                  "Null file path passed to AVSKSaveDataFile."
 * @return the host's result; 0 for an illegal argument.
 *
 * [main thread, initialized]
 */
AVSK_API int AVSKSaveDataFile(int fileType, const char *path);

/* ---- Commands */

/**
 * Identifies a command. Owned by the host and never freed; compare it by
 * value. Null is no command.
 */
typedef void *AVSKCommandRef;

/** Phases of a command. */
typedef enum AVSKCommandPhase {
    /** The command begins. */
    AVSKCommandPhaseBegin = 0,
    /** The command is held. Reported once a frame. */
    AVSKCommandPhaseContinue = 1,
    /** The command ends. */
    AVSKCommandPhaseEnd = 2
} AVSKCommandPhase;

/**
 * Handles a phase of a command. It may register and unregister handlers, also of
 * this command.
 *
 * @param command  the command.
 * @param phase    one of AVSKCommandPhase.
 * @param refcon   the refcon given at registration.
 * @return non-zero to pass the phase on. 0 to stop it: the handlers that follow are not called,
 *         and a host that has not acted yet does not act.
 *
 * [callback, plugin enabled]
 */
typedef int (*AVSKCommandHandler_f)(AVSKCommandRef command, int phase, void *refcon);

/**
 * Finds a command. Calls the host service findCommand.
 *
 * @param name  the command's name.
 * @return the command; null if there is none with that name.
 *
 * [main thread, initialized]
 */
AVSK_API AVSKCommandRef AVSKFindCommand(const char *name);

/**
 * Creates a command, or finds the one with that name. Calls the host service
 * findCommand. A name that starts with "sim/" is an error: the error callback
 * receives "Plugin is illegally registering a command with the prefix sim/", the
 * log receives a warning, and the command is created.
 *
 * @param name         the name, by convention "organisation/plugin/action".
 * @param description  a text for the user.
 * @return the command.
 *
 * [main thread, initialized]
 */
AVSK_API AVSKCommandRef AVSKCreateCommand(const char *name, const char *description);

/**
 * Begins a command and holds it for the calling plugin. While the plugin is
 * enabled, the command is continued once a frame. Unloading the plugin ends it.
 * Calls the host service beginCommand.
 *
 * @param command  the command.
 *
 * [main thread, initialized]
 */
AVSK_API void AVSKCommandBegin(AVSKCommandRef command);

/**
 * Ends a command. Only the calling plugin's hold ends: another plugin that holds
 * the command keeps continuing it. Calls the host service endCommand.
 *
 * @param command  the command.
 *
 * [main thread, initialized]
 */
AVSK_API void AVSKCommandEnd(AVSKCommandRef command);

/**
 * Begins and ends a command. Calls the host services beginCommand and endCommand.
 *
 * @param command  the command.
 *
 * [main thread, initialized]
 */
AVSK_API void AVSKCommandOnce(AVSKCommandRef command);

/**
 * Registers a handler of the calling plugin for a command. The handlers before
 * the host are called newest first, those after the host oldest first. A handler
 * that is registered twice is called twice.
 *
 * @param command  the command.
 * @param handler  the function. A null function is registered and never called.
 * @param before   non-zero: called before the host acts on the command. 0: called after.
 * @param refcon   passed to the handler, may be null.
 *
 * [main thread, any time]
 */
AVSK_API void AVSKRegisterCommandHandler(AVSKCommandRef command, AVSKCommandHandler_f handler, int before,
                                         void *refcon);

/**
 * Removes one registration of the calling plugin that has these four values. If
 * there is none, nothing happens.
 *
 * @param command  the command given at registration.
 * @param handler  the function given at registration.
 * @param before   the value given at registration; every non-zero value is the same.
 * @param refcon   the refcon given at registration.
 *
 * [main thread, any time]
 */
AVSK_API void AVSKUnregisterCommandHandler(AVSKCommandRef command, AVSKCommandHandler_f handler, int before,
                                           void *refcon);

/* ---- Keys and buttons */

/**
 * Returns the English name of a key.
 *
 * @param virtualKey  a virtual key code.
 * @return the name; "Unknown" if the code has none. Owned by the library, valid for the life of the
 *         process.
 *
 * [main thread, any time]
 */
AVSK_API const char *AVSKGetVirtualKeyDescription(char virtualKey);

/**
 * Simulates a key press. Forwards to the host service simulateKeyPress.
 *
 * @param keyType  a number whose meaning is the host's.
 * @param key      a number whose meaning is the host's.
 *
 * [main thread, initialized]
 */
AVSK_API void AVSKSimulateKeyPress(int keyType, int key);

/**
 * Runs one of the host's key commands. Forwards to the host service
 * commandKeyStroke.
 *
 * @param key  the key command's number in the host.
 *
 * [main thread, initialized]
 */
AVSK_API void AVSKCommandKeyStroke(int key);

/**
 * Presses a joystick button and holds it: it is pressed again in every frame
 * until it is released, also after the plugin is unloaded. Calls the host service
 * commandButton.
 *
 * @param button  the button's number in the host.
 *
 * [main thread, initialized]
 */
AVSK_API void AVSKCommandButtonPress(int button);

/**
 * Releases a joystick button. Ends one of the presses that hold it. Calls the
 * host service commandButton.
 *
 * @param button  the button's number in the host.
 *
 * [main thread, initialized]
 */
AVSK_API void AVSKCommandButtonRelease(int button);

/* ---- Paths and folders */

/** The size in bytes of a caller's buffer for a path. */
#define AVSK_PATH_SIZE 512

/**
 * Reads the path of the host's folder. Calls the host service getSystemPath.
 *
 * @param outPath  a buffer of 512 bytes, receives the path, UTF-8, which ends in a separator. Null is
 *                 ignored.
 *
 * [main thread, initialized]
 */
AVSK_API void AVSKGetSystemPath(char *outPath);

/**
 * Reads the path of the host's preferences. Calls the host service getPrefsPath.
 *
 * @param outPath  a buffer of 512 bytes, receives the path, UTF-8. Null is ignored.
 *
 * [main thread, initialized]
 */
AVSK_API void AVSKGetPrefsPath(char *outPath);

/**
 * Returns the character that separates folders in a path.
 *
 * @return a text of one character. Owned by the library, valid for the life of the process.
 *
 * [main thread, initialized]
 */
AVSK_API const char *AVSKGetDirectorySeparator(void);

/**
 * Splits a path into folder and file part, in place. A trailing separator is
 * removed. Then the last separator is overwritten with zero, so that the buffer
 * holds the folder: "a/b.txt" becomes "a".
 *
 * @param path  the path; changed. May be null.
 * @return the file part, inside the buffer. The whole path if it has no separator; an empty text for
 *         "" and "/"; null for null.
 *
 * [main thread, initialized]
 */
AVSK_API char *AVSKExtractFileAndPath(char *path);

/**
 * Lists a folder. To list it in pages, call again with first raised by
 * *outReturned. The order is the system's.
 *
 * @param folder       the folder's path, UTF-8. Null or a folder that cannot be read has no names.
 * @param first        the index of the first name to return; a negative index counts as 0.
 * @param outNames     receives the names one after the other, UTF-8, each zero-terminated, and an
 *                     empty name after the last. Null receives no name.
 * @param namesSize    the size of outNames in bytes.
 * @param outIndices   receives a pointer to each name, and null after the last; may be null.
 * @param indexCount   the size of outIndices in pointers.
 * @param outTotal     receives the number of names in the folder, may be null.
 * @param outReturned  receives the number of names returned, may be null.
 * @return 1 if all names from first on were returned, with the empty name and the null pointer at the
 *         end; else 0. A buffer that has no space for these two returns 0.
 *
 * [main thread, any time]
 */
AVSK_API int AVSKGetDirectoryContents(const char *folder, int first, char *outNames, int namesSize, char **outIndices,
                                      int indexCount, int *outTotal, int *outReturned);

#ifdef __cplusplus
}
#endif

#endif
