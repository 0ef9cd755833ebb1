// The hooks: entry points through which the host starts and stops the library
// and reports what happens. Each calls one handler of a module; only
// AVSKEventHook has logic of its own. No globals; called by the host. Floor 5.
#include "AVSKDispatch.h"
#include "AVSKErrors.h"
#include "AVSKHostTable.h"
#include "AVSKLoader.h"
#include "AVSKMemory.h"
#include "AVSKModules.h"

#include "AVSK/AVSKDataAccess.h"
#include "AVSK/AVSKDisplay.h"
#include "AVSK/AVSKPlugins.h"

#include <cstdio>

namespace {

void PublishBuild() {
    char build[64];
    const int length = std::snprintf(build, sizeof build, "%s %s", __DATE__, __TIME__);
    AVSKSetDatab(AVSKFindDataRef("sim/version/avsk_build_string"), build, 0, length + 1);
}

// The host is the sender, even if a plugin's call led here.
int Broadcast(int message, AVSKWord parameter) {
    const StDispatchCallback asHost(AVSK_PLUGIN_AERIVO);
    AVSKSendMessageToPlugin(NO_PLUGIN_ID, message, reinterpret_cast<void *>(parameter));
    return 1;
}

} // namespace

int AVSKInitializePlugins(const char *path, const AVSKHostCallbacks *table, AVSKWord self) {
    // A start inside a service leaves the host dispatched, not the plugin whose
    // call led here. The guard restores it, or nobody if it was unloaded.
    const StDispatchCallback restoring;
    SetHostTable(table, self);
    SetMemoryReport(ReportOutOfMemory);
    LoadAndEnablePlugins(path ? path : "", [] {
        AVSKInitMenus();
        PublishBuild();
    });
    return AVSK_HOST_INTERFACE;
}

void AVSKShutdownPlugins() { DisableAndUnloadPlugins(); }

// Loading leaves the host dispatched. A guard restores the plugin whose call
// led here; otherwise the host would own, and keep, what the plugin registers next.
int AVSKEventHook(int event, float elapsed, int /*unused*/, AVSKWord parameter) {
    switch (event) {
    case AVSKHostEventFrame:
        AVSKDoRepeatedButtons();
        return AVSKDoFlightLoopProcessing(elapsed, event);
    case AVSKHostEventViewChanged:
        AVSKReleaseCamera();
        return 1;
    case AVSKHostEventCommands:
        AVSKCommandRepeatHook();
        return 1;
    case AVSKHostEventFrameEnd:
        return AVSKDoFlightLoopProcessing(elapsed, event);
    case AVSKHostEventBroadcast101:
        return Broadcast(101, 0);
    case AVSKHostEventPlaneLoaded:
        Broadcast(AVSKMessagePlaneLoaded, parameter);
        if (parameter == 0) {
            const StDispatchCallback restoring;
            LoadUsersAircraftPlugins();
        }
        return 1;
    case AVSKHostEventBroadcast103:
        return Broadcast(103, 0);
    case AVSKHostEventBroadcast104:
        return Broadcast(104, 0);
    case AVSKHostEventBroadcast105:
        return Broadcast(105, 0);
    case AVSKHostEventPlaneUnloaded:
        Broadcast(AVSKMessagePlaneUnloaded, parameter);
        if (parameter == 0)
            UnloadUsersAircraftPlugins();
        return 1;
    case AVSKHostEventBroadcast107:
        return Broadcast(107, 0);
    case AVSKHostEventSceneryFolder: {
        const StDispatchCallback restoring;
        AVSKFindAndLoadSceneryPlugins(reinterpret_cast<const char *>(parameter));
        return 1;
    }
    case AVSKHostEventBroadcast108:
        return Broadcast(108, parameter);
    default:
        return 1;
    }
}

int AVSKDoDrawingHook(int drawCode, int reflection) { return AVSKDisplayDoDrawingHook(drawCode, reflection); }

// The host reports no drags: the drawing of the windows asks for the mouse.
int AVSKMouseClickHook(int x, int y, int down) {
    return AVSKDisplayMouseClickHook(x, y, down ? AVSKMouseDown : AVSKMouseUp);
}

int AVSKKeyPressHook(char key, int flags, char virtualKey) { return AVSKDisplayKeyPressHook(key, flags, virtualKey); }

int AVSKCursorHook(int x, int y) { return AVSKDisplayCursorHook(x, y); }

int AVSKScrollWheelHook(int x, int y, int wheel, int clicks) { return AVSKDisplayScrollWheelHook(x, y, wheel, clicks); }

int AVSKCameraHook(float *f1, float *f2, float *f3, float *f4, float *f5, float *f6, float *f7) {
    return AVSKAdjustCamera(f1, f2, f3, f4, f5, f6, f7);
}

int AVSKMenuHook(int itemID) { return AVSKHandleMenuItemPick(itemID); }

int AVSKCheckMenuHook(void *menu, int index, int *outCheck) { return AVSKHandleMenuItemCheck(menu, index, outCheck); }

int AVSKMenuItemEnabled(void *menu, int index) { return AVSKHandleMenuItemEnable(menu, index); }

void AVSKUpdatePlaneNameAndPath(int index, char *name, char *path) {
    AVSKHandleUpdatePlaneNameAndPath(index, name, path);
}

int AVSKGetNumberPlanesToHandle(int count, int flag) { return AVSKHandleGetNumberPlanesToHandle(count, flag); }

int AVSKCommandHook(void *command, int begin, int end, int before) {
    return AVSKDispatchCommandHook(command, begin, end, before);
}
