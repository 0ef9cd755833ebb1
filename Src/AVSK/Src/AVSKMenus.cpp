// Menus: a record of each host menu with the owner of every item, and the
// translation between a plugin's item indices and the host's. Owns gMenus and
// gPluginMenu; called by plugins, by the host's menu hooks, and by the core
// when a plugin is unloaded.
//
// Every call of a host service may re-enter this module and destroy the menu in
// hand. After each such call the menu is looked up again.
#include "AVSK/AVSKMenus.h"

#include "AVSKDispatch.h"
#include "AVSKErrors.h"
#include "AVSKHostTable.h"
#include "AVSKModules.h"
#include "AVSKResourceList.h"

#include "AVSK/AVSKPlugins.h"

#include <algorithm>
#include <vector>

namespace {

struct MenuItem {
    int hostID; // the host reports picks with it
    void *itemRef;
    int check;
    int enabled;
    int owner; // the plugin that appended it
};

} // namespace

struct AVSKMenuInfo_t : AVSKTracked<AVSKMenuInfo_t> {
    void *hostMenu = nullptr;
    void *menuRef = nullptr;
    std::vector<MenuItem> items; // by global index, which is the host's
    AVSKMenuHandler_f handler = nullptr;
    int owner = NO_PLUGIN_ID;

    int Count() const { return static_cast<int>(items.size()); }
    bool Has(int index) const { return index >= 0 && index < Count(); }
    MenuItem &operator[](int index) { return items[static_cast<std::size_t>(index)]; }
    void Erase(int index) { items.erase(items.begin() + index); }
};

// Outside readers rely on these globals.
std::vector<AVSKMenuInfo_t *> &gMenus = *new std::vector<AVSKMenuInfo_t *>; // in order of creation
AVSKMenuInfo_t *gPluginMenu = nullptr;

namespace {

// Does not search gMenus: with an old host a record outlives its place there.
bool IsMenu(AVSKMenuID menu) { return AVSKMenuInfo_t::Exists(menu); }

// Outside readers rely on the names of these two translations. Both return -1
// if there is no such item.
int AVSKItemPluginToGlobal(AVSKMenuInfo_t &menu, int pluginID, int pluginIndex) {
    int before = 0;
    for (int index = 0; index < menu.Count(); ++index)
        if (menu[index].owner == pluginID && before++ == pluginIndex)
            return index;
    return -1;
}

int AVSKItemGlobalToPlugin(AVSKMenuInfo_t &menu, int pluginID, int globalIndex) {
    if (!menu.Has(globalIndex) || menu[globalIndex].owner != pluginID)
        return -1;
    return static_cast<int>(std::count_if(menu.items.begin(), menu.items.begin() + globalIndex,
                                          [pluginID](const MenuItem &item) { return item.owner == pluginID; }));
}

// The dispatched plugin's item, or null.
MenuItem *ItemOf(AVSKMenuID menu, int index) {
    if (!IsMenu(menu))
        return nullptr;
    const int global = AVSKItemPluginToGlobal(*menu, AVSKGetDispatchedPlugin(), index);
    return global < 0 ? nullptr : &(*menu)[global];
}

// The host keeps the renamed items and reuses their places. Items that the host
// causes to be appended meanwhile are not renamed. Returns the number of items
// that were there before.
int RenameAllToEmpty(AVSKMenuID menu) {
    const int count = menu->Count();
    for (int index = 0; IsMenu(menu) && index < count && index < menu->Count(); ++index)
        gHooks->setMenuItemName(menu->hostMenu, index, "", 0);
    return count;
}

void DestroyHostMenu(AVSKMenuID menu) {
    if (IsMenu(menu) && AVSKHostHasFullTable(gHooks))
        gHooks->destroyMenu(menu->hostMenu);
}

void Free(AVSKMenuID menu) {
    if (IsMenu(menu))
        delete menu;
}

void Unlist(const AVSKMenuInfo_t *menu) { gMenus.erase(std::remove(gMenus.begin(), gMenus.end(), menu), gMenus.end()); }

} // namespace

