// The rules about when and with what the host calls hooks; HostOrderChecks.cpp and
// HostFrameChecks.cpp find what violates them.
#ifndef AVSK_HOST_RULES_HOST_ORDER_RULES_H
#define AVSK_HOST_RULES_HOST_ORDER_RULES_H

#include "Rule.h"

namespace host {

inline constexpr Rule kHostOrderRules[] = {
    // ---- Start and end
    {"host-hook-before-start", Level::Error, "is called before AVSKInitializePlugins",
     "Start the library before you report anything.",
     "Before the start there is no plugin, and the library has no table of services. Hooks that need a service end the "
     "process; the others have no effect."},
    {"host-hook-after-end", Level::Warning, "is called after AVSKShutdownPlugins",
     "Stop the frames before you shut the library down.",
     "After the shutdown there is no plugin. The hook reaches nobody and loads nothing."},
    {"host-start-twice", Level::Error, "the library is started already",
     "Call AVSKShutdownPlugins first, or start once.",
     "A second start registers the host twice and loads all plugins again. Those that are loaded are refused as "
     "duplicates after their start entry has run."},
    {"host-end-unstarted", Level::Warning, "the library is not started",
     "Call AVSKShutdownPlugins once for each start.",
     "The shutdown has no effect. The code that stops the library probably runs twice, or runs where the start "
     "failed."},
    {"host-end-missing", Level::Warning, "the process ends without AVSKShutdownPlugins",
     "Call AVSKShutdownPlugins before the process ends.",
     "Without the shutdown plugins are neither disabled nor stopped. They save no settings and close no connections."},
    {"host-hook-in-service", Level::Error, "is called inside {outer}",
     "Set a flag in the service, and act when the hook has returned.",
     "A start and a shutdown unload plugins, and a plugin's call leads to the service. The plugin goes on as nobody: "
     "whatever it creates or asks for afterwards has no effect."},
    {"host-hook-signal", Level::Error, "is called inside a signal handler",
     "Set a flag of type volatile sig_atomic_t in the handler, and call the hook in the next frame.",
     "A signal interrupts the library, a plugin or the C library anywhere. The hook then walks lists that are half "
     "changed, and plugins allocate memory inside of malloc. The process hangs or crashes at random."},
    {"host-hook-thread", Level::Error, "is called on another thread",
     "Queue the event, and call the hook on the main thread in the next frame.",
     "The library has no locks. A hook on another thread walks lists that the main thread changes, and calls plugins "
     "that expect one thread. The process crashes at random."},
    // ---- Arguments of hooks
    {"host-hook-null", Level::Error, "{parameter} is null or not readable", "Pass the address of a valid object.",
     "Hooks do not test the pointers that hosts pass. The library or a plugin reads or writes the memory and ends the "
     "process."},
    {"host-hook-folder", Level::Error, "the folder {folder} does not end in a separator",
     "Append a slash to the folder.",
     "The library appends the names of files and folders to the text. Without the separator it searches another "
     "folder, "
     "finds no plugin and reports nothing."},
    {"host-event-unknown", Level::Warning, "there is no event {event}", "Use the constants of AVSKHostEvent.",
     "The library knows the events 0 to 13 and ignores all others, so what the host wants to report reaches nobody."},
    {"host-draw-unknown", Level::Warning, "there is no draw code {code}",
     "Pass the draw codes 1 to 26; Docs/frame.md lists them.",
     "The library ignores other codes, so the callbacks of this pass are not called."},
    {"host-draw-reflection", Level::Warning,
     "reflection is {reflection}; it is 1 in a pass that draws reflections, else 0", "Pass 0 or 1.",
     "Plugins receive the pass of reflections only if they ask for it. With an arbitrary number they miss their "
     "passes."},
    {"host-camera-invalid", Level::Warning, "{parameter} is {value}",
     "Pass the host's own position of the camera, in the units that the host documents.",
     "The plugin in control starts from these numbers. With a NaN or an infinite one all that it computes is one too, "
     "and it places the camera nowhere."},
    {"host-key-empty", Level::Note, "key, flags and virtualKey are all zero",
     "Report the key's code, with a flag that says whether it goes down or up.",
     "A report of three zeros reaches no plugin."},
    // ---- Aircraft and scenery
    {"host-plane-events", Level::Warning, "event {event} for aircraft {index} comes {order}",
     "Report event 8 before and event 3 after each replacement of a model, once each.",
     "Event 3 broadcasts that an aircraft was loaded, event 8 that it will be unloaded. For the user's aircraft they "
     "also "
     "load and unload its plugins. After a second event 3 without an event 8 these plugins are started again and then "
     "stopped as duplicates."},
    {"host-plane-index", Level::Warning, "index is {index}; {expected}",
     "Call AVSKGetNumberPlanesToHandle() first, then this hook for each index from 1 up to that number minus 1.",
     "The hook asks which model to load for one of the other aircraft. For any other index it writes nothing, and the "
     "host loads its own model although a plugin may have chosen one."},
    {"host-scenery-twice", Level::Warning, "the scenery folder {folder} was reported already",
     "Report each folder once after the start, and once after each reload.",
     "The library loads the plugins of the folder again. They are started, and then stopped as duplicates."},
    // ---- Frames
    {"host-frame-event", Level::Warning, "a frame has no event {event}",
     "Call AVSKEventHook with the events 0, 9 and 10 once in each frame.",
     "Event 0 runs the flight loops of phase 0 and event 10 those of phase 1. Event 9 continues the commands that "
     "plugins "
     "hold. Without them the plugins stand still in part, and a requested reload may never come."},
    {"host-frame-order", Level::Warning, "{first} comes before {second}",
     "Report event 0, draw, then report event 9 and event 10.",
     "Plugins prepare in event 0 what they draw, and read in event 10 what the frame has changed. In another order "
     "they "
     "draw the last frame, and see half a step. A draw pass after event 10 counts as one before the next event 0."},
    {"host-draw-missing", Level::Warning, "a frame has no draw pass with the codes {codes}",
     "Call AVSKDoDrawingHook with each code from 1 to 26, also if the host draws nothing there.",
     "The callbacks of the missing passes are not called. Without code 20 no window is drawn, and drags do not "
     "reach the window that holds the mouse."},
    {"host-draw-order", Level::Warning, "draw code {code} comes after {before} in one pass",
     "Pass the draw codes in ascending order.",
     "The order is the order of depth: scenery, aircraft, panel, windows. What plugins draw in a wrong order is "
     "hidden, or "
     "hides what lies in front. A new pass begins with the lowest code of the previous one."},
    {"host-draw-never", Level::Note, "the host has drawn none of {frames} frames",
     "Call AVSKDoDrawingHook in each frame, if the host has a screen.",
     "No draw callback and no window of a plugin is called. That is right for a host without a screen only."},
    // ---- Time
    {"host-time-invalid", Level::Error, "{name} is {value}",
     "Pass seconds since the simulator started, as a finite number that is not negative.",
     "Flight loops with an interval in seconds are not called while the clock is NaN. Those that then ask for seconds "
     "are "
     "never due again. Plugins integrate with the time and get NaN everywhere."},
    {"host-time-backwards", Level::Warning, "{name} is {after} after {before}",
     "Keep the clock going forward; count the seconds since the simulator started, also if the user loads another "
     "situation.",
     "Flight loops with an interval in seconds wait until the clock has passed the old time. The others see a negative "
     "time since their last call. Pass the same time to both events of a frame, or a later one to event 10."},
    {"host-time-stands", Level::Warning, "{name} stays the same over {frames} frames",
     "Advance the clock in each frame, also while the simulation is paused.",
     "Flight loops with an interval in seconds are not called while the clock stands. The windows and connections of "
     "plugins freeze. A float with milliseconds since 1970 stands still too: it counts seconds since the start."},
    {"host-time-jumps", Level::Warning, "{name} jumps from {before} to {after} between two frames",
     "Advance the clock by the time that a frame takes; pass seconds, not milliseconds.",
     "Each flight loop that is due is called once, however many intervals have passed, so plugins make one step of "
     "many "
     "seconds. A frame that takes long is no fault: here the clock went on by seconds that the process did not take."},
    {"host-time-differs", Level::Warning, "{name} is {service} in an event at {event}",
     "Return from slot 14 the clock whose value AVSKEventHook receives.",
     "Both are one clock. The library computes from slot 14 when a flight loop is due that is created or scheduled, "
     "and "
     "compares it with the time of the events. If they differ, loops run at once or much too late."},
};

} // namespace host

#endif
