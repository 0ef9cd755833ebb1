// The menu tree: a bar with menus, whose items may open further menus.
#ifndef AVSK_HOST_SERVICES_MENUS_H
#define AVSK_HOST_SERVICES_MENUS_H

#include "Screen/Display.h"

#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace host {

struct Menu;

struct MenuItem {
    std::string name; // empty: not shown; "-": a separator
    int id;
    Menu *opens; // the menu beneath it, or null
};

struct Menu {
    std::string name;
    std::vector<MenuItem> items;
};

class MenuTree {
  public:
    // The menus of the bar, from left to right.
    const std::vector<Menu *> &Bar() const { return mBar; }

    // A null parent is the bar. A menu under an item that does not exist is made and opens nowhere.
    Menu *Create(Menu *parent, int parentItem, std::string_view name);
    // Answers the new item's ID. An item with an empty name at the index gives
    // its place to the new one; else those from the index on move down.
    int Append(Menu &menu, int index, std::string_view name);
    static void Rename(Menu &menu, int index, std::string_view name);
    static void Remove(Menu &menu, int index);
    // The item that opened it stays, and opens nothing.
    void Destroy(Menu &menu);

    // The menu of a handle; null for a handle that is not one or no longer one.
    Menu *Known(const void *handle) const;
    std::size_t Count() const { return mMenus.size(); }
    // The bar as it is shown; the library says which items are checked and enabled.
    std::vector<ShownItem> Shown() const;

  private:
    // Destroyed menus are kept aside: a stale handle must never name a new menu.
    std::vector<std::unique_ptr<Menu>> mMenus;
    std::vector<std::unique_ptr<Menu>> mDestroyed;
    std::vector<Menu *> mBar;
    int mLastID = 0;
};

} // namespace host

#endif
