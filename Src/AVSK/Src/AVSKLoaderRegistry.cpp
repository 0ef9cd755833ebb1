// The bottom of the core: the records of plugins, their enabled flags, the
// dispatched plugin and the stack of calls under way. Owns gAllPlugins,
// gCallFlags, gEnabledFlags, gDispatchedPlugin, gHeldExceptions and
// gWaitingLibraries; used by the rest of the core and, through the guard, by
// every module.
#include "AVSKLoaderRegistry.h"

#include "AVSKDispatch.h"
#include "AVSKPlatform.h"
#include "AVSKScopedValue.h"

#include <algorithm>
#include <climits>
#include <exception>
#include <utility>

// Globals that hold memory are never destroyed, here and in every module: a
// host may shut the library down while the process exits.
PluginRegistry &gAllPlugins = *new PluginRegistry;
constexpr unsigned char kHostOnly[] = {1};
constinit CallFlags gCallFlags = {kHostOnly, 1};
int gDispatchedPlugin = AVSK_PLUGIN_AERIVO;
int gHeldExceptions = 0;

int StDispatchCallback::frames[kRecordedCalls + 2];
constinit StDispatchCallback::Stack StDispatchCallback::stack = {frames, false};

namespace {

std::vector<unsigned char> &gEnabledFlags = *new std::vector<unsigned char>;
std::vector<void *> &gWaitingLibraries = *new std::vector<void *>; // unmapped when nothing needs their code

void PublishFlags() {
    if (gEnabledFlags.empty())
        gCallFlags = {kHostOnly, 1};
    else
        gCallFlags = {gEnabledFlags.data(), static_cast<unsigned>(gEnabledFlags.size())};
}

// Marks the frame of a plugin that was unloaded during its call.
int FrameOfUnloaded(int id) { return id | INT_MIN; }

// Whether an exception is in flight, held, or being handled by a caller. Its
// type may live in any library.
bool IsExceptionAlive() {
    return gHeldExceptions != 0 || std::uncaught_exceptions() > 0 || std::current_exception() != nullptr;
}

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

bool StDispatchCallback::ReleaseLibrary(int id, void *handle) {
    const bool isUnderWay = IsUnderWay(id);
    if (!isUnderWay && !IsExceptionAlive()) {
        const StDispatchCallback asItself(id);
        if (handle)
            AVSKUnloadDLL(handle);
        return true;
    }
    if (isUnderWay) {
        std::replace(frames, std::min(stack.top, frames + kRecordedCalls), id, FrameOfUnloaded(id));
        if (gDispatchedPlugin == id)
            gDispatchedPlugin = NO_PLUGIN_ID;
    }
    stack.unloadsWait = true;
    if (handle)
        gWaitingLibraries.push_back(handle);
    return false;
}

void StDispatchCallback::ReturnPastUnloads(const int *top, int previous) {
    if (top != frames) {
        if (top != kSharedFrame && top[-1] == FrameOfUnloaded(previous))
            gDispatchedPlugin = NO_PLUGIN_ID;
        return;
    }
    // Later, at the end of the next outermost call.
    if (IsExceptionAlive())
        return;
    stack.unloadsWait = false;
    const AVSKScopedValue asNobody(gDispatchedPlugin, NO_PLUGIN_ID);
    for (void *handle : std::exchange(gWaitingLibraries, {}))
        AVSKUnloadDLL(handle);
}
