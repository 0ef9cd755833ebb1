// The host of the fuzz target. It checks the library's service calls, and
// sometimes calls the library from inside a service.
#ifndef AVSK_FUZZ_HOST_H
#define AVSK_FUZZ_HOST_H

#include "AVSK/AVSKHost.h"
#include "AVSK/AVSKMenus.h"

constexpr int kCommands = 4;

// Resets the host and returns its table for the run.
const AVSKHostCallbacks *FreshHost(int version, bool fullTable);

// Handles for reports to the library.
void *HostCommand(int number);
void *AnyHostMenu(); // chosen by the input; null if there is none
int AnyHostItemID();

// While AVSKClearAllMenuItems runs: limits the renames of the menu's items at this call depth.
struct Clearing {
    AVSKMenuID menu;
    int depth;
    int renames; // how many are left; -1 until the first rename identifies the menu
};
extern Clearing *gClearing; // the innermost, or null

// Completes a requested load, chosen by the input. It may complete one twice.
void CompleteLoad();
void CompleteAllLoads();
void CheckObjectsReturned();

#endif
