/**
 * AVSKDisplay.h: draw callbacks, key sniffers, windows, hot keys, and the
 * screen and the mouse.
 *
 * Screen coordinates are pixels with y upward: a window's top is greater than
 * its bottom. A point is inside when left <= x < right and bottom <= y < top.
 * What a callback removes is not called again, also in the pass that runs.
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
 * @param phase     the phase given at registration.
 * @param isBefore  1 before the host draws the phase, 0 after.
 * @param refcon    the refcon given at registration.
 * @return before a phase: 1 lets the host draw it; an even number, by convention 0, keeps the host
 *         from drawing it; in the phases 30 and 55 the host draws in any case. After a phase: not
 *         used; return 1.
 *
 * [callback, plugin enabled]
 */
typedef int (*AVSKDrawCallback_f)(int phase, int isBefore, void *refcon);

/**
 * Registers a draw callback of the calling plugin. In a phase the callback
 * registered last is called first. In a pass that draws reflections only plugins
 * that enabled the feature "AVSK_WANTS_REFLECTIONS" are called. A callback
 * registered inside a draw callback is first called in the next pass.
 *
 * @param callback     the function. A null function is registered and never called.
 * @param phase        the phase's number: 0, 5, 10 and so on. Another number is never called.
 * @param wantsBefore  1 to draw before the host, 0 to draw after it. Another value is never called.
 * @param refcon       passed to the callback, may be null.
 * @return 1; 0 if any plugin has registered a callback with these four values, or one was
 *         unregistered in the pass that runs.
 *
 * [main thread, any time]
 */
AVSK_API int AVSKRegisterDrawCallback(AVSKDrawCallback_f callback, int phase, int wantsBefore, void *refcon);

/**
 * Removes the draw callback with these four values, whichever plugin registered it.
 *
 * @param callback     the function given at registration.
 * @param phase        the phase given at registration.
 * @param wantsBefore  the value given at registration.
 * @param refcon       the refcon given at registration.
 * @return 1 if there was one, else 0. 1 also if it was removed in the pass that runs.
 *
 * [main thread, any time]
 */
AVSK_API int AVSKUnregisterDrawCallback(AVSKDrawCallback_f callback, int phase, int wantsBefore, void *refcon);

/* ---- Key sniffers */

/**
 * Receives a key press or release.
 *
 * @param key         the character.
 * @param flags       the host's bits for shift, control, down and up.
 * @param virtualKey  the virtual key code.
 * @param refcon      the refcon given at registration.
 * @return 0 to consume the key; another value passes it on.
 *
 * [callback, plugin enabled]
 */
typedef int (*AVSKKeySniffer_f)(char key, int flags, char virtualKey, void *refcon);

/**
 * Registers a key sniffer of the calling plugin. The sniffer registered last
 * receives a key first. A sniffer registered inside a sniffer receives the next
 * key.
 *
 * @param callback       the function. A null function is registered and never called.
 * @param beforeWindows  non-zero: called before hot keys and the focus window. 0: called after them,
 *                       for keys that they did not consume.
 * @param refcon         passed to the callback, may be null.
 * @return 1; 0 if any plugin has registered a sniffer with these three values, or one was
 *         unregistered in the key press that is being handled.
 *
 * [main thread, any time]
 */
AVSK_API int AVSKRegisterKeySniffer(AVSKKeySniffer_f callback, int beforeWindows, void *refcon);

/**
 * Removes the key sniffer with these three values, whichever plugin registered it.
 *
 * @param callback       the function given at registration.
 * @param beforeWindows  the value given at registration.
 * @param refcon         the refcon given at registration.
 * @return 1 if there was one, else 0. 1 also if it was removed in the key press that is being
 *         handled.
 *
 * [main thread, any time]
 */
AVSK_API int AVSKUnregisterKeySniffer(AVSKKeySniffer_f callback, int beforeWindows, void *refcon);

/* ---- Windows */

/**
 * Identifies a window. Owned by the library. Valid until the window is
 * destroyed or its plugin is unloaded. The ID of a window that is destroyed in
 * a callback stays known until the pass over the windows ends. Every function
 * ignores an unknown ID.
 */
typedef struct AVSKWindowCallbackRecord *AVSKWindowID;

