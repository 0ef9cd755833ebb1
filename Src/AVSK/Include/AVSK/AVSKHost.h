/**
 * AVSKHost.h: the interface between the library and the program that embeds
 * it, the host: the table of host services, two functions that start and stop
 * the plugin system, and the hooks by which the host reports events.
 *
 * All calls in both directions are made on one thread, the host's main thread.
 * A host service that a plugin called may call a hook.
 */
#ifndef AVSK_HOST_H
#define AVSK_HOST_H

#include "AVSKTypes.h"

#ifdef __cplusplus
extern "C" {
#endif

/** The number of machine words in the current table. */
#define AVSK_HOST_SLOTS 72

/** The result of AVSKInitializePlugins(). */
#define AVSK_HOST_INTERFACE 18

/**
 * The host's services: 72 machine words, which are two numbers and 70
 * functions. The host owns the table, fills every slot and keeps it valid for
 * the life of the process. The library keeps the pointer and copies nothing.
 *
 * A text passed to a service is UTF-8, owned by the caller and valid during
 * the call. The library passes the arguments of a plugin's forwarding call
 * unchanged, null pointers included: the service checks what it needs. The
 * library calls services on the main thread only. A service may call every
 * hook and every function of the plugin interface, except
 * AVSKInitializePlugins() and AVSKShutdownPlugins(). If it calls these two all
 * the same, the library stays consistent: a plugin whose call is running goes
 * on as nobody (ID -1), and a start or reload that is under way ends.
 */
typedef struct AVSKHostCallbacks {
    /** Slot 0: the version of the host's interface. See AVSKHostHasMessages() and AVSKHostHasProgress(). */
    int32_t version;
    /** Slot 1: the size of the table in bytes. See AVSKHostHasFullTable(). */
    int32_t sizeInBytes;
    /** Slot 2: returns the screen size in pixels. */
    void (*getScreenSize)(int *width, int *height);
    /**
     * Slot 3: returns the mouse position in pixels, y upward. fromPlugin is 1 if a plugin calls, 0 if the
     * library does.
     */
    void (*getMouseLocation)(int *x, int *y, int fromPlugin);
    /** Slot 4: sets the graphics state. The host defines the seven numbers. */
    void (*setGraphicsState)(int a1, int a2, int a3, int a4, int a5, int a6, int a7);
    /** Slot 5: binds a 2-D texture to a texture unit. */
    void (*bindTexture2d)(int texture, int unit);
    /** Slot 6: reserves count texture numbers. */
    void (*generateTextureNumbers)(int *textures, int count);
    /** Slot 7: returns the texture number of one of the host's own textures. */
    int (*getTexture)(int texture);
    /** Slot 8: converts world to local coordinates. */
    void (*worldToLocal)(double a, double b, double c, double *x, double *y, double *z);
    /** Slot 9: converts local to world coordinates. */
    void (*localToWorld)(double x, double y, double z, double *a, double *b, double *c);
    /** Slot 10: draws a translucent dark box. Pixels, y upward. */
    void (*drawTranslucentDarkBox)(int left, int top, int right, int bottom);
    /** Slot 11: draws a text. wordWrapWidth may be null. */
    void (*drawString)(float *colour, int x, int y, char *text, int *wordWrapWidth, int font);
    /** Slot 12: draws a number. */
    void (*drawNumber)(float *colour, int x, int y, double value, int digits, int decimals, int showSign, int font);
    /** Slot 13: returns the size of a font's characters in pixels. Each output may be null. */
    void (*getFontDimensions)(int font, int *charWidth, int *charHeight, int *digitsOnly);
    /** Slot 14: returns the seconds since the simulator started. */
    float (*getElapsedTime)(void);
    /** Slot 15: returns the camera position, one pointer per field of AVSKCameraPosition. */
    void (*readCameraPosition)(float *f1, float *f2, float *f3, float *f4, float *f5, float *f6, float *f7);
    /** Slot 16: draws an aircraft. The host defines the nine words and the result. */
    int (*drawAircraft)(AVSKWord a1, AVSKWord a2, AVSKWord a3, AVSKWord a4, AVSKWord a5, AVSKWord a6, AVSKWord a7,
                        AVSKWord a8, AVSKWord a9);
    /** Slot 17: loads the model of an aircraft. Index 0 is the user's aircraft. */
    void (*loadAircraftModel)(int index, const char *path, const char *fileName);
    /** Slot 18: returns the model of an aircraft. Each buffer has at least 256 bytes. The path comes first. */
    void (*getAircraftModel)(int index, char *outPath, char *outFileName);
    /** Slot 19: returns the number of aircraft. */
    int (*countAircraft)(void);
    /** Slot 20: places the user at an airport. */
    void (*placeUserAtAirport)(const char *airport);
    /** Slot 21: simulates a key press. The host defines both numbers. */
    void (*simulateKeyPress)(int keyType, int key);
    /** Slot 22: speaks or shows a text. */
    void (*speakString)(const char *text);
    /** Slot 23: runs a key command. */
    void (*commandKeyStroke)(int key);
    /**
     * Slot 24: presses (release 0) or releases (release 1) joystick buttons. The list ends with 0. A press
     * and a release are two calls, pass 0 and pass 1. A held button is pressed once a frame with pass 1.
     */
    void (*commandButton)(const int *buttons, int release, int pass);
    /** Slot 25: returns the path of the host's folder, which ends in a separator. The buffer has 512 bytes. */
    void (*getSystemPath)(char *outPath);
    /** Slot 26: returns the path of the host's preferences. The buffer has 512 bytes. */
    void (*getPrefsPath)(char *outPath);
    /** Slot 27: returns the host's version and a second number of the host's choice. */
    void (*getVersions)(int *hostVersion, int *hostValue);
    /** Slot 28: returns the host's code for its language. */
    int (*getLanguage)(void);
    /** Slot 29: writes a text to the log, unchanged and without a line end. */
    void (*debugString)(const char *text);
    /**
     * Slot 30: creates a menu below an item of a parent menu and returns its handle. A null parent is the
     * menu bar.
     */
    void *(*createMenu)(void *parent, int parentItem, const char *name);
    /**
     * Slot 31: appends an item at an index and returns the ID by which the host reports picks of it. If there
     * is an item at that index that was renamed to "", it is used again.
     */
    int (*appendMenuItem)(void *menu, int index, const char *name, int forceEnglish);
    /** Slot 32: renames an item. Index -1 is not an item: ignore it. */
    void (*setMenuItemName)(void *menu, int index, const char *name, int forceEnglish);
    /** Slot 33: destroys a menu. Called only if AVSKHostHasFullTable(). */
    void (*destroyMenu)(void *menu);
    /** Slot 34: initialises the user's aircraft again. Called with 208 and 201, only if AVSKHostHasFullTable(). */
    int (*reinitUsersPlane)(int a1, int a2);
    /** Slot 35: loads the scenery again. The result is not used. */
    int (*reloadScenery)(void);
    /** Slot 36: returns the first navaid. */
    int (*getFirstNavAid)(void);
    /** Slot 37: returns the navaid after another one. */
    int (*getNextNavAid)(int navAid);
    /** Slot 38: returns the first navaid of a type. */
    int (*findFirstNavAidOfType)(int type);
    /** Slot 39: returns the last navaid of a type. */
    int (*findLastNavAidOfType)(int type);
    /** Slot 40: searches for a navaid. The host defines the six words. */
    int (*findNavAid)(AVSKWord a1, AVSKWord a2, AVSKWord a3, AVSKWord a4, AVSKWord a5, AVSKWord a6);
    /** Slot 41: describes a navaid. The host defines the nine words. */
    void (*getNavAidInfo)(int navAid, AVSKWord a2, AVSKWord a3, AVSKWord a4, AVSKWord a5, AVSKWord a6, AVSKWord a7,
                          AVSKWord a8, AVSKWord a9, AVSKWord a10);
    /** Slot 42: returns the number of flight-plan entries. */
    int (*countFMSEntries)(void);
    /** Slot 43: returns the index of the displayed entry. */
    int (*getDisplayedFMSEntry)(void);
    /** Slot 44: returns the index of the destination entry. */
    int (*getDestinationFMSEntry)(void);
    /** Slot 45: displays an entry. */
    void (*setDisplayedFMSEntry)(int index);
    /** Slot 46: makes an entry the destination. */
    void (*setDestinationFMSEntry)(int index);
    /** Slot 47: describes an entry. The host defines the six words. */
    void (*getFMSEntryInfo)(int index, AVSKWord a2, AVSKWord a3, AVSKWord a4, AVSKWord a5, AVSKWord a6, AVSKWord a7);
    /** Slot 48: sets an entry. The host defines the two words. */
    void (*setFMSEntryInfo)(int index, AVSKWord a2, AVSKWord a3);
    /** Slot 49: sets an entry to a position. The host defines the fourth word. */
    void (*setFMSEntryLatLon)(int index, float latitude, float longitude, AVSKWord a4);
    /** Slot 50: clears an entry. */
    void (*clearFMSEntry)(int index);
    /** Slot 51: returns the type of the GPS destination. */
    int (*getGPSDestinationType)(void);
    /** Slot 52: returns the GPS destination. */
    int (*getGPSDestination)(void);
    /** Slot 53: shows four lines and returns when the user has read them. Called only if AVSKHostHasMessages(). */
    void (*showMessage)(const char *line1, const char *line2, const char *line3, const char *line4);
    /** Slot 54: shows what is being loaded. Called only if AVSKHostHasProgress(). */
    void (*showProgress)(const char *text);
    /**
     * Slot 55: returns a command, or null if there is none. With create 0 it finds the command, and the
     * description is null. With create 1 it also creates one.
     */
    void *(*findCommand)(const char *name, const char *description, int create);
    /** Slot 56: begins a command. */
    void (*beginCommand)(void *command);
    /** Slot 57: continues a held command. */
    void (*continueCommand)(void *command);
    /** Slot 58: ends a command. */
    void (*endCommand)(void *command);
    /** Slot 59: creates a terrain probe. The library reuses probes and never destroys one. */
    void *(*createProbe)(void);
    /** Slot 60: probes the terrain at a point of three numbers. Returns non-zero on a hit. */
    int (*probeTerrain)(void *probe, const float *xyz, float *triple1, float *triple2, float *triple3, int *flag);
    /** Slot 61: returns the address of one of the host's functions, or null. */
    void *(*findSymbol)(const char *name);
    /** Slot 62: returns the width in pixels of the first count characters of a text. */
    float (*measureString)(int font, const char *text, int count);
    /** Slot 63: removes an item. The items after it move up by one. */
    void (*removeMenuItem)(void *menu, int index);
    /** Slot 64: loads an object. Returns null if it fails. */
    void *(*loadObject)(const char *path);
    /** Slot 65: draws one instance of an object. The second angle precedes the first. */
    void (*drawObject)(void *object, float x, float y, float z, float angle2, float angle1, float angle3, int lighting,
                       int earthRelative);
    /** Slot 66: unloads an object. Null must be ignored. */
    void (*unloadObject)(void *object);
    /** Slot 67: calls the enumerator for each object found under a virtual path, and returns their number. */
    int (*lookupObjects)(const char *path, float latitude, float longitude,
                         void (*enumerator)(const char *path, void *reference), void *reference);
    /** Slot 68: loads a data file of type 1 or 2. */
    int (*loadDataFile)(int type, const char *path);
    /** Slot 69: saves a data file of type 1 or 2. */
    int (*saveDataFile)(int type, const char *path);
    /**
     * Slot 70: loads an object asynchronously. The host calls completion exactly once, on the main thread,
     * with the object or null; it may do so inside this call. Called only if sizeInBytes includes this slot;
     * else slot 64 is called.
     */
    void (*loadObjectAsync)(const char *path, void (*completion)(void *object, void *argument), void *argument);
    /** Slot 71: receives the messages sent to plugin 0. Called only if AVSKHostHasFullTable(). */
    void (*receiveMessage)(AVSKPluginID sender, int message, void *parameter);
} AVSKHostCallbacks;

/**
 * Tells whether slot 53, showMessage, exists.
 *
 * @param host  the table, not null.
 * @return non-zero for interface version 3 and later, else 0.
 *
 * [any thread]
 */
static inline int AVSKHostHasMessages(const AVSKHostCallbacks *host) { return host->version > 2; }

/**
 * Tells whether slot 54, showProgress, exists.
 *
 * @param host  the table, not null.
 * @return non-zero for interface version 4 and later, else 0.
 *
 * [any thread]
 */
static inline int AVSKHostHasProgress(const AVSKHostCallbacks *host) { return host->version > 3; }

/**
 * Tells whether the table has all 72 words. An older host passes a shorter table;
 * then slots 33, 34 and 71 are not called.
 *
 * @param host  the table, not null.
 * @return non-zero if it has, else 0.
 *
 * [any thread]
 */
static inline int AVSKHostHasFullTable(const AVSKHostCallbacks *host) { return host->sizeInBytes > 287; }

/** The events that AVSKEventHook() reports. */
typedef enum AVSKHostEvent {
    /** A frame begins: held buttons are pressed again, flight loops of phase 0 run. */
    AVSKHostEventFrame = 0,
    /** The view changed: camera control that was taken until then ends. */
    AVSKHostEventViewChanged = 1,
    /** Broadcasts message 101. */
    AVSKHostEventBroadcast101 = 2,
    /** Broadcasts message 102 with the aircraft's index. Index 0 then loads the user's aircraft plugins. */
    AVSKHostEventPlaneLoaded = 3,
    /** Broadcasts message 103. */
    AVSKHostEventBroadcast103 = 4,
    /** Does nothing. */
    AVSKHostEventUnused = 5,
    /** Broadcasts message 104. */
    AVSKHostEventBroadcast104 = 6,
    /** Broadcasts message 105. */
    AVSKHostEventBroadcast105 = 7,
    /** Broadcasts message 106 with the aircraft's index. Index 0 then unloads the user's aircraft plugins. */
    AVSKHostEventPlaneUnloaded = 8,
    /** Continues held commands. */
    AVSKHostEventCommands = 9,
    /** The simulation has stepped: flight loops of phase 1 run. */
    AVSKHostEventFrameEnd = 10,
    /** Broadcasts message 107. */
    AVSKHostEventBroadcast107 = 11,
    /** Loads the plugins of a scenery folder. The parameter is its path, which ends in a separator. */
    AVSKHostEventSceneryFolder = 12,
    /** Broadcasts message 108 with the parameter. */
    AVSKHostEventBroadcast108 = 13
} AVSKHostEvent;

/** The messages that the library knows among 101 to 108, which it broadcasts for the host. */
enum {
    /** An aircraft was loaded. The parameter is its index. Its own plugins, loaded next, do not receive it. */
    AVSKMessagePlaneLoaded = 102,
    /** An aircraft will be unloaded. The parameter is its index. Its own plugins still receive it. */
    AVSKMessagePlaneUnloaded = 106
};

/**
 * Starts the plugin system. Registers the host as plugin 0, loads every plugin of
 * the folder "Resources/plugins" and enables the plugins. Before this call the
 * host may register datarefs; they belong to plugin 0. If the host published a
 * writable byte dataref "sim/version/avsk_build_string", the library writes its
 * build date and time into it. Not to be called by a service. If a plugin throws,
 * the others are loaded and enabled all the same; the first exception is thrown
 * at the end.
 *
 * @param path   the host's folder, UTF-8, ends in a separator; copied. Null counts as an empty text.
 * @param table  the host's services, not null; owned by the host, valid for the life of the process.
 * @param self   any word; stored and not used.
 * @return AVSK_HOST_INTERFACE.
 *
 * [host only]
 */
AVSK_API int AVSKInitializePlugins(const char *path, const AVSKHostCallbacks *table, AVSKWord self);

/**
 * Disables and unloads every plugin. Host services are called during the call.
 * Not to be called by a service.
 * Plugins are unloaded even if one of them throws; the first exception is thrown
 * at the end.
 *
 * [host only]
 */
AVSK_API void AVSKShutdownPlugins(void);

/**
 * Reports an event.
 *
 * @param event      one of AVSKHostEvent. Another number does nothing.
 * @param elapsed    seconds since the simulator started. It is the clock of the flight loops and must
 *                   agree with the host service getElapsedTime.
 * @param unused     not read.
 * @param parameter  the event's aircraft index, path or word.
 * @return 1.
 *
 * [host only]
 */
AVSK_API int AVSKEventHook(int event, float elapsed, int unused, AVSKWord parameter);

/**
 * Reports a draw pass. Calls draw callbacks, and with code 20 draws the windows.
 *
 * @param drawCode    the pass. Docs/frame.md lists the codes and their order.
 * @param reflection  1 in a pass that draws reflections, else 0.
 * @return 1 if the host is to draw its own part of the pass, 0 if a plugin suppressed it.
 *
 * [host only]
 */
AVSK_API int AVSKDoDrawingHook(int drawCode, int reflection);

/**
 * Reports a mouse button. While a window holds the mouse, the library reads drags
 * through the host service getMouseLocation in each window pass.
 *
 * @param x     pixels.
 * @param y     pixels, upward.
 * @param down  non-zero for a press, 0 for a release.
 * @return 0 if a plugin consumed the event, 1 if the host is to handle it.
 *
 * [host only]
 */
AVSK_API int AVSKMouseClickHook(int x, int y, int down);

/**
 * Reports a key press or release. A report of three zeros reaches no plugin.
 *
 * @param key         the character.
 * @param flags       the host's bits for shift, control, down and up.
 * @param virtualKey  the virtual key code.
 * @return 0 if a plugin consumed the key, 1 if the host is to handle it.
 *
 * [host only]
 */
AVSK_API int AVSKKeyPressHook(char key, int flags, char virtualKey);

/**
 * Asks which cursor to show.
 *
 * @param x  the mouse position in pixels.
 * @param y  the mouse position in pixels, upward.
 * @return the cursor number that a window chose; 0 for the host's own choice.
 *
 * [host only]
 */
AVSK_API int AVSKCursorHook(int x, int y);

/**
 * Reports the mouse wheel.
 *
 * @param x       the mouse position in pixels.
 * @param y       the mouse position in pixels, upward.
 * @param wheel   the wheel's number.
 * @param clicks  the distance in clicks.
 * @return 0 if a plugin consumed the event, 1 if the host is to handle it.
 *
 * [host only]
 */
AVSK_API int AVSKScrollWheelHook(int x, int y, int wheel, int clicks);

/**
 * Asks the plugin that controls the camera for its position. The parameters are
 * the fields of AVSKCameraPosition. They hold the host's position and are changed
 * only if the result is not 1.
 *
 * @param f1  in and out, not null.
 * @param f2  in and out, not null.
 * @param f3  in and out, not null.
 * @param f4  in and out, not null.
 * @param f5  in and out, not null.
 * @param f6  in and out, not null.
 * @param f7  in and out, not null.
 * @return 0 if a plugin positioned the camera, 1 if the host keeps its own position. If the plugin's
 *         function returned another number than 0 and 1, the result is 1 minus that number.
 *
 * [host only]
 */
AVSK_API int AVSKCameraHook(float *f1, float *f2, float *f3, float *f4, float *f5, float *f6, float *f7);

/**
 * Reports that the user picked a menu item.
 *
 * @param itemID  the ID that slot 31 returned for the item.
 * @return 0 if the item is a plugin's, else 1.
 *
 * [host only]
 */
AVSK_API int AVSKMenuHook(int itemID);

/**
 * Asks for the check mark of a menu item.
 *
 * @param menu      the handle that slot 30 returned for the menu.
 * @param index     the item's index in the menu.
 * @param outCheck  receives -1 for no mark, 0 for unchecked, 1 for checked; may be null.
 * @return 0 if the item is a plugin's; else 1, and nothing is written.
 *
 * [host only]
 */
AVSK_API int AVSKCheckMenuHook(void *menu, int index, int *outCheck);

/**
 * Asks whether the user can pick a menu item.
 *
 * @param menu   the handle that slot 30 returned for the menu.
 * @param index  the item's index in the menu.
 * @return 0 if the item is disabled, or the plugin that created the menu is; else non-zero. 1 if the
 *         item is not a plugin's.
 *
 * [host only]
 */
AVSK_API int AVSKMenuItemEnabled(void *menu, int index);

/**
 * Asks which model to load for an aircraft. If a plugin in control chose one, its
 * path is written.
 *
 * @param index  the aircraft; nothing is written for the user's aircraft (index 0).
 * @param name   not read and not changed, may be null.
 * @param path   in: the host's path; out: the path to load, UTF-8. A buffer of 256 bytes
 *               (AVSK_TEXT_SIZE): plugins cannot choose a longer path.
 *
 * [host only]
 */
AVSK_API void AVSKUpdatePlaneNameAndPath(int index, char *name, char *path);

/**
 * Asks how many aircraft to simulate. The library stores count as the number that
 * the host simulates.
 *
 * @param count  the number that the host would simulate.
 * @param flag   non-zero: the host only reports count, and the limit of a plugin is not applied.
 * @return count, or the limit of the plugin in control if that is smaller.
 *
 * [host only]
 */
AVSK_API int AVSKGetNumberPlanesToHandle(int count, int flag);

/**
 * Reports a phase of a command, once before the host acts on it and once after.
 *
 * @param command  the command that slot 55 returned.
 * @param begin    non-zero in the first phase.
 * @param end      non-zero in the last phase. If begin is non-zero too, the phase is the last.
 * @param before   non-zero before the host acts, 0 after.
 * @return 0 if a handler stopped the phase, else 1. After a 0 before the host acts, the host does not
 *         act.
 *
 * [host only]
 */
AVSK_API int AVSKCommandHook(void *command, int begin, int end, int before);

#ifdef __cplusplus
}
#endif

#endif
