// Finds menu items by paths such as "Plugins/Lights/Beacon".
#ifndef AVSK_HOST_SESSION_MENU_PATHS_H
#define AVSK_HOST_SESSION_MENU_PATHS_H

#include "Services/Menus.h"

#include <string>
#include <string_view>

namespace host {

struct FoundItem {
    Menu *menu = nullptr; // null if there is no such item
    int index = 0;
    std::string seen; // if there is none: the items that exist where the path ends
};

// Names of menus and items can contain slashes.
FoundItem FindItem(const MenuTree &menus, std::string_view path);

} // namespace host

#endif
