/**
 * AVSKUtilities.h: commands, keys, buttons, paths and folders, the log,
 * versions, language, speech, data files and the simulator's own symbols.
 * Calls that forward go to the simulator and mean what it makes of them.
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

/* ---- Commands */

/** Names a command. The simulator's; compared by value, valid for ever. Null is no command. */
typedef void *AVSKCommandRef;

/** Phases of a command. */
typedef enum AVSKCommandPhase {
    /** The command begins. */
    AVSKCommandPhaseBegin = 0,
    /** It is held; reported once a frame. */
    AVSKCommandPhaseContinue = 1,
    /** It ends. */
    AVSKCommandPhaseEnd = 2
} AVSKCommandPhase;

/**
 * Handles a phase of a command. It may register and unregister handlers, of this command too.
 *
 * @param command  the command.
 * @param phase    one of AVSKCommandPhase.
 * @param refcon   what was given at registration.
 * @return 0 stops the command: no later handler and, before the simulator, not the simulator
 *         either gets this phase. Otherwise it goes on.
 */
typedef int (*AVSKCommandHandler_f)(AVSKCommandRef command, int phase, void *refcon);

/**
 * Finds a command.
 *
 * @param name  its name.
 * @return the command, or null if there is none.
 */
AVSK_API AVSKCommandRef AVSKFindCommand(const char *name);

/**
 * Creates a command, or finds the one with that name.
 *
 * @param name         its name, by custom "organisation/plugin/action". One that starts with
 *                     "sim/" is complained about, to the error callback and in the log, and
 *                     created all the same.
 * @param description  a text for the user.
 * @return the command.
 */
AVSK_API AVSKCommandRef AVSKCreateCommand(const char *name, const char *description);

/**
 * Begins a command on the calling plugin's account. Until it ends it is
 * continued once a frame while the plugin is enabled; it ends by itself when
 * the plugin is unloaded.
 *
 * @param command  the command.
 */
AVSK_API void AVSKCommandBegin(AVSKCommandRef command);

/**
 * Ends a command. Another plugin that holds it goes on holding it.
 *
 * @param command  the command.
 */
AVSK_API void AVSKCommandEnd(AVSKCommandRef command);

/**
 * Begins and ends a command.
 *
 * @param command  the command.
 */
AVSK_API void AVSKCommandOnce(AVSKCommandRef command);

/**
 * Registers a handler of the calling plugin for a command. Handlers before
 * the simulator are called newest first, those after it oldest first. The
 * same one may be registered twice, and is then called twice.
 *
 * @param command  the command.
 * @param handler  the function.
 * @param before   non-zero: before the simulator acts on the command, 0: after.
 * @param refcon   passed to it, may be null.
 */
AVSK_API void AVSKRegisterCommandHandler(AVSKCommandRef command, AVSKCommandHandler_f handler, int before,
                                         void *refcon);

/**
 * Removes a handler of the calling plugin; one registration of several. No match: nothing happens.
 *
 * @param command,handler,before,refcon  as registered.
 */
AVSK_API void AVSKUnregisterCommandHandler(AVSKCommandRef command, AVSKCommandHandler_f handler, int before,
                                           void *refcon);

/* ---- Keys and buttons */

/**
 * Names a key.
 *
 * @param virtualKey  a virtual key code.
 * @return its name in English, "Unknown" for a code that is no key. A static text.
 */
AVSK_API const char *AVSKGetVirtualKeyDescription(char virtualKey);

/**
 * Acts as if a key had been pressed.
 *
 * @param keyType,key  two numbers whose meaning is the simulator's.
 */
AVSK_API void AVSKSimulateKeyPress(int keyType, int key);

/**
 * Runs one of the simulator's key commands.
 *
 * @param key  its number in the simulator.
 */
AVSK_API void AVSKCommandKeyStroke(int key);

/**
 * Presses a joystick button, which is then pressed again every frame until it is released.
 *
 * @param button  its number in the simulator.
 */
AVSK_API void AVSKCommandButtonPress(int button);

/**
 * Releases a joystick button; of two presses, one.
 *
 * @param button  its number in the simulator.
 */
AVSK_API void AVSKCommandButtonRelease(int button);

/* ---- Paths and folders */

/** The room, in bytes, of a path in a caller's buffer. */
#define AVSK_PATH_SIZE 512

/**
 * Asks for the simulator's folder.
 *
 * @param outPath  512 bytes, UTF-8, ending in a separator. Null is ignored.
 */
AVSK_API void AVSKGetSystemPath(char *outPath);

/**
 * Asks for the simulator's preferences.
 *
 * @param outPath  512 bytes, UTF-8. Null is ignored.
 */
AVSK_API void AVSKGetPrefsPath(char *outPath);

/**
 * Asks what separates folders in a path.
 *
 * @return a text of one character, static.
 */
AVSK_API const char *AVSKGetDirectorySeparator(void);

/**
 * Splits a path in place: a trailing separator is dropped, and the last one
 * left is overwritten with a zero, so that the buffer holds the folder.
 *
 * @param path  the path, changed. "a/b.txt" becomes "a".
 * @return the file part, inside the buffer; the whole of a path without a separator; an empty
 *         text for "" and "/"; null for null.
 */
AVSK_API char *AVSKExtractFileAndPath(char *path);

/**
 * Lists a folder, a page at a time: call again with first raised by *outReturned.
 *
 * @param folder       its path, UTF-8. Null or unreadable: no names.
 * @param first        the index of the first name to return; negative counts as 0.
 * @param outNames     receives names one after the other, each zero-terminated, and an empty
 *                     one behind the last. Null returns no name.
 * @param namesSize    its size in bytes.
 * @param outIndices   receives a pointer to each name, and null behind the last; may be null.
 * @param indexCount   its room in pointers.
 * @param outTotal     receives the number of names in the folder; may be null.
 * @param outReturned  receives the number of names returned; may be null.
 * @return 1 if every name from the first on was returned and the closing ones fitted too, else 0.
 */
AVSK_API int AVSKGetDirectoryContents(const char *folder, int first, char *outNames, int namesSize, char **outIndices,
                                      int indexCount, int *outTotal, int *outReturned);

#ifdef __cplusplus
}
#endif

#endif
