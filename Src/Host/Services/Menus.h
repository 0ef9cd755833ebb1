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
    MenuTree() = default;
    // Menus that the library did not destroy keep their storage: it still knows
    // their handles if it is started again with another simulator.
    ~MenuTree();
    MenuTree(const MenuTree &) = delete;
    MenuTree &operator=(const MenuTree &) = delete;

    // The menus of the bar, from left to right.
    const std::vector<Menu *> &Bar() const { return mBar; }

    // A null parent is the bar. Under an item that does not exist the menu is created, but no item opens it.
    Menu *Create(Menu *parent, int parentItem, std::string_view name);
    // Returns the ID of the new item. The new item replaces an item with an empty
    // name at the index; otherwise the items from the index on move down.
    int Append(Menu &menu, int index, std::string_view name);
    static void Rename(Menu &menu, int index, std::string_view name);
    static void Remove(Menu &menu, int index);
    // The item that opened it remains and opens nothing.
    void Destroy(Menu &menu);

    // The menu of a handle; null for a handle that is not one or no longer one.
    Menu *Known(const void *handle) const;
    std::size_t Count() const { return mMenus.size(); }
    // The bar as it is shown; the library says which items are checked and enabled.
    std::vector<ShownItem> Shown() const;

  private:
    // Destroyed menus keep their storage: a stale handle must never equal that of a new menu.
    std::vector<std::unique_ptr<Menu>> mMenus;
    std::vector<std::unique_ptr<Menu>> mDestroyed;
    std::vector<Menu *> mBar;
    int mLastID = 0;
};

} // namespace host

#endif
