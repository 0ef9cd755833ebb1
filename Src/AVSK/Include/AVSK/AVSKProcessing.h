/**
 * AVSKProcessing.h: flight loops, the callbacks a plugin receives as the
 * simulation advances.
 *
 * The simulator runs two passes a frame: one of phase 0 before and one of
 * phase 1 after its own step. In a pass the loop created last is called first.
 */
#ifndef AVSK_PROCESSING_H
#define AVSK_PROCESSING_H

#include "AVSKTypes.h"

#ifdef __cplusplus
extern "C" {
#endif

/** Names a flight loop. Valid until the loop is destroyed or its plugin unloaded. */
typedef struct AVSKFlightLoopRecord *AVSKFlightLoopID;

/**
 * A flight loop. It may create, schedule and destroy any loop, itself included.
 *
 * @param elapsedSinceLastCall            seconds since this loop was last called, created, or
 *                                        rescheduled relative to now.
 * @param elapsedTimeSinceLastFlightLoop  the total elapsed time in seconds. The name is
 *                                        historical; plugins rely on the value.
 * @param counter                         number of the current pass; it grows by 1 with each
 *                                        pass, so by 2 a frame.
 * @param refcon                          what was given at creation.
 * @return when to call next: > 0 in that many seconds, < 0 in that many passes, 0 not until
 *         it is scheduled again.
 */
typedef float (*AVSKFlightLoop_f)(float elapsedSinceLastCall, float elapsedTimeSinceLastFlightLoop, int counter,
                                  void *refcon);

/** Phases of AVSKCreateFlightLoopParams. */
enum {
    /** Before the simulator's own step. */
    AVSKFlightLoopPhaseBefore = 0,
    /** After it. */
    AVSKFlightLoopPhaseAfter = 1
};

/** What AVSKCreateFlightLoop() is told. Four 32-bit fields, 16 bytes. */
typedef struct AVSKCreateFlightLoopParams {
    /** sizeof(AVSKCreateFlightLoopParams). */
    int structSize;
    /** AVSKFlightLoopPhaseBefore or AVSKFlightLoopPhaseAfter. */
    int phase;
    /** The function to call. */
    AVSKFlightLoop_f callbackFunc;
    /** Passed to it, may be null. */
    void *refcon;
} AVSKCreateFlightLoopParams;

/**
 * Reads the simulator's clock.
 *
 * @return seconds since the simulator started.
 */
AVSK_API float AVSKGetElapsedTime(void);

/**
 * Counts the passes.
 *
 * @return the number of the current pass, 0 before the first.
 */
AVSK_API int AVSKGetCycleNumber(void);

/**
 * Creates a flight loop that belongs to the calling plugin and is not called until it is scheduled.
 *
 * A loop created during a pass is not reached by that pass. With an error
 * callback set, a wrong size, phase or a null function is reported; the loop
 * is created all the same and a loop without function or with another phase
 * is never called.
 *
 * @param params  read during the call only. Null creates nothing.
 * @return the new loop; null for null params.
 */
AVSK_API AVSKFlightLoopID AVSKCreateFlightLoop(const AVSKCreateFlightLoopParams *params);

/**
 * Destroys a flight loop of the calling plugin. A pass that is under way does
 * not call it again. Another plugin's loop is reported to the error callback
 * and stays; a loop that no longer exists is ignored.
 *
 * @param loop  the loop.
 */
AVSK_API void AVSKDestroyFlightLoop(AVSKFlightLoopID loop);

/**
 * Says when a flight loop of the calling plugin is next called. Another
 * plugin's loop is reported to the error callback and left alone; a loop
 * that no longer exists is ignored.
 *
 * @param loop           the loop.
 * @param interval       > 0 seconds, < 0 passes, 0 not until scheduled again. Passes count
 *                       from the last call or the creation.
 * @param relativeToNow  non-zero: seconds count from now; 0: from the last call or the creation.
 */
AVSK_API void AVSKScheduleFlightLoop(AVSKFlightLoopID loop, float interval, int relativeToNow);

/**
 * Creates and schedules a flight loop of phase 0 in one call.
 *
 * @param callback  the function to call.
 * @param interval  as in AVSKScheduleFlightLoop(), counted from now.
 * @param refcon    passed to it, may be null.
 */
AVSK_API void AVSKRegisterFlightLoopCallback(AVSKFlightLoop_f callback, float interval, void *refcon);

/**
 * Removes the flight loop created last with this function and refcon, whoever
 * owns it. No match: nothing happens. If that loop was destroyed in the pass
 * under way and has not been reclaimed, the search ends at it.
 *
 * @param callback  the function.
 * @param refcon    the refcon.
 */
AVSK_API void AVSKUnregisterFlightLoopCallback(AVSKFlightLoop_f callback, void *refcon);

/**
 * Says when every flight loop with this function and refcon is next called, whoever owns it.
 *
 * @param callback       the function.
 * @param interval       as in AVSKScheduleFlightLoop().
 * @param relativeToNow  as in AVSKScheduleFlightLoop().
 * @param refcon         the refcon.
 */
AVSK_API void AVSKSetFlightLoopCallbackInterval(AVSKFlightLoop_f callback, float interval, int relativeToNow,
                                                void *refcon);

#ifdef __cplusplus
}
#endif

#endif