/** What the mouse did. */
typedef enum AVSKMouseStatus {
    /** A button was pressed in the window. */
    AVSKMouseDown = 1,
    /** A button is held. Reported once a frame, also outside the window. */
    AVSKMouseDrag = 2,
    /** The button was released. */
    AVSKMouseUp = 3
} AVSKMouseStatus;

/**
 * Draws a window. Called once a frame while the window is visible, after the
 * windows behind it. See AVSKCreateWindow() before you create one in here.
 *
 * @param window  the window.
 * @param refcon  the window's refcon.
 *
 * [callback, plugin enabled]
 */
typedef void (*AVSKDrawWindow_f)(AVSKWindowID window, void *refcon);

/**
 * Receives a key for the window that has the keyboard focus, or the
 * notification that the window loses the focus. The window consumes every key.
 * The function may destroy the window or take the focus back.
 *
 * @param window       the window. If losingFocus is 1: the window that gets the focus, as the caller
 *                     of AVSKTakeKeyboardFocus() named it, or null.
 * @param key          the character; 0 if losingFocus is 1.
 * @param flags        the host's bits for shift, control, down and up; 0 if losingFocus is 1.
 * @param virtualKey   the virtual key code; 0 if losingFocus is 1.
 * @param refcon       the window's refcon.
 * @param losingFocus  1 if the window loses the focus, else 0.
 *
 * [callback, plugin enabled]
 */
typedef void (*AVSKHandleKey_f)(AVSKWindowID window, char key, int flags, char virtualKey, void *refcon,
                                int losingFocus);

/**
 * Receives a mouse button or a drag.
 *
 * @param window  the window.
 * @param x       the mouse position in pixels.
 * @param y       the mouse position in pixels, upward.
 * @param status  one of AVSKMouseStatus.
 * @param refcon  the window's refcon.
 * @return for AVSKMouseDown: non-zero consumes the press, and the window receives the drags and the
 *         release; 0 passes the press to the windows behind. Otherwise not used.
 *
 * [callback, plugin enabled]
 */
typedef int (*AVSKHandleMouseClick_f)(AVSKWindowID window, int x, int y, int status, void *refcon);

/**
 * Chooses the cursor while the mouse is over the window.
 *
 * @param window  the window.
 * @param x       the mouse position in pixels.
 * @param y       the mouse position in pixels, upward.
 * @param refcon  the window's refcon.
 * @return one of the host's cursor numbers; 0 leaves the choice to the windows behind.
 *
 * [callback, plugin enabled]
 */
typedef int (*AVSKHandleCursor_f)(AVSKWindowID window, int x, int y, void *refcon);

/**
 * Receives the mouse wheel while the mouse is over the window.
 *
 * @param window  the window.
 * @param x       the mouse position in pixels.
 * @param y       the mouse position in pixels, upward.
 * @param wheel   the wheel's number, given by the host.
 * @param clicks  the distance in clicks, given by the host.
 * @param refcon  the window's refcon.
 * @return non-zero to consume the event; 0 passes it to the windows behind.
 *
 * [callback, plugin enabled]
 */
typedef int (*AVSKHandleMouseWheel_f)(AVSKWindowID window, int x, int y, int wheel, int clicks, void *refcon);

/**
 * The parameters of AVSKCreateWindowEx(): twelve 32-bit fields, 48 bytes. The
 * click function precedes the key function; in AVSKCreateWindow() it follows.
 */
typedef struct AVSKCreateWindowParams {
    /** sizeof(AVSKCreateWindowParams). */
    int structSize;
    /** Pixels. */
    int left;
    /** Pixels, upward. */
    int top;
    /** Pixels. */
    int right;
    /** Pixels, upward. */
    int bottom;
    /** Non-zero: the window is drawn and receives the mouse. */
    int visible;
    /** Draws the window. */
    AVSKDrawWindow_f drawFunc;
    /** Receives mouse buttons. */
    AVSKHandleMouseClick_f mouseClickFunc;
    /** Receives keys. */
    AVSKHandleKey_f keyFunc;
    /** Chooses the cursor. May be null. */
    AVSKHandleCursor_f cursorFunc;
    /** Receives the mouse wheel. May be null. */
    AVSKHandleMouseWheel_f mouseWheelFunc;
    /** Passed to the functions, may be null. */
    void *refcon;
} AVSKCreateWindowParams;

