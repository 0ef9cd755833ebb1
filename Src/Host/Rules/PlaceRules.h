// The rules about where and when calls are made; PlaceChecks.cpp finds what violates them.
#ifndef AVSK_HOST_RULES_PLACE_RULES_H
#define AVSK_HOST_RULES_PLACE_RULES_H

#include "Rule.h"

namespace host {

inline constexpr Rule kPlaceRules[] = {
    {"draw-outside", Level::Error, "it draws while the host does not",
     "Draw in a draw callback or in the draw function of a window.",
     "Outside of the host's draw passes nothing that is drawn stays on the screen, and the graphics context may belong "
     "to something else. Compute in a flight loop, keep the result, and draw it in a draw callback."},
    {"draw-state-outside", Level::Note, "it changes the graphics state while the host does not draw",
     "Set the state in the callback that draws; bind a texture elsewhere only to fill it.",
     "The host sets its own state before each draw pass, so this state does not reach the plugin's drawing. It is no "
     "fault if the plugin fills a texture at this time."},
    {"focus-disabled", Level::Error, "the plugin of the window is not enabled, so it does not get the keyboard focus",
     "Take the focus later, for example at the first click or in a flight loop.",
     "A plugin is disabled until its AVPluginEnable has returned, and again in AVPluginDisable. Only an enabled plugin "
     "can have the keyboard focus; AVSKTakeKeyboardFocus() ignores its windows until then."},
    {"registered-twice", Level::Warning, "{what} is registered already",
     "Register once in AVPluginStart, or unregister in AVPluginDisable what AVPluginEnable registers.",
     "Draw callbacks and key sniffers are refused if the same values are registered already, also in the pass in which "
     "they were unregistered. Flight loops and command handlers are called once for each registration, so everything "
     "they do happens twice."},
    {"command-held", Level::Warning, "the command {name} was begun and never ended",
     "Call AVSKCommandEnd() at the latest in AVPluginDisable, or AVSKCommandOnce() for a short command.",
     "A command that is begun is held until it is ended: the host continues it in every frame, as if the user kept a "
     "key pressed. Unloading the plugin ends it."},
    {"loop-unscheduled", Level::Note, "the flight loop {loop} was never scheduled",
     "Call AVSKScheduleFlightLoop() for it, or do not create it before it is needed.",
     "AVSKCreateFlightLoop() creates a loop that is not called until it is scheduled. During the whole run this one "
     "was not. It is no fault if the plugin schedules it on an event that did not occur."},
    {"window-in-drawing", Level::Warning, "it creates a window while the windows are drawn",
     "Create windows in a flight loop or a menu handler, or call AVSKGetWindowIsVisible() with null before.",
     "The library draws windows from back to front. A window that is created meanwhile ends the list for that "
     "direction: all windows but the backmost are no longer called, until a function looks up a window."},
    {"aircraft-uncontrolled", Level::Error, "the plugin does not control the other aircraft, the call had no effect",
     "Call AVSKAcquirePlanes() first and test its result.",
     "One plugin at a time controls the other aircraft. It keeps control until it releases it or is disabled. Without "
     "control the library ignores the calls that change or draw them."},
    {"callback-slow", Level::Note, "it took {time} ms of its own; a frame has {frame} ms at 60 frames a second",
     "Do the work in parts over several frames, in a thread, or in AVPluginEnable.",
     "The simulator stands still while a callback runs. The time does not include what the callback called. Callbacks "
     "of more than 100 ms are reported; a busy machine or a debugger can be the reason. 'avsk run --profile' shows the "
     "times of all callbacks."},
};

} // namespace host

#endif
