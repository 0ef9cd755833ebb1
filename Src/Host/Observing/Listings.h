// Lists what a running simulator has: datarefs, windows, menus and commands.
#ifndef AVSK_HOST_OBSERVING_LISTINGS_H
#define AVSK_HOST_OBSERVING_LISTINGS_H

#include "DatarefNames.h"
#include "Ledger.h"

#include "Services/Commands.h"
#include "Services/Menus.h"

#include "AVSK/AVSKTypes.h"

#include <array>
#include <string>
#include <vector>

namespace host {

struct WindowState {
    std::array<int, 4> place; // left, top, right, bottom
    bool visible;
    bool front;

    std::string Text() const; // "40,500,392,410 visible front"
};
std::vector<WindowState> WindowsOf(const Ledger &owners, AVSKPluginID plugin);

// "checked", "unchecked" or "unmarked"
std::string MarkOf(Menu &menu, int index);

// Aligned lines for a reader. The values of datarefs are not read, because that
// calls plugins.
//
// Name, type, access and owner. In the pattern * is any text; a pattern without
// * is a part of the name; an empty one lists all.
std::vector<std::string> ListDatarefs(const DatarefNames &datarefs, const Ledger &owners, const std::string &pattern);
std::vector<std::string> ListWindows(const Ledger &owners);
// The tree, indented, with marks and disabled items.
std::vector<std::string> ListMenus(const MenuTree &menus);
std::vector<std::string> ListCommands(const CommandTable &commands);

} // namespace host

#endif
