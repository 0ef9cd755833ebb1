// The datarefs, menus and commands of a live simulator, and the files of its root; see
// States.h. Called by LiveTopics.cpp.
#include "States.h"

#include "Common/NamePattern.h"
#include "Common/UsageError.h"
#include "Observing/DatarefValues.h"
#include "Observing/Listings.h"
#include "Services/Datarefs.h"
#include "Session/Runner.h"
#include "Session/Values.h"

#include "AVSK/AVSKDisplay.h"
#include "AVSK/AVSKHost.h"
#include "AVSK/AVSKPlugins.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <array>
#include <filesystem>
#include <map>
#include <system_error>

namespace host {
namespace {

using Json = nlohmann::json;
namespace fs = std::filesystem;

std::string NameOf(AVSKPluginID plugin) {
    std::array<char, AVSK_TEXT_SIZE> name{};
    AVSKGetPluginInfo(plugin, name.data(), nullptr, nullptr, nullptr);
    return name.data();
}

std::map<std::string, std::string> OwnersOf(const Ledger &owners) {
    std::map<std::string, std::string> names;
    for (int i = 1; i < AVSKCountPlugins(); ++i) {
        const AVSKPluginID plugin = AVSKGetNthPlugin(i);
        for (const Possession &owned : owners.OwnedBy(plugin, Kind::Dataref))
            names.emplace(owned.what, NameOf(plugin));
    }
    return names;
}

// Values of a dataref, or of the element that the name asks for.
std::vector<std::string> ValuesOf(const FoundDataref &found) {
    std::vector<std::string> values = ReadDataref(found.ref);
    if (!found.index)
        return values;
    const auto index = static_cast<std::size_t>(*found.index);
    return index < values.size() ? std::vector{values[index]} : std::vector<std::string>();
}

Json Described(SessionRunner &run, const std::string &name, const std::map<std::string, std::string> &owners) {
    constexpr std::size_t kMostElements = 256;
    constexpr std::size_t kLongestText = 4096;
    AVSKDataRef ref = nullptr;
    Json entry;
    {
        const crossings::Unobserved unobserved;
        ref = FindPublished(name);
        const DatarefDescription *ofSimulator = Datarefs::Describe(name);
        const auto owner = owners.find(name);
        entry = {{"name", name},
                 {"type", DatarefTypes(ref)},
                 {"writable", AVSKCanWriteDataRef(ref) != 0},
                 {"owner", ofSimulator                     ? "simulator"
                           : run.Datarefs().IsShared(name) ? "shared"
                           : owner == owners.end()         ? ""
                                                           : owner->second}};
        if (ofSimulator) {
            entry["unit"] = ofSimulator->unit;
            entry["meaning"] = ofSimulator->meaning;
        }
    }
    std::vector<std::string> values = ReadDataref(ref);
    entry["count"] = values.size();
    values.resize(std::min(values.size(), kMostElements));
    if (values.size() == 1)
        values[0].resize(std::min(values[0].size(), kLongestText));
    entry["value"] = values.empty() ? "" : values[0];
    entry["values"] = std::move(values);
    return entry;
}

std::vector<std::string> Matching(const std::vector<std::string> &published, const std::string &pattern, Json &state) {
    try {
        return SelectNames(published, pattern, "datarefs");
    } catch (const UsageError &nothing) {
        state["note"] = nothing.what();
        return {};
    }
}

Json ItemsOf(Menu &menu, const std::string &path) {
    Json items = Json::array();
    for (std::size_t i = 0; i < menu.items.size(); ++i) {
        const MenuItem item = menu.items[i];
        if (item.name.empty())
            continue;
        const int index = static_cast<int>(i);
        const std::string own = path + "/" + item.name;
        items.push_back({{"name", item.name},
                         {"path", own},
                         {"enabled", AVSKMenuItemEnabled(&menu, index) != 0},
                         {"mark", MarkOf(menu, index)},
                         {"items", item.opens ? ItemsOf(*item.opens, own) : Json::array()}});
    }
    return items;
}

} // namespace

Json DatarefsState(SessionRunner &run, const DatarefQuery &query) {
    constexpr std::size_t kMost = 200;
    std::vector<std::string> published;
    std::map<std::string, std::string> owners;
    {
        const crossings::Unobserved unobserved;
        published = run.Datarefs().Published();
        owners = OwnersOf(run.Observing().Owners());
    }
    Json state = {{"topic", "datarefs"}, {"total", published.size()}};
    std::vector<std::string> names = Matching(published, query.pattern, state);
    state["matching"] = names.size();
    names.resize(std::min(names.size(), kMost));
    Json &datarefs = state["datarefs"] = Json::array();
    for (const std::string &name : names)
        datarefs.push_back(Described(run, name, owners));
    Json &pinned = state["pinned"] = Json::object();
    for (const std::string &name : query.pinned) {
        const FoundDataref found = FindDataref(name);
        const std::vector<std::string> values = found.ref ? ValuesOf(found) : std::vector<std::string>();
        const auto number = values.empty() ? std::nullopt : ReadNumber(values[0]);
        pinned[name] = number ? Json(*number) : Json(nullptr);
    }
    return state;
}

Json MenusState(SessionRunner &run) {
    const crossings::Unobserved unobserved;
    Json menus = Json::array();
    for (Menu *menu : run.Sim().menus.Bar())
        menus.push_back({{"name", menu->name}, {"items", ItemsOf(*menu, menu->name)}});
    return {{"topic", "menus"}, {"menus", std::move(menus)}};
}

Json CommandsState(SessionRunner &run) {
    const crossings::Unobserved unobserved;
    Json commands = Json::array();
    for (const auto &command : run.Sim().commands.All())
        commands.push_back({{"name", command->name},
                            {"description", command->description},
                            {"held", command->begun > 0},
                            {"keys", Input::BindingsOf(command->name)}});
    Json hotKeys = Json::array();
    for (int i = 0; i < AVSKCountHotKeys(); ++i) {
        char code = 0;
        int flags = 0;
        std::array<char, 512> description{}; // so many the library writes at most
        AVSKPluginID plugin = NO_PLUGIN_ID;
        AVSKGetHotKeyInfo(AVSKGetNthHotKey(i), &code, &flags, description.data(), &plugin);
        std::string key(KeyName(static_cast<unsigned char>(code)));
        key += (flags & kKeyShift) != 0 ? " shift" : "";
        key += (flags & kKeyControl) != 0 ? " control" : "";
        hotKeys.push_back({{"plugin", NameOf(plugin)}, {"key", std::move(key)}, {"description", description.data()}});
    }
    return {{"topic", "commands"},
            {"commands", std::move(commands)},
            {"hotKeys", std::move(hotKeys)},
            {"keys", KeyNames()}};
}

std::vector<std::string> FilesInRoot(const std::string &root, const std::string &extension) {
    constexpr std::size_t kMost = 200;
    constexpr int kMostEntries = 20'000;
    std::vector<std::string> files;
    std::error_code error;
    const auto options =
        fs::directory_options::skip_permission_denied | fs::directory_options::follow_directory_symlink;
    fs::recursive_directory_iterator entry(root, options, error);
    for (int seen = 0; !error && entry != fs::recursive_directory_iterator() && seen < kMostEntries; ++seen) {
        if (entry.depth() > 8)
            entry.disable_recursion_pending(); // a link may lead back
        if (entry->path().extension() == extension && files.size() < kMost)
            files.push_back(entry->path().lexically_relative(root).string());
        entry.increment(error);
    }
    std::sort(files.begin(), files.end());
    return files;
}

} // namespace host
