// The least that a pass over callbacks can cost in a shared library: the hook
// walks an array of records, makes each owner the dispatched one, skips owners
// that are off, and restores the dispatched owner. Records cannot be removed,
// and nothing is restored after an exception.
#ifndef AVSK_BENCH_FLOOR_H
#define AVSK_BENCH_FLOOR_H

#include "AVSK/AVSKDisplay.h"
#include "AVSK/AVSKProcessing.h"

#define FLOOR_API __attribute__((visibility("default")))

// Owners are below this. Those that add a record are on.
constexpr int kFloorOwners = 64;

FLOOR_API void FloorAddDraw(AVSKDrawCallback_f callback, int owner, int phase, int isBefore, void *refcon);
FLOOR_API int FloorDrawHook(int phase, int isBefore);

// A loop counts from time and pass 0.
FLOOR_API void FloorAddLoop(AVSKFlightLoop_f callback, int owner, float interval, void *refcon);
FLOOR_API void FloorFrameHook(float now);

#endif
