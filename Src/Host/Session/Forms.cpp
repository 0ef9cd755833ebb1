// The words of a session, in the order `avsk run --words` lists them.
#include "Runner.h"

#include <cstdio>

namespace host {
namespace {

constexpr bool kAfterUnload = true;

constexpr Form kForms[] = {
    {StepKind::SetUp, "root", "TEXT", "the simulator's folder, which holds Resources/plugins", nullptr},
    {StepKind::SetUp, "plugin", "TEXT", "load only this one (repeat it for more): a name in the root, or a path",
     nullptr},
    {StepKind::SetUp, "fps", "NUMBER", "frames per simulated second, 60 unless said", nullptr},
    {StepKind::SetUp, "screen", "SIZE", "the screen's size in pixels, 1024x768 unless said", nullptr},
    {StepKind::SetUp, "aircraft", "TEXT", "folder of the user's aircraft", nullptr},
    {StepKind::SetUp, "scenery", "TEXT", "a scenery folder; can be repeated", nullptr},
    {StepKind::SetUp, "budget", "NUMBER [TEXT]",
     "the milliseconds that each plugin, or this one, may take in a frame; more fails the session", nullptr},

    {StepKind::Step, "frames", "COUNT", "runs so many frames", steps::Frames},
    {StepKind::Step, "seconds", "NUMBER", "runs so many simulated seconds", steps::Seconds},
    {StepKind::Step, "move", "POINT", "moves the mouse; y points upward", steps::Move},
    {StepKind::Step, "press", "", "presses the mouse button", steps::Press},
    {StepKind::Step, "release", "", "lets the mouse button go", steps::Release},
    {StepKind::Step, "click", "POINT", "moves, presses, runs a frame, lets go", steps::Click},
    {StepKind::Step, "drag", "POINT POINT [COUNT]",
     "drags from one point to the other in so many frames, 4 unless said", steps::Drag},
    {StepKind::Step, "wheel", "POINT INTEGER [INTEGER]",
     "turns the wheel by so many clicks; the wheel's number, 0 unless said", steps::Wheel},
    {StepKind::Step, "key", "KEY [shift|control]+", "presses a key, runs a frame, lets go", steps::TypeKey},
    {StepKind::Step, "keydown", "KEY [shift|control]+", "presses a key and holds it", steps::KeyDown},
    {StepKind::Step, "keyup", "KEY", "lets a held key go", steps::KeyUp},
    {StepKind::Step, "type", "TEXT", "presses the keys of a text, a frame for each", steps::Type},
    {StepKind::Step, "menu", "TEXT", "picks a menu item by its path: \"Plugins/Lights/Beacon\"", steps::PickMenu},
    {StepKind::Step, "command", "TEXT", "begins and ends a command", steps::RunCommand},
    {StepKind::Step, "begin", "TEXT", "begins a command and holds it: each frame continues it", steps::BeginCommand},
    {StepKind::Step, "end", "TEXT", "ends a held command", steps::EndCommand},
    {StepKind::Step, "button", "COUNT press|release", "presses or lets go of a joystick button", steps::Button},
    {StepKind::Step, "view", "tower|chase|cockpit|next", "changes the view", steps::ChangeView},
    {StepKind::Step, "load", "aircraft TEXT [COUNT]",
     "loads the model of the user's aircraft, or of another, in a frame", steps::Load},
    {StepKind::Step, "report", "scenery", "reports the scenery folders of the set-up once more", steps::ReportScenery},
    {StepKind::Step, "crash", "", "reports that the aircraft crashed: broadcasts message 101", steps::Crash},
    {StepKind::Step, "hold", "loads", "from now on asynchronous loads wait for 'complete' or 'fail'", steps::HoldLoads},
    {StepKind::Step, "complete", "loads [TEXT]", "completes the waiting loads, or those of one file",
     steps::CompleteLoads},
    {StepKind::Step, "fail", "loads [TEXT]", "has them fail", steps::FailLoads},
    {StepKind::Step, "message", "TEXT INTEGER [TEXT]", "sends a plugin, or 'all', a message with a text or nothing",
     steps::SendMessage},
    {StepKind::Step, "enable", "TEXT", "enables a plugin, by its name or signature", steps::Enable},
    {StepKind::Step, "disable", "TEXT", "disables a plugin", steps::Disable},
    {StepKind::Step, "reload", "", "unloads and loads all plugins, in a frame", steps::Reload},
    {StepKind::Step, "set", "TEXT VALUE+", "writes a dataref: a number, numbers or a text; NAME[3] is an element",
     steps::SetDataref},
    {StepKind::Step, "screenshot", "TEXT", "runs a frame and writes a picture of it", steps::TakeScreenshot},
    {StepKind::Step, "mark", "", "expectations about the log and about calls look no further back than here",
     steps::Mark, kAfterUnload},
    {StepKind::Step, "ps", "[TEXT]", "prints what each plugin, or this one, owns; behind 'unload' what it left behind",
     steps::ListPossessions, kAfterUnload},
    {StepKind::Step, "unload", "", "unloads all plugins; then nothing more can run", steps::UnloadAll},

    {StepKind::Expect, "dataref", "TEXT [VALUE]+", "a dataref is published, and has a value", expectations::Dataref},
    {StepKind::Expect, "log", "TEXT", "a line of the log holds a text", expectations::Logged, kAfterUnload},
    {StepKind::Expect, "window", "TEXT [RECT] [visible|hidden] [front]", "a plugin has such a window",
     expectations::WindowThere},
    {StepKind::Expect, "item", "TEXT [checked|unchecked|unmarked] [enabled|disabled]", "a menu has such an item",
     expectations::Item},
    {StepKind::Expect, "plugin", "TEXT [enabled|disabled]", "a plugin is loaded", expectations::PluginState},
    {StepKind::Expect, "call", "SLOT [VALUE]+", "a host service was called with such arguments; * is any",
     expectations::Called, kAfterUnload},
    {StepKind::Expect, "view", "tower|chase|cockpit", "the view is this one", expectations::ViewShown},
    {StepKind::Expect, "owns", "TEXT KIND [TEXT]",
     "a plugin owns something of a kind, as 'ps' shows it, whose description holds a text", expectations::Owns},
    {StepKind::Expect, "tidy", "[TEXT]",
     "behind 'unload': the plugins, or this one, had given everything back themselves", expectations::Tidy,
     kAfterUnload},
    {StepKind::Expect, "nothing", "left", "behind 'unload': the plugins left nothing that the host can see",
     expectations::NothingLeft, kAfterUnload},
};

} // namespace

std::span<const Form> SessionForms() { return kForms; }

void PrintSessionWords() {
    for (const Form &form : SessionForms()) {
        const std::string usage = (form.kind == StepKind::Expect ? "expect [no] " : "") + std::string(form.name) + " " +
                                  std::string(form.parameters);
        std::printf("%-58s %s\n", usage.c_str(), std::string(form.help).c_str());
    }
    std::fflush(stdout);
}

} // namespace host
