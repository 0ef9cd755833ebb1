// What the two sources of the display module share. AVSKDisplay.cpp keeps draw
// callbacks and windows and calls the functions declared here;
// AVSKDisplayKeys.cpp keeps key sniffers and hot keys, defines those functions
// and calls nothing of AVSKDisplay.cpp: it only reads the focus window.
#ifndef AVSK_DISPLAY_RECORDS_H
#define AVSK_DISPLAY_RECORDS_H

#include "AVSK/AVSKDisplay.h"
#include "AVSKResourceList.h"

// Known to be local, so that it is reached without the global offset table.
#pragma GCC visibility push(hidden)

struct AVSKWindowCallbackRecord : AVSKResource_t<AVSKWindowCallbackRecord>, AVSKTracked<AVSKWindowCallbackRecord> {
    int left = 0;
    int top = 0;
    int right = 0;
    int bottom = 0;
    int visible = 0;
    AVSKDrawWindow_f drawFunc = nullptr;
    AVSKHandleKey_f keyFunc = nullptr;
    AVSKHandleMouseClick_f mouseClickFunc = nullptr;
    AVSKHandleCursor_f cursorFunc = nullptr;
    AVSKHandleMouseWheel_f mouseWheelFunc = nullptr;
    int owner = NO_PLUGIN_ID;
    void *refcon = nullptr;
    int losingFocus = 0;                          // how many notifications of a focus loss are under way
    AVSKWindowCallbackRecord *losingTo = nullptr; // the window that the innermost of them names

    bool IsHitBy(int x, int y) const { return visible && left <= x && x < right && bottom <= y && y < top; }
};

// The window that gets the keys, or null. AVSKDisplay.cpp owns it.
extern AVSKWindowCallbackRecord *gFocusWindow;

// Answers of the event handlers to the host.
constexpr int kNotHandled = 1;
constexpr int kConsumed = 0;

// Selects the records of a plugin, removed ones included.
inline auto OwnedBy(int pluginID) {
    return [pluginID](const auto &rec) { return rec.owner == pluginID; };
}

// Selects the records of a plugin that were not removed.
inline auto HeldBy(int pluginID) {
    return [pluginID](const auto &rec) { return rec.owner == pluginID && !rec.IsRemoved(); };
}

// Teardown of the keys, in AVSKDisplayKeys.cpp.
void RemoveKeySniffersOf(int pluginID);
void RemoveHotKeysOf(int pluginID);
bool HoldsKeySniffersOrHotKeys(int pluginID);

#pragma GCC visibility pop

#endif
