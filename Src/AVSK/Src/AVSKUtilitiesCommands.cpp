// Commands: which plugin holds which command, and the handlers called before
// and after the host acts on one. The commands themselves are the host's. Owns
// gPreHooks, gPostHooks, gCommandMap and gHeldChanges; called by plugins and by
// the hooks of commands and of the frame.
#include "AVSK/AVSKUtilities.h"

#include "AVSKCallbackSequence.h"
#include "AVSKDispatch.h"
#include "AVSKErrors.h"
#include "AVSKHostTable.h"
#include "AVSKModules.h"

#include "AVSK/AVSKPlugins.h"

#include <cstring>
#include <map>
#include <set>
#include <unordered_map>
#include <utility>

namespace {

struct AVSKCommandCB_t {
    AVSKCommandHandler_f handler;
    int plugin;
    void *refcon;

    bool operator==(const AVSKCommandCB_t &other) const {
        return handler == other.handler && plugin == other.plugin && refcon == other.refcon;
    }
};

// Entries are never removed, even without handlers: a dispatch may be using one.
using Handlers = AVSKOwnedSequences<AVSKCommandCB_t, &AVSKCommandCB_t::plugin>;
using HandlerMap = std::unordered_map<AVSKCommandRef, Handlers::Sequence>;
HandlerMap &gPreHooks = *new HandlerMap;  // called newest first
HandlerMap &gPostHooks = *new HandlerMap; // called oldest first
Handlers &gHandlers = *new Handlers;      // of both maps

using HeldCommands = std::map<int, std::set<AVSKCommandRef>>;
HeldCommands &gCommandMap = *new HeldCommands; // by plugin
unsigned gHeldChanges = 0;                     // changes of gCommandMap

HandlerMap &HandlersOf(int before) { return before ? gPreHooks : gPostHooks; }

int PhaseOf(int begin, int end) {
    if (end)
        return AVSKCommandPhaseEnd; // wins over begin
    return begin ? AVSKCommandPhaseBegin : AVSKCommandPhaseContinue;
}

// Continues the commands that a plugin holds, in their order. The host may call
// plugins, which begin and end commands; then the position is looked up again.
void ContinueHeld(int plugin) {
    auto held = gCommandMap.find(plugin);
    auto at = held->second.begin();
    while (at != held->second.end()) {
        const AVSKCommandRef command = *at;
        const unsigned before = gHeldChanges;
        gHooks->continueCommand(command);
        if (before == gHeldChanges) {
            ++at;
            continue;
        }
        held = gCommandMap.find(plugin);
        if (held == gCommandMap.end())
            return;
        at = held->second.upper_bound(command);
    }
}

} // namespace

AVSKCommandRef AVSKFindCommand(const char *name) { return gHooks->findCommand(name, nullptr, 0); }

AVSKCommandRef AVSKCreateCommand(const char *name, const char *description) {
    // Reported but not refused: plugins in use rely on such commands.
    if (name && std::strncmp(name, "sim/", 4) == 0) {
        AVSKSendError("Plugin is illegally registering a command with the prefix sim/");
        AVSKLogPluginWarning("It is illegal to register a command starting with sim/");
    }
    return gHooks->findCommand(name, description, 1);
}

void AVSKCommandBegin(AVSKCommandRef command) {
    gCommandMap[AVSKGetDispatchedPlugin()].insert(command);
    ++gHeldChanges;
    gHooks->beginCommand(command);
}

void AVSKCommandEnd(AVSKCommandRef command) {
    gHooks->endCommand(command);
    gCommandMap[AVSKGetDispatchedPlugin()].erase(command);
    ++gHeldChanges;
}

void AVSKCommandOnce(AVSKCommandRef command) {
    gHooks->beginCommand(command);
    gHooks->endCommand(command);
}

void AVSKRegisterCommandHandler(AVSKCommandRef command, AVSKCommandHandler_f handler, int before, void *refcon) {
    gHandlers.Append(HandlersOf(before)[command], {handler, AVSKGetDispatchedPlugin(), refcon});
}

void AVSKUnregisterCommandHandler(AVSKCommandRef command, AVSKCommandHandler_f handler, int before, void *refcon) {
    // Of equal handlers, the one called first is removed.
    gHandlers.EraseOne(HandlersOf(before)[command], {handler, AVSKGetDispatchedPlugin(), refcon}, before != 0);
}

int AVSKDispatchCommandHook(AVSKCommandRef command, int begin, int end, int before) {
    HandlerMap &handlers = HandlersOf(before);
    const auto found = handlers.find(command);
    if (found == handlers.end())
        return 1;
    const int phase = PhaseOf(begin, end);
    StDispatchCallback guard;
    const auto goesOn = [&guard, command, phase](const AVSKCommandCB_t &each) {
        return !each.handler || !guard.Enter(each.plugin) || each.handler(command, phase, each.refcon) != 0;
    };
    return before ? found->second.FromNewest(goesOn) : found->second.FromOldest(goesOn);
}

void AVSKCommandRepeatHook() {
    int plugin = NO_PLUGIN_ID;
    for (auto at = gCommandMap.begin(); at != gCommandMap.end(); at = gCommandMap.upper_bound(plugin)) {
        plugin = at->first;
        if (AVSKIsPluginEnabled(plugin))
            ContinueHeld(plugin);
    }
}

void AVSKCommandCleanupHook(int pluginID) {
    const std::set<AVSKCommandRef> held = std::exchange(gCommandMap[pluginID], {});
    ++gHeldChanges;
    for (const AVSKCommandRef command : held)
        gHooks->endCommand(command);
    gCommandMap.erase(pluginID);
    ++gHeldChanges;
    gHandlers.EraseAllOf(pluginID);
}

bool CommandsHold(int pluginID) { return gHandlers.Holds(pluginID); }
