// The expectation words of a session: each looks at the plugins, the library
// or the host and reports what it saw. The table at the end lists them.
#include "Forms.h"
#include "LoadedPlugins.h"
#include "MenuPaths.h"
#include "PictureCheck.h"
#include "Runner.h"
#include "Values.h"

#include "Common/Files.h"
#include "Common/NearestName.h"
#include "Common/Text.h"
#include "Observing/DatarefValues.h"
#include "Observing/Listings.h"

#include "AVSK/AVSKCamera.h"
#include "AVSK/AVSKDisplay.h"
#include "AVSK/AVSKPlanes.h"
#include "AVSK/AVSKPlugins.h"

#include <algorithm>
#include <filesystem>
#include <optional>
#include <sstream>

namespace host {
namespace {

// ---- The words

Outcome Dataref(SessionRunner &run, const Step &step) {
    const auto [ref, index] = FindDataref(step[0]);
    if (!ref)
        return {false, "nobody publishes it" + DidYouMean(step[0], run.Datarefs().Published())};
    std::vector<std::string> seen = ReadDataref(ref);
    if (index) {
        if (*index >= std::ssize(seen))
            return {false, std::to_string(seen.size()) + " elements"};
        seen = {seen[static_cast<std::size_t>(*index)]};
    }
    const std::vector<std::string> wanted = step.From(1);
    const bool agrees = wanted.empty() || std::equal(wanted.begin(), wanted.end(), seen.begin(), seen.end(), Matches);
    return {agrees, Join(seen, " ")};
}

Outcome Logged(SessionRunner &run, const Step &step) {
    const std::string &log = run.Sim().console.Kept();
    const std::size_t at = log.find(step[0]);
    if (at != std::string::npos) {
        const std::size_t begin = log.rfind('\n', at) + 1; // 0 if there is no earlier line
        return {true, "the line '" + log.substr(begin, log.find('\n', at) - begin) + "'"};
    }
    if (log.empty())
        return {false, "nothing was logged since the start or the last mark"};
    const std::size_t end = log.find_last_not_of('\n') + 1;
    const std::size_t begin = end == 0 ? 0 : log.rfind('\n', end - 1) + 1;
    return {false, "no such line; the last one is '" + log.substr(begin, end - begin) + "'"};
}

Outcome WindowThere(SessionRunner &run, const Step &step) {
    const AVSKPluginID plugin = FindPlugin(step[0]);
    if (plugin == NO_PLUGIN_ID)
        return Outcome::Unknown(NoPlugin(step[0]));
    const bool hasPlace = step.Count() > 1 && step[1].find(',') != std::string::npos;
    const std::vector<int> wanted = hasPlace ? Integers(step[1]) : std::vector<int>();
    std::vector<std::string> seen;
    bool found = false;
    for (const WindowState &window : WindowsOf(run.Observing().Owners(), plugin)) {
        const bool isThere = std::equal(wanted.begin(), wanted.end(), window.place.begin());
        found = found || (isThere && (!step.Has("visible") || window.visible) &&
                          (!step.Has("hidden") || !window.visible) && (!step.Has("front") || window.front));
        seen.push_back(window.Text());
    }
    return {found, seen.empty() ? "no window of this plugin" : Join(seen)};
}

Outcome Item(SessionRunner &run, const Step &step) {
    const FoundItem found = FindItem(run.Sim().menus, step[0]);
    if (!found.menu)
        return {false, found.seen};
    const std::string mark = MarkOf(*found.menu, found.index);
    const std::string state = AVSKMenuItemEnabled(found.menu, found.index) != 0 ? "enabled" : "disabled";
    const std::vector<std::string> wanted = step.From(1);
    const bool all = std::all_of(wanted.begin(), wanted.end(),
                                 [&](const std::string &word) { return word == mark || word == state; });
    return {all, mark + " " + state};
}

Outcome PluginState(SessionRunner & /*run*/, const Step &step) {
    const AVSKPluginID plugin = FindPlugin(step[0]);
    if (plugin == NO_PLUGIN_ID)
        return {false, NoPlugin(step[0])};
    const std::string state = AVSKIsPluginEnabled(plugin) != 0 ? "enabled" : "disabled";
    return {step.Count() == 1 || step[1] == state, state};
}

Outcome Called(SessionRunner &run, const Step &step) {
    return {run.Calls().Contains(step[0], step.From(1)), run.Calls().Latest(step[0])};
}

// A path in the root, which is where plugins write their files.
Outcome File(SessionRunner &run, const Step &step) {
    namespace fs = std::filesystem;
    const fs::path path = ResolvePath(run.Sim().options.root, step[0]);
    std::error_code error;
    if (!fs::exists(path, error)) {
        std::vector<std::string> names;
        const fs::path folder = path.parent_path();
        for (fs::directory_iterator entry(folder, error), end; !error && entry != end; entry.increment(error))
            names.push_back(entry->path().filename().string());
        std::sort(names.begin(), names.end());
        return {false, error           ? "no folder '" + folder.string() + "'"
                       : names.empty() ? "the folder is empty"
                                       : "no such file; the folder has " + Shortened(names)};
    }
    const std::optional<std::string> text = ReadFile(path);
    if (!text)
        return Outcome::Unknown(fs::is_directory(path, error) ? "a folder" : "a file that cannot be read");
    const std::string size = "a file of " + std::to_string(text->size()) + " bytes";
    if (step.Count() > 1 && text->find(step[1]) == std::string::npos)
        return {false, size + " without this text; it begins '" +
                           text->substr(0, std::min<std::size_t>(text->find('\n'), 80)) + "'"};
    return {true, size};
}

Outcome ViewShown(SessionRunner &run, const Step &step) {
    const std::string view = run.Sim().camera.ViewName();
    return {view == step[0], view};
}

Outcome Owns(SessionRunner &run, const Step &step) {
    const AVSKPluginID plugin = FindPlugin(step[0]);
    if (plugin == NO_PLUGIN_ID)
        return Outcome::Unknown(NoPlugin(step[0]));
    std::vector<std::string> seen;
    bool found = false;
    for (const Possession &owned : run.Observing().Owners().OwnedBy(plugin, KindOf(step[1]).value())) {
        seen.push_back("'" + owned.what + "'");
        found = found || step.Count() == 2 || owned.what.find(step[2]) != std::string::npos;
    }
    return {found, seen.empty() ? "no " + step[1] + " of this plugin" : Join(seen)};
}

// A plugin that was never loaded leaves nothing behind either, which proves nothing.
Outcome Tidy(SessionRunner &run, const Step &step) {
    const Ledger &owners = run.Observing().Owners();
    if (step.Count() > 0 && !owners.WasUnloaded(step[0]))
        return Outcome::Unknown("no plugin of this name or signature was unloaded");
    const std::vector<std::string> left = owners.LeftBehind(step.Count() > 0 ? step[0] : "");
    std::string seen = left.empty() ? "nothing left behind" : "left behind";
    for (const std::string &line : left)
        seen += "\n    " + line;
    return {left.empty(), seen};
}

// Commands and probes are not counted, because they stay until the host ends.
Outcome NothingLeft(SessionRunner &run, const Step & /*step*/) {
    const Simulator &simulator = run.Sim();
    std::vector<std::string> left;
    for (const Menu *menu : simulator.menus.Bar()) {
        if (menu->name != "Plugins")
            left.push_back("the menu '" + menu->name + "'");
        for (const MenuItem &item : menu->items) {
            if (!item.name.empty())
                left.push_back("the item '" + item.name + "' in the menu '" + menu->name + "'");
        }
    }
    if (simulator.menus.Count() > simulator.menus.Bar().size())
        left.push_back(std::to_string(simulator.menus.Count() - simulator.menus.Bar().size()) + " menus below others");
    for (const auto &command : simulator.commands.All()) {
        if (command->begun > (simulator.input.Holds(command.get()) ? 1 : 0))
            left.push_back("the held command '" + command->name + "'");
    }
    for (const int button : simulator.input.ButtonsDown())
        left.push_back("the pressed button " + std::to_string(button));
    if (simulator.objects.Count() > 0)
        left.push_back(std::to_string(simulator.objects.Count()) + " objects");
    const Ledger &owners = run.Observing().Owners();
    for (const Possession &dataref : owners.StillThere(Kind::Dataref))
        left.push_back("the dataref '" + dataref.what + "'");
    if (const std::size_t windows = owners.StillThere(Kind::Window).size(); windows > 0)
        left.push_back(std::to_string(windows) + " windows");
    if (const int keys = AVSKCountHotKeys(); keys > 0)
        left.push_back(std::to_string(keys) + " hot keys");
    if (AVSKIsCameraBeingControlled(nullptr) != 0)
        left.emplace_back("the camera under control");
    return {left.empty(), Join(left)};
}

} // namespace

std::span<const Form> ExpectationForms() {
    static constexpr Form kForms[] = {
        {"dataref", "NAME [VALUE]+", "a dataref is published, and has these values", Dataref},
        {"log", "TEXT", "a line of the log contains a text", Logged, kAlsoAfterUnload},
        {"window", "PLUGIN [RECT] [visible|hidden] [front]", "a plugin has such a window", WindowThere},
        {"item", "PATH [checked|unchecked|unmarked] [enabled|disabled]", "a menu has such an item", Item},
        {"plugin", "PLUGIN [enabled|disabled]", "a plugin is loaded", PluginState},
        {"call", "SLOT [VALUE]+", "a host service was called with arguments that begin so; * is any", Called,
         kAlsoAfterUnload},
        {"file", "PATH [TEXT]", "a file of the root exists, and contains a text", File, kAlsoAfterUnload},
        {"view", "tower|chase|cockpit", "this view is shown", ViewShown},
        {"picture", "FILE.png [TOLERANCE]",
         "runs a frame; the screen then shows what the file beside the session shows", PictureShown},
        {"owns", "PLUGIN KIND [TEXT]",
         "a plugin owns something of a kind, as 'ps' lists it, whose description contains a text", Owns},
        {"tidy", "[PLUGIN]", "after 'unload': the plugins, or this one, returned everything themselves", Tidy,
         kOnlyAfterUnload},
        {"nothing", "left", "after 'unload': the plugins left nothing that the host can see", NothingLeft,
         kOnlyAfterUnload | kNeverNegated},
    };
    return kForms;
}

} // namespace host
