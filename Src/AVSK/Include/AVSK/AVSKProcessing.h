/**
 * AVSKProcessing.h: flight loops, the callbacks that a plugin receives as the
 * simulation advances.
 *
 * Each frame has two passes over the flight loops: phase 0 before and phase 1
 * after the host's own step. In a pass the loop created last is called first.
 * An interval in passes counts the passes of both phases: -1 and -2 both mean
 * every frame, -4 every second frame.
 */
#ifndef AVSK_PROCESSING_H
#define AVSK_PROCESSING_H

#include "AVSKTypes.h"

#ifdef __cplusplus
extern "C" {
#endif

/**
 * Identifies a flight loop. Owned by the library. Valid until the loop is
 * destroyed or its plugin is unloaded.
 */
typedef struct AVSKFlightLoopRecord *AVSKFlightLoopID;

/**
 * Runs when a flight loop is due. It may create, schedule and destroy any loop,
 * itself included. The result replaces an interval that was scheduled for this
 * loop during the call.
 *
 * @param elapsedSinceLastCall            seconds since this loop was last called, created, or
 *                                        scheduled relative to now.
 * @param elapsedTimeSinceLastFlightLoop  seconds since the simulator started. The name is
 *                                        historical; plugins rely on the value.
 * @param counter                         the number of the current pass. It grows by 1 with each
 *                                        pass, so by 2 with each frame.
 * @param refcon                          the refcon given at creation.
 * @return when to call the loop next: > 0 in that many seconds, < 0 in that many passes, 0 not
 *         before it is scheduled again.
 *
 * [callback, plugin enabled]
 */
typedef float (*AVSKFlightLoop_f)(float elapsedSinceLastCall, float elapsedTimeSinceLastFlightLoop, int counter,
                                  void *refcon);

/** Phases of AVSKCreateFlightLoopParams. */
enum {
    /** Before the host's own step. */
    AVSKFlightLoopPhaseBefore = 0,
    /** After the host's own step. */
    AVSKFlightLoopPhaseAfter = 1
};

/** The parameters of AVSKCreateFlightLoop(): four 32-bit fields, 16 bytes. */
typedef struct AVSKCreateFlightLoopParams {
    /** sizeof(AVSKCreateFlightLoopParams). */
    int structSize;
    /** AVSKFlightLoopPhaseBefore or AVSKFlightLoopPhaseAfter. */
    int phase;
    /** The function to call. */
    AVSKFlightLoop_f callbackFunc;
    /** Passed to the function, may be null. */
    void *refcon;
} AVSKCreateFlightLoopParams;

/**
 * Reads the host's clock. Forwards to the host service getElapsedTime.
 *
 * @return seconds since the simulator started.
 *
 * [main thread, initialized]
 */
AVSK_API float AVSKGetElapsedTime(void);

/**
 * Counts the passes over the flight loops.
 *
 * @return the number of the current pass; 0 before the first pass.
 *
 * [main thread, any time]
 */
AVSK_API int AVSKGetCycleNumber(void);

/**
 * Creates a flight loop that belongs to the calling plugin. It is not called
 * until it is scheduled. A loop created during a pass is first called in the
 * next pass.
 *
 * The parameters are checked only if the calling plugin has an error callback,
 * which receives, for each fault, "Illegal struct size for AVSKCreateFlightLoop",
 * "Illegal phase type for AVSKCreateFlightLoop" or
 * "Null callback for AVSKCreateFlightLoop". The loop is created in any case. A
 * loop with another phase or without a function is never called.
 *
 * @param params  the parameters; read during the call only. Null creates nothing.
 * @return the new loop; null if params is null.
 *
 * [main thread, initialized]
 */
AVSK_API AVSKFlightLoopID AVSKCreateFlightLoop(const AVSKCreateFlightLoopParams *params);

/**
 * Destroys a flight loop of the calling plugin. It is not called again, also in
 * the pass that runs. If the loop belongs to another plugin, it stays, and the
 * error callback receives
 * "Attempt to remove a flight loop callback owned by another plugin."
 *
 * @param loop  the loop. Null and a loop that does not exist are ignored.
 *
 * [main thread, any time]
 */
AVSK_API void AVSKDestroyFlightLoop(AVSKFlightLoopID loop);

/**
 * Schedules a flight loop of the calling plugin. If the loop belongs to another
 * plugin, nothing happens, and the error callback receives
 * "Attempt to schedule a flight loop callback owned by another plugin."
 *
 * @param loop           the loop. Null and a loop that does not exist are ignored.
 * @param interval       > 0 in that many seconds, < 0 in that many passes, 0 not before it is
 *                       scheduled again. Passes count from the last call or the creation.
 * @param relativeToNow  non-zero: seconds count from now. 0: seconds count from the last call, the
 *                       creation or the last schedule relative to now.
 *
 * [main thread, initialized]
 */
AVSK_API void AVSKScheduleFlightLoop(AVSKFlightLoopID loop, float interval, int relativeToNow);

/**
 * Creates and schedules a flight loop of phase 0. The errors are those of
 * AVSKCreateFlightLoop().
 *
 * @param callback  the function to call.
 * @param interval  as in AVSKScheduleFlightLoop(); it counts from now.
 * @param refcon    passed to the callback, may be null.
 *
 * [main thread, initialized]
 */
AVSK_API void AVSKRegisterFlightLoopCallback(AVSKFlightLoop_f callback, float interval, void *refcon);

/**
 * Removes the newest flight loop with this function and refcon, whichever plugin
 * owns it. If there is none, nothing happens. If that loop was destroyed in the
 * pass that runs and is not yet reclaimed, nothing happens either.
 *
 * @param callback  the function given at creation.
 * @param refcon    the refcon given at creation.
 *
 * [main thread, any time]
 */
AVSK_API void AVSKUnregisterFlightLoopCallback(AVSKFlightLoop_f callback, void *refcon);

/**
 * Schedules every flight loop with this function and refcon, whichever plugin
 * owns it.
 *
 * @param callback       the function given at creation.
 * @param interval       as in AVSKScheduleFlightLoop().
 * @param relativeToNow  as in AVSKScheduleFlightLoop().
 * @param refcon         the refcon given at creation.
 *
 * [main thread, initialized]
 */
AVSK_API void AVSKSetFlightLoopCallbackInterval(AVSKFlightLoop_f callback, float interval, int relativeToNow,
                                                void *refcon);

#ifdef __cplusplus
}
#endif

#endif
