// The step words of a session: each does what a user, the world or the
// simulator does. The table at the end lists them.
#include "DatarefReading.h"
#include "DatarefWriting.h"
#include "Forms.h"
#include "LoadedPlugins.h"
#include "MenuPaths.h"
#include "PictureCheck.h"
#include "Runner.h"
#include "Values.h"

#include "Common/NearestName.h"
#include "Common/Text.h"
#include "Observing/DatarefValues.h"
#include "Observing/Listings.h"
#include "Screen/PngFile.h"

#include "AVSK/AVSKDisplay.h"
#include "AVSK/AVSKHost.h"
#include "AVSK/AVSKPlugins.h"

#include <algorithm>
#include <cctype>
#include <cmath>
#include <cstdio>
#include <filesystem>
#include <stdexcept>

#include <unistd.h>

namespace host {
namespace {

constexpr int kForever = 1 << 30; // frames: until the key is released
const Failure kFine;

void MoveMouse(Simulator &simulator, int x, int y) {
    simulator.display.mouseX = x;
    simulator.display.mouseY = y;
}

void MoveMouse(Simulator &simulator, const std::string &point) {
    const std::vector<int> place = Integers(point);
    MoveMouse(simulator, place[0], place[1]);
}

void ChangeMouseButton(const Simulator &simulator, int down) {
    AVSKMouseClickHook(simulator.display.mouseX, simulator.display.mouseY, down);
}

char CharacterOf(const std::string &key, int code) {
    if (key.size() == 1)
        return key[0];
    constexpr int kCharacters[] = {8, 9, 13, 27, 32}; // the same number as the key
    return std::find(std::begin(kCharacters), std::end(kCharacters), code) != std::end(kCharacters)
               ? static_cast<char>(code)
               : '\0';
}

void PressKey(SessionRunner &run, const Step &step, int frames) {
    constexpr int kShift = 1;
    constexpr int kControl = 2;
    const int code = KeyCode(step[0]);
    run.Sim().input.PressKey(CharacterOf(step[0], code), static_cast<char>(code), frames,
                             (step.Has("shift") ? kShift : 0) | (step.Has("control") ? kControl : 0));
}

std::string NoCommand(SessionRunner &run, const std::string &name) {
    std::vector<std::string> names;
    for (const auto &command : run.Sim().commands.All())
        names.push_back(command->name);
    const std::string nearest = DidYouMean(name, names);
    return "no command '" + name + "'" + (nearest.empty() ? ": 'commands' lists them" : nearest);
}

Failure FinishLoads(SessionRunner &run, const Step &step, bool fail) {
    const int finished = run.Sim().objects.FinishLoads(step.Count() > 1 ? step[1] : "", fail);
    return finished > 0 ? kFine : "no such load is under way";
}

std::string NoDataref(SessionRunner &run, const std::string &name) {
    const std::string nearest = DidYouMean(name, run.Datarefs().Published());
    return "nobody publishes '" + name + "'" + (nearest.empty() ? ": 'datarefs' lists all datarefs" : nearest);
}

// ---- The words

Failure Frames(SessionRunner &run, const Step &step) {
    run.RunFrames(Integer(step[0]));
    return {};
}

Failure Seconds(SessionRunner &run, const Step &step) {
    run.RunFrames(static_cast<int>(std::clamp(std::round(Number(step[0]) * run.Sim().options.fps), 1.0, 1e9)));
    return {};
}

Failure Lag(SessionRunner &run, const Step &step) {
    run.Sim().RunFrame(Number(step[0]));
    return {};
}

Failure Move(SessionRunner &run, const Step &step) {
    MoveMouse(run.Sim(), step[0]);
    AVSKCursorHook(run.Sim().display.mouseX, run.Sim().display.mouseY);
    return {};
}

Failure Press(SessionRunner &run, const Step & /*step*/) {
    ChangeMouseButton(run.Sim(), 1);
    return {};
}

Failure Release(SessionRunner &run, const Step & /*step*/) {
    ChangeMouseButton(run.Sim(), 0);
    return {};
}

Failure Click(SessionRunner &run, const Step &step) {
    MoveMouse(run.Sim(), step[0]);
    ChangeMouseButton(run.Sim(), 1);
    run.RunFrames(1);
    ChangeMouseButton(run.Sim(), 0);
    return {};
}

// The library asks where the mouse is once a frame.
Failure Drag(SessionRunner &run, const Step &step) {
    constexpr int kFrames = 4;
    const std::vector<int> from = Integers(step[0]);
    const std::vector<int> to = Integers(step[1]);
    const int frames = step.Count() > 2 ? Integer(step[2]) : kFrames;
    MoveMouse(run.Sim(), step[0]);
    ChangeMouseButton(run.Sim(), 1);
    for (int i = 1; i <= frames; ++i) {
        const double share = static_cast<double>(i) / frames;
        MoveMouse(run.Sim(), static_cast<int>(std::lround(std::lerp(from[0], to[0], share))),
                  static_cast<int>(std::lround(std::lerp(from[1], to[1], share))));
        run.RunFrames(1);
    }
    ChangeMouseButton(run.Sim(), 0);
    return {};
}

Failure Wheel(SessionRunner &run, const Step &step) {
    MoveMouse(run.Sim(), step[0]);
    AVSKScrollWheelHook(run.Sim().display.mouseX, run.Sim().display.mouseY, step.Count() > 2 ? Integer(step[2]) : 0,
                        Integer(step[1]));
    return {};
}

Failure TypeKey(SessionRunner &run, const Step &step) {
    PressKey(run, step, 1);
    run.RunFrames(1);
    return {};
}

Failure KeyDown(SessionRunner &run, const Step &step) {
    PressKey(run, step, kForever);
    return {};
}

Failure KeyUp(SessionRunner &run, const Step &step) {
    return run.Sim().input.ReleaseKey(static_cast<char>(KeyCode(step[0]))) ? kFine : "this key is not down";
}

Failure Type(SessionRunner &run, const Step &step) {
    constexpr int kShift = 1;
    for (const char c : step[0]) {
        const auto character = static_cast<unsigned char>(c);
        run.Sim().input.PressKey(c, static_cast<char>(std::toupper(character)), 1,
                                 std::isupper(character) ? kShift : 0);
        run.RunFrames(1);
    }
    return {};
}

Failure PickMenu(SessionRunner &run, const Step &step) {
    const FoundItem found = FindItem(run.Sim().menus, step[0]);
    if (!found.menu)
        return "no such item; there is " + found.seen;
    if (AVSKMenuItemEnabled(found.menu, found.index) == 0)
        return "the item is disabled: it cannot be picked";
    AVSKMenuHook(found.menu->items[static_cast<std::size_t>(found.index)].id);
    return {};
}

Failure RunCommand(SessionRunner &run, const Step &step) {
    Command *command = run.Sim().commands.Find(step[0]);
    if (!command)
        return NoCommand(run, step[0]);
    if (!run.Sim().input.HoldCommand(command))
        return "the command is held already: end it first";
    run.Sim().input.EndCommand(command);
    return {};
}

Failure BeginCommand(SessionRunner &run, const Step &step) {
    Command *command = run.Sim().commands.Find(step[0]);
    if (!command)
        return NoCommand(run, step[0]);
    return run.Sim().input.HoldCommand(command) ? kFine : "the command is held already";
}

Failure EndCommand(SessionRunner &run, const Step &step) {
    Command *command = run.Sim().commands.Find(step[0]);
    if (!command)
        return NoCommand(run, step[0]);
    return run.Sim().input.EndCommand(command) ? kFine : "the command is not held by 'begin'";
}

Failure Button(SessionRunner &run, const Step &step) {
    const int button = Integer(step[0]);
    if (step.Has("press"))
        return run.Sim().input.HoldButton(button) ? kFine : "the button is down already";
    return run.Sim().input.ReleaseButton(button) ? kFine : "the button is not down";
}

Failure ChangeView(SessionRunner &run, const Step &step) {
    Camera &camera = run.Sim().camera;
    if (step[0] == "next")
        camera.NextView(run.Sim());
    else
        camera.ChangeView(run.Sim(), step[0] == "chase"     ? View::Chase
                                     : step[0] == "cockpit" ? View::Cockpit
                                                            : View::Tower);
    return {};
}

Failure Load(SessionRunner &run, const Step &step) {
    const int index = step.Count() > 2 ? Integer(step[2]) : 0;
    const std::string file = ResolvePath(run.Sim().options.root, step[1]);
    std::error_code error;
    if (index >= Fleet::kCount)
        return "there is no aircraft " + step[2] + ": the last one is " + std::to_string(Fleet::kCount - 1);
    if (!std::filesystem::is_regular_file(file, error))
        return "no file '" + file + "'";
    run.Sim().fleet.Request(index, step[1]);
    run.RunFrames(1);
    return {};
}

Failure ReportScenery(SessionRunner &run, const Step & /*step*/) {
    if (run.Sim().options.scenery.empty())
        return "there is no scenery: name a folder in the set-up";
    run.Sim().ReportScenery();
    return {};
}

Failure Crash(SessionRunner &run, const Step & /*step*/) {
    AVSKEventHook(AVSKHostEventBroadcast101, run.Sim().Elapsed(), 0, 0);
    return {};
}

Failure HoldLoads(SessionRunner &run, const Step & /*step*/) {
    run.Sim().objects.HoldLoads();
    return {};
}

Failure CompleteLoads(SessionRunner &run, const Step &step) { return FinishLoads(run, step, /*fail=*/false); }
Failure FailLoads(SessionRunner &run, const Step &step) { return FinishLoads(run, step, /*fail=*/true); }

Failure SendMessage(SessionRunner & /*run*/, const Step &step) {
    constexpr AVSKPluginID kEverybody = -1;
    const bool all = step[0] == "all";
    const AVSKPluginID plugin = all ? kEverybody : FindPlugin(step[0]);
    if (!all && plugin == NO_PLUGIN_ID)
        return NoPlugin(step[0]);
    std::string text = step.Count() > 2 ? step[2] : "";
    AVSKSendMessageToPlugin(plugin, Integer(step[1]), step.Count() > 2 ? text.data() : nullptr);
    return {};
}

Failure Enable(SessionRunner & /*run*/, const Step &step) {
    const AVSKPluginID plugin = FindPlugin(step[0]);
    if (plugin == NO_PLUGIN_ID)
        return NoPlugin(step[0]);
    return AVSKEnablePlugin(plugin) != 0 ? kFine : "the plugin refused";
}

Failure Disable(SessionRunner & /*run*/, const Step &step) {
    const AVSKPluginID plugin = FindPlugin(step[0]);
    if (plugin == NO_PLUGIN_ID)
        return NoPlugin(step[0]);
    AVSKDisablePlugin(plugin);
    return {};
}

Failure Reload(SessionRunner &run, const Step & /*step*/) {
    AVSKReloadPlugins();
    run.RunFrames(1);
    return {};
}

Failure SetDataref(SessionRunner &run, const Step &step) {
    const FoundDataref target = FindDataref(step[0]);
    if (!target.ref)
        return {NoDataref(run, step[0]), step.words[0].column};
    return WriteDataref(target, step);
}

Failure ReadDatarefBy(SessionRunner &run, const Step &step) {
    constexpr int kMost = 1 << 20;
    AVSKDataRef ref = FindPublished(step[0]);
    if (!ref)
        return {NoDataref(run, step[0]), step.words[0].column};
    const int offset = step.Count() > 2 ? Integer(step[2]) : 0;
    const int count = step.Count() > 3 ? Integer(step[3]) : 0;
    if (count > kMost)
        return {"at most 1048576 elements can be read", step.words[3].column};
    std::printf("%s by %s = %s\n", step[0].c_str(), step[1].c_str(), ReadBy(step[1], ref, offset, count).c_str());
    std::fflush(stdout);
    return {};
}

// All windows of a plugin, or one by its place in the order of their creation.
Failure SetVisible(SessionRunner &run, const Step &step, int visible) {
    const AVSKPluginID plugin = FindPlugin(step[0]);
    if (plugin == NO_PLUGIN_ID)
        return NoPlugin(step[0]);
    const std::vector<Possession> windows = run.Observing().Owners().OwnedBy(plugin, Kind::Window);
    const std::size_t only = step.Count() > 1 ? static_cast<std::size_t>(Integer(step[1])) : 0;
    if (windows.empty() || only > windows.size())
        return "the plugin has " + (windows.empty() ? "no" : std::to_string(windows.size())) + " windows";
    for (std::size_t i = 0; i < windows.size(); ++i) {
        if ((only == 0 || i + 1 == only) && Exists(windows[i])) // an earlier one may have destroyed it
            AVSKSetWindowIsVisible(static_cast<AVSKWindowID>(const_cast<void *>(windows[i].handle)), visible);
    }
    return {};
}

Failure ShowWindow(SessionRunner &run, const Step &step) { return SetVisible(run, step, 1); }
Failure HideWindow(SessionRunner &run, const Step &step) { return SetVisible(run, step, 0); }

Failure TakeScreenshot(SessionRunner &run, const Step &step) {
    const std::string folder = std::filesystem::path(step[0]).parent_path().string();
    if (access(folder.empty() ? "." : folder.c_str(), W_OK) != 0)
        return "cannot write there: name a .png file in a folder that exists and is writable";
    if (const std::string why = WhyNoPicture(run); !why.empty())
        return why;
    run.Sim().display.wanted = true;
    run.RunFrames(1);
    try {
        WritePng(run.Sim().Picture(), step[0]);
    } catch (const std::runtime_error &error) {
        return error.what();
    }
    return {};
}

Failure Get(SessionRunner &run, const Step &step) {
    constexpr std::size_t kMost = 64;
    const FoundDataref found = FindDataref(step[0]);
    if (!found.ref)
        return {NoDataref(run, step[0]), step.words[0].column};
    std::vector<std::string> values = ReadDataref(found.ref);
    if (found.index) {
        if (*found.index >= std::ssize(values))
            return {values.empty() ? "it has no elements"
                                   : "its last element is [" + std::to_string(values.size() - 1) + "]",
                    step.words[0].column};
        values = {values[static_cast<std::size_t>(*found.index)]};
    }
    const std::size_t more = values.size() - std::min(values.size(), kMost);
    values.resize(values.size() - more);
    std::printf("%s = %s%s (%s)\n", step[0].c_str(), Join(values, " ").c_str(),
                more > 0 ? (" and " + std::to_string(more) + " others").c_str() : "", DatarefTypes(found.ref).c_str());
    std::fflush(stdout);
    return {};
}

Failure PrintDatarefs(SessionRunner &run, const Step &step) {
    PrintList("Datarefs:",
              ListDatarefs(run.Datarefs(), run.Observing().Owners(), step.Count() > 0 ? step[0] : "", Values::Omitted));
    return {};
}

Failure PrintWindows(SessionRunner &run, const Step & /*step*/) {
    PrintList("Windows:", ListWindows(run.Observing().Owners()), "none");
    return {};
}

Failure PrintMenus(SessionRunner &run, const Step & /*step*/) {
    PrintList("Menus:", ListMenus(run.Sim().menus), "none");
    return {};
}

Failure PrintCommands(SessionRunner &run, const Step &step) {
    PrintList("Commands:", ListCommands(run.Sim().commands, run.Observing().Owners(), step.Count() > 0 ? step[0] : ""));
    return {};
}

Failure Mark(SessionRunner &run, const Step & /*step*/) {
    run.Sim().console.Forget();
    run.Calls().Forget();
    return {};
}

Failure ListPossessions(SessionRunner &run, const Step &step) {
    const Ledger &owners = run.Observing().Owners();
    const std::string plugin = step.Count() > 0 ? step[0] : "";
    const bool isKnown =
        plugin.empty() || (run.IsLoaded() ? FindPlugin(plugin) != NO_PLUGIN_ID : owners.WasUnloaded(plugin));
    if (!isKnown)
        return run.IsLoaded() ? NoPlugin(plugin) : "no plugin of this name or signature was loaded: '" + plugin + "'";
    if (run.IsLoaded())
        PrintList("Owned:", owners.Owned(plugin));
    else
        PrintList("Left behind:", owners.LeftBehind(plugin));
    return {};
}

Failure UnloadAll(SessionRunner &run, const Step & /*step*/) {
    run.Unload();
    return {};
}

} // namespace

std::span<const Form> StepForms() {
    static constexpr Form kForms[] = {
        {"frames", "COUNT", "runs so many frames", Frames},
        {"seconds", "NUMBER", "runs the frames of so many simulated seconds", Seconds},
        {"lag", "NUMBER", "runs one frame that takes so many seconds", Lag},
        {"move", "POINT", "moves the mouse; y points upward", Move},
        {"press", "", "presses the mouse button", Press},
        {"release", "", "releases the mouse button", Release},
        {"click", "POINT", "moves the mouse, presses the button, runs a frame, releases the button", Click},
        {"drag", "POINT POINT [COUNT]", "drags from the first point to the second in so many frames; the default is 4",
         Drag},
        {"wheel", "POINT INTEGER [INTEGER]", "turns the wheel by so many clicks; then the wheel's number, 0 by default",
         Wheel},
        {"key", "KEY [shift|control]+", "presses a key, runs a frame, releases the key", TypeKey},
        {"keydown", "KEY [shift|control]+", "presses a key and holds it", KeyDown},
        {"keyup", "KEY", "releases a held key", KeyUp},
        {"type", "TEXT", "presses the key of each character, one frame each", Type},
        {"menu", "PATH", "picks a menu item, for example \"Plugins/Lights/Beacon\"", PickMenu},
        {"command", "NAME", "begins and ends a command", RunCommand},
        {"begin", "NAME", "begins a command and holds it: each frame continues it", BeginCommand},
        {"end", "NAME", "ends a held command", EndCommand},
        {"button", "COUNT press|release", "presses or releases a joystick button", Button},
        {"view", "tower|chase|cockpit|next", "changes the view", ChangeView},
        {"load", "aircraft FILE [COUNT]", "loads the model of the user's aircraft, or of another, in a frame", Load},
        {"report", "scenery", "reports the scenery folders of the set-up again", ReportScenery},
        {"crash", "", "reports that the aircraft crashed: broadcasts message 101", Crash},
        {"hold", "loads", "makes asynchronous loads wait for 'complete' or 'fail'", HoldLoads},
        {"complete", "loads [FILE]", "completes the waiting loads, or those of one file", CompleteLoads},
        {"fail", "loads [FILE]", "lets the waiting loads fail, or those of one file", FailLoads},
        {"message", "PLUGIN INTEGER [TEXT]", "sends a message to a plugin or to 'all', with the text or null",
         SendMessage},
        {"enable", "PLUGIN", "enables a plugin", Enable},
        {"disable", "PLUGIN", "disables a plugin", Disable},
        {"reload", "", "unloads and loads all plugins, in a frame", Reload},
        {"set", "NAME VALUE+", "writes a dataref: a number, numbers or a text; NAME[3] is an element", SetDataref},
        {"get", "NAME", "prints the value of a dataref; NAME[3] is an element", Get},
        {"read", "NAME int|float|double|ints|floats|data [INTEGER] [COUNT]",
         "prints what one accessor of a dataref returns; of an array so many elements from an offset, or its length",
         ReadDatarefBy},
        {"datarefs", "[PATTERN]", "prints all datarefs, or those whose names match", PrintDatarefs},
        {"windows", "", "prints the windows of plugins", PrintWindows},
        {"menus", "", "prints the menus", PrintMenus},
        {"commands", "[PATTERN]", "prints all commands, or those whose names match", PrintCommands},
        {"show", "PLUGIN [COUNT]", "shows the windows of a plugin, or one by its number in the order of creation",
         ShowWindow},
        {"hide", "PLUGIN [COUNT]", "hides the windows of a plugin, or one of them", HideWindow},
        {"screenshot", "FILE.png", "runs a frame and writes what the screen then shows to a .png file", TakeScreenshot},
        {"mark", "", "later 'expect log' and 'expect call' look back to this line only", Mark, kAlsoAfterUnload},
        {"ps", "[PLUGIN]", "prints what the plugins, or this one, own; after 'unload' what they left behind",
         ListPossessions, kAlsoAfterUnload},
        {"unload", "", "unloads all plugins", UnloadAll, kUnloads},
    };
    return kForms;
}

} // namespace host