void AVSKInitMenus() {
    const StDispatchCallback asHost(AVSK_PLUGIN_AERIVO);
    gPluginMenu = nullptr;
    AVSKMenuID menu = AVSKCreateMenu("Plugins", nullptr, 0, nullptr, nullptr);
    if (!gPluginMenu) // otherwise the host restarted the library meanwhile
        gPluginMenu = menu;
}

AVSKMenuID AVSKFindPluginsMenu() { return gPluginMenu; }

AVSKMenuID AVSKCreateMenu(const char *name, AVSKMenuID parent, int parentItem, AVSKMenuHandler_f handler,
                          void *menuRef) {
    if (!MayCreate())
        return nullptr;
    if (!parent && gPluginMenu) {
        parentItem = AVSKAppendMenuItem(gPluginMenu, name, nullptr, 1);
        parent = gPluginMenu;
        if (!MayCreate()) // unloaded by the host meanwhile
            return nullptr;
    }
    void *hostParent = nullptr;
    if (parent) {
        if (!IsMenu(parent))
            return nullptr;
        hostParent = parent->hostMenu;
        parentItem = AVSKItemPluginToGlobal(*parent, AVSKGetDispatchedPlugin(), parentItem);
    }
    void *const hostMenu = gHooks->createMenu(hostParent, parentItem, name);
    if (!MayCreate()) {
        if (AVSKHostHasFullTable(gHooks))
            gHooks->destroyMenu(hostMenu);
        return nullptr;
    }
    auto *menu = new AVSKMenuInfo_t;
    menu->hostMenu = hostMenu;
    menu->menuRef = menuRef;
    menu->handler = handler;
    menu->owner = AVSKGetDispatchedPlugin();
    gMenus.push_back(menu);
    return menu;
}

void AVSKDestroyMenu(AVSKMenuID menu) {
    if (std::find(gMenus.begin(), gMenus.end(), menu) == gMenus.end() || menu->owner != AVSKGetDispatchedPlugin() ||
        menu == gPluginMenu)
        return;
    AVSKClearAllMenuItems(menu);
    DestroyHostMenu(menu);
    Unlist(menu);
    Free(menu);
}

void AVSKClearAllMenuItems(AVSKMenuID menu) {
    if (!IsMenu(menu) || menu->owner != AVSKGetDispatchedPlugin())
        return;
    const int cleared = RenameAllToEmpty(menu);
    if (!IsMenu(menu))
        return;
    if (menu->Count() <= cleared) {
        menu->items.clear();
        return;
    }
    // The places before an item that was appended meanwhile stay, as they do in
    // the host's menu. They are nobody's.
    std::fill_n(menu->items.begin(), cleared, MenuItem{-1, nullptr, AVSKMenuNoCheck - 1, 0, NO_PLUGIN_ID});
}

int AVSKAppendMenuItem(AVSKMenuID menu, const char *name, void *itemRef, int forceEnglish) {
    if (!MayCreate() || !IsMenu(menu))
        return -1;
    const int index = menu->Count();
    const int hostID = gHooks->appendMenuItem(menu->hostMenu, index, name, forceEnglish);
    if (!IsMenu(menu))
        return -1;
    if (!MayCreate()) {
        gHooks->removeMenuItem(menu->hostMenu, menu->Count());
        return -1;
    }
    const int owner = AVSKGetDispatchedPlugin();
    menu->items.push_back({hostID, itemRef, AVSKMenuNoCheck, 1, owner});
    return AVSKItemGlobalToPlugin(*menu, owner, index);
}

void AVSKAppendMenuSeparator(AVSKMenuID menu) { AVSKAppendMenuItem(menu, "-", nullptr, 0); }

void AVSKRemoveMenuItem(AVSKMenuID menu, int index) {
    if (!IsMenu(menu))
        return;
    const int global = AVSKItemPluginToGlobal(*menu, AVSKGetDispatchedPlugin(), index);
    if (global < 0) {
        AVSKSendError("AVSKRemoveMenuItem was passed an out of range item index.");
        return;
    }
    gHooks->removeMenuItem(menu->hostMenu, global);
    if (IsMenu(menu) && menu->Has(global))
        menu->Erase(global);
}

