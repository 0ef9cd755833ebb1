// Fills the table of services, each group of slots from the file of its concern.
#ifndef AVSK_HOST_SERVICES_SERVICE_TABLE_H
#define AVSK_HOST_SERVICES_SERVICE_TABLE_H

#include "AVSK/AVSKHost.h"

namespace host {

// The complete table. Called once by Main.cpp.
AVSKHostCallbacks MakeTable();

void FillAircraftSlots(AVSKHostCallbacks &table);
void FillCameraSlots(AVSKHostCallbacks &table);
void FillCommandSlots(AVSKHostCallbacks &table);
void FillDisplaySlots(AVSKHostCallbacks &table);
void FillFileSlots(AVSKHostCallbacks &table);
void FillInputSlots(AVSKHostCallbacks &table);
void FillMenuSlots(AVSKHostCallbacks &table);
void FillNavigationSlots(AVSKHostCallbacks &table);
void FillObjectSlots(AVSKHostCallbacks &table);
void FillProbeSlots(AVSKHostCallbacks &table);
void FillSymbolSlots(AVSKHostCallbacks &table);
void FillSystemSlots(AVSKHostCallbacks &table);

} // namespace host

#endif
