// The rules about arguments and results; ArgumentChecks.cpp finds what violates them.
#ifndef AVSK_HOST_RULES_ARGUMENT_RULES_H
#define AVSK_HOST_RULES_ARGUMENT_RULES_H

#include "Rule.h"

namespace host {

inline constexpr Rule kArgumentRules[] = {
    {"callback-null", Level::Error, "{parameter} is null, so nothing is ever called",
     "Pass the function; do not register before there is one.",
     "The library accepts null, keeps a record of it and never calls it. The registration has no effect except that "
     "it must be removed again. Where null has a meaning, as for AVSKShareData() and for the functions of a window, "
     "there is no finding."},
    {"argument-null", Level::Error, "{parameter} is null, which has no effect or ends the simulator",
     "Test the pointer before the call.",
     "The documentation of the parameter does not allow null, or says that null is ignored. The library passes a null "
     "text of a forwarding function on to the host, which may dereference it. All other calls do nothing."},
    {"argument-null-host", Level::Note, "{parameter} is null, and the host decides whether that is allowed",
     "Pass a variable, even if its value is not needed.",
     "The function forwards the pointer to the host and checks nothing. This host ignores null. Another host, or "
     "another version of it, may use the pointer."},
    {"struct-size", Level::Error, "the structSize of {parameter} is {seen}, and must be {size}",
     "Set structSize to the sizeof of the structure before the call.",
     "The size tells the library which version of the structure the plugin was compiled with. With another size "
     "AVSKCreateWindowEx() creates nothing, AVSKProbeTerrainXYZ() finds nothing, AVSKDrawObjects() draws nothing if "
     "the plugin has an error callback, and AVSKCreateFlightLoop() reports an error."},
    {"text-utf8", Level::Warning, "{parameter} is not UTF-8: byte {byte} at offset {offset}",
     "Convert the text to UTF-8, and cut it between characters only.",
     "Texts for the user are UTF-8. The host shows other bytes as replacement characters, or stops there. The usual "
     "causes are a text of another encoding and a text that was cut inside a character."},
    {"text-long", Level::Error, "{parameter} has more than {limit} bytes, so the call has no effect",
     "Use a shorter path.",
     "Paths of models are stored in buffers of 256 bytes, with the terminating zero. AVSKSetAircraftModel() and "
     "AVSKAcquirePlanes() refuse a longer path instead of cutting it."},
    {"text-cut", Level::Note, "{parameter} has more than {limit} bytes, and readers get only that many",
     "Shorten the text.",
     "Every reader of a hot key's description passes a buffer of 512 bytes, with the terminating zero. The library "
     "keeps the whole text and cuts it for the reader."},
    {"text-unterminated", Level::Error, "{parameter} has no terminating zero within its {size} bytes",
     "Write with snprintf(buffer, AVSK_TEXT_SIZE, ...), which terminates the text.",
     "The buffers for the name, the signature and the description of a plugin have 256 bytes, with the terminating "
     "zero. The library cuts the text and reserves some space behind each buffer; a text that is longer still "
     "overwrites its stack."},
    {"number-finite", Level::Error, "{parameter} is {value}",
     "Find where the number comes from; a division by zero and the root of a negative number are the usual causes.",
     "A coordinate that is not a number, or infinite, is no place. An interval that is not a number is treated as 0, "
     "so the flight loop is not called again."},
    {"dataref-finite", Level::Warning, "the {parameter} to be written is {value}",
     "Find where the number comes from; test with isfinite() before the write.",
     "A value that is not a number spreads: everything that the owner of the dataref computes with it is not a number "
     "either. It is no fault if the owner documents the value."},
    {"index-item", Level::Error, "{parameter} is {index}, but the plugin has no such item in this menu",
     "Use the index that AVSKAppendMenuItem() returned, minus the plugin's earlier items that were removed since.",
     "An index counts the calling plugin's own items of the menu from 0, separators included. Items of other plugins "
     "do not count. The call has no effect, and AVSKCreateMenu() creates a menu that no item opens."},
    {"index-range", Level::Warning, "{parameter} is {index}, but there are only {count}",
     "Keep the index below the number that the counting function returns at that time.",
     "An index begins at 0. The library or the host returns a neutral result, or writes nothing, so that the plugin "
     "uses a variable that was never set."},
    {"value-unknown", Level::Error, "{parameter} is {value}; it must be {allowed}", "Use one of the documented values.",
     "With another value the call fails, or what it creates is never called. The library checks some of these values "
     "only if the plugin has an error callback."},
    {"plugin-unknown", Level::Warning, "no plugin has the ID {plugin}, the call had no effect",
     "Test the result of AVSKFindPluginBySignature(), and look the plugin up again after it was reloaded.",
     "An ID that no plugin has is ignored. -1 means all plugins for AVSKSendMessageToPlugin() only."},
    {"feature-unknown", Level::Error, "the library has no feature {name}{nearest}",
     "Ask AVSKHasFeature() first, if an older library may lack the feature.",
     "The setting of an unknown feature has no effect and reads as 0. The library compares names byte for byte and "
     "calls the error callback."},
    {"command-prefix", Level::Error, "{name} begins with \"sim/\", which belongs to the simulator",
     "Begin the name with your organisation; use AVSKFindCommand() for a command of the simulator.",
     "AVSKCreateCommand() calls the error callback and writes a warning to the log. The command is created all the "
     "same, and a later version of the simulator may have a command of that name."},
    {"window-inverted", Level::Warning,
     "the rectangle {rectangle} of the window is inverted, so the mouse never hits it",
     "Pass left, top, right, bottom, with left < right and bottom < top: y points upward.",
     "Positions are pixels with y upward, so the top of a window is greater than its bottom. The library does not "
     "check the rectangle. An inverted window is drawn but receives no click, no wheel and no cursor call."},
    {"handle-null", Level::Warning, "{parameter} is null, the call had no effect",
     "Test the handle, or find out why the call that returns it failed.",
     "The library ignores a null handle. The calls that destroy something are often made with null on purpose; they "
     "are not reported."},
    {"handle-unknown", Level::Error, "{parameter} is {handle}, which no call ever returned",
     "Pass only handles that the library returned, unchanged.",
     "The library looks most handles up and ignores an unknown one. It passes commands and objects on to the host, "
     "which may dereference them."},
    {"handle-kind", Level::Error, "{parameter} is the handle of {kind}, and must be that of {wanted}",
     "Keep handles in variables of their own type, without casts.",
     "The handle of another kind is no handle for this function. The call has no effect, or the host dereferences a "
     "wrong pointer."},
    {"handle-gone", Level::Error, "{parameter} is the handle of {kind} that no longer exists",
     "Set the variable to null when you destroy what it names, or when the plugin that owns it is unloaded.",
     "The library and the host reuse addresses. The call has no effect today; when something else was created at the "
     "same address, it changes or destroys that. A window that is destroyed in a callback of a window can be used "
     "until the pass over the windows ends, which is not reported."},
    {"handle-foreign", Level::Error, "{parameter} belongs to {owner}, the call had no effect",
     "Leave what belongs to another plugin to that plugin.",
     "Flight loops, menus and objects can be destroyed, and flight loops scheduled, by their owner only. An object "
     "that is loaded asynchronously belongs to the plugin once its AVSKObjectLoaded_f has returned."},
    {"result-number", Level::Error, "the callback returned {value}", "Check the number before it is returned.",
     "A flight loop that returns no number is not called again, because the library treats it as 0. A camera position "
     "that is not finite shows nothing."},
    {"result-unknown", Level::Warning, "the callback returned {value}; it must be {allowed}",
     "Return one of the documented values.",
     "Other results have historical meanings. Of a draw callback before its phase only the lowest bit counts. A "
     "camera function that returns another number changes the result that the host gets."},
};

} // namespace host

#endif
