// The host's table of services and the log, which is one of them. Floor 2.
#ifndef AVSK_HOST_TABLE_H
#define AVSK_HOST_TABLE_H

#include "AVSK/AVSKHost.h"

#include <initializer_list>

// Hidden symbols are reached without the global offset table.
#pragma GCC visibility push(hidden)

extern const AVSKHostCallbacks *gHooks; // null until the host starts the library
extern AVSKWord gSelf;                  // the host's own handle; kept, but nothing reads it
extern char gDirSeparator[2];           // of legacy paths

static_assert(sizeof(AVSKHostCallbacks) == AVSK_HOST_SLOTS * sizeof(AVSKWord), "the table is 72 machine words");

// Sets the three globals when the host starts the library.
void SetHostTable(const AVSKHostCallbacks *table, AVSKWord self);

// Writes an entry to the log, one call of the host per piece.
void WriteLog(std::initializer_list<const char *> pieces);

#pragma GCC visibility pop

#endif
