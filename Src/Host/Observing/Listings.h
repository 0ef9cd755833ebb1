// Lists what a running simulator has: datarefs, commands, windows and menus. Used
// by sessions, `avsk datarefs` and `avsk commands`.
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

// Aligned lines for a reader. Those of datarefs and commands begin with titles and
// contain the names that match a pattern; see SelectNames() for patterns and the
// UsageError if nothing matches.

// To read the values of datarefs calls plugins.
enum class Values {
    Shown,
    Omitted
};
std::vector<std::string> ListDatarefs(const DatarefNames &datarefs, const Ledger &owners, const std::string &pattern,
                                      Values values);
std::vector<std::string> ListCommands(const CommandTable &commands, const Ledger &owners, const std::string &pattern);
std::vector<std::string> ListWindows(const Ledger &owners);
// The tree, indented, with marks and disabled items.
std::vector<std::string> ListMenus(const MenuTree &menus);

} // namespace host

#endif
