// The host of the fuzz target: checks what the library asks of it, and now
// and then reports something from inside a service.
#ifndef AVSK_FUZZ_HOST_H
#define AVSK_FUZZ_HOST_H

#include "AVSK/AVSKHost.h"
#include "AVSK/AVSKMenus.h"

constexpr int kCommands = 4;

// A table for the run, with which the host begins afresh.
const AVSKHostCallbacks *FreshHost(int version, bool fullTable);

// Handles to report about.
void *HostCommand(int number);
void *AnyHostMenu(); // as the input says; null if there is none
int AnyHostItemID();

// While a menu is cleared: how many renames its items may take at this depth of calls.
struct Clearing {
    AVSKMenuID menu;
    int depth;
    int renames; // left; -1 until the first tells the menu
};
extern Clearing *gClearing; // the innermost, or null

// Completes one of the loads that were asked for; again, as the input says.
void CompleteLoad();
void CompleteAllLoads();
void CheckObjectsReturned();

#endif
