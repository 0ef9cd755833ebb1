// The puppet plugin's side of the fuzz target: every entry point and callback
// lies in the plugin's file and hands over to the function here that has its
// name, in the program. So each call also tries whether the file is mapped.
#ifndef AVSK_FUZZ_PUPPET_H
#define AVSK_FUZZ_PUPPET_H

#include "AVSK/AVSK.h"

#include <type_traits>

// The callbacks: member, type, and the function in the program.
// clang-format off
#define FUZZ_CALLBACKS(X) \
    X(flightLoop, AVSKFlightLoop_f, FuzzFlightLoop) X(draw, AVSKDrawCallback_f, FuzzDraw) \
    X(sniffer, AVSKKeySniffer_f, FuzzSniffer) X(drawWindow, AVSKDrawWindow_f, FuzzDrawWindow) \
    X(key, AVSKHandleKey_f, FuzzKey) X(click, AVSKHandleMouseClick_f, FuzzClick) \
    X(cursor, AVSKHandleCursor_f, FuzzCursor) X(wheel, AVSKHandleMouseWheel_f, FuzzWheel) \
    X(hotKey, AVSKHotKey_f, FuzzHotKey) X(menu, AVSKMenuHandler_f, FuzzMenu) \
    X(command, AVSKCommandHandler_f, FuzzCommand) X(dataChanged, AVSKDataChanged_f, FuzzDataChanged) \
    X(readInt, AVSKGetDatai_f, FuzzReadInt) X(writeInt, AVSKSetDatai_f, FuzzWriteInt) \
    X(readInts, AVSKGetDatavi_f, FuzzReadInts) X(writeInts, AVSKSetDatavi_f, FuzzWriteInts) \
    X(objectLoaded, AVSKObjectLoaded_f, FuzzObjectLoaded) X(planes, AVSKPlanesAvailable_f, FuzzPlanes) \
    X(camera, AVSKCameraControl_f, FuzzCamera) X(feature, AVSKFeatureEnumerator_f, FuzzFeature)
// clang-format on

// The callbacks of one file, or those of the program itself.
struct FuzzCode {
    int index; // of the puppet's file; -1: the program
#define FUZZ_MEMBER(member, type, function) type member;
    FUZZ_CALLBACKS(FUZZ_MEMBER)
#undef FUZZ_MEMBER
    AVSKError_f error;
    void (*throwOwn)(); // throws an object whose destructor is the file's
};

extern "C" {
AVSK_API void FuzzMapped(const char *path, FuzzCode *code);
AVSK_API void FuzzUnmapped(int index);

AVSK_API int FuzzStart(FuzzCode *code, char *name, char *signature, char *description);
AVSK_API void FuzzStop(int index);
AVSK_API int FuzzEnable(int index);
AVSK_API void FuzzDisable(int index);
AVSK_API void FuzzMessage(int index, int sender, int message, void *parameter);
AVSK_API void FuzzError(int index, const char *message);

#define FUZZ_DECLARE(member, type, function) AVSK_API std::remove_pointer_t<type> function;
FUZZ_CALLBACKS(FUZZ_DECLARE)
#undef FUZZ_DECLARE
}

#endif
