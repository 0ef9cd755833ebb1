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
 * functions. The host owns the table, fills it before the start and keeps it
 * valid for the life of the process. The library keeps the pointer, and copies
 * only slot 71. No slot inside the table may be null, except slot 71 and those
 * that the numbers in slots 0 and 1 exclude.
 *
 * Docs/host-slots.md is made from these blocks. After the parameters each
 * block says:
 *
 * - caller: which functions of the plugin interface, hooks and occasions call
 *   the service. The library passes a plugin's arguments unchanged unless the
 *   block says otherwise.
 * - checked: what the library guarantees.
 * - unchecked: what a faulty plugin can pass. The service must survive it. A
 *   foreign pointer is one that the host has not handed out.
 * - calls: which hooks the service is expected to call.
 * - since: the table that has the service; without: what the library does if
 *   the table does not.
 * - reference: what the host in Src/Host does where the choice is the host's.
 *
 * A text passed to a service is UTF-8, owned by the caller and valid during
 * the call. An output belongs to the caller and may be written during the call
 * only. The library calls services on the main thread only. A service may call
 * every hook and every function of the plugin interface, except
 * AVSKInitializePlugins() and AVSKShutdownPlugins(). If it calls these two all
 * the same, the library stays consistent: a plugin whose call is running goes
 * on as nobody (ID -1), and a start or reload that is under way ends. A service
 * must not end by longjmp().
 */