/**
 * Creates a window that belongs to the calling plugin. The window is in front of
 * all others and does not get the keyboard focus. A null function is not called.
 *
 * The library draws windows from back to front. If a window is created during
 * or after that, and no function or hook has looked up a window since, all
 * other windows but the backmost are no longer called. To avoid this, look up
 * a window before you create one: call AVSKGetWindowIsVisible(), with null for
 * example.
 *
 * @param left            pixels.
 * @param top             pixels, upward. The rectangle is not checked; an inverted one is never hit.
 * @param right           pixels.
 * @param bottom          pixels, upward.
 * @param visible         non-zero: the window is drawn and receives the mouse.
 * @param drawFunc        draws the window.
 * @param keyFunc         receives keys.
 * @param mouseClickFunc  receives mouse buttons.
 * @param refcon          passed to the functions, may be null.
 * @return the window.
 *
 * [main thread, any time]
 */
AVSK_API AVSKWindowID AVSKCreateWindow(int left, int top, int right, int bottom, int visible, AVSKDrawWindow_f drawFunc,
                                       AVSKHandleKey_f keyFunc, AVSKHandleMouseClick_f mouseClickFunc, void *refcon);

/**
 * Creates a window as AVSKCreateWindow() does, which may also choose the cursor
 * and receive the mouse wheel.
 *
 * @param params  the parameters; read during the call only.
 * @return the window; null if params is null or its structSize is not 48.
 *
 * [main thread, any time]
 */
AVSK_API AVSKWindowID AVSKCreateWindowEx(const AVSKCreateWindowParams *params);

/**
 * Destroys a window. If it has the keyboard focus, its key function is notified
 * first. If it holds the mouse, it does not receive the release.
 *
 * @param window  a window of any plugin.
 *
 * [main thread, any time]
 */
AVSK_API void AVSKDestroyWindow(AVSKWindowID window);

/**
 * Reads a window's rectangle. For an unknown window nothing is written.
 *
 * @param window     the window.
 * @param outLeft    receives the left side in pixels, may be null.
 * @param outTop     receives the top in pixels, upward, may be null.
 * @param outRight   receives the right side in pixels, may be null.
 * @param outBottom  receives the bottom in pixels, upward, may be null.
 *
 * [main thread, any time]
 */
AVSK_API void AVSKGetWindowGeometry(AVSKWindowID window, int *outLeft, int *outTop, int *outRight, int *outBottom);

/**
 * Moves a window. The rectangle is not checked; an inverted one is never hit.
 *
 * @param window  a window of any plugin.
 * @param left    pixels.
 * @param top     pixels, upward.
 * @param right   pixels.
 * @param bottom  pixels, upward.
 *
 * [main thread, any time]
 */
AVSK_API void AVSKSetWindowGeometry(AVSKWindowID window, int left, int top, int right, int bottom);

/**
 * Tells whether a window is visible.
 *
 * @param window  the window.
 * @return the value stored last; 0 for an unknown window.
 *
 * [main thread, any time]
 */
AVSK_API int AVSKGetWindowIsVisible(AVSKWindowID window);

/**
 * Shows or hides a window. If a window that has the keyboard focus is hidden,
 * it loses the focus first, and its key function is notified.
 *
 * @param window   a window of any plugin.
 * @param visible  0 to hide, non-zero to show; stored unchanged.
 *
 * [main thread, any time]
 */
AVSK_API void AVSKSetWindowIsVisible(AVSKWindowID window, int visible);

/**
 * Reads a window's refcon.
 *
 * @param window  the window.
 * @return the refcon; null for an unknown window.
 *
 * [main thread, any time]
 */
AVSK_API void *AVSKGetWindowRefCon(AVSKWindowID window);

/**
 * Changes a window's refcon.
 *
 * @param window  a window of any plugin.
 * @param refcon  passed to the window's functions from now on, may be null.
 *
 * [main thread, any time]
 */
AVSK_API void AVSKSetWindowRefCon(AVSKWindowID window, void *refcon);

/**
 * Gives the keyboard focus to a window. The key function of the window that has
 * the focus is notified first. Nothing happens if the window already has the
 * focus or its plugin is disabled. If the notified function destroys the window,
 * no window has the focus afterwards.
 *
 * @param window  the window, may be hidden. Null or an unknown window: no window has the focus.
 *
 * [main thread, any time]
 */
AVSK_API void AVSKTakeKeyboardFocus(AVSKWindowID window);

/**
 * Moves a window in front of all others at once, also inside a callback.
 *
 * @param window  a window of any plugin.
 *
 * [main thread, any time]
 */
