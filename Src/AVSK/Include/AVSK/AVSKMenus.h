/**
 * AVSKMenus.h: menus in the host's menu bar.
 *
 * Several plugins may append items to one menu. An item index counts the
 * calling plugin's own items of that menu from 0, separators included, in the
 * order in which they stand. When an item is removed, the plugin's later items
 * move up by one. Every function ignores null and a menu that does not exist.
 */
#ifndef AVSK_MENUS_H
#define AVSK_MENUS_H

#include "AVSKTypes.h"

#ifdef __cplusplus
extern "C" {
#endif

/**
 * Identifies a menu. Owned by the library. Valid until the menu is destroyed
 * or the plugin that created it is unloaded.
 */
typedef struct AVSKMenuInfo_t *AVSKMenuID;

/** Check marks of items. */
typedef enum AVSKMenuCheck {
    /** The item has no check mark and no space for one. */
    AVSKMenuNoCheck = 0,
    /** The item has space for a check mark and is not checked. */
    AVSKMenuUnchecked = 1,
    /** The item is checked. */
    AVSKMenuChecked = 2
} AVSKMenuCheck;

/**
 * Runs when the user picks an enabled item of the menu, whichever plugin
 * appended it. The calling plugin is the menu's creator. The function may change
 * and destroy any menu, this one included.
 *
 * @param menuRef  the refcon given to AVSKCreateMenu().
 * @param itemRef  the refcon given to AVSKAppendMenuItem().
 *
 * [callback, plugin enabled]
 */
typedef void (*AVSKMenuHandler_f)(void *menuRef, void *itemRef);

/**
 * Returns the "Plugins" menu, to which every plugin may append.
 *
 * @return the menu; owned by the host and never destroyed. Null before AVSKInitializePlugins().
 *
 * [main thread, any time]
 */
AVSK_API AVSKMenuID AVSKFindPluginsMenu(void);

/**
 * Creates an empty menu that belongs to the calling plugin.
 *
 * @param name        the title, UTF-8. If parent is null, also the text of the item that opens it.
 * @param parent      the menu that contains the item which opens the new menu. Null appends such an
 *                    item to the "Plugins" menu.
 * @param parentItem  the index of the item in parent; not used if parent is null. An index that is
 *                    not one of the calling plugin's items is passed to the host as -1.
 * @param handler     called when an item is picked, may be null.
 * @param menuRef     passed to the handler, may be null.
 * @return the new menu; null if parent no longer exists.
 *
 * [main thread, initialized]
 */
AVSK_API AVSKMenuID AVSKCreateMenu(const char *name, AVSKMenuID parent, int parentItem, AVSKMenuHandler_f handler,
                                   void *menuRef);

/**
 * Destroys a menu of the calling plugin and all its items. The item that opens it
 * and the menus below it stay. Nothing happens to the menu of another plugin or
 * to the "Plugins" menu. With a host whose table is short (see
 * AVSKHostHasFullTable()) the host keeps showing the menu, emptied.
 *
 * @param menu  the menu.
 *
 * [main thread, initialized]
 */
AVSK_API void AVSKDestroyMenu(AVSKMenuID menu);

/**
 * Removes every item, also those of other plugins, from a menu of the calling
 * plugin. Nothing happens to the menu of another plugin.
 *
 * @param menu  the menu.
 *
 * [main thread, initialized]
 */
AVSK_API void AVSKClearAllMenuItems(AVSKMenuID menu);

/**
 * Appends an item to a menu of any plugin. The item belongs to the calling
 * plugin, is enabled and has no check mark.
 *
 * @param menu          the menu.
 * @param name          the text, UTF-8.
 * @param itemRef       passed to the menu's handler, may be null.
 * @param forceEnglish  non-zero: the host does not translate the text.
 * @return the item's index; -1 if the menu does not exist.
 *
 * [main thread, initialized]
 */
AVSK_API int AVSKAppendMenuItem(AVSKMenuID menu, const char *name, void *itemRef, int forceEnglish);

/**
 * Appends a separator to a menu of any plugin. It counts as an item.
 *
 * @param menu  the menu.
 *
 * [main thread, initialized]
 */
AVSK_API void AVSKAppendMenuSeparator(AVSKMenuID menu);

/**
 * Removes an item of the calling plugin.
 *
 * @param menu   the menu.
 * @param index  the item's index. If it is out of range, the error callback receives
 *               "AVSKRemoveMenuItem was passed an out of range item index."
 *
 * [main thread, initialized]
 */
AVSK_API void AVSKRemoveMenuItem(AVSKMenuID menu, int index);

/**
 * Renames an item of the calling plugin.
 *
 * @param menu          the menu.
 * @param index         the item's index. An index out of range is passed to the host as -1.
 * @param name          the new text, UTF-8.
 * @param forceEnglish  non-zero: the host does not translate the text.
 *
 * [main thread, initialized]
 */
AVSK_API void AVSKSetMenuItemName(AVSKMenuID menu, int index, const char *name, int forceEnglish);

/**
 * Sets the check mark of an item of the calling plugin. The host reads it when it
 * shows the menu.
 *
 * @param menu   the menu.
 * @param index  the item's index; nothing happens if it is out of range.
 * @param check  one of AVSKMenuCheck. Another value is stored and shown as the host chooses.
 *
 * [main thread, initialized]
 */
AVSK_API void AVSKCheckMenuItem(AVSKMenuID menu, int index, int check);

/**
 * Reads the check mark of an item of the calling plugin.
 *
 * @param menu      the menu.
 * @param index     the item's index; nothing is written if it is out of range.
 * @param outCheck  receives the value stored last, at first AVSKMenuNoCheck. May be null.
 *
 * [main thread, initialized]
 */
AVSK_API void AVSKCheckMenuItemState(AVSKMenuID menu, int index, int *outCheck);

/**
 * Enables or disables an item of the calling plugin. The user cannot pick a
 * disabled item.
 *
 * @param menu     the menu.
 * @param index    the item's index; nothing happens if it is out of range.
 * @param enabled  0 to disable, non-zero to enable; stored unchanged.
 *
 * [main thread, initialized]
 */
AVSK_API void AVSKEnableMenuItem(AVSKMenuID menu, int index, int enabled);

#ifdef __cplusplus
}
#endif

#endif
