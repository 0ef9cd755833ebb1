// Asks the library and the host's services; see Listings.h.
#include "Listings.h"

#include "DatarefValues.h"

#include "Common/Columns.h"
#include "Common/NamePattern.h"
#include "Common/Text.h"
#include "Common/Utf8.h"
#include "Services/Datarefs.h"
#include "Services/Input.h"

#include "AVSK/AVSKDisplay.h"
#include "AVSK/AVSKHost.h"
#include "AVSK/AVSKPlugins.h"

#include <cstddef>

namespace host {
namespace {

using Rows = std::vector<std::vector<std::string>>;

std::string NameOf(AVSKPluginID plugin) {
    std::array<char, AVSK_TEXT_SIZE> name{};
    AVSKGetPluginInfo(plugin, name.data(), nullptr, nullptr, nullptr);
    return name.data();
}

// The plugin that owns something of this description; "-" if no loaded plugin does.
std::string OwnerOf(Kind kind, const std::string &what, const Ledger &owners) {
    for (int i = 1; i < AVSKCountPlugins(); ++i) {
        const AVSKPluginID plugin = AVSKGetNthPlugin(i);
        for (const Possession &owned : owners.OwnedBy(plugin, kind)) {
            if (owned.what == what)
                return NameOf(plugin);
        }
    }
    return "-";
}

std::string ValueText(AVSKDataRef ref) {
    constexpr std::size_t kMostElements = 3;
    constexpr std::size_t kLongestText = 27;
    std::vector<std::string> shown = ReadDataref(ref);
    if (AVSKGetDataRefTypes(ref) == AVSKDataTypeData)
        return '"' + OneLine(shown.front(), kLongestText) + '"';
    if (const std::size_t count = shown.size(); count > kMostElements) {
        shown.resize(kMostElements);
        shown.push_back("... (" + std::to_string(count) + ")");
    }
    return shown.empty() ? "-" : Join(shown, " ");
}

void AddItems(Rows &rows, Menu &menu, const std::string &indent) {
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

std::vector<std::string> ListDatarefs(const DatarefNames &datarefs, const Ledger &owners, const std::string &pattern,
                                      Values values) {
    Rows rows{{"name", "type", "access", "value", "unit", "owner", "meaning"}};
    for (const std::string &name : SelectNames(datarefs.Published(), pattern, "datarefs")) {
        AVSKDataRef ref = FindPublished(name);
        const DatarefDescription *ofSimulator = Datarefs::Describe(name);
        const std::string owner = ofSimulator               ? "simulator"
                                  : datarefs.IsShared(name) ? "shared"
                                                            : OwnerOf(Kind::Dataref, name, owners);
        rows.push_back({name, DatarefTypes(ref), AVSKCanWriteDataRef(ref) != 0 ? "writable" : "read-only",
                        values == Values::Shown ? ValueText(ref) : "", ofSimulator ? ofSimulator->unit : "-", owner,
                        ofSimulator ? ofSimulator->meaning : "-"});
    }
    if (values == Values::Omitted) {
        constexpr std::ptrdiff_t kColumn = 3;
        for (std::vector<std::string> &row : rows)
            row.erase(row.begin() + kColumn);
    }
    return AlignColumns(rows);
}

std::vector<std::string> ListWindows(const Ledger &owners) {
    Rows rows;
    for (int i = 1; i < AVSKCountPlugins(); ++i) {
        const AVSKPluginID plugin = AVSKGetNthPlugin(i);
        for (const WindowState &window : WindowsOf(owners, plugin))
            rows.push_back({NameOf(plugin), window.Text()});
    }
    return AlignColumns(rows);
}

std::vector<std::string> ListMenus(const MenuTree &menus) {
    Rows rows;
    for (Menu *menu : menus.Bar()) {
        rows.push_back({menu->name, ""});
        AddItems(rows, *menu, "  ");
    }
    return AlignColumns(rows);
}

std::vector<std::string> ListCommands(const CommandTable &commands, const Ledger &owners, const std::string &pattern) {
    std::vector<std::string> names;
    for (const auto &command : commands.All())
        names.push_back(command->name);
    Rows rows{{"name", "owner", "bound to", "description"}};
    for (const std::string &name : SelectNames(names, pattern, "commands")) {
        const Command *command = commands.Find(name);
        const std::string bindings = Input::BindingsOf(name);
        rows.push_back({name, command->act ? "simulator" : OwnerOf(Kind::Command, name, owners),
                        bindings.empty() ? "-" : bindings,
                        command->description + (command->begun > 0 ? " (held)" : "")});
    }
    return AlignColumns(rows);
}

} // namespace host