void AVSKSetMenuItemName(AVSKMenuID menu, int index, const char *name, int forceEnglish) {
    if (IsMenu(menu))
        gHooks->setMenuItemName(menu->hostMenu, AVSKItemPluginToGlobal(*menu, AVSKGetDispatchedPlugin(), index), name,
                                forceEnglish);
}

void AVSKCheckMenuItem(AVSKMenuID menu, int index, int check) {
    if (MenuItem *item = ItemOf(menu, index))
        item->check = check;
}

void AVSKCheckMenuItemState(AVSKMenuID menu, int index, int *outCheck) {
    if (const MenuItem *item = ItemOf(menu, index); item && outCheck)
        *outCheck = item->check;
}

void AVSKEnableMenuItem(AVSKMenuID menu, int index, int enabled) {
    if (MenuItem *item = ItemOf(menu, index))
        item->enabled = enabled;
}

int AVSKHandleMenuItemPick(int itemID) {
    for (AVSKMenuInfo_t *menu : gMenus)
        for (const MenuItem &item : menu->items) {
            if (item.hostID != itemID)
                continue;
            if (!menu->handler || !item.enabled)
                return 0;
            // The handler may destroy the menu, so nothing of it is used afterwards.
            if (const StDispatchCallback guard(menu->owner); guard())
                menu->handler(menu->menuRef, item.itemRef);
            return 0;
        }
    return 1;
}

int AVSKHandleMenuItemCheck(void *hostMenu, int index, int *outCheck) {
    for (AVSKMenuInfo_t *menu : gMenus) {
        if (menu->hostMenu != hostMenu || !menu->Has(index))
            continue;
        const int check = (*menu)[index].check;
        if (check < AVSKMenuNoCheck || check > AVSKMenuChecked)
            continue;
        if (outCheck)
            *outCheck = check - 1; // the host's numbers begin with -1 for no mark
        return 0;
    }
    return 1;
}

int AVSKHandleMenuItemEnable(void *hostMenu, int index) {
    for (AVSKMenuInfo_t *menu : gMenus) {
        if (menu->hostMenu != hostMenu)
            continue;
        if (!menu->Has(index))
            return 1;
        if (!AVSKIsPluginEnabled(menu->owner))
            return 0;
        return (*menu)[index].enabled;
    }
    return 1;
}

namespace {

// An old host keeps showing the menu, so its record stays in memory.
void DestroyMenusOf(int pluginID) {
    const auto owned = [pluginID](const AVSKMenuInfo_t *menu) { return menu->owner == pluginID; };
    for (auto at = gMenus.begin(); (at = std::find_if(gMenus.begin(), gMenus.end(), owned)) != gMenus.end();) {
        AVSKMenuInfo_t *menu = *at;
        RenameAllToEmpty(menu);
        if (IsMenu(menu))
            menu->handler = nullptr;
        const bool hostDestroysMenus = AVSKHostHasFullTable(gHooks);
        DestroyHostMenu(menu);
        Unlist(menu);
        if (hostDestroysMenus)
            Free(menu);
    }
}

// Removes the last item first, so that the indices of the others stay right.
void RemovePluginsMenuItemsOf(int pluginID) {
    AVSKMenuInfo_t *shared = gPluginMenu;
    for (int index = IsMenu(shared) ? shared->Count() - 1 : -1; index >= 0; --index)
        if (shared->Has(index) && (*shared)[index].owner == pluginID) {
            gHooks->removeMenuItem(shared->hostMenu, index);
            if (shared->Has(index))
                shared->Erase(index);
        }
}

} // namespace

void AVSKMenuCleanupHook(int pluginID) {
    DestroyMenusOf(pluginID);
    RemovePluginsMenuItemsOf(pluginID);
}

bool MenusHold(int pluginID) {
    return std::any_of(gMenus.begin(), gMenus.end(),
                       [pluginID](const AVSKMenuInfo_t *menu) { return menu->owner == pluginID && menu->handler; });
}
