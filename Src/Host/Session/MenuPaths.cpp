// Walks the menu tree along a path; see MenuPaths.h.
#include "MenuPaths.h"

#include "Common/Text.h"

#include <vector>

namespace host {
namespace {

FoundItem FindBelow(Menu &menu, std::string_view path) {
    FoundItem result;
    std::vector<std::string> names;
    for (std::size_t i = 0; i < menu.items.size(); ++i) {
        const MenuItem &item = menu.items[i];
        if (!item.name.empty() && item.name != "-")
            names.push_back("'" + item.name + "'");
        if (item.name == path)
            return {&menu, static_cast<int>(i), ""};
        if (item.opens && path.starts_with(item.name) && path.substr(item.name.size()).starts_with('/')) {
            FoundItem below = FindBelow(*item.opens, path.substr(item.name.size() + 1));
            if (below.menu)
                return below;
            result.seen = below.seen;
        }
    }
    if (result.seen.empty())
        result.seen = names.empty() ? "nothing in the menu '" + menu.name + "'"
                                    : Join(names) + " in the menu '" + menu.name + "'";
    return result;
}

} // namespace

FoundItem FindItem(const MenuTree &menus, std::string_view path) {
    FoundItem result;
    std::vector<std::string> names;
    for (Menu *menu : menus.Bar()) {
        names.push_back("'" + menu->name + "'");
        if (!path.starts_with(menu->name) || !path.substr(menu->name.size()).starts_with('/'))
            continue;
        result = FindBelow(*menu, path.substr(menu->name.size() + 1));
        if (result.menu)
            return result;
    }
    if (result.seen.empty())
        result.seen = names.empty() ? "no menu" : Join(names) + " in the menu bar";
    return result;
}

} // namespace host
