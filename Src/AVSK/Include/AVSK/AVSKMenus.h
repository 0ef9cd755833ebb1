/**
 * AVSKMenus.h: menus in the simulator's menu bar.
 *
 * Several plugins may append items to one menu. Each sees and numbers only
 * its own: item indices count the calling plugin's items of that menu from 0
 * in the order they stand, separators included, and change when an earlier one
 * of them is removed. A menu that no longer exists is ignored by every call.
 */
#ifndef AVSK_MENUS_H
#define AVSK_MENUS_H

#include "AVSKTypes.h"

#ifdef __cplusplus
extern "C" {
#endif

/** Names a menu. Valid until it is destroyed or the plugin that created it unloaded. Null is no menu. */
typedef struct AVSKMenuInfo_t *AVSKMenuID;

/** Check marks of items. */
typedef enum AVSKMenuCheck {
    /** The item shows no mark and no room for one. */
    AVSKMenuNoCheck = 0,
    /** The item can be checked and is not. */
    AVSKMenuUnchecked = 1,
    /** The item is checked. */
    AVSKMenuChecked = 2
} AVSKMenuCheck;

/**
 * Called when an enabled item of the menu is picked, whoever appended it, with the menu's creator
 * as the calling plugin. It may change or destroy any menu, this one included.
 *
 * @param menuRef  what was given when the menu was created.
 * @param itemRef  what was given when the item was appended.
 */
typedef void (*AVSKMenuHandler_f)(void *menuRef, void *itemRef);

/**
 * Finds the "Plugins" menu, which all plugins share.
 *
 * @return the menu; owned by the simulator and never destroyed.
 */
AVSK_API AVSKMenuID AVSKFindPluginsMenu(void);

/**
 * Creates an empty menu that belongs to the calling plugin.
 *
 * @param name        its title, UTF-8. With a null parent it is also the new item's.
 * @param parent      the menu it hangs in; null appends an item to the "Plugins" menu and
 *                    hangs it there.
 * @param parentItem  the calling plugin's item that opens it; not used with a null parent.
 *                    An index that is not the caller's reaches the simulator as -1.
 * @param handler     called for picks, may be null.
 * @param menuRef     passed to the handler, may be null.
 * @return the new menu; null if the parent no longer exists.
 */
AVSK_API AVSKMenuID AVSKCreateMenu(const char *name, AVSKMenuID parent, int parentItem, AVSKMenuHandler_f handler,
                                   void *menuRef);

/**
 * Destroys a menu of the calling plugin with all its items. The item that
 * opened it and the menus beneath it stay. Another plugin's menu is left alone.
 *
 * @param menu  the menu.
 */
AVSK_API void AVSKDestroyMenu(AVSKMenuID menu);

/**
 * Removes every item, also other plugins', from a menu of the calling plugin.
 * Another plugin's menu is left alone.
 *
 * @param menu  the menu.
 */
AVSK_API void AVSKClearAllMenuItems(AVSKMenuID menu);

/**
 * Appends an item to any plugin's menu. It belongs to the calling plugin, is
 * enabled and has no check mark.
 *
 * @param menu          the menu.
 * @param name          its text, UTF-8.
 * @param itemRef       passed to the menu's handler, may be null.
 * @param forceEnglish  non-zero: the text is not translated.
 * @return the item's index in the caller's own numbering; -1 if the menu no longer exists.
 */
AVSK_API int AVSKAppendMenuItem(AVSKMenuID menu, const char *name, void *itemRef, int forceEnglish);

/**
 * Appends a separator, which counts as an item.
 *
 * @param menu  the menu.
 */
AVSK_API void AVSKAppendMenuSeparator(AVSKMenuID menu);

/**
 * Removes one of the calling plugin's items; its later ones move up by one.
 *
 * @param menu   the menu.
 * @param index  the caller's index. Out of range it is reported to the error callback:
 *               "AVSKRemoveMenuItem was passed an out of range item index."
 */
AVSK_API void AVSKRemoveMenuItem(AVSKMenuID menu, int index);

/**
 * Renames an item of the calling plugin.
 *
 * @param menu          the menu.
 * @param index         the caller's index; one out of range reaches the simulator as -1.
 * @param name          the new text, UTF-8.
 * @param forceEnglish  non-zero: the text is not translated.
 */
AVSK_API void AVSKSetMenuItemName(AVSKMenuID menu, int index, const char *name, int forceEnglish);

/**
 * Sets the check mark of an item of the calling plugin. The simulator asks for it when it shows the menu.
 *
 * @param menu   the menu.
 * @param index  the caller's index; out of range nothing happens.
 * @param check  one of AVSKMenuCheck, stored as given.
 */
AVSK_API void AVSKCheckMenuItem(AVSKMenuID menu, int index, int check);

/**
 * Reads the check mark of an item of the calling plugin.
 *
 * @param menu      the menu.
 * @param index     the caller's index; out of range nothing is written.
 * @param outCheck  receives the value stored last, at first AVSKMenuNoCheck. May be null.
 */
AVSK_API void AVSKCheckMenuItemState(AVSKMenuID menu, int index, int *outCheck);

/**
 * Enables or disables an item of the calling plugin. A disabled item is greyed and cannot be picked.
 *
 * @param menu     the menu.
 * @param index    the caller's index; out of range nothing happens.
 * @param enabled  0 or non-zero, stored as given.
 */
AVSK_API void AVSKEnableMenuItem(AVSKMenuID menu, int index, int enabled);

#ifdef __cplusplus
}
#endif

#endif
