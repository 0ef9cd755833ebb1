/**
 * AVSKHost.h: the interface between the library and the program that embeds
 * it, the host: one table of host services, two calls that start and stop the
 * plugin system, and the hooks through which the host reports what happens.
 *
 * Every call is made on one thread, the host's main thread, and one at a
 * time, though a host service called by a plugin may call a hook in turn.
 */
#ifndef AVSK_HOST_H
#define AVSK_HOST_H

#include "AVSKTypes.h"

#ifdef __cplusplus
extern "C" {
#endif

/** The number of machine words in the current table. */
#define AVSK_HOST_SLOTS 72

/** What AVSKInitializePlugins() returns. */
#define AVSK_HOST_INTERFACE 18

/**
 * The host's services, 72 machine words: two numbers and 70 functions. The
 * host owns the table, fills every slot and keeps it valid for ever; the
 * library keeps the pointer and copies nothing. Texts are UTF-8 and stay the
 * library's; they are valid during the call.
 */
typedef struct AVSKHostCallbacks {
    /** Slot 0: version of the host's interface; see AVSKHostHasMessages(), AVSKHostHasProgress(). */
    int32_t version;
    /** Slot 1: size of the table in bytes; see AVSKHostHasFullTable(). */
    int32_t sizeInBytes;
    /** Slot 2: screen size in pixels. */
    void (*getScreenSize)(int *width, int *height);
    /**
     * Slot 3: mouse position in pixels, y upward. fromPlugin is 1 when a plugin asked, 0 when the library
     * did.
     */
    void (*getMouseLocation)(int *x, int *y, int fromPlugin);
    /** Slot 4: sets the graphics state; seven numbers whose meaning is the host's. */
    void (*setGraphicsState)(int a1, int a2, int a3, int a4, int a5, int a6, int a7);
    /** Slot 5: binds a 2-D texture. */
    void (*bindTexture2d)(int texture, int unit);
    /** Slot 6: hands out texture numbers. */
    void (*generateTextureNumbers)(int *textures, int count);
    /** Slot 7: answers the number of one of the host's own textures. */
    int (*getTexture)(int texture);
    /** Slot 8: converts world to local coordinates. */
    void (*worldToLocal)(double a, double b, double c, double *x, double *y, double *z);
    /** Slot 9: converts local to world coordinates. */
    void (*localToWorld)(double x, double y, double z, double *a, double *b, double *c);
    /** Slot 10: draws a dark box, pixels, y upward. */
    void (*drawTranslucentDarkBox)(int left, int top, int right, int bottom);
    /** Slot 11: draws a text. The width may be null. */
    void (*drawString)(float *colour, int x, int y, char *text, int *wordWrapWidth, int font);
    /** Slot 12: draws a number. */
    void (*drawNumber)(float *colour, int x, int y, double value, int digits, int decimals, int showSign, int font);
    /** Slot 13: size of a font's characters. Each output may be null. */
    void (*getFontDimensions)(int font, int *charWidth, int *charHeight, int *digitsOnly);
    /** Slot 14: seconds since the simulator started. */
    float (*getElapsedTime)(void);
    /** Slot 15: camera position, one pointer per field. */
    void (*readCameraPosition)(float *f1, float *f2, float *f3, float *f4, float *f5, float *f6, float *f7);
    /** Slot 16: draws an aircraft; nine words whose meaning is the host's. */
    int (*drawAircraft)(AVSKWord a1, AVSKWord a2, AVSKWord a3, AVSKWord a4, AVSKWord a5, AVSKWord a6, AVSKWord a7,
                        AVSKWord a8, AVSKWord a9);
    /** Slot 17: loads the model of an aircraft; index 0 is the user's. */
    void (*loadAircraftModel)(int index, const char *path, const char *fileName);
    /** Slot 18: model of an aircraft, path before file name: 256 bytes each. */
    void (*getAircraftModel)(int index, char *outPath, char *outFileName);
    /** Slot 19: number of aircraft. */
    int (*countAircraft)(void);
    /** Slot 20: places the user at an airport, a text. */
    void (*placeUserAtAirport)(const char *airport);
    /** Slot 21: acts as if a key had been pressed. */
    void (*simulateKeyPress)(int keyType, int key);
    /** Slot 22: speaks a text. */
    void (*speakString)(const char *text);
    /** Slot 23: runs a key command. */
    void (*commandKeyStroke)(int key);
    /** Slot 24: presses or releases joystick buttons, a list that ends with 0. */
    void (*commandButton)(const int *buttons, int release, int pass);
    /** Slot 25: the host's folder, ending in a separator: 512 bytes. */
    void (*getSystemPath)(char *outPath);
    /** Slot 26: the preferences file or folder: 512 bytes. */
    void (*getPrefsPath)(char *outPath);
    /** Slot 27: the host's version and a number of its choice. */
    void (*getVersions)(int *hostVersion, int *hostValue);
    /** Slot 28: the host's code for its language. */
    int (*getLanguage)(void);
    /** Slot 29: writes to the log, as it is. */
    void (*debugString)(const char *text);
    /**
     * Slot 30: creates a menu under an item of a parent; a null parent is the menu bar. Answers its
     * handle.
     */
    void *(*createMenu)(void *parent, int parentItem, const char *name);
    /**
     * Slot 31: appends an item at an index; answers the ID under which picks of it are reported. An item
     * renamed to "" at that index is reused.
     */
    int (*appendMenuItem)(void *menu, int index, const char *name, int forceEnglish);
    /** Slot 32: renames an item. */
    void (*setMenuItemName)(void *menu, int index, const char *name, int forceEnglish);
    /** Slot 33: destroys a menu. Called only if AVSKHostHasFullTable(). */
    void (*destroyMenu)(void *menu);
    /**
     * Slot 34: sets the user's plane up afresh; called with 208 and 201. Called only if
     * AVSKHostHasFullTable().
     */
    int (*reinitUsersPlane)(int a1, int a2);
    /** Slot 35: loads the scenery again. */
    int (*reloadScenery)(void);
    /** Slot 36: first navaid. */
    int (*getFirstNavAid)(void);
    /** Slot 37: the navaid after one. */
    int (*getNextNavAid)(int navAid);
    /** Slot 38: first navaid of a type. */
    int (*findFirstNavAidOfType)(int type);
    /** Slot 39: last navaid of a type. */
    int (*findLastNavAidOfType)(int type);
    /** Slot 40: searches for a navaid; six words whose meaning is the host's. */
    int (*findNavAid)(AVSKWord a1, AVSKWord a2, AVSKWord a3, AVSKWord a4, AVSKWord a5, AVSKWord a6);
    /** Slot 41: describes a navaid. */
    void (*getNavAidInfo)(int navAid, AVSKWord a2, AVSKWord a3, AVSKWord a4, AVSKWord a5, AVSKWord a6, AVSKWord a7,
                          AVSKWord a8, AVSKWord a9, AVSKWord a10);
    /** Slot 42: number of flight-plan entries. */
    int (*countFMSEntries)(void);
    /** Slot 43: the entry shown. */
    int (*getDisplayedFMSEntry)(void);
    /** Slot 44: the entry flown to. */
    int (*getDestinationFMSEntry)(void);
    /** Slot 45: shows an entry. */
    void (*setDisplayedFMSEntry)(int index);
    /** Slot 46: flies to an entry. */
    void (*setDestinationFMSEntry)(int index);
    /** Slot 47: describes an entry. */
    void (*getFMSEntryInfo)(int index, AVSKWord a2, AVSKWord a3, AVSKWord a4, AVSKWord a5, AVSKWord a6, AVSKWord a7);
    /** Slot 48: sets an entry to a navaid. */
    void (*setFMSEntryInfo)(int index, AVSKWord a2, AVSKWord a3);
    /** Slot 49: sets an entry to a position. */
    void (*setFMSEntryLatLon)(int index, float latitude, float longitude, AVSKWord a4);
    /** Slot 50: clears an entry. */
    void (*clearFMSEntry)(int index);
    /** Slot 51: type of the GPS destination. */
    int (*getGPSDestinationType)(void);
    /** Slot 52: the GPS destination. */
    int (*getGPSDestination)(void);
    /** Slot 53: shows four lines and waits for the user. Called only if AVSKHostHasMessages(). */
    void (*showMessage)(const char *line1, const char *line2, const char *line3, const char *line4);
    /** Slot 54: shows what is being loaded. Called only if AVSKHostHasProgress(). */
    void (*showProgress)(const char *text);
    /** Slot 55: finds (create 0, null description) or creates a command; null when not found. */
    void *(*findCommand)(const char *name, const char *description, int create);
    /** Slot 56: begins a command. */
    void (*beginCommand)(void *command);
    /** Slot 57: continues a held command. */
    void (*continueCommand)(void *command);
    /** Slot 58: ends a command. */
    void (*endCommand)(void *command);
    /** Slot 59: creates a terrain probe. The library reuses them; none is ever given back. */
    void *(*createProbe)(void);
    /** Slot 60: probes the terrain at a point; non-zero on a hit. */
    int (*probeTerrain)(void *probe, const float *xyz, float *triple1, float *triple2, float *triple3, int *flag);
    /** Slot 61: looks up one of the host's own functions. */
    void *(*findSymbol)(const char *name);
    /** Slot 62: width in pixels of the first count characters. */
    float (*measureString)(int font, const char *text, int count);
    /** Slot 63: removes an item; those behind it move up. */
    void (*removeMenuItem)(void *menu, int index);
    /** Slot 64: loads an object; null when it fails. */
    void *(*loadObject)(const char *path);
    /** Slot 65: draws one instance of an object. The second angle comes before the first. */
    void (*drawObject)(void *object, float x, float y, float z, float angle2, float angle1, float angle3, int lighting,
                       int earthRelative);
    /** Slot 66: gives an object back; null is ignored. */
    void (*unloadObject)(void *object);
    /** Slot 67: looks objects up by a virtual path; answers their number. */
    int (*lookupObjects)(const char *path, float latitude, float longitude,
                         void (*enumerator)(const char *path, void *reference), void *reference);
    /** Slot 68: loads a data file of type 1 or 2. */
    int (*loadDataFile)(int type, const char *path);
    /** Slot 69: saves a data file of type 1 or 2. */
    int (*saveDataFile)(int type, const char *path);
    /**
     * Slot 70: loads an object later: call completion once, on the main thread, with the object or null. If
     * the table ends before it, slot 64 loads the object at once.
     */
    void (*loadObjectAsync)(const char *path, void (*completion)(void *object, void *argument), void *argument);
    /** Slot 71: receives the messages sent to plugin 0. Called only if AVSKHostHasFullTable(). */
    void (*receiveMessage)(AVSKPluginID sender, int message, void *parameter);
} AVSKHostCallbacks;

/**
 * Tells whether slot 53, showMessage, exists.
 *
 * @param host  the table.
 * @return non-zero for interface version 3 and later.
 */
static inline int AVSKHostHasMessages(const AVSKHostCallbacks *host) { return host->version > 2; }

/**
 * Tells whether slot 54, showProgress, exists.
 *
 * @param host  the table.
 * @return non-zero for interface version 4 and later.
 */
static inline int AVSKHostHasProgress(const AVSKHostCallbacks *host) { return host->version > 3; }

/**
 * Tells whether the table has all 72 words. Older hosts pass a shorter one,
 * with which slots 33, 34 and 71 are not called.
 *
 * @param host  the table.
 * @return non-zero if it does.
 */
static inline int AVSKHostHasFullTable(const AVSKHostCallbacks *host) { return host->sizeInBytes > 287; }

/** What AVSKEventHook() is told. */
typedef enum AVSKHostEvent {
    /** A frame begins: held buttons are pressed again, flight loops of phase 0 run. */
    AVSKHostEventFrame = 0,
    /** The view changed: camera control that lasts until then ends. */
    AVSKHostEventViewChanged = 1,
    /** Broadcasts message 101. */
    AVSKHostEventBroadcast101 = 2,
    /** Broadcasts message 102 with the aircraft's index; index 0 loads the user's aircraft plugins. */
    AVSKHostEventPlaneLoaded = 3,
    /** Broadcasts message 103. */
    AVSKHostEventBroadcast103 = 4,
    /** Does nothing. */
    AVSKHostEventUnused = 5,
    /** Broadcasts message 104. */
    AVSKHostEventBroadcast104 = 6,
    /** Broadcasts message 105. */
    AVSKHostEventBroadcast105 = 7,
    /** Broadcasts message 106 with the aircraft's index; index 0 unloads the user's aircraft plugins. */
    AVSKHostEventPlaneUnloaded = 8,
    /** Held commands are continued. */
    AVSKHostEventCommands = 9,
    /** The simulation has stepped: flight loops of phase 1 run. */
    AVSKHostEventFrameEnd = 10,
    /** Broadcasts message 107. */
    AVSKHostEventBroadcast107 = 11,
    /** Loads the plugins of a scenery folder; the parameter is its path, ending in a separator. */
    AVSKHostEventSceneryFolder = 12,
    /** Broadcasts message 108 with the parameter. */
    AVSKHostEventBroadcast108 = 13
} AVSKHostEvent;

/** Messages 101 to 108 are broadcast for the host; the library knows the occasion of two of them. */
enum {
    /** An aircraft was loaded; the parameter is its index. Its own plugins, loaded next, do not hear it. */
    AVSKMessagePlaneLoaded = 102,
    /** An aircraft goes away; the parameter is its index. Its own plugins still hear it. */
    AVSKMessagePlaneUnloaded = 106
};

/**
 * Starts the plugin system: registers the host as plugin 0, loads every
 * plugin of the host's "Resources/plugins" folder and enables them. Register
 * "sim/version/avsk_build_string" beforehand to learn the library's build.
 *
 * @param path   the host's folder, UTF-8, ending in a separator.
 * @param table  the host's services; stays the host's and must stay valid.
 * @param self   any word; kept and not used.
 * @return AVSK_HOST_INTERFACE.
 */
AVSK_API int AVSKInitializePlugins(const char *path, const AVSKHostCallbacks *table, AVSKWord self);

/** Disables and unloads every plugin. The table must stay valid. */
AVSK_API void AVSKShutdownPlugins(void);

/**
 * Reports what happens in the simulator.
 *
 * @param event      one of AVSKHostEvent; others do nothing.
 * @param elapsed    seconds since the simulator started, the clock of the flight loops.
 * @param unused     not read.
 * @param parameter  what the event is about: an aircraft index, a folder, or a word of the host's.
 * @return 1.
 */
AVSK_API int AVSKEventHook(int event, float elapsed, int unused, AVSKWord parameter);

/**
 * Reports a draw pass.
 *
 * @param drawCode    which; see Docs/frame.md for the codes and their order in a frame.
 * @param reflection  1 in a pass that draws reflections.
 * @return 1: the host draws its own part of the pass; 0: it leaves it out.
 */
AVSK_API int AVSKDoDrawingHook(int drawCode, int reflection);

/**
 * Reports a mouse button. While a window holds the mouse, drags are asked for
 * through slot 3 at each window pass.
 *
 * @param x,y   pixels, y upward.
 * @param down  0 for a release, else a press.
 * @return 0 if a plugin took it, 1 if the host is to handle it.
 */
AVSK_API int AVSKMouseClickHook(int x, int y, int down);

/**
 * Reports a key press or release.
 *
 * @param key         the character.
 * @param flags       the host's bits for shift, control, down and up.
 * @param virtualKey  the virtual key code.
 * @return 0 if a plugin took it, 1 if the host is to handle it.
 */
AVSK_API int AVSKKeyPressHook(char key, int flags, char virtualKey);

/**
 * Asks which cursor to show.
 *
 * @param x,y  pixels, y upward.
 * @return 0 for the host's own choice, else the status that a window answered.
 */
AVSK_API int AVSKCursorHook(int x, int y);

/**
 * Reports the mouse wheel.
 *
 * @param x,y     pixels, y upward.
 * @param wheel   which wheel.
 * @param clicks  how far.
 * @return 0 if a plugin took it, 1 if the host is to handle it.
 */
AVSK_API int AVSKScrollWheelHook(int x, int y, int wheel, int clicks);

/**
 * Asks a plugin that controls the camera for its position.
 *
 * @param f1,f2,f3,f4,f5,f6,f7  the host's position, in and out; changed only if the answer is 0.
 * @return 0 if a plugin placed the camera, 1 if the host keeps its own.
 */
AVSK_API int AVSKCameraHook(float *f1, float *f2, float *f3, float *f4, float *f5, float *f6, float *f7);

/**
 * Reports that a menu item was picked.
 *
 * @param itemID  what slot 31 answered for the item.
 * @return 0 if it is a plugin's, else 1.
 */
AVSK_API int AVSKMenuHook(int itemID);

/**
 * Asks for a menu item's check mark.
 *
 * @param menu      what slot 30 answered for the menu.
 * @param index     the item's position in it.
 * @param outCheck  receives -1 for no mark, 0 for unchecked, 1 for checked.
 * @return 0 if it is a plugin's, else 1 and nothing is written.
 */
AVSK_API int AVSKCheckMenuHook(void *menu, int index, int *outCheck);

/**
 * Asks whether a menu item can be picked.
 *
 * @param menu   what slot 30 answered for the menu.
 * @param index  the item's position in it.
 * @return 0 if not, else 1; 1 also for an item that is no plugin's.
 */
AVSK_API int AVSKMenuItemEnabled(void *menu, int index);

/**
 * Asks for the model of an aircraft that is about to be loaded.
 *
 * @param index  the aircraft.
 * @param name   not changed.
 * @param path   in and out; must have room for any path.
 */
AVSK_API void AVSKUpdatePlaneNameAndPath(int index, char *name, char *path);

/**
 * Asks how many aircraft to simulate.
 *
 * @param count  how many the host would.
 * @param flag   non-zero only reports the number.
 * @return how many.
 */
AVSK_API int AVSKGetNumberPlanesToHandle(int count, int flag);

/**
 * Reports a command, once before the host acts on it and once after.
 *
 * @param command  what slot 55 answered for it.
 * @param begin    non-zero in its first phase.
 * @param end      non-zero in its last phase.
 * @param before   non-zero before the host acts.
 * @return 0 if a plugin stopped it, else 1.
 */
AVSK_API int AVSKCommandHook(void *command, int begin, int end, int before);

#ifdef __cplusplus
}
#endif

#endif
