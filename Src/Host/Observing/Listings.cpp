// Asks the library and the host's services; see Listings.h.
#include "Listings.h"

#include "DatarefValues.h"

#include "Common/Columns.h"

#include "AVSK/AVSKDisplay.h"
#include "AVSK/AVSKHost.h"
#include "AVSK/AVSKPlugins.h"

#include <fnmatch.h>

namespace host {
namespace {

bool FitsPattern(const std::string &name, const std::string &pattern) {
    const bool isWhole = pattern.find('*') != std::string::npos;
    const std::string whole = isWhole ? pattern : "*" + pattern + "*";
    std::string escaped; // only * is special
    for (const char c : whole)
        escaped.append(c == '*' ? "" : "\\").append(1, c);
    return fnmatch(escaped.c_str(), name.c_str(), FNM_CASEFOLD) == 0;
}

std::string NameOf(AVSKPluginID plugin) {
    std::array<char, AVSK_TEXT_SIZE> name{};
    AVSKGetPluginInfo(plugin, name.data(), nullptr, nullptr, nullptr);
    return name.data();
}

std::string OwnerOf(const std::string &dataref, const DatarefNames &datarefs, const Ledger &owners) {
    if (datarefs.IsShared(dataref))
        return "shared";
    for (const Possession &known : owners.StillThere(Kind::Dataref)) {
        if (known.what == dataref)
            return NameOf(known.owner);
    }
    return "host";
}

void AddItems(std::vector<std::vector<std::string>> &rows, Menu &menu, const std::string &indent) {
    for (std::size_t i = 0; i < menu.items.size(); ++i) {
        const MenuItem item = menu.items[i];
        const int index = static_cast<int>(i);
        if (item.name.empty())
            continue;
        const std::string mark = MarkOf(menu, index);
        const bool enabled = AVSKMenuItemEnabled(&menu, index) != 0;
        rows.push_back({indent + (item.name == "-" ? "(separator)" : item.name),
                        std::string(mark == "unmarked" ? "" : mark) + (enabled              ? ""
                                                                       : mark == "unmarked" ? "disabled"
                                                                                            : " disabled")});
        if (item.opens)
            AddItems(rows, *item.opens, indent + "  ");
    }
}

} // namespace

std::string WindowState::Text() const {
    std::string text;
    for (const int edge : place)
        text += (text.empty() ? "" : ",") + std::to_string(edge);
    return text + (visible ? " visible" : " hidden") + (front ? " front" : "");
}

std::vector<WindowState> WindowsOf(const Ledger &owners, AVSKPluginID plugin) {
    std::vector<WindowState> windows;
    for (const Possession &owned : owners.OwnedBy(plugin, Kind::Window)) {
        auto *const window = static_cast<AVSKWindowID>(const_cast<void *>(owned.handle));
        WindowState state{{}, AVSKGetWindowIsVisible(window) != 0, AVSKIsWindowInFront(window) != 0};
        auto &[left, top, right, bottom] = state.place;
        AVSKGetWindowGeometry(window, &left, &top, &right, &bottom);
        windows.push_back(state);
    }
    return windows;
}

std::string MarkOf(Menu &menu, int index) {
    int mark = -1;
    if (AVSKCheckMenuHook(&menu, index, &mark) != 0 || mark < 0)
        return "unmarked";
    return mark == 0 ? "unchecked" : "checked";
}

std::vector<std::string> ListDatarefs(const DatarefNames &datarefs, const Ledger &owners, const std::string &pattern) {
    std::vector<std::vector<std::string>> rows;
    for (const std::string &name : datarefs.Published()) {
        if (!FitsPattern(name, pattern))
            continue;
        AVSKDataRef ref = FindPublished(name);
        rows.push_back({name, DatarefTypes(ref), AVSKCanWriteDataRef(ref) != 0 ? "writable" : "read-only",
                        OwnerOf(name, datarefs, owners)});
    }
    return AlignColumns(rows);
}

std::vector<std::string> ListWindows(const Ledger &owners) {
    std::vector<std::vector<std::string>> rows;
    for (int i = 1; i < AVSKCountPlugins(); ++i) {
        const AVSKPluginID plugin = AVSKGetNthPlugin(i);
        for (const WindowState &window : WindowsOf(owners, plugin))
            rows.push_back({NameOf(plugin), window.Text()});
    }
    return AlignColumns(rows);
}

std::vector<std::string> ListMenus(const MenuTree &menus) {
    std::vector<std::vector<std::string>> rows;
    for (Menu *menu : menus.Bar()) {
        rows.push_back({menu->name, ""});
        AddItems(rows, *menu, "  ");
    }
    return AlignColumns(rows);
}

std::vector<std::string> ListCommands(const CommandTable &commands) {
    std::vector<std::vector<std::string>> rows;
    for (const auto &command : commands.All())
        rows.push_back({command->name, command->description, command->begun > 0 ? "held" : ""});
    return AlignColumns(rows);
}

} // namespace host
