// The services for menus, and the tree behind them.
#include "Menus.h"

#include "ServiceTable.h"
#include "Simulator.h"

#include <algorithm>
#include <utility>

namespace host {
namespace {

MenuItem *ItemAt(Menu &menu, int index) {
    const auto size = static_cast<int>(menu.items.size());
    return index >= 0 && index < size ? &menu.items[static_cast<std::size_t>(index)] : nullptr;
}

std::string_view TextOf(const char *text) { return text ? text : std::string_view(); }

// This host has English texts only, so the force-English flags change nothing.

void *CreateMenu(void *parent, int parentItem, const char *name) {
    MenuTree &menus = Enter().menus;
    Menu *known = menus.Known(parent);
    if (parent && !known)
        return nullptr;
    return menus.Create(known, parentItem, TextOf(name));
}

int AppendMenuItem(void *menu, int index, const char *name, int /*forceEnglish*/) {
    MenuTree &menus = Enter().menus;
    Menu *known = menus.Known(menu);
    return known ? menus.Append(*known, index, TextOf(name)) : 0;
}

void SetMenuItemName(void *menu, int index, const char *name, int /*forceEnglish*/) {
    if (Menu *known = Enter().menus.Known(menu))
        MenuTree::Rename(*known, index, TextOf(name));
}

void DestroyMenu(void *menu) {
    MenuTree &menus = Enter().menus;
    if (Menu *known = menus.Known(menu))
        menus.Destroy(*known);
}

void RemoveMenuItem(void *menu, int index) {
    if (Menu *known = Enter().menus.Known(menu))
        MenuTree::Remove(*known, index);
}

std::vector<ShownItem> ItemsOf(Menu &menu) {
    constexpr int kChecked = 1;
    std::vector<ShownItem> items;
    for (int index = 0; index < static_cast<int>(menu.items.size()); ++index) {
        const MenuItem item = menu.items[static_cast<std::size_t>(index)];
        int check = -1;
        const bool checked = AVSKCheckMenuHook(&menu, index, &check) == 0 && check == kChecked;
        items.push_back({item.name, AVSKMenuItemEnabled(&menu, index) != 0, checked, item.opens != nullptr,
                         item.opens ? ItemsOf(*item.opens) : std::vector<ShownItem>()});
    }
    return items;
}

// Menus of simulators that have ended. Owned here; see ~MenuTree().
std::vector<std::unique_ptr<Menu>> &gKeptMenus = *new std::vector<std::unique_ptr<Menu>>;

} // namespace

MenuTree::~MenuTree() {
    for (std::unique_ptr<Menu> &menu : mMenus) {
        menu->items = {};
        gKeptMenus.push_back(std::move(menu));
    }
}

Menu *MenuTree::Create(Menu *parent, int parentItem, std::string_view name) {
    mMenus.push_back(std::make_unique<Menu>(Menu{std::string(name), {}}));
    Menu *menu = mMenus.back().get();
    if (!parent)
        mBar.push_back(menu);
    else if (MenuItem *item = ItemAt(*parent, parentItem))
        item->opens = menu;
    return menu;
}

int MenuTree::Append(Menu &menu, int index, std::string_view name) {
    MenuItem item{std::string(name), ++mLastID, nullptr};
    MenuItem *there = ItemAt(menu, index);
    if (there && there->name.empty())
        *there = std::move(item);
    else if (there)
        menu.items.insert(menu.items.begin() + index, std::move(item));
    else
        menu.items.push_back(std::move(item));
    return mLastID;
}

void MenuTree::Rename(Menu &menu, int index, std::string_view name) {
    if (MenuItem *item = ItemAt(menu, index))
        item->name = name;
}

void MenuTree::Remove(Menu &menu, int index) {
    if (ItemAt(menu, index))
        menu.items.erase(menu.items.begin() + index);
}

void MenuTree::Destroy(Menu &menu) {
    std::erase(mBar, &menu);
    for (const auto &other : mMenus) {
        for (MenuItem &item : other->items) {
            if (item.opens == &menu)
                item.opens = nullptr;
        }
    }
    const auto own =
        std::find_if(mMenus.begin(), mMenus.end(), [&menu](const auto &other) { return other.get() == &menu; });
    mDestroyed.push_back(std::move(*own));
    mMenus.erase(own);
}

Menu *MenuTree::Known(const void *handle) const {
    const auto found =
        std::find_if(mMenus.begin(), mMenus.end(), [handle](const auto &menu) { return menu.get() == handle; });
    return found == mMenus.end() ? nullptr : found->get();
}

std::vector<ShownItem> MenuTree::Shown() const {
    std::vector<ShownItem> bar;
    for (Menu *menu : mBar)
        bar.push_back({menu->name, /*enabled=*/true, /*checked=*/false, /*opens=*/true, ItemsOf(*menu)});
    return bar;
}

void FillMenuSlots(AVSKHostCallbacks &table) {
    table.createMenu = CreateMenu;
    table.appendMenuItem = AppendMenuItem;
    table.setMenuItemName = SetMenuItemName;
    table.destroyMenu = DestroyMenu;
    table.removeMenuItem = RemoveMenuItem;
}

} // namespace host
