/**
 * AVSKDisplay.h: draw callbacks, key sniffers, windows, hot keys, the screen
 * and the mouse.
 *
 * Screen coordinates are pixels with y upward: a window's top is greater than
 * its bottom, and a point is inside when left <= x < right and bottom <= y <
 * top. Every callback may register, change and destroy anything, its own
 * registration included; what is removed is not called again.
 */
#ifndef AVSK_DISPLAY_H
#define AVSK_DISPLAY_H

#include "AVSKTypes.h"

#ifdef __cplusplus
extern "C" {
#endif

/* ---- Draw callbacks */

/**
 * Draws in a phase of the frame.
 *
 * @param phase     the phase it was registered for.
 * @param isBefore  1 before the simulator draws the phase, 0 after.
 * @param refcon    what was given at registration.
 * @return before a phase: an even number, 0 by custom, keeps the simulator from drawing it,
 *         1 lets it. After a phase: 1.
 */
typedef int (*AVSKDrawCallback_f)(int phase, int isBefore, void *refcon);

/**
 * Registers a draw callback of the calling plugin. Of one phase the callback
 * registered last is called first. Reflection passes call only plugins with
 * the feature "AVSK_WANTS_REFLECTIONS".
 *
 * @param callback     the function.
 * @param phase        the phase's number: 0, 5, 10 and so on.
 * @param wantsBefore  1 before the simulator draws the phase, 0 after. Other values are never called.
 * @param refcon       passed to it, may be null.
 * @return 1; 0 if a callback with the same four values is registered, by whomever, or was
 *         unregistered in the draw pass that is still under way.
 */
AVSK_API int AVSKRegisterDrawCallback(AVSKDrawCallback_f callback, int phase, int wantsBefore, void *refcon);

/**
 * Removes the draw callback with these four values, whoever registered it.
 *
 * @param callback,phase,wantsBefore,refcon  as registered.
 * @return 1 if there was one, else 0.
 */
AVSK_API int AVSKUnregisterDrawCallback(AVSKDrawCallback_f callback, int phase, int wantsBefore, void *refcon);

/* ---- Key sniffers */

/**
 * Sees a key press or release.
 *
 * @param key         the character.
 * @param flags       the simulator's bits for shift, control, down and up.
 * @param virtualKey  the virtual key code.
 * @param refcon      what was given at registration.
 * @return 0 to consume the key, else it goes on.
 */
typedef int (*AVSKKeySniffer_f)(char key, int flags, char virtualKey, void *refcon);

/**
 * Registers a key sniffer of the calling plugin. The one registered last sees a key first.
 *
 * @param callback       the function.
 * @param beforeWindows  non-zero: before hot keys and the focus window; 0: after them, for
 *                       keys that they left.
 * @param refcon         passed to it, may be null.
 * @return 1; 0 if a sniffer with the same three values is registered, by whomever, or was
 *         unregistered in the key press that is still under way.
 */
AVSK_API int AVSKRegisterKeySniffer(AVSKKeySniffer_f callback, int beforeWindows, void *refcon);

/**
 * Removes the key sniffer with these three values, whoever registered it.
 *
 * @param callback,beforeWindows,refcon  as registered.
 * @return 1 if there was one, else 0.
 */
AVSK_API int AVSKUnregisterKeySniffer(AVSKKeySniffer_f callback, int beforeWindows, void *refcon);

/* ---- Windows */

/**
 * Names a window. A window destroyed from a callback while windows are being
 * called answers to its ID until that round of calls is over; an unknown ID is
 * ignored by every call.
 */
typedef struct AVSKWindowCallbackRecord *AVSKWindowID;

/** What the mouse did. */
typedef enum AVSKMouseStatus {
    /** A button went down in the window. */
    AVSKMouseDown = 1,
    /** The mouse is held; reported once a frame, also outside the window. */
    AVSKMouseDrag = 2,
    /** The button went up. */
    AVSKMouseUp = 3
} AVSKMouseStatus;

/**
 * Draws a window. Called once a frame while it is visible, the windows behind it first.
 *
 * @param window  the window.
 * @param refcon  the window's refcon.
 */
typedef void (*AVSKDrawWindow_f)(AVSKWindowID window, void *refcon);

/**
 * Takes a key for the window that has the keyboard focus, or says that the focus goes.
 *
 * @param window       the window; with losingFocus the one that gets the focus, as the caller
 *                     named it, or null.
 * @param key          the character; 0 with losingFocus.
 * @param flags        the simulator's bits for shift, control, down and up; 0 with losingFocus.
 * @param virtualKey   the virtual key code; 0 with losingFocus.
 * @param refcon       the window's refcon.
 * @param losingFocus  1 if the window loses the focus, else 0.
 */
typedef void (*AVSKHandleKey_f)(AVSKWindowID window, char key, int flags, char virtualKey, void *refcon,
                                int losingFocus);

/**
 * Takes a click.
 *
 * @param window  the window.
 * @param x,y     the mouse.
 * @param status  one of AVSKMouseStatus.
 * @param refcon  the window's refcon.
 * @return of AVSKMouseDown: non-zero takes the click, and drags and the release come here too;
 *         0 lets the windows behind have it. Otherwise not looked at.
 */
typedef int (*AVSKHandleMouseClick_f)(AVSKWindowID window, int x, int y, int status, void *refcon);

/**
 * Chooses the cursor over the window.
 *
 * @param window  the window.
 * @param x,y     the mouse.
 * @param refcon  the window's refcon.
 * @return a status of the simulator's; 0 lets the windows behind decide.
 */
typedef int (*AVSKHandleCursor_f)(AVSKWindowID window, int x, int y, void *refcon);

/**
 * Takes the mouse wheel over the window.
 *
 * @param window  the window.
 * @param x,y     the mouse.
 * @param wheel   which wheel.
 * @param clicks  how far.
 * @param refcon  the window's refcon.
 * @return non-zero takes it; 0 lets the windows behind have it.
 */
typedef int (*AVSKHandleMouseWheel_f)(AVSKWindowID window, int x, int y, int wheel, int clicks, void *refcon);

/** What AVSKCreateWindowEx() is told. Twelve 32-bit fields, 48 bytes. The click function comes before the key function.
 */
typedef struct AVSKCreateWindowParams {
    /** sizeof(AVSKCreateWindowParams). */
    int structSize;
    int left;
    int top;
    int right;
    int bottom;
    /** Non-zero: drawn and hit. */
    int visible;
    AVSKDrawWindow_f drawFunc;
    AVSKHandleMouseClick_f mouseClickFunc;
    AVSKHandleKey_f keyFunc;
    /** May be null. */
    AVSKHandleCursor_f cursorFunc;
    /** May be null. */
    AVSKHandleMouseWheel_f mouseWheelFunc;
    /** Passed to the functions, may be null. */
    void *refcon;
} AVSKCreateWindowParams;

/**
 * Creates a window of the calling plugin, in front of all others and without the focus.
 *
 * @param left,top,right,bottom  the rectangle, unchecked.
 * @param visible                non-zero: drawn and hit.
 * @param drawFunc               draws it.
 * @param keyFunc                takes its keys. It comes before the click function here.
 * @param mouseClickFunc         takes its clicks.
 * @param refcon                 passed to the functions, may be null.
 * @return the window.
 */
AVSK_API AVSKWindowID AVSKCreateWindow(int left, int top, int right, int bottom, int visible, AVSKDrawWindow_f drawFunc,
                                       AVSKHandleKey_f keyFunc, AVSKHandleMouseClick_f mouseClickFunc, void *refcon);

/**
 * Creates a window, as AVSKCreateWindow() does, that also has a cursor and takes the mouse wheel.
 *
 * @param params  read during the call only.
 * @return the window; null for null params or another size than 48.
 */
AVSK_API AVSKWindowID AVSKCreateWindowEx(const AVSKCreateWindowParams *params);

/**
 * Destroys a window. It loses the focus, with a call to its key function, and the mouse, without one.
 *
 * @param window  the window, any plugin's.
 */
AVSK_API void AVSKDestroyWindow(AVSKWindowID window);

/**
 * Asks where a window is. Each pointer may be null; for an unknown window nothing is written.
 *
 * @param window                             the window.
 * @param outLeft,outTop,outRight,outBottom  receive the rectangle.
 */
AVSK_API void AVSKGetWindowGeometry(AVSKWindowID window, int *outLeft, int *outTop, int *outRight, int *outBottom);

/**
 * Moves a window. The rectangle is stored as it is; an inverted one is never hit.
 *
 * @param window                 the window.
 * @param left,top,right,bottom  the rectangle.
 */
AVSK_API void AVSKSetWindowGeometry(AVSKWindowID window, int left, int top, int right, int bottom);

/**
 * Asks whether a window is visible.
 *
 * @param window  the window.
 * @return the value stored last; 0 for an unknown window.
 */
AVSK_API int AVSKGetWindowIsVisible(AVSKWindowID window);

/**
 * Shows or hides a window. Hiding the focus window takes the focus from it first.
 *
 * @param window   the window.
 * @param visible  0 or non-zero, stored as it is.
 */
AVSK_API void AVSKSetWindowIsVisible(AVSKWindowID window, int visible);

/**
 * Reads a window's refcon.
 *
 * @param window  the window.
 * @return the refcon; null for an unknown window.
 */
AVSK_API void *AVSKGetWindowRefCon(AVSKWindowID window);

/**
 * Changes a window's refcon.
 *
 * @param window  the window.
 * @param refcon  passed to its functions from now on.
 */
AVSK_API void AVSKSetWindowRefCon(AVSKWindowID window, void *refcon);

/**
 * Gives the keyboard focus to a window. The window that has it hears that it
 * loses it. A window of a disabled plugin never gets it, nor one that is
 * destroyed before the other has let go; nothing is called if it has it already.
 *
 * @param window  the window; null or an unknown one takes the focus from everybody.
 */
AVSK_API void AVSKTakeKeyboardFocus(AVSKWindowID window);

/**
 * Brings a window to the front of all others, at once.
 *
 * @param window  the window.
 */
AVSK_API void AVSKBringWindowToFront(AVSKWindowID window);

/**
 * Asks whether a window is the frontmost of the visible ones.
 *
 * @param window  the window.
 * @return 1 if so, else 0.
 */
AVSK_API int AVSKIsWindowInFront(AVSKWindowID window);

/* ---- Hot keys */

/** Names a hot key; an unknown ID is ignored by every call. */
typedef struct AVSKHotKeyInfoRecord *AVSKHotKeyID;

/**
 * Runs when a hot key is pressed.
 *
 * @param refcon  what was given at registration.
 */
typedef void (*AVSKHotKey_f)(void *refcon);

/** The room, in bytes, of a hot key's description. */
#define AVSK_HOT_KEY_TEXT_SIZE 512

/**
 * Registers a hot key of the calling plugin. Of several with one combination
 * the one registered last runs, alone.
 *
 * @param virtualKey   the virtual key code.
 * @param flags        the simulator's key flags, all of which must agree.
 * @param description  UTF-8, for a table shown to the user; copied.
 * @param callback     the function.
 * @param refcon       passed to it, may be null.
 * @return the hot key.
 */
AVSK_API AVSKHotKeyID AVSKRegisterHotKey(char virtualKey, int flags, const char *description, AVSKHotKey_f callback,
                                         void *refcon);

/**
 * Removes a hot key.
 *
 * @param hotKey  the hot key, any plugin's.
 */
AVSK_API void AVSKUnregisterHotKey(AVSKHotKeyID hotKey);

/**
 * Counts the hot keys of all plugins.
 *
 * @return their number.
 */
AVSK_API int AVSKCountHotKeys(void);

/**
 * Finds a hot key by its index, the one registered last first.
 *
 * @param index  from 0 to AVSKCountHotKeys() - 1.
 * @return the hot key; null for another index.
 */
AVSK_API AVSKHotKeyID AVSKGetNthHotKey(int index);

/**
 * Describes a hot key. Each pointer may be null; for an unknown one nothing is written.
 *
 * @param hotKey          the hot key.
 * @param outVirtualKey   receives the virtual key code.
 * @param outFlags        receives the key flags.
 * @param outDescription  512 bytes for the description, cut to 511 and zero-terminated.
 * @param outPlugin       receives the plugin it belongs to.
 */
AVSK_API void AVSKGetHotKeyInfo(AVSKHotKeyID hotKey, char *outVirtualKey, int *outFlags, char *outDescription,
                                AVSKPluginID *outPlugin);

/**
 * Gives a hot key, any plugin's, another combination.
 *
 * @param hotKey      the hot key.
 * @param virtualKey  the virtual key code.
 * @param flags       the simulator's key flags.
 */
AVSK_API void AVSKSetHotKeyCombination(AVSKHotKeyID hotKey, char virtualKey, int flags);

/* ---- Screen and mouse */

/**
 * Asks for the size of the screen.
 *
 * @param outWidth,outHeight  receive it in pixels; what null does is the simulator's choice.
 */
AVSK_API void AVSKGetScreenSize(int *outWidth, int *outHeight);

/**
 * Asks where the mouse is.
 *
 * @param outX,outY  receive it; what null does is the simulator's choice.
 */
AVSK_API void AVSKGetMouseLocation(int *outX, int *outY);

#ifdef __cplusplus
}
#endif

#endif
