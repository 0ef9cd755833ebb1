// Asks the library, the ledger and the menus; see Inventory.h.
#include "Inventory.h"

#include "DatarefReading.h"
#include "Values.h"

#include "Observing/DatarefValues.h"
#include "Observing/Listings.h"
#include "Services/Input.h"
#include "Services/Simulator.h"

#include "AVSK/AVSKDisplay.h"
#include "AVSK/AVSKPlugins.h"

#include <filesystem>
#include <system_error>

namespace host {
namespace {

void AddItems(const Menu &menu, const std::string &path, std::vector<std::string> &items) {
    for (const MenuItem &item : menu.items) {
        if (item.name.empty() || item.name == "-")
            continue;
        const std::string own = path + "/" + item.name;
        if (item.opens)
            AddItems(*item.opens, own, items);
        else
            items.push_back(own);
    }
}

std::vector<std::string> HotKeys() {
    std::vector<std::string> keys;
    for (int i = 0; i < AVSKCountHotKeys(); ++i) {
        char code = 0;
        int flags = 0;
        AVSKGetHotKeyInfo(AVSKGetNthHotKey(i), &code, &flags, nullptr, nullptr);
        const std::string_view name = KeyName(static_cast<unsigned char>(code));
        if (!name.empty())
            keys.push_back(Written(name) + ((flags & kKeyShift) != 0 ? " shift" : "") +
                           ((flags & kKeyControl) != 0 ? " control" : ""));
    }
    return keys;
}

void AddDatarefs(const Ledger &owners, AVSKPluginID plugin, Inventory &inventory) {
    for (const Possession &owned : owners.OwnedBy(plugin, Kind::Dataref)) {
        if (owned.what.empty())
            continue;
        AVSKDataRef ref = FindPublished(owned.what);
        Inventory::Dataref dataref{owned.what, {}, AVSKCanWriteDataRef(ref) != 0};
        for (const Accessor &accessor : Accessors()) {
            if ((AVSKGetDataRefTypes(ref) & accessor.type) != 0)
                dataref.accessors.emplace_back(accessor.word);
        }
        inventory.datarefs.push_back(std::move(dataref));
    }
}

Inventory::Plugin DescribePlugin(AVSKPluginID plugin) {
    std::array<char, AVSK_TEXT_SIZE> name{};
    std::array<char, AVSK_TEXT_SIZE> path{};
    std::array<char, AVSK_TEXT_SIZE> signature{};
    AVSKGetPluginInfo(plugin, name.data(), path.data(), signature.data(), nullptr);
    std::error_code error;
    const std::filesystem::path real = std::filesystem::canonical(path.data(), error);
    return {name.data(), signature.data(), error ? path.data() : real.string()};
}

} // namespace

Inventory TakeInventory(const Simulator &simulator, const Ledger &owners) {
    Inventory inventory;
    for (int i = 1; i < AVSKCountPlugins(); ++i) {
        const AVSKPluginID plugin = AVSKGetNthPlugin(i);
        inventory.plugins.push_back(DescribePlugin(plugin));
        for (const WindowState &window : WindowsOf(owners, plugin)) {
            inventory.windows.push_back(window.place);
            ++inventory.plugins.back().windows;
        }
        for (const Possession &command : owners.OwnedBy(plugin, Kind::Command)) {
            if (!command.what.empty()) // no session can name it
                inventory.commands.push_back(command.what);
        }
        AddDatarefs(owners, plugin, inventory);
    }
    for (const Menu *menu : simulator.menus.Bar())
        AddItems(*menu, menu->name, inventory.items);
    inventory.keys = HotKeys();
    return inventory;
}

} // namespace host
