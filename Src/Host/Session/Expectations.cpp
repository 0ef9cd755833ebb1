// What a session can expect. Each answers what was seen instead; nothing if
// all is well. See Forms.cpp for their words.
#include "Runner.h"

#include "AVSK/AVSKCamera.h"
#include "AVSK/AVSKDataAccess.h"
#include "AVSK/AVSKDisplay.h"
#include "AVSK/AVSKPlanes.h"
#include "AVSK/AVSKPlugins.h"

#include <algorithm>
#include <cstdio>

namespace host {
namespace {

// The answer for something that was looked for.
std::string Answer(const Step &step, bool found, const std::string &seen) {
    return found != step.negated ? std::string() : "seen: " + seen;
}

std::string Join(const std::vector<std::string> &texts, const char *between = ", ") {
    std::string joined;
    for (const std::string &text : texts)
        joined += (joined.empty() ? "" : between) + text;
    return joined;
}

template <typename T>
std::vector<std::string> TextsOf(const std::vector<T> &numbers) {
    std::vector<std::string> texts;
    for (const T number : numbers) {
        std::array<char, 32> text{};
        std::snprintf(text.data(), text.size(), "%.9g", static_cast<double>(number));
        texts.emplace_back(text.data());
    }
    return texts;
}

template <typename T, typename Read>
std::vector<std::string> ReadArray(AVSKDataRef ref, Read read) {
    std::vector<T> numbers(static_cast<std::size_t>(std::clamp(read(ref, nullptr, 0, 0), 0, 1 << 20)));
    if (!numbers.empty())
        numbers.resize(static_cast<std::size_t>(std::clamp(
            read(ref, numbers.data(), 0, static_cast<int>(numbers.size())), 0, static_cast<int>(numbers.size()))));
    return TextsOf(numbers);
}

std::string ReadBytes(AVSKDataRef ref) {
    std::string bytes(static_cast<std::size_t>(std::clamp(AVSKGetDatab(ref, nullptr, 0, 0), 0, 1 << 20)), '\0');
    if (!bytes.empty())
        AVSKGetDatab(ref, bytes.data(), 0, static_cast<int>(bytes.size()));
    return bytes.substr(0, bytes.find('\0'));
}

std::vector<std::string> ReadValues(AVSKDataRef ref) {
    const int types = AVSKGetDataRefTypes(ref);
    if ((types & AVSKDataTypeDouble) != 0)
        return TextsOf(std::vector<double>{AVSKGetDatad(ref)});
    if ((types & AVSKDataTypeFloat) != 0)
        return TextsOf(std::vector<float>{AVSKGetDataf(ref)});
    if ((types & AVSKDataTypeInt) != 0)
        return {std::to_string(AVSKGetDatai(ref))};
    if ((types & AVSKDataTypeFloatArray) != 0)
        return ReadArray<float>(ref, AVSKGetDatavf);
    if ((types & AVSKDataTypeIntArray) != 0)
        return ReadArray<int>(ref, AVSKGetDatavi);
    return {ReadBytes(ref)};
}

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

// The items beneath a menu, whether they open menus of their own or not.
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
            result.there = below.there;
        }
    }
    if (result.there.empty())
        result.there = names.empty() ? "nothing in the menu '" + menu.name + "'"
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
    if (result.there.empty())
        result.there = names.empty() ? "no menu" : Join(names) + " in the menu bar";
    return result;
}

