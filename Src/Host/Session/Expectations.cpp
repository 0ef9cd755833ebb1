// The expectation words of a session: each looks at the plugins, the library
// or the host and reports what it saw. The table at the end lists them.
#include "Forms.h"
#include "LoadedPlugins.h"
#include "MenuPaths.h"
#include "Runner.h"
#include "Values.h"

#include "Common/Text.h"
#include "Observing/DatarefValues.h"

#include "AVSK/AVSKCamera.h"
#include "AVSK/AVSKDisplay.h"
#include "AVSK/AVSKMenus.h"
#include "AVSK/AVSKPlanes.h"
#include "AVSK/AVSKPlugins.h"

#include <algorithm>

namespace host {
namespace {

struct Rectangle {
    int left, top, right, bottom;
};

AVSKWindowID WindowOf(const Possession &window) { return static_cast<AVSKWindowID>(const_cast<void *>(window.handle)); }

Rectangle PlaceOf(AVSKWindowID window) {
    Rectangle place{};
    AVSKGetWindowGeometry(window, &place.left, &place.top, &place.right, &place.bottom);
    return place;
}

std::string TextOf(const Rectangle &r) {
    return std::to_string(r.left) + "," + std::to_string(r.top) + "," + std::to_string(r.right) + "," +
           std::to_string(r.bottom);
}

bool Same(const Rectangle &place, const std::vector<int> &wanted) {
    return std::vector<int>{place.left, place.top, place.right, place.bottom} == wanted;
}

const char *MarkOf(const FoundItem &found) {
    int mark = -1;
    if (AVSKCheckMenuHook(found.menu, found.index, &mark) != 0 || mark < 0)
        return "unmarked";
    return mark == 0 ? "unchecked" : "checked";
}

// ---- The words

Finding Dataref(SessionRunner & /*run*/, const Step &step) {
    const auto [ref, index] = FindDataref(step[0]);
    if (!ref)
        return {false, "nobody publishes it"};
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

Finding Logged(SessionRunner &run, const Step &step) {
    const std::string &log = run.Sim().console.Kept();
    const std::size_t at = log.find(step[0]);
    if (at != std::string::npos) {
        const std::size_t begin = log.rfind('\n', at) + 1; // 0 behind no line
        return {true, "the line '" + log.substr(begin, log.find('\n', at) - begin) + "'"};
    }
    if (log.empty())
        return {false, "nothing was logged since the start or the last mark"};
    const std::size_t end = log.find_last_not_of('\n') + 1;
    const std::size_t begin = end == 0 ? 0 : log.rfind('\n', end - 1) + 1;
    return {false, "no such line; the last one is '" + log.substr(begin, end - begin) + "'"};
}

Finding WindowThere(SessionRunner &run, const Step &step) {
    const AVSKPluginID plugin = FindPlugin(step[0]);
    if (plugin == NO_PLUGIN_ID)
        return {false, "no plugin of this name or signature"};
    std::vector<int> wanted;
    if (step.Count() > 1 && step[1].find(',') != std::string::npos)
        wanted = Integers(step[1]);
    std::vector<std::string> seen;
    bool found = false;
    for (const Possession &owned : run.Observing().Owners().OwnedBy(plugin, Kind::Window)) {
        AVSKWindowID window = WindowOf(owned);
        const Rectangle place = PlaceOf(window);
        const bool visible = AVSKGetWindowIsVisible(window) != 0;
        const bool front = AVSKIsWindowInFront(window) != 0;
        found = found || ((wanted.empty() || Same(place, wanted)) && (!step.Has("visible") || visible) &&
                          (!step.Has("hidden") || !visible) && (!step.Has("front") || front));
        seen.push_back(TextOf(place) + (visible ? " visible" : " hidden") + (front ? " front" : ""));
    }
    return {found, seen.empty() ? "no window of this plugin" : Join(seen)};
}

Finding Item(SessionRunner &run, const Step &step) {
    const FoundItem found = FindItem(run.Sim().menus, step[0]);
    if (!found.menu)
        return {false, found.seen};
    const std::string mark = MarkOf(found);
    const std::string state = AVSKMenuItemEnabled(found.menu, found.index) != 0 ? "enabled" : "disabled";
    const std::vector<std::string> wanted = step.From(1);
    const bool all = std::all_of(wanted.begin(), wanted.end(),
                                 [&](const std::string &word) { return word == mark || word == state; });
    return {all, mark + " " + state};
}

Finding PluginState(SessionRunner & /*run*/, const Step &step) {
    const AVSKPluginID plugin = FindPlugin(step[0]);
    if (plugin == NO_PLUGIN_ID)
        return {false, "no plugin of this name or signature"};
    const std::string state = AVSKIsPluginEnabled(plugin) != 0 ? "enabled" : "disabled";
    return {step.Count() == 1 || step[1] == state, state};
}

Finding Called(SessionRunner &run, const Step &step) {
    return {run.Calls().Contains(step[0], step.From(1)), run.Calls().Latest(step[0])};
}

Finding ViewShown(SessionRunner &run, const Step &step) {
    const std::string view = run.Sim().camera.ViewName();
    return {view == step[0], view};
}

Finding Owns(SessionRunner &run, const Step &step) {
    const AVSKPluginID plugin = FindPlugin(step[0]);
    if (plugin == NO_PLUGIN_ID)
        return {false, "no plugin of this name or signature"};
    std::vector<std::string> seen;
    bool found = false;
    for (const Possession &owned : run.Observing().Owners().OwnedBy(plugin, KindOf(step[1]).value())) {
        seen.push_back("'" + owned.what + "'");
        found = found || step.Count() == 2 || owned.what.find(step[2]) != std::string::npos;
    }
    return {found, seen.empty() ? "no " + step[1] + " of this plugin" : Join(seen)};
}

// Of a plugin that was never there nothing is left either: that is no proof.
Finding Tidy(SessionRunner &run, const Step &step) {
    const Ledger &owners = run.Observing().Owners();
    if (step.Count() > 0 && !owners.WasUnloaded(step[0]))
        return Finding::Unknown("no plugin of this name or signature was unloaded");
    const std::vector<std::string> left = owners.LeftBehind(step.Count() > 0 ? step[0] : "");
    std::string seen = left.empty() ? "nothing left behind" : "left behind";
    for (const std::string &line : left)
        seen += "\n    " + line;
    return {left.empty(), seen};
}

// The library gives back what it knows. Commands and probes are not looked at:
// both stay for the host's life.
Finding NothingLeft(SessionRunner &run, const Step & /*step*/) {
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
        {"view", "tower|chase|cockpit", "this view is shown", ViewShown},
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
