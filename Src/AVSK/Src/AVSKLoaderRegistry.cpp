// The bottom of the core: the records of plugins, their enabled flags, the
// dispatched plugin and the stack of calls under way. Owns gAllPlugins,
// gCallFlags, gEnabledFlags, gDispatchedPlugin and gWaitingLibraries; used by
// the rest of the core and, through the guard, by every module.
#include "AVSKLoaderRegistry.h"

#include "AVSKDispatch.h"
#include "AVSKPlatform.h"

#include <algorithm>
#include <climits>
#include <exception>
#include <utility>

// Globals that hold memory are never destroyed, here and in every module: a
// host may shut the library down while the process exits.
PluginRegistry &gAllPlugins = *new PluginRegistry;
CallFlags gCallFlags = {};
int gDispatchedPlugin = AVSK_PLUGIN_AERIVO;

int StDispatchCallback::frames[kRecordedCalls + 2];
constinit StDispatchCallback::Stack StDispatchCallback::stack = {frames, false};

namespace {

std::vector<unsigned char> &gEnabledFlags = *new std::vector<unsigned char>;
std::vector<void *> &gWaitingLibraries = *new std::vector<void *>; // unmapped when the stack is empty

void PublishFlags() { gCallFlags = {gEnabledFlags.data(), static_cast<unsigned>(gEnabledFlags.size())}; }

// Marks the frame of a plugin that was unloaded during its call.
int FrameOfUnloaded(int id) { return id | INT_MIN; }

} // namespace

// ---- Records and flags

PluginShare SharePlugin(int id) { return PluginAt(id) ? gAllPlugins[static_cast<unsigned>(id)] : nullptr; }

void AppendPlugin(const PluginShare &record) {
    gEnabledFlags.push_back(record->enabled);
    gAllPlugins.push_back(record);
    PublishFlags();
    record->id = PluginCount() - 1;
}

void RemoveLastPlugin() {
    gAllPlugins.pop_back();
    gEnabledFlags.pop_back();
    PublishFlags();
}

PluginRegistry RemoveAllPlugins() {
    gEnabledFlags.clear();
    PublishFlags();
    return std::exchange(gAllPlugins, {});
}

void SetPluginEnabled(PluginRecord &record, bool enabled) {
    record.enabled = enabled;
    if (PluginAt(record.id) == &record)
        gEnabledFlags[static_cast<unsigned>(record.id)] = enabled;
}

// ---- Dispatch

void AVSKSetDispatchedPlugin(int id) { gDispatchedPlugin = id; }

int AVSKGetDispatchedPlugin() { return gDispatchedPlugin; }

const char *DebugCurrentPluginName() {
    const int id = gDispatchedPlugin;
    if (id == NO_PLUGIN_ID)
        return "[NO_PLUGIN_ID]";
    if (id == AVSK_PLUGIN_AERIVO)
        return "[AVSK_PLUGIN_AERIVO]";
    if (id < 0)
        return "[Bad plugin ID low]";
    const PluginRecord *record = PluginAt(id);
    return record ? record->name.c_str() : "[Bad plugin ID high]";
}

bool StDispatchCallback::IsUnderWay(int id) {
    if (stack.top == kSharedFrame) // deeper calls are not recorded
        return true;
    return std::find(frames, stack.top, id) != stack.top;
}

void StDispatchCallback::ReleaseLibrary(int id, void *handle) {
    if (!IsUnderWay(id)) {
        if (handle)
            AVSKUnloadDLL(handle);
        return;
    }
    std::replace(frames, std::min(stack.top, frames + kRecordedCalls), id, FrameOfUnloaded(id));
    if (gDispatchedPlugin == id)
        gDispatchedPlugin = NO_PLUGIN_ID;
    stack.unloadsWait = true;
    if (handle)
        gWaitingLibraries.push_back(handle);
}

void StDispatchCallback::ReturnPastUnloads(const int *top, int previous) {
    if (top != frames) {
        if (top != kSharedFrame && top[-1] == FrameOfUnloaded(previous))
            gDispatchedPlugin = NO_PLUGIN_ID;
        return;
    }
    // The type of an exception under way may live in one of these libraries.
    if (std::uncaught_exceptions() > 0)
        return;
    stack.unloadsWait = false;
    for (void *handle : std::exchange(gWaitingLibraries, {}))
        AVSKUnloadDLL(handle);
}