AVSK_API void AVSKBringWindowToFront(AVSKWindowID window);

/**
 * Tells whether a window is the frontmost visible window. A visible window that
 * was destroyed in the pass that runs still counts.
 *
 * @param window  the window.
 * @return 1 if it is, else 0.
 *
 * [main thread, any time]
 */
AVSK_API int AVSKIsWindowInFront(AVSKWindowID window);

/* ---- Hot keys */

/**
 * Identifies a hot key. Owned by the library. Valid until it is unregistered
 * or its plugin is unloaded. Every function ignores an unknown ID.
 */
typedef struct AVSKHotKeyInfoRecord *AVSKHotKeyID;

/**
 * Runs when a hot key is pressed. The key is consumed.
 *
 * @param refcon  the refcon given at registration.
 *
 * [callback, plugin enabled]
 */
typedef void (*AVSKHotKey_f)(void *refcon);

/** The size in bytes of the buffer for a hot key's description. */
#define AVSK_HOT_KEY_TEXT_SIZE 512

/**
 * Registers a hot key of the calling plugin. If several hot keys have the same
 * combination, only the one registered last whose plugin is enabled runs.
 *
 * @param virtualKey   the virtual key code.
 * @param flags        the host's key flags. Every bit must agree, also those for down and up.
 * @param description  UTF-8, shown to the user; copied. Null counts as an empty text.
 * @param callback     the function. A null function is registered and never called.
 * @param refcon       passed to the callback, may be null.
 * @return the hot key.
 *
 * [main thread, any time]
 */
AVSK_API AVSKHotKeyID AVSKRegisterHotKey(char virtualKey, int flags, const char *description, AVSKHotKey_f callback,
                                         void *refcon);

/**
 * Removes a hot key.
 *
 * @param hotKey  a hot key of any plugin.
 *
 * [main thread, any time]
 */
AVSK_API void AVSKUnregisterHotKey(AVSKHotKeyID hotKey);

/**
 * Counts the hot keys of all plugins.
 *
 * @return the number of hot keys.
 *
 * [main thread, any time]
 */
AVSK_API int AVSKCountHotKeys(void);

/**
 * Returns the hot key at an index. The hot key registered last has index 0.
 *
 * @param index  from 0 to AVSKCountHotKeys() - 1.
 * @return the hot key; null for another index.
 *
 * [main thread, any time]
 */
AVSK_API AVSKHotKeyID AVSKGetNthHotKey(int index);

/**
 * Describes a hot key. For an unknown hot key nothing is written.
 *
 * @param hotKey          the hot key.
 * @param outVirtualKey   receives the virtual key code, may be null.
 * @param outFlags        receives the key flags, may be null.
 * @param outDescription  a buffer of 512 bytes, receives the description, UTF-8, cut to 511 bytes
 *                        and zero-terminated; may be null.
 * @param outPlugin       receives the ID of the hot key's plugin, may be null.
 *
 * [main thread, any time]
 */
AVSK_API void AVSKGetHotKeyInfo(AVSKHotKeyID hotKey, char *outVirtualKey, int *outFlags, char *outDescription,
                                AVSKPluginID *outPlugin);

/**
 * Changes a hot key's combination.
 *
 * @param hotKey      a hot key of any plugin.
 * @param virtualKey  the virtual key code.
 * @param flags       the host's key flags.
 *
 * [main thread, any time]
 */
AVSK_API void AVSKSetHotKeyCombination(AVSKHotKeyID hotKey, char virtualKey, int flags);

/* ---- Screen and mouse */

/**
 * Reads the size of the screen. Forwards to the host service getScreenSize.
 *
 * @param outWidth   receives the width in pixels. The host decides whether null is allowed.
 * @param outHeight  receives the height in pixels. The host decides whether null is allowed.
 *
 * [main thread, initialized]
 */
AVSK_API void AVSKGetScreenSize(int *outWidth, int *outHeight);

/**
 * Reads the mouse position. Forwards to the host service getMouseLocation.
 *
 * @param outX  receives the position in pixels. The host decides whether null is allowed.
 * @param outY  receives the position in pixels, upward. The host decides whether null is allowed.
 *
 * [main thread, initialized]
 */
AVSK_API void AVSKGetMouseLocation(int *outX, int *outY);

#ifdef __cplusplus
}
#endif

#endif
