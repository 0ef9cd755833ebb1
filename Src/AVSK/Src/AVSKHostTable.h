// The host's services as the library holds them. The globals are set when the
// host starts the library (AVSKHostHooks.cpp) and read by every module.
#ifndef AVSK_HOST_TABLE_H
#define AVSK_HOST_TABLE_H

#include "AVSK/AVSKHost.h"

// Known to be local, so that it is reached without the global offset table.
#pragma GCC visibility push(hidden)

extern const AVSKHostCallbacks *gHooks; // the host's; null until it starts the library
extern AVSKWord gSelf;                  // what the host passed as its own handle
extern char gDirSeparator[2];

static_assert(sizeof(AVSKHostCallbacks) == AVSK_HOST_SLOTS * sizeof(AVSKWord), "the table is 72 machine words");

#pragma GCC visibility pop

#endif