typedef struct AVSKHostCallbacks {
    /**
     * Slot 0: the version of the host's interface, a number. 4 for a host that has the services showMessage and
     * showProgress, 3 for one that has only showMessage, 2 for one that has neither. A greater number is legal and
     * means the same as 4.
     */
    int32_t version;
    /**
     * Slot 1: the size of the table in bytes, a number: sizeof(AVSKHostCallbacks) for a full table. The smallest
     * legal table has 280 bytes and ends with saveDataFile. The library reads no word past this size. With less
     * than 288 bytes it also leaves out destroyMenu and reinitUsersPlane, although they lie inside.
     */
    int32_t sizeInBytes;
    /**
     * Slot 2: returns the screen size in pixels.
     *
     * @param width   receives the width; may be null.
     * @param height  receives the height; may be null.
     * @caller     AVSKGetScreenSize().
     * @checked    nothing.
     * @unchecked  null outputs.
     * @calls      no hook.
     * @since      every table.
     */
    void (*getScreenSize)(int *width, int *height);
    /**
     * Slot 3: returns the mouse position in pixels, y upward. The position may lie outside the screen.
     *
     * @param x           receives the position from the left; may be null if fromPlugin is 1.
     * @param y           receives the position from the bottom; may be null if fromPlugin is 1.
     * @param fromPlugin  1 if a plugin asks, 0 if the library does.
     * @caller     AVSKGetMouseLocation() with 1. With 0: draw code 20 while a window holds the mouse, and disabling
     *             the plugin of that window.
     * @checked    with 0 both outputs are valid.
     * @unchecked  with 1 null outputs.
     * @calls      no hook.
     * @since      every table.
     * @reference  answers both callers alike.
     */
    void (*getMouseLocation)(int *x, int *y, int fromPlugin);
    /**
     * Slot 4: notifies the host of the graphics state that a plugin wants for its drawing. The host defines the
     * seven numbers and documents them for its plugins. Plugins expect that the state applies when the call
     * returns.
     *
     * @param a1..a7  numbers whose meaning is the host's.
     * @caller     AVSKSetGraphicsState().
     * @checked    nothing.
     * @unchecked  all numbers, and that the host is drawing.
     * @calls      no hook.
     * @since      every table.
     * @reference  fog, number of texture units, lighting, alpha test, alpha blending, depth test, depth writing;
     *             not 0 is on.
     */
    void (*setGraphicsState)(int a1, int a2, int a3, int a4, int a5, int a6, int a7);
    /**
     * Slot 5: binds a 2-D texture to a texture unit.
     *
     * @param texture  the texture's number.
     * @param unit     the texture unit.
     * @caller     AVSKBindTexture2d().
     * @checked    nothing.
     * @unchecked  both numbers, and that the host is drawing.
     * @calls      no hook.
     * @since      every table.
     * @reference  makes the unit the active one, and binds.
     */
    void (*bindTexture2d)(int texture, int unit);
    /**
     * Slot 6: reserves texture numbers that are not in use.
     *
     * @param textures  receives count numbers; may be null.
     * @param count     how many numbers; may be 0 or negative: write nothing then.
     * @caller     AVSKGenerateTextureNumbers().
     * @checked    nothing.
     * @unchecked  a null output and a negative count.
     * @calls      no hook.
     * @since      every table.
     * @reference  counts up from 5, past its own textures.
     */
    void (*generateTextureNumbers)(int *textures, int count);
    /**
     * Slot 7: returns the texture number of one of the host's own textures. The host defines which there are.
     *
     * @param texture  the texture, in the host's numbering.
     * @return the texture's number, passed to the plugin.
     * @caller     AVSKGetTexture().
     * @checked    nothing.
     * @unchecked  an unknown texture.
     * @calls      no hook.
     * @since      every table.
     * @reference  1: brushed metal of the panel; 2: the ground as a map, north upward; 3: the halo of a light.
     *             Others: 0, no texture.
     */
    int (*getTexture)(int texture);
    /**
     * Slot 8: converts world to local coordinates. The host defines order and units of both.
     *
     * @param a  the world point.
     * @param b  the world point, second number.
     * @param c  the world point, third number.
     * @param x  receives the local point; may be null.
     * @param y  receives the local point, second number; may be null.
     * @param z  receives the local point, third number; may be null.
     * @caller     AVSKWorldToLocal().
     * @checked    nothing.
     * @unchecked  null outputs, and NaN and infinite numbers.
     * @calls      no hook.
     * @since      every table.
     * @reference  world: latitude and longitude in degrees, altitude in metres. Local, in metres: x east, y up, z
     *             south.
     */
    void (*worldToLocal)(double a, double b, double c, double *x, double *y, double *z);
    /**
     * Slot 9: converts local to world coordinates, the reverse of slot 8.
     *
     * @param x  the local point.
     * @param y  the local point, second number.
     * @param z  the local point, third number.
     * @param a  receives the world point; may be null.
     * @param b  receives the world point, second number; may be null.
     * @param c  receives the world point, third number; may be null.
     * @caller     AVSKLocalToWorld().
     * @checked    nothing.
     * @unchecked  null outputs, and NaN and infinite numbers.
     * @calls      no hook.
     * @since      every table.
     * @reference  as slot 8.
     */
    void (*localToWorld)(double x, double y, double z, double *a, double *b, double *c);
    /**
     * Slot 10: draws a translucent dark box, the background of windows.
     *
     * @param left    pixels.
     * @param top     pixels, upward.
     * @param right   pixels.
     * @param bottom  pixels, upward.
     * @caller     AVSKDrawTranslucentDarkBox().
     * @checked    nothing.
     * @unchecked  an inverted box, one outside the screen, and that the host is drawing.
     * @calls      no hook.
     * @since      every table.
     */
    void (*drawTranslucentDarkBox)(int left, int top, int right, int bottom);
    /**
     * Slot 11: draws a text.
     *
     * @param colour         red, green and blue, each from 0 to 1; may be null.
     * @param x              where the text starts, in pixels.
     * @param y              where the text starts, in pixels, upward.
     * @param text           UTF-8, not to be changed; may be null.
     * @param wordWrapWidth  the width in pixels at which lines break; null for one line.
     * @param font           the font, in the host's numbering.
     * @caller     AVSKDrawString().
     * @checked    nothing.
     * @unchecked  a null colour and text, a wrap width of 0 or less, an unknown font, and that the host is drawing.
     * @calls      no hook.
     * @since      every table.
     * @reference  y is the baseline. Null colour: white. Wrap width of 0 or less: one line. Fonts: 0 proportional,
     *             1 monospace, 2 large monospace, others as 1.
     */
    void (*drawString)(float *colour, int x, int y, char *text, int *wordWrapWidth, int font);
    /**
     * Slot 12: draws a number.
     *
     * @param colour    as in slot 11; may be null.
     * @param x         where the number starts, in pixels.
     * @param y         where the number starts, in pixels, upward.
     * @param value     the number.
     * @param digits    how many digits before the decimal point.
     * @param decimals  how many digits after it.
     * @param showSign  non-zero: a plus sign is drawn too.
     * @param font      as in slot 11.
     * @caller     AVSKDrawNumber().
     * @checked    nothing.
     * @unchecked  a null colour, NaN, negative and very large counts of digits, an unknown font, and that the host
     *             is drawing.
     * @calls      no hook.
     * @since      every table.
     * @reference  fills with zeros up to digits, and limits both counts to 0 to 20.
     */
    void (*drawNumber)(float *colour, int x, int y, double value, int digits, int decimals, int showSign, int font);
    /**
     * Slot 13: returns the size of a font's characters.
     *
     * @param font        the font, in the host's numbering.
     * @param charWidth   receives the width in pixels; may be null.
     * @param charHeight  receives the height in pixels; may be null.
     * @param digitsOnly  receives 1 if the font has digits only, else 0; may be null.
     * @caller     AVSKGetFontDimensions().
     * @checked    nothing.
     * @unchecked  null outputs and an unknown font.
     * @calls      no hook.
     * @since      every table.
     * @reference  the width is that of the digit 0.
     */
    void (*getFontDimensions)(int font, int *charWidth, int *charHeight, int *digitsOnly);
    /**
     * Slot 14: returns the clock in seconds since the simulator started. It must agree with the times that are
     * passed to AVSKEventHook(), and should never go back.
     *
     * @return seconds; also used for the intervals of flight loops.
     * @caller     AVSKGetElapsedTime(), and the functions that create and schedule flight loops.
     * @checked    there are no arguments.
     * @unchecked  nothing.
     * @calls      no hook.
     * @since      every table.
     * @reference  counts frames, so the clock stands still during a frame.
     */
    float (*getElapsedTime)(void);
    /**
     * Slot 15: returns the camera position, one pointer per field of AVSKCameraPosition. The host defines order and
     * units of the seven numbers, the same as in AVSKCameraHook().
     *
     * @param f1..f7  receive the numbers.
     * @caller     AVSKReadCameraPosition().
     * @checked    a plugin's null pointer does not reach the host.
     * @unchecked  nothing else.
     * @calls      no hook.
     * @since      every table.
     * @reference  x, y and z in local metres; pitch, upward, heading and roll in degrees; zoom, 1 for none.
     */
    void (*readCameraPosition)(float *f1, float *f2, float *f3, float *f4, float *f5, float *f6, float *f7);
    /**
     * Slot 16: draws an aircraft. The host defines the nine words and the result, and documents them for its
     * plugins.
     *
     * @param a1..a9  words whose meaning is the host's.
     * @return passed to the plugin. A plugin that may not draw gets 1 from the library.
     * @caller     AVSKDrawAircraft().
     * @checked    the plugin controls the other aircraft.
     * @unchecked  all words, pointers included, and that the host is drawing.
     * @calls      no hook.
     * @since      every table.
     * @reference  draws nothing and returns 1.
     */
    int (*drawAircraft)(AVSKWord a1, AVSKWord a2, AVSKWord a3, AVSKWord a4, AVSKWord a5, AVSKWord a6, AVSKWord a7,
                        AVSKWord a8, AVSKWord a9);
    /**
     * Slot 17: loads the model of an aircraft. The host may load it inside this call, and report events 8 and 3, or
     * do so later. The plugin that calls may belong to the user's aircraft: event 8 then unloads it during its own
     * call. The library keeps its code until the call returns. To load later, in the next frame, is simpler.
     *
     * @param index     the aircraft, 0 for the user's.
     * @param path      the model's full path, UTF-8, valid during the call. From AVSKSetUsersAircraft() of any
     *                  length, else of less than 256 bytes.
     * @param fileName  from AVSKSetUsersAircraft() the part after the last separator; from AVSKSetAircraftModel()
     *                  the full path again. Valid during the call.
     * @caller     AVSKSetUsersAircraft() with index 0, AVSKSetAircraftModel() with any index that the host
     *             simulates.
     * @checked    both texts are valid. From AVSKSetAircraftModel(): the plugin is in control, and the index is at
     *             least 0 and less than the count last passed to AVSKGetNumberPlanesToHandle().
     * @unchecked  whether the file exists; an empty path.
     * @calls      AVSKEventHook() with events 8 and 3. AVSKUpdatePlaneNameAndPath() changes nothing inside this
     *             call.
     * @since      every table.
     * @reference  loads at the start of the next frame.
     */
    void (*loadAircraftModel)(int index, const char *path, const char *fileName);
    /**
     * Slot 18: returns the model of an aircraft. The path comes first. Always write both texts, empty ones for an
     * unknown index or while there is no aircraft: the library and plugins read them.
     *
     * @param index        the aircraft, 0 for the user's.
     * @param outPath      a buffer of 256 bytes, receives the full path, UTF-8. The aircraft's plugins are in the
     *                     folder "plugins" beside that file.
     * @param outFileName  a buffer of 256 bytes, receives the file name, UTF-8.
     * @caller     AVSKGetNthAircraftModel(). With index 0 also event 3 with parameter 0, and a reload.
     * @checked    both buffers are valid.
     * @unchecked  an unknown index.
     * @calls      no hook.
     * @since      every table.
     */
    void (*getAircraftModel)(int index, char *outPath, char *outFileName);
    /**
     * Slot 19: returns the number of aircraft, the user's included.
     *
     * @return the number. The library lowers the active number to the limit of the plugin in control.
     * @caller     AVSKCountAircraft().
     * @checked    there are no arguments.
     * @unchecked  nothing.
     * @calls      no hook.
     * @since      every table.
     * @reference  20, whether or not they are active.
     */
    int (*countAircraft)(void);
    /**
     * Slot 20: places the user at an airport.
     *
     * @param airport  the airport, as the host names it; may be null.
     * @caller     AVSKPlaceUserAtAirport().
     * @checked    nothing.
     * @unchecked  a null name and an unknown one.
     * @calls      no hook needed; AVSKEventHook() with events that the placement causes.
     * @since      every table.
     * @reference  300 m above the airport with this ID.
     */
    void (*placeUserAtAirport)(const char *airport);
    /**
     * Slot 21: simulates a key press. The host defines both numbers. Plugins expect that the key has the effect of
     * the user's key, so that it passes through AVSKKeyPressHook() before the host acts on it.
     *
     * @param keyType  a number whose meaning is the host's.
     * @param key      a number whose meaning is the host's.
     * @caller     AVSKSimulateKeyPress().
     * @checked    nothing.
     * @unchecked  both numbers.
     * @calls      AVSKKeyPressHook() for the press and for the release, inside the call or later.
     * @since      every table.
     * @reference  type 1: key is a virtual key code. Other types: key is a character. The press is reported inside
     *             the call, the release two frames later.
     */
    void (*simulateKeyPress)(int keyType, int key);
    /**
     * Slot 22: speaks or shows a text.
     *
     * @param text  UTF-8, valid during the call; may be null.
     * @caller     AVSKSpeakString().
     * @checked    nothing.
     * @unchecked  a null text.
     * @calls      no hook.
     * @since      every table.
     * @reference  writes the text to the console.
     */
    void (*speakString)(const char *text);
    /**
     * Slot 23: runs the command of one of the host's keys, without a key event.
     *
     * @param key  a number whose meaning is the host's.
     * @caller     AVSKCommandKeyStroke().
     * @checked    nothing.
     * @unchecked  an unknown number.
     * @calls      AVSKCommandHook() for the command that runs.
     * @since      every table.
     * @reference  key is a virtual key code. The command begins and ends inside the call.
     */
    void (*commandKeyStroke)(int key);
    /**
     * Slot 24: presses or releases joystick buttons. A press and a release by a plugin are two calls each: pass 0
     * reports the change, pass 1 the state. A held button is reported again once a frame with release 0, pass 1,
     * all held buttons in one list, a button twice if it was pressed twice. A button stays pressed if its plugin is
     * unloaded.
     *
     * @param buttons  button numbers in the host's numbering, ended by 0, valid during the call.
     * @param release  0 for a press, 1 for a release.
     * @param pass     0 for the change, 1 for the state.
     * @caller     AVSKCommandButtonPress() and AVSKCommandButtonRelease(), both passes; event 0, release 0 and pass
     *             1.
     * @checked    the list is valid and ends with 0.
     * @unchecked  unknown buttons; releases of buttons that are not pressed. A plugin's button 0 ends the list
     *             early.
     * @calls      AVSKCommandHook() for the commands of the buttons.
     * @since      every table.
     * @reference  pass 0 begins the button's command at the first press and ends it at the last release; pass 1
     *             continues it, at most once a frame.
     */
    void (*commandButton)(const int *buttons, int release, int pass);
    /**
     * Slot 25: returns the path of the host's folder, UTF-8, which ends in a separator. A reload loads the plugins
     * from this path, so it must be the path that was passed to AVSKInitializePlugins().
     *
     * @param outPath  a buffer of 512 bytes. Always write a text, an empty one if there is none.
     * @caller     AVSKGetSystemPath() and a reload.
     * @checked    the buffer is not null.
     * @unchecked  the size of a plugin's buffer.
     * @calls      no hook.
     * @since      every table.
     */
    void (*getSystemPath)(char *outPath);
    /**
     * Slot 26: returns the path of the host's preferences, UTF-8. The host defines whether it is a folder or a
     * file.
     *
     * @param outPath  a buffer of 512 bytes. Always write a text, an empty one if there is none.
     * @caller     AVSKGetPrefsPath().
     * @checked    the buffer is not null.
     * @unchecked  the size of the plugin's buffer.
     * @calls      no hook.
     * @since      every table.
     * @reference  the folder "Preferences/" in the host's folder.
     */
    void (*getPrefsPath)(char *outPath);
    /**
     * Slot 27: returns the host's version and a second number of the host's choice.
     *
     * @param hostVersion  receives the version.
     * @param hostValue    receives the second number.
     * @caller     AVSKGetVersions().
     * @checked    both outputs are valid and hold 0.
     * @unchecked  nothing.
     * @calls      no hook.
     * @since      every table.
     * @reference  100 and 1.
     */
    void (*getVersions)(int *hostVersion, int *hostValue);
    /**
     * Slot 28: returns the host's code for its language. The host defines the codes; plugins choose their texts by
     * it.
     *
     * @return the code, passed to the plugin.
     * @caller     AVSKGetLanguage().
     * @checked    there are no arguments.
     * @unchecked  nothing.
     * @calls      no hook.
     * @since      every table.
     * @reference  0 for English, its only language.
     */
    int (*getLanguage)(void);
    /**
     * Slot 29: writes a text to the log, unchanged and without adding a line end: an entry arrives in pieces. Write
     * it at once: the last entry before an abort is the reason.
     *
     * @param text  UTF-8, valid during the call; may be null.
     * @caller     AVSKDebugString(), and the library for its own entries.
     * @checked    the library's own texts are valid.
     * @unchecked  a plugin's null text.
     * @calls      no hook.
     * @since      every table.
     */
    void (*debugString)(const char *text);
    /**
     * Slot 30: creates a menu below an item of a parent menu. Each AVSKInitializePlugins() asks for one more menu
     * with the name "Plugins", a null parent and item 0. The library never destroys that menu. Remove it after a
     * shutdown, and give the next one another handle.
     *
     * @param parent      the handle of the parent; null is the menu bar.
     * @param parentItem  the index of the item that opens the new menu, counted over all items of the parent. -1:
     *                    none of the plugin's items. Then create the menu without an item that opens it.
     * @param name        the title, UTF-8, valid during the call; may be null.
     * @return the menu's handle, owned by the host, valid until destroyMenu, and not equal to that of any other
     *         menu. A host that is full returns a handle of a menu that it does not show. After a null the library
     *         passes null as the menu to slots 31, 32, 33 and 63, and as the parent of menus below it.
     * @caller     AVSKInitializePlugins(), AVSKCreateMenu().
     * @checked    parent is null or was returned by this slot and not destroyed.
     * @unchecked  a null name, parentItem -1, and an item that opens a menu already.
     * @calls      no hook.
     * @since      every table.
     * @reference  is never full. Keeps the storage of destroyed menus, so that a handle is never used again.
     */
    void *(*createMenu)(void *parent, int parentItem, const char *name);
    /**
     * Slot 31: appends an item. If there is an item at that index that was renamed to "", the new item takes its
     * place; otherwise insert it there. The name "-" is a separator. It counts as an item and cannot be picked.
     *
     * @param menu          the menu's handle.
     * @param index         the index of the new item, counted over all items of the menu.
     * @param name          UTF-8, valid during the call; may be null.
     * @param forceEnglish  non-zero: do not translate the text. The library passes 1 for items that open a menu.
     * @return the ID by which the host reports picks of the item to AVSKMenuHook(). Unique over all menus, also
     *         over removed items. A host that is full returns an ID that it never reports and still counts the
     *         item: the indices of later items include it.
     * @caller     AVSKAppendMenuItem(), AVSKAppendMenuSeparator(), AVSKCreateMenu() without a parent.
     * @checked    menu was returned by slot 30 and not destroyed; index is the number of items in it.
     * @unchecked  a null name.
     * @calls      no hook.
     * @since      every table.
     * @reference  counts IDs up from 1.
     */
    int (*appendMenuItem)(void *menu, int index, const char *name, int forceEnglish);
    /**
     * Slot 32: renames an item. An item with the name "" is not shown, but keeps its place until it is used again.
     * The library so empties a menu that is cleared or destroyed.
     *
     * @param menu          the menu's handle.
     * @param index         the item's index, counted over all items; -1 is not an item: ignore it.
     * @param name          UTF-8, valid during the call; may be null.
     * @param forceEnglish  non-zero: do not translate the text.
     * @caller     AVSKSetMenuItemName(), AVSKClearAllMenuItems(), AVSKDestroyMenu(), and unloading a plugin.
     * @checked    menu was returned by slot 30 and not destroyed; index is that of an item, or -1.
     * @unchecked  a null name and index -1.
     * @calls      no hook.
     * @since      every table.
     */
    void (*setMenuItemName)(void *menu, int index, const char *name, int forceEnglish);
    /**
     * Slot 33: destroys a menu. Its items were renamed to "" before. The item that opened it stays and opens
     * nothing. Menus below it stay valid, without an item that opens them.
     *
     * @param menu  the menu's handle, which the library does not use again.
     * @caller     AVSKDestroyMenu(), and unloading a plugin. Also after slot 30 if the plugin was unloaded inside
     *             it.
     * @checked    menu was returned by slot 30 and not destroyed. Never the "Plugins" menu.
     * @unchecked  nothing.
     * @calls      no hook.
     * @since      a table of 288 bytes.
     * @without    the host keeps showing the menu, emptied.
     */
    void (*destroyMenu)(void *menu);
    /**
     * Slot 34: initialises the user's aircraft again.
     *
     * @param a1  always 208.
     * @param a2  always 201.
     * @return not used.
     * @caller     AVSKReinitUsersPlane().
     * @checked    the plugin controls the other aircraft.
     * @unchecked  nothing.
     * @calls      no hook needed; AVSKEventHook() with events that this causes.
     * @since      a table of 288 bytes.
     * @without    AVSKReinitUsersPlane() does nothing.
     * @reference  puts the aeroplane back to its start.
     */
    int (*reinitUsersPlane)(int a1, int a2);
    /**
     * Slot 35: loads the scenery again.
     *
     * @return not used.
     * @caller     AVSKReloadScenery().
     * @checked    there are no arguments.
     * @unchecked  nothing.
     * @calls      AVSKEventHook() with event 12, only for folders that were not reported before: the plugins of the
     *             others are still loaded and would be started twice.
     * @since      every table.
     * @reference  does nothing.
     */
    int (*reloadScenery)(void);
    /**
     * Slot 36: returns the first navaid. References and types of navaids are the host's numbers.
     *
     * @return the navaid, passed to the plugin.
     * @caller     AVSKGetFirstNavAid().
     * @checked    there are no arguments.
     * @unchecked  nothing.
     * @calls      no hook.
     * @since      every table.
     * @reference  0; references count up from 0, and -1 is no navaid.
     */
    int (*getFirstNavAid)(void);
    /**
     * Slot 37: returns the navaid after another one.
     *
     * @param navAid  the other navaid.
     * @return the navaid, passed to the plugin.
     * @caller     AVSKGetNextNavAid().
     * @checked    nothing.
     * @unchecked  an unknown navaid.
     * @calls      no hook.
     * @since      every table.
     * @reference  -1 after the last navaid and for an unknown one.
     */
    int (*getNextNavAid)(int navAid);
    /**
     * Slot 38: returns the first navaid of a type.
     *
     * @param type  the type, in the host's numbering.
     * @return the navaid, passed to the plugin.
     * @caller     AVSKFindFirstNavAidOfType().
     * @checked    nothing.
     * @unchecked  an unknown type.
     * @calls      no hook.
     * @since      every table.
     * @reference  types: 1 airport, 2 VOR, 4 NDB, 8 fix; 16 position, in flight plans only. -1 if there is none.
     */
    int (*findFirstNavAidOfType)(int type);
    /**
     * Slot 39: returns the last navaid of a type.
     *
     * @param type  the type, in the host's numbering.
     * @return the navaid, passed to the plugin.
     * @caller     AVSKFindLastNavAidOfType().
     * @checked    nothing.
     * @unchecked  an unknown type.
     * @calls      no hook.
     * @since      every table.
     * @reference  navaids of a type have consecutive references.
     */
    int (*findLastNavAidOfType)(int type);
    /**
     * Slot 40: searches for a navaid. The host defines the six words and documents them for its plugins.
     *
     * @param a1..a6  words whose meaning is the host's.
     * @return the navaid, passed to the plugin.
     * @caller     AVSKFindNavAid().
     * @checked    nothing.
     * @unchecked  all words, pointers included.
     * @calls      no hook.
     * @since      every table.
     * @reference  a1 and a2 texts, parts of the name and of the ID; a3 and a4 pointers to float, latitude and
     *             longitude: with both it returns the nearest match, else the first; a5 pointer to int, the
     *             frequency; a6 the sum of the types, 0 for all. Each pointer may be null. -1 if there is none.
     */
    int (*findNavAid)(AVSKWord a1, AVSKWord a2, AVSKWord a3, AVSKWord a4, AVSKWord a5, AVSKWord a6);
    /**
     * Slot 41: describes a navaid. The host defines the nine words, which are pointers to outputs as a rule, and
     * the size of the text buffers among them.
     *
     * @param navAid   the navaid.
     * @param a2..a10  words whose meaning is the host's.
     * @caller     AVSKGetNavAidInfo().
     * @checked    nothing.
     * @unchecked  all words, pointers included, and an unknown navaid.
     * @calls      no hook.
     * @since      every table.
     * @reference  a2 int type; a3, a4 float latitude, longitude; a5 float height in metres; a6 int frequency, 10
     *             kHz for a VOR, kHz for an NDB; a7 float heading; a8 char ID, 32 bytes; a9 char name, 256 bytes;
     *             a10 char, 1 if there is terrain below. Each pointer may be null. An unknown navaid writes
     *             nothing.
     */
    void (*getNavAidInfo)(int navAid, AVSKWord a2, AVSKWord a3, AVSKWord a4, AVSKWord a5, AVSKWord a6, AVSKWord a7,
                          AVSKWord a8, AVSKWord a9, AVSKWord a10);
    /**
     * Slot 42: returns the number of flight-plan entries. Plugins number entries from 0 to this number - 1.
     *
     * @return the number, passed to the plugin.
     * @caller     AVSKCountFMSEntries().
     * @checked    there are no arguments.
     * @unchecked  nothing.
     * @calls      no hook.
     * @since      every table.
     * @reference  at most 100.
     */
    int (*countFMSEntries)(void);
    /**
     * Slot 43: returns the index of the displayed flight-plan entry.
     *
     * @return the index, passed to the plugin.
     * @caller     AVSKGetDisplayedFMSEntry().
     * @checked    there are no arguments.
     * @unchecked  nothing.
     * @calls      no hook.
     * @since      every table.
     * @reference  0 in an empty plan.
     */
    int (*getDisplayedFMSEntry)(void);
    /**
     * Slot 44: returns the index of the destination entry, to which the aircraft flies.
     *
     * @return the index, passed to the plugin.
     * @caller     AVSKGetDestinationFMSEntry().
     * @checked    there are no arguments.
     * @unchecked  nothing.
     * @calls      no hook.
     * @since      every table.
     * @reference  0 in an empty plan.
     */
    int (*getDestinationFMSEntry)(void);
    /**
     * Slot 45: displays a flight-plan entry.
     *
     * @param index  the entry's index.
     * @caller     AVSKSetDisplayedFMSEntry().
     * @checked    nothing.
     * @unchecked  an index out of range.
     * @calls      no hook.
     * @since      every table.
     * @reference  ignores an index out of range.
     */
    void (*setDisplayedFMSEntry)(int index);
    /**
     * Slot 46: makes a flight-plan entry the destination.
     *
     * @param index  the entry's index.
     * @caller     AVSKSetDestinationFMSEntry().
     * @checked    nothing.
     * @unchecked  an index out of range.
     * @calls      no hook.
     * @since      every table.
     * @reference  ignores an index out of range.
     */
    void (*setDestinationFMSEntry)(int index);
    /**
     * Slot 47: describes a flight-plan entry. The host defines the six words, which are pointers to outputs as a
     * rule, and the size of the text buffers among them.
     *
     * @param index   the entry's index.
     * @param a2..a7  words whose meaning is the host's.
     * @caller     AVSKGetFMSEntryInfo().
     * @checked    nothing.
     * @unchecked  all words, pointers included, and an index out of range.
     * @calls      no hook.
     * @since      every table.
     * @reference  a2 int type; a3 char ID, 256 bytes; a4 int navaid, -1 for a position; a5 int altitude in metres;
     *             a6, a7 float latitude, longitude. Each pointer may be null. An index out of range writes nothing.
     */
    void (*getFMSEntryInfo)(int index, AVSKWord a2, AVSKWord a3, AVSKWord a4, AVSKWord a5, AVSKWord a6, AVSKWord a7);
    /**
     * Slot 48: sets a flight-plan entry to a navaid. The host defines the two words. Plugins expect that an index
     * past the last entry extends the plan.
     *
     * @param index   the entry's index.
     * @param a2..a3  words whose meaning is the host's.
     * @caller     AVSKSetFMSEntryInfo().
     * @checked    nothing.
     * @unchecked  both words and an index out of range.
     * @calls      no hook.
     * @since      every table.
     * @reference  a2 the navaid, a3 the altitude in metres. The plan grows to 100 entries. An unknown navaid and
     *             other indices change nothing.
     */
    void (*setFMSEntryInfo)(int index, AVSKWord a2, AVSKWord a3);
    /**
     * Slot 49: sets a flight-plan entry to a position. Plugins expect that an index past the last entry extends the
     * plan.
     *
     * @param index      the entry's index.
     * @param latitude   the latitude, in the host's unit.
     * @param longitude  the longitude, in the host's unit.
     * @param a4         a word whose meaning is the host's.
     * @caller     AVSKSetFMSEntryLatLon().
     * @checked    nothing.
     * @unchecked  all numbers, and NaN.
     * @calls      no hook.
     * @since      every table.
     * @reference  degrees; a4 is the altitude in metres. The plan grows as in slot 48.
     */
    void (*setFMSEntryLatLon)(int index, float latitude, float longitude, AVSKWord a4);
    /**
     * Slot 50: clears a flight-plan entry. The host defines whether later entries move up.
     *
     * @param index  the entry's index.
     * @caller     AVSKClearFMSEntry().
     * @checked    nothing.
     * @unchecked  an index out of range.
     * @calls      no hook.
     * @since      every table.
     * @reference  removes the entry; later entries move up.
     */
    void (*clearFMSEntry)(int index);
    /**
     * Slot 51: returns the type of the GPS destination.
     *
     * @return the navaid type, passed to the plugin.
     * @caller     AVSKGetGPSDestinationType().
     * @checked    there are no arguments.
     * @unchecked  nothing.
     * @calls      no hook.
     * @since      every table.
     * @reference  the type of the destination entry of the flight plan; 0 in an empty plan.
     */
    int (*getGPSDestinationType)(void);
    /**
     * Slot 52: returns the GPS destination.
     *
     * @return the navaid, passed to the plugin.
     * @caller     AVSKGetGPSDestination().
     * @checked    there are no arguments.
     * @unchecked  nothing.
     * @calls      no hook.
     * @since      every table.
     * @reference  the navaid of the destination entry; -1 for a position and in an empty plan.
     */
    int (*getGPSDestination)(void);
    /**
     * Slot 53: shows four lines and returns when the user has read them. Called in a reload, after all plugins were
     * unloaded and before they are loaded again: the user may change the plugin files meanwhile.
     *
     * @param line1  UTF-8, not null.
     * @param line2  UTF-8, not null.
     * @param line3  UTF-8, empty.
     * @param line4  UTF-8, empty.
     * @caller     a reload, which a plugin requested with AVSKReloadPlugins(); inside event 0 or 10.
     * @checked    all texts are valid.
     * @unchecked  nothing.
     * @calls      hooks reach no plugin at this time. Events 3 and 12 load nothing: report the scenery folders
     *             later.
     * @since      version 3.
     * @without    the reload goes on without a message.
     * @reference  prints the lines, does not wait, and reports the scenery folders in the next frame.
     */
    void (*showMessage)(const char *line1, const char *line2, const char *line3, const char *line4);
    /**
     * Slot 54: shows what is being loaded.
     *
     * @param text  "Loading Plugin: " and the file name of a loose plugin, valid during the call.
     * @caller     AVSKInitializePlugins() and a reload, for each loose file in "Resources/plugins".
     * @checked    the text is valid.
     * @unchecked  nothing.
     * @calls      no hook.
     * @since      version 4.
     * @without    nothing is shown.
     */
    void (*showProgress)(const char *text);
    /**
     * Slot 55: finds or creates a command. The same name always gives the same command.
     *
     * @param name         the name, UTF-8, valid during the call; may be null: return null.
     * @param description  a text for the user, valid during the call; null if create is 0, and may be null if not.
     * @param create       0 to find, 1 to find or create.
     * @return the command, owned by the host and valid for the life of the process; null if there is none. The
     *         library passes it to the plugin, compares it, and never looks inside.
     * @caller     AVSKFindCommand() with 0, AVSKCreateCommand() with 1.
     * @checked    nothing. A name that starts with "sim/" is reported to the plugin and created all the same.
     * @unchecked  a null and an empty name, a null description.
     * @calls      no hook.
     * @since      every table.
     * @reference  keeps the first description of a command.
     */
    void *(*findCommand)(const char *name, const char *description, int create);
    /**
     * Slot 56: begins a command. Every run of a command has three steps: AVSKCommandHook() before the host acts; if
     * that returns 1, the host's own action and AVSKCommandHook() after it.
     *
     * @param command  the command; may be null or a pointer that is not a command: ignore both.
     * @caller     AVSKCommandBegin(), AVSKCommandOnce().
     * @checked    nothing.
     * @unchecked  a null and a foreign pointer. A command that runs may begin again.
     * @calls      AVSKCommandHook(), twice.
     * @since      every table.
     */
    void (*beginCommand)(void *command);
    /**
     * Slot 57: continues a command that a plugin holds.
     *
     * @param command  the pointer that the plugin passed to AVSKCommandBegin(), as in slot 56.
     * @caller     event 9, for each command that an enabled plugin holds. Two plugins that hold a command give two
     *             calls.
     * @checked    the plugin began it and has not ended it.
     * @unchecked  a null and a foreign pointer.
     * @calls      AVSKCommandHook(), twice.
     * @since      every table.
     */
    void (*continueCommand)(void *command);
    /**
     * Slot 58: ends a command.
     *
     * @param command  the command, as in slot 56.
     * @caller     AVSKCommandEnd(), AVSKCommandOnce(), and unloading a plugin that holds the command.
     * @checked    nothing.
     * @unchecked  a null and a foreign pointer, and a command that was not begun.
     * @calls      AVSKCommandHook(), twice.
     * @since      every table.
     */
    void (*endCommand)(void *command);
    /**
     * Slot 59: creates a terrain probe. The library reuses probes and never destroys one.
     *
     * @return the probe, owned by the host, valid for the life of the process; passed to slot 60, null too.
     * @caller     AVSKCreateProbe(), if there is no probe to reuse.
     * @checked    there are no arguments.
     * @unchecked  nothing.
     * @calls      no hook.
     * @since      every table.
     */
    void *(*createProbe)(void);
    /**
     * Slot 60: probes the terrain below or above a point. The host defines the three triples and the flag.
     *
     * @param probe    a probe of slot 59.
     * @param xyz      the point, three numbers in local coordinates.
     * @param triple1  receives three numbers.
     * @param triple2  receives three numbers.
     * @param triple3  receives three numbers.
     * @param flag     receives a flag.
     * @return non-zero on a hit; 0 for a miss.
     * @caller     AVSKProbeTerrainXYZ().
     * @checked    all pointers; the probe is one that slot 59 returned.
     * @unchecked  NaN and infinite numbers.
     * @calls      no hook.
     * @since      every table.
     * @reference  the point on the ground, its normal, its velocity, which is 0, and 0 for dry ground. A miss
     *             writes nothing.
     */
    int (*probeTerrain)(void *probe, const float *xyz, float *triple1, float *triple2, float *triple3, int *flag);
    /**
     * Slot 61: returns the address of one of the host's functions. The host defines which there are.
     *
     * @param name  the function's name, valid during the call; may be null.
     * @return the address, valid for the life of the process; null if there is none.
     * @caller     AVSKFindSymbol().
     * @checked    nothing.
     * @unchecked  a null and an unknown name.
     * @calls      no hook.
     * @since      every table.
     * @reference  hostFrameNumber and hostTerrainHeight.
     */
    void *(*findSymbol)(const char *name);
    /**
     * Slot 62: returns the width of the first characters of a text.
     *
     * @param font   the font, in the host's numbering.
     * @param text   UTF-8; may be null.
     * @param count  how many characters, as the host counts them; may be negative, or more than there are.
     * @return the width in pixels, passed to the plugin.
     * @caller     AVSKMeasureString().
     * @checked    nothing.
     * @unchecked  a null text, a count that is negative or too large, an unknown font.
     * @calls      no hook.
     * @since      every table.
     * @reference  counts characters, not bytes, and stops at the end of the text.
     */
    float (*measureString)(int font, const char *text, int count);
    /**
     * Slot 63: removes an item. The items after it move up by one. A menu below the item stays valid, without an
     * item that opens it.
     *
     * @param menu   the menu's handle.
     * @param index  the item's index, counted over all items of the menu.
     * @caller     AVSKRemoveMenuItem(), and unloading a plugin, for its items in "Plugins", the last one first.
     *             Also after slot 31 if the plugin was unloaded inside it.
     * @checked    menu was returned by slot 30 and not destroyed; the item exists.
     * @unchecked  nothing.
     * @calls      no hook.
     * @since      every table.
     */
    void (*removeMenuItem)(void *menu, int index);
    /**
     * Slot 64: loads an object.
     *
     * @param path  the file, as the host names it, valid during the call; may be null: return null.
     * @return the object, owned by the host, valid until it was unloaded once for each load; null if it cannot be
     *         loaded.
     * @caller     AVSKLoadObject(); AVSKLoadObjectAsync() if the table has no slot 70.
     * @checked    nothing.
     * @unchecked  a null and an unknown path.
     * @calls      no hook.
     * @since      every table.
     * @reference  every file that exists is an object. A relative path starts at the host's folder.
     */
    void *(*loadObject)(const char *path);
    /**
     * Slot 65: draws one instance of an object. The second angle precedes the first. The host defines the angles
     * and the two flags.
     *
     * @param object         the object; may be null, unloaded or a foreign pointer: ignore it then.
     * @param x              the place, in local coordinates.
     * @param y              the place, second coordinate.
     * @param z              the place, third coordinate.
     * @param angle2         an angle.
     * @param angle1         an angle.
     * @param angle3         an angle.
     * @param lighting       a flag.
     * @param earthRelative  a flag.
     * @caller     AVSKDrawObjects(), once for each instance.
     * @checked    with an error callback of the plugin: the object belongs to the plugin. Without one: nothing.
     * @unchecked  the object, NaN, and that the host is drawing.
     * @calls      no hook.
     * @since      every table.
     * @reference  counts the objects, and draws none.
     */
    void (*drawObject)(void *object, float x, float y, float z, float angle2, float angle1, float angle3, int lighting,
                       int earthRelative);
    /**
     * Slot 66: unloads an object. The library calls it once for each load, at the latest when the plugin is
     * unloaded, and also after AVSKShutdownPlugins() for loads of slot 70 that complete then.
     *
     * @param object  the object; null must be ignored.
     * @caller     AVSKUnloadObject(), unloading a plugin, the completion of a load whose plugin was unloaded.
     * @checked    the object was loaded by slot 64 or 70 and not yet unloaded as often.
     * @unchecked  null: a load that failed after its plugin was unloaded.
     * @calls      no hook.
     * @since      every table.
     */
    void (*unloadObject)(void *object);
    /**
     * Slot 67: finds the objects under a virtual path of the host's library. Calls the enumerator for each, inside
     * the call.
     *
     * @param path        a virtual path, as the host names it; may be null: there are no objects.
     * @param latitude    where the object is to be drawn, in the host's unit.
     * @param longitude   where the object is to be drawn, in the host's unit.
     * @param enumerator  a function of the plugin, called with the path of a file and reference; may be null. The
     *                    path is owned by the host and valid during that call. The function may call every service,
     *                    and throw.
     * @param reference   passed to the enumerator.
     * @return the number of objects, passed to the plugin.
     * @caller     AVSKLookupObjects().
     * @checked    nothing.
     * @unchecked  a null path and enumerator, NaN.
     * @calls      the enumerator; no hook.
     * @since      every table.
     * @reference  a file, or the files of a folder, in "Resources/library". The place is ignored.
     */
    int (*lookupObjects)(const char *path, float latitude, float longitude,
                         void (*enumerator)(const char *path, void *reference), void *reference);
    /**
     * Slot 68: loads a data file. The host defines what the types 1 and 2 are.
     *
     * @param type  1 or 2.
     * @param path  UTF-8, valid during the call.
     * @return passed to the plugin.
     * @caller     AVSKLoadDataFile().
     * @checked    the type is 1 or 2, the path is not null.
     * @unchecked  an unknown path.
     * @calls      no hook needed; AVSKEventHook() with events that the data cause.
     * @since      every table.
     * @reference  1 a situation, 2 a track. Returns 1, or 0 if it fails.
     */
    int (*loadDataFile)(int type, const char *path);
    /**
     * Slot 69: saves a data file. The host defines what the types 1 and 2 are.
     *
     * @param type  1 or 2.
     * @param path  UTF-8, valid during the call.
     * @return passed to the plugin.
     * @caller     AVSKSaveDataFile().
     * @checked    the type is 1 or 2, the path is not null.
     * @unchecked  a path that cannot be written.
     * @calls      no hook.
     * @since      every table.
     * @reference  as slot 68.
     */
    int (*saveDataFile)(int type, const char *path);
    /**
     * Slot 70: loads an object asynchronously. The host calls completion exactly once, on the main thread, inside
     * this call or later. The library ignores a second call. Complete a load also if its plugin was unloaded or the
     * library shut down: the object then comes back to slot 66. A load that is pending at the end of the process
     * may be dropped.
     *
     * @param path        as in slot 64; copy it to load later.
     * @param completion  a function of the library, called with the object, or null if it cannot be loaded, and
     *                    with argument. It calls the plugin, which may call every service, and throw.
     * @param argument    passed to completion; not a pointer.
     * @caller     AVSKLoadObjectAsync().
     * @checked    completion and argument.
     * @unchecked  a null and an unknown path.
     * @calls      completion; no hook.
     * @since      a table of 284 bytes.
     * @without    slot 64 loads the object at once.
     * @reference  completes three frames later; at the end, after the shutdown.
     */
    void (*loadObjectAsync)(const char *path, void (*completion)(void *object, void *argument), void *argument);
    /**
     * Slot 71: receives the messages that are sent to plugin 0, and every broadcast, also those of the host's own
     * events. May be null: then the messages are dropped. The library copies this slot at the start and at a
     * reload.
     *
     * @param sender     the plugin that sends; 0 for the host; -1 for a plugin that was unloaded during its call.
     * @param message    the message's number. 101 to 108 are the events of AVSKEventHook().
     * @param parameter  a word whose meaning is the sender's; may be null.
     * @caller     AVSKSendMessageToPlugin(), and the events that broadcast.
     * @checked    nothing.
     * @unchecked  an unknown number and the parameter.
     * @calls      no hook.
     * @since      a table of 288 bytes.
     * @without    messages to plugin 0 are dropped.
     * @reference  ignores messages.
     */
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
 * May be called again after AVSKShutdownPlugins(), also with another table. A
 * second start without a shutdown registers the host twice.
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
 * Not to be called by a service. May be called from a function that was registered
 * with atexit() after the start.
 * Plugins are unloaded even if one of them throws; the first exception is thrown
 * at the end. The host's own datarefs and its menu "Plugins" stay.
 *
 * [host only]
 */
AVSK_API void AVSKShutdownPlugins(void);

/**
 * Reports an event.
 *
 * @param event      one of AVSKHostEvent. Another number does nothing.
 * @param elapsed    seconds since the simulator started; read with events 0 and 10. It is the clock of
 *                   the flight loops and must agree with the host service getElapsedTime. It is not
 *                   checked: see "The clock" in Docs/host-guide.md.
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
 * @param flags       the host's bits for shift, control, down and up; see Docs/host-slots.md.
 * @param virtualKey  the virtual key code; see Docs/host-slots.md. Codes above 127 are negative here.
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
 * path is written. Call it after AVSKGetNumberPlanesToHandle(), once for each
 * aircraft that the host loads. Inside the service loadAircraftModel nothing is
 * written.
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
 * the host simulates: before the first call, and for indices from count on, a
 * plugin's choice of a model is stored and not loaded. Call it once a frame: a
 * plugin can change its limit at any time.
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