namespace expectations {

std::string Dataref(SessionRunner & /*run*/, const Step &step) {
    const std::string &name = step[0];
    AVSKDataRef ref = AVSKFindDataRef(name.c_str());
    int element = -1;
    if (const std::size_t open = name.rfind('['); !ref && open != std::string::npos && name.ends_with(']')) {
        element = static_cast<int>(NumberOf(std::string_view(name).substr(open + 1, name.size() - open - 2)));
        ref = AVSKFindDataRef(name.substr(0, open).c_str());
    }
    if (!ref || AVSKIsDataRefGood(ref) == 0)
        return Answer(step, false, "nobody publishes it");
    std::vector<std::string> seen = ReadValues(ref);
    if (element >= 0) {
        if (element >= static_cast<int>(seen.size()))
            return Answer(step, false, std::to_string(seen.size()) + " elements");
        seen = {seen[static_cast<std::size_t>(element)]};
    }
    const std::vector<std::string> wanted = step.From(1);
    const bool agrees = wanted.empty() || std::equal(wanted.begin(), wanted.end(), seen.begin(), seen.end(), Matches);
    return Answer(step, agrees, Join(seen, " "));
}

std::string Logged(SessionRunner &run, const Step &step) {
    const std::string &log = run.Sim().console.Kept();
    const std::size_t at = log.find(step[0]);
    if (at != std::string::npos) {
        const std::size_t begin = log.rfind('\n', at) + 1; // 0 behind no line
        return Answer(step, true, "the line '" + log.substr(begin, log.find('\n', at) - begin) + "'");
    }
    if (log.empty())
        return Answer(step, false, "nothing was logged since the start or the last mark");
    const std::size_t end = log.find_last_not_of('\n') + 1;
    const std::size_t begin = end == 0 ? 0 : log.rfind('\n', end - 1) + 1;
    return Answer(step, false, "no such line; the last one is '" + log.substr(begin, end - begin) + "'");
}

std::string WindowThere(SessionRunner &run, const Step &step) {
    const AVSKPluginID plugin = SessionRunner::FindPlugin(step[0]);
    if (plugin == NO_PLUGIN_ID)
        return Answer(step, false, "no plugin of this name or signature");
    std::vector<int> wanted;
    if (step.Count() > 1 && step[1].find(',') != std::string::npos)
        wanted = IntegersOf(step[1]);
    std::vector<std::string> seen;
    bool found = false;
    for (const Possession &owned : run.Watch().Owners().OwnedBy(plugin, Kind::Window)) {
        AVSKWindowID window = WindowOf(owned);
        const Rectangle place = PlaceOf(window);
        const bool visible = AVSKGetWindowIsVisible(window) != 0;
        const bool front = AVSKIsWindowInFront(window) != 0;
        found = found || ((wanted.empty() || Same(place, wanted)) && (!step.Has("visible") || visible) &&
                          (!step.Has("hidden") || !visible) && (!step.Has("front") || front));
        seen.push_back(TextOf(place) + (visible ? " visible" : " hidden") + (front ? " front" : ""));
    }
    return Answer(step, found, seen.empty() ? "no window of this plugin" : Join(seen));
}

std::string Item(SessionRunner &run, const Step &step) {
    const FoundItem found = FindItem(run.Sim().menus, step[0]);
    if (!found.menu)
        return Answer(step, false, found.there);
    const std::string mark = MarkOf(found);
    const std::string state = AVSKMenuItemEnabled(found.menu, found.index) != 0 ? "enabled" : "disabled";
    const std::vector<std::string> wanted = step.From(1);
    const bool all = std::all_of(wanted.begin(), wanted.end(),
                                 [&](const std::string &word) { return word == mark || word == state; });
    return Answer(step, all, mark + " " + state);
}

std::string PluginState(SessionRunner & /*run*/, const Step &step) {
    const AVSKPluginID plugin = SessionRunner::FindPlugin(step[0]);
    if (plugin == NO_PLUGIN_ID)
        return Answer(step, false, "no plugin of this name or signature");
    const std::string state = AVSKIsPluginEnabled(plugin) != 0 ? "enabled" : "disabled";
    return Answer(step, step.Count() == 1 || step[1] == state, state);
}

std::string Called(SessionRunner &run, const Step &step) {
    return Answer(step, run.Calls().Contains(step[0], step.From(1)), run.Calls().Latest(step[0]));
}

std::string ViewShown(SessionRunner &run, const Step &step) {
    const std::string view = run.Sim().camera.ViewName();
    return Answer(step, view == step[0], view);
}

std::string Owns(SessionRunner &run, const Step &step) {
    const AVSKPluginID plugin = SessionRunner::FindPlugin(step[0]);
    if (plugin == NO_PLUGIN_ID)
        return Answer(step, false, "no plugin of this name or signature");
    std::vector<std::string> seen;
    bool found = false;
    for (const Possession &owned : run.Watch().Owners().OwnedBy(plugin, KindOf(step[1]).value())) {
        seen.push_back("'" + owned.what + "'");
        found = found || step.Count() == 2 || owned.what.find(step[2]) != std::string::npos;
    }
    return Answer(step, found, seen.empty() ? "no " + step[1] + " of this plugin" : Join(seen));
}

// Of a plugin that was never there nothing is left either: that is no proof.
std::string Tidy(SessionRunner &run, const Step &step) {
    const Ledger &owners = run.Watch().Owners();
    if (step.Count() > 0 && !owners.WasUnloaded(step[0]))
        return "seen: no plugin of this name or signature was loaded";
    const std::vector<std::string> left = owners.LeftBehind(step.Count() > 0 ? step[0] : "");
    std::string seen = left.empty() ? "nothing left behind" : "left behind";
    for (const std::string &line : left)
        seen += "\n    " + line;
    return Answer(step, left.empty(), seen);
}

// The library gives back what it knows. Commands and probes are not looked at:
// both stay for the host's life.
std::string NothingLeft(SessionRunner &run, const Step &step) {
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
    const Ledger &owners = run.Watch().Owners();
    for (const Possession &dataref : owners.StillThere(Kind::Dataref))
        left.push_back("the dataref '" + dataref.what + "'");
    if (const std::size_t windows = owners.StillThere(Kind::Window).size(); windows > 0)
        left.push_back(std::to_string(windows) + " windows");
    if (const int keys = AVSKCountHotKeys(); keys > 0)
        left.push_back(std::to_string(keys) + " hot keys");
    if (AVSKIsCameraBeingControlled(nullptr) != 0)
        left.emplace_back("the camera under control");
    return Answer(step, left.empty(), Join(left));
}

} // namespace expectations
} // namespace host
