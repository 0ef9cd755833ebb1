// The rules about the services of a host and about what it reports. HostTextChecks.cpp,
// HostNumberChecks.cpp, HostServiceChecks.cpp and HostReportChecks.cpp find what
// violates them.
#ifndef AVSK_HOST_RULES_HOST_SERVICE_RULES_H
#define AVSK_HOST_RULES_HOST_SERVICE_RULES_H

#include "Rule.h"

#include <string_view>
#include <utility>

namespace host {

// The first value of a finding whose values change with each call: occurrences of
// one service are one finding.
inline constexpr std::pair<std::string_view, const char *> kOneFinding{"", ""};

inline constexpr Rule kHostServiceRules[] = {
    // ---- Buffers and texts
    {"host-text-unfilled", Level::Error, "{buffer} was not written",
     "Always write a text, an empty one if there is none.",
     "The buffer belongs to the library or to a plugin, and may hold anything before the call. Without a text the "
     "reader takes those bytes for a path: the library looks for plugins there, and plugins open files there."},
    {"host-text-unterminated", Level::Error, "{buffer} has no closing zero in its {size} bytes",
     "Cut a long text so that the closing zero fits, or write an empty text.",
     "strncpy() writes no closing zero if the text is too long. The reader then runs past the end of the buffer. The "
     "library ends the text of its own buffers itself, so the path is wrong there. A plugin has no such protection."},
    {"host-overrun", Level::Error, "{buffer} has {size} bytes, and the bytes behind its end changed",
     "Write no more than the promised size, the closing zero included; nothing if a count is 0 or negative.",
     "Plugins reserve exactly the promised size. What lies behind it is a variable of the plugin, a return address or "
     "the heap. The process crashes then or later, in code that is not at fault."},
    {"host-text-encoding", Level::Warning, "{buffer} is not UTF-8: {text}",
     "Convert the text to UTF-8 before the service returns it.",
     "All texts of the interface are UTF-8. The library passes the bytes on as they are, or converts them for plugins "
     "that asked for old paths. A plugin that opens or draws such a text fails on names that are not plain ASCII."},
    {"host-folder-separator", Level::Error, "the folder {folder} does not end in a separator",
     "Append \"/\" to the folder.",
     "The library and plugins append a file's name to the folder without looking. Without the separator the last part "
     "of the folder and the name become one, and nothing is found there."},
    {"host-folder-differs", Level::Error, "the folder is {folder}, and the library was started with {before}",
     "Return the path that was passed to AVSKInitializePlugins().",
     "A reload loads the plugins from the path of this service, not from that of the start. With another path the "
     "user loses plugins, or gets others, by a reload."},
    {"host-model-path", Level::Error, "the model {path} is no full path that ends in the file name {name}",
     "Write the full path to the first buffer and its last part to the second one.",
     "The library loads the aircraft's plugins from the folder \"plugins\" beside the file of the full path. Plugins "
     "take the second text for the name of that file. The path is the first of the two, which is easily confused."},
    // ---- Measures and numbers
    {"host-screen-size", Level::Error, "the screen is {width} x {height} pixels large",
     "Write the size in pixels; before there is a window, the size that it will have.",
     "Plugins divide by the size and place their windows with it. A size of 0 or less, or of more than 65,536 pixels, "
     "puts them where the user never sees them."},
    {"host-mouse-place", Level::Error, "the mouse is at {x}, {y}",
     "Report whole pixels, and check what is converted to them: NaN becomes a very large negative number.",
     "The position may lie outside the screen, but no desktop extends a million pixels. The library compares the "
     "position with windows and passes it to them. Differences of such numbers overflow."},
    {"host-width", Level::Error, "the width of {text} is {width}",
     "Return 0 for an empty text, and check the font before its widths are added.",
     "A width is finite and at least 0. Plugins place and wrap their texts by it: with a negative width or NaN the "
     "texts vanish, and a loop that wraps lines may not end."},
    {"host-width-contradicts", Level::Warning,
     "the width of {count} characters of {text} is {width}, that of {before} was {other}",
     "Make the width depend on font, text and count only, and count whole characters up to the count.",
     "Plugins search for the number of characters that fit, and compare widths for it. They expect that the same "
     "text has the same width and that a text is at least as wide as its own beginning. Otherwise they cut texts in "
     "the wrong place."},
    {"host-font", Level::Error, "{output} of font {font} is {value}",
     "Write a size of at least 0, and 1 or 0 to digitsOnly.",
     "Plugins compute line heights and columns with the size. digitsOnly is documented as 1 or 0, and plugins "
     "compare it with them."},
    {"host-not-finite", Level::Error, "{output} is {value}",
     "Check the division or the missing data behind this number, and return a place that exists.",
     "The numbers that were passed in, if there were any, are finite. A place that is NaN or infinite spreads: a "
     "plugin that computes with it passes it to the camera, to objects and to datarefs, and comparisons with NaN are "
     "always false."},
    {"host-conversion", Level::Warning, "the local point {point} becomes {other} by way of world coordinates",
     "Make worldToLocal and localToWorld each other's reverse, with the same order and units.",
     "Plugins convert in both directions and expect to come back to the same point. Exchanged outputs, or degrees in "
     "one service and radians in the other, move what they place by thousands of kilometres."},
    {"host-textures", Level::Error, "the texture number {number} is given out twice",
     "Write count different numbers that are not in use, as glGenTextures() does.",
     "A plugin uploads a picture to each number. With equal numbers the later picture replaces the earlier one."},
    {"host-count", Level::Error, "the count is {count}", "Return 0 if there is nothing to count.",
     "A count is at least 0. Plugins reserve memory for it, and the library compares it with the limits of plugins."},
    {"host-entry-index", Level::Error, "the index is {index}, and the flight plan has {count} entries",
     "Keep the index inside the plan when entries are cleared.",
     "Entries are numbered from 0 to the count - 1. A plugin asks for the entry of this index next and gets "
     "nothing."},
    // ---- Handles
    {"host-handle-null", Level::Error, "null was returned {where}",
     "Return a handle, also if nothing more can be shown.",
     "After a null menu the library passes null as the menu to the services for its items. A null probe is passed to "
     "probeTerrain. A plugin that creates a command expects to get one, and passes null on otherwise."},
    {"host-menu-twice", Level::Error, "the handle {handle} belongs to a menu that exists",
     "Give each menu a handle of its own; a later \"Plugins\" menu must not have that of an earlier one.",
     "The library finds its list of items by the handle. With two menus of one handle it changes the items of the "
     "wrong menu, and the destruction of one destroys both."},
    {"host-item-twice", Level::Error, "the ID {id} was given to another item before",
     "Count the IDs up, over all menus, and use none again.",
     "The host reports a pick by the ID alone. With equal IDs the library calls the plugin of the first item that "
     "has it, so the user starts something else than was picked. Removed items count too: a pick may be on its way."},
    {"host-item-picked", Level::Warning, "the item {id} was picked, although it {why}",
     "Show and report only items that exist, have a name and are no separators.",
     "A separator cannot be picked, and an item that was removed or renamed to \"\" is not shown. The library ignores "
     "such a pick or calls a plugin that does not expect it."},
    {"host-command-changed", Level::Error, "the command {name} is {now} and was {before}",
     "Keep each command for the life of the process and find it by its whole name.",
     "Plugins ask for a command once and keep the pointer. The library compares pointers: the handlers of plugins "
     "that have the earlier one are not called any more."},
    {"host-command-shared", Level::Error, "the command {name} is also {other}", "Give each name a command of its own.",
     "The library knows a command by its pointer. If two names have one pointer, each runs the handlers of both."},
    {"host-symbol", Level::Error, "{name} is at {address}, where there is no memory",
     "Return the address of a function that stays for the life of the process, or null.",
     "The plugin calls the address. A number, a handle or the address in a library that was closed ends the process "
     "there."},
    // ---- Commands
    {"host-command-unpaired", Level::Error, "{phase} of the command {name} is reported, which did not begin",
     "Report a phase with begin 1 when the user or the host starts the command, also for one that lasts one frame.",
     "Handlers start something when a command begins and stop it when it ends. A continuation or an end without a "
     "begin finds them unprepared."},
    {"host-command-after", Level::Error, "the second report of a phase of the command {name} {why}",
     "Report each phase twice with the same numbers: before 1, and if the result was 1, act and report it with before "
     "0.",
     "Plugins can handle a command before and after the host acts, and can stop it in the first report. If the "
     "second report is missing, comes alone or follows a 0, handlers are called that should not be, or the reverse."},
    {"host-command-silent", Level::Warning, "the command {name} ran without a report to AVSKCommandHook()",
     "Call AVSKCommandHook() for each phase, also for commands that plugins run.",
     "A plugin that begins a command expects that its handlers run, those of other plugins too. Without the report "
     "the command reaches only the host, and a command of a plugin does nothing."},
    // ---- Objects
    {"host-load-unknown", Level::Error, "an object was delivered with the argument {argument}, which no load has",
     "Keep the argument of each load unchanged and pass it with its object.",
     "The argument tells the library which load is complete. It drops an object without a load, and the plugin that "
     "waits never gets it."},
    {"host-load-twice", Level::Error, "the load with the argument {argument} was completed again",
     "Call the completion exactly once for each load.",
     "The library ignores the second call, and the object that comes with it is never unloaded."},
    {"host-load-never", Level::Warning, "the load of {path} was not completed in {frames} frames",
     "Complete each load, with null if it fails, also if its plugin was unloaded.",
     "The plugin waits for its object until the end of the run. Loads that are pending at the end of the process may "
     "be dropped, so only those are told that had ten seconds at 60 frames a second."},
    {"host-enumerator-late", Level::Error, "the enumerator was called outside of lookupObjects",
     "Call the enumerator inside the service and forget it when the service returns.",
     "The plugin passes the address of a variable of its own to the enumerator, which does not exist any more. The "
     "plugin itself may be unloaded."},
    {"host-enumerator-count", Level::Error,
     "the result is {count}, and the number of calls of the enumerator is {calls}",
     "Return the number of objects for which the enumerator was called.",
     "Plugins reserve memory by the result of one call and fill it in the next one, which overflows then."},
    // ---- Aircraft
    {"host-aircraft-replaced", Level::Error,
     "the model of the user's aircraft is {now} and was {before}, without events 8 and 3",
     "Report event 8 before and event 3 after the model is replaced.",
     "Event 8 unloads the plugins of the old aircraft and event 3 loads those of the new one. Without them the old "
     "aircraft's plugins go on, and other plugins do not learn of the change."},
    // ---- What a service leaves behind
    {"host-throws", Level::Error, "the service threw {type}", "Catch exceptions inside the service.",
     "The library passes the exception on as if the plugin had thrown it. An item, a menu or an object that was being "
     "created is unknown to the library then, and the plugin ends in the middle of a call that cannot fail."},
    {"host-state-processor", Level::Error, "the processor's state changed: {changes}",
     "Restore the control words and execute cld before the service returns.",
     "The control words set rounding, precision and which faults of arithmetic end the process; the direction flag "
     "turns copies of memory around. All plugins compute with them. A checked run restores them."},
    {"host-state-signals", Level::Warning, "the mask of blocked signals changed: {changes}",
     "Restore the mask with pthread_sigmask() before the service returns.",
     "The mask belongs to the thread on which the plugin goes on. A checked run restores it."},
    {"host-descriptor-left", Level::Warning, "each of {count} calls left a descriptor open, at last {target}",
     "Close the file before the service returns.",
     "A process has about a thousand descriptors. When they are used up, the next plugin that opens a file fails. "
     "Services that load objects are not judged."},
};

} // namespace host

#endif
