// Flight loops. Owns gFlightLoops, gLastCallNumber and gLastCallTime; called by
// plugins, by the host's event hook once per pass, and by the core when a
// plugin is unloaded.
#include "AVSK/AVSKProcessing.h"

#include "AVSKDispatch.h"
#include "AVSKErrors.h"
#include "AVSKHostTable.h"
#include "AVSKLoader.h"
#include "AVSKModules.h"
#include "AVSKResourceList.h"

#include <cfloat>

// Due times are rounded to float; excess precision would shift them.
static_assert(FLT_EVAL_METHOD == 0, "build with -msse2 -mfpmath=sse");

struct AVSKFlightLoopRecord : AVSKResource_t<AVSKFlightLoopRecord>, AVSKTracked<AVSKFlightLoopRecord> {
    float lastCallTime = 0; // when created, last called, or rescheduled relative to now
    int lastCallCycle = 0;
    float interval = 0;
    int phase = 0;
    AVSKFlightLoop_f callback = nullptr;
    int owner = NO_PLUGIN_ID;
    void *refcon = nullptr;
};

// Outside readers rely on these globals.
AVSKResourceList<AVSKFlightLoopRecord> gFlightLoops;
int gLastCallNumber = 0;       // the pass counter
const float gLastCallTime = 0; // never advanced: plugins expect the total elapsed time as second argument

namespace {

bool IsLoop(AVSKFlightLoopID loop) { return AVSKFlightLoopRecord::Exists(loop) && loop->IsLinked(); }

bool IsDue(const AVSKFlightLoopRecord &loop, float now) {
    if (loop.interval > 0) {
        const float due = loop.lastCallTime + loop.interval;
        return now >= due;
    }
    // In double both sides are exact, also where float has no exact integers any more.
    if (loop.interval < 0)
        return static_cast<double>(gLastCallNumber) - loop.lastCallCycle >= -static_cast<double>(loop.interval);
    return false;
}

// Selects the loops with this function and refcon, whoever owns them.
auto SameLoop(AVSKFlightLoop_f callback, const void *refcon) {
    return [=](const AVSKFlightLoopRecord &loop) { return loop.callback == callback && loop.refcon == refcon; };
}

void RunDueLoops(float now, int phase) {
    StDispatchCallback guard;
    for (AVSKFlightLoopRecord &loop : gFlightLoops.LiveRecords()) {
        if (loop.phase != phase || !IsDue(loop, now) || !loop.callback || !guard.Enter(loop.owner))
            continue;
        loop.interval = loop.callback(now - loop.lastCallTime, now - gLastCallTime, gLastCallNumber, loop.refcon);
        loop.lastCallTime = now;
        loop.lastCallCycle = gLastCallNumber;
    }
}

} // namespace

float AVSKGetElapsedTime() { return gHooks->getElapsedTime(); }

int AVSKGetCycleNumber() { return gLastCallNumber; }

AVSKFlightLoopID AVSKCreateFlightLoop(const AVSKCreateFlightLoopParams *params) {
    if (!params)
        return nullptr;
    if (AVSKHasError()) {
        if (params->structSize != static_cast<int>(sizeof *params))
            AVSKSendError("Illegal struct size for AVSKCreateFlightLoop");
        if (params->phase != AVSKFlightLoopPhaseBefore && params->phase != AVSKFlightLoopPhaseAfter)
            AVSKSendError("Illegal phase type for AVSKCreateFlightLoop");
        if (!params->callbackFunc)
            AVSKSendError("Null callback for AVSKCreateFlightLoop");
    }
    const float now = AVSKGetElapsedTime();
    auto *loop = new AVSKFlightLoopRecord;
    loop->lastCallTime = now;
    loop->lastCallCycle = gLastCallNumber;
    loop->phase = params->phase;
    loop->callback = params->callbackFunc;
    loop->owner = AVSKGetDispatchedPlugin();
    loop->refcon = params->refcon;
    gFlightLoops.Add(loop);
    return loop;
}

void AVSKDestroyFlightLoop(AVSKFlightLoopID loop) {
    if (!IsLoop(loop))
        return;
    if (loop->owner == AVSKGetDispatchedPlugin())
        gFlightLoops.Remove(loop);
    else
        AVSKSendError("Attempt to remove a flight loop callback owned by another plugin.");
}

void AVSKScheduleFlightLoop(AVSKFlightLoopID loop, float interval, int relativeToNow) {
    if (!IsLoop(loop))
        return;
    if (loop->owner != AVSKGetDispatchedPlugin()) {
        AVSKSendError("Attempt to schedule a flight loop callback owned by another plugin.");
        return;
    }
    if (relativeToNow) {
        const float now = AVSKGetElapsedTime();
        if (!IsLoop(loop)) // the host's clock may have re-entered and destroyed it
            return;
        loop->lastCallTime = now;
    }
    loop->interval = interval;
}

void AVSKRegisterFlightLoopCallback(AVSKFlightLoop_f callback, float interval, void *refcon) {
    const AVSKCreateFlightLoopParams params = {sizeof params, AVSKFlightLoopPhaseBefore, callback, refcon};
    AVSKScheduleFlightLoop(AVSKCreateFlightLoop(&params), interval, 0);
}

void AVSKUnregisterFlightLoopCallback(AVSKFlightLoop_f callback, void *refcon) {
    gFlightLoops.RemoveFirst(SameLoop(callback, refcon));
}

void AVSKSetFlightLoopCallbackInterval(AVSKFlightLoop_f callback, float interval, int relativeToNow, void *refcon) {
    const auto matches = SameLoop(callback, refcon);
    for (AVSKFlightLoopRecord &loop : gFlightLoops.AllRecords())
        if (matches(loop)) {
            loop.interval = interval;
            if (relativeToNow)
                loop.lastCallTime = AVSKGetElapsedTime();
        }
}

int AVSKDoFlightLoopProcessing(float elapsedTime, int phase) {
    // Wraps where it would overflow.
    gLastCallNumber = static_cast<int>(static_cast<unsigned>(gLastCallNumber) + 1U);
    RunDueLoops(elapsedTime, phase != 0 ? AVSKFlightLoopPhaseAfter : AVSKFlightLoopPhaseBefore);
    if (gScheduleReload) {
        const StDispatchCallback restoring;
        AVSKReloadPluginsInternal();
    }
    return 1;
}

void AVSKProcessingCleanupHook(int pluginID) {
    gFlightLoops.RemoveAll([pluginID](const AVSKFlightLoopRecord &loop) { return loop.owner == pluginID; });
}

bool ProcessingHolds(int pluginID) {
    return gFlightLoops.Any(
        [pluginID](const AVSKFlightLoopRecord &loop) { return loop.owner == pluginID && !loop.IsRemoved(); });
}
