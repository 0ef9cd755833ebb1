// Fills the table of services; each source fills the slots of its own concern.
#ifndef AVSK_HOST_SERVICES_SERVICE_TABLE_H
#define AVSK_HOST_SERVICES_SERVICE_TABLE_H

#include "AVSK/AVSKHost.h"

namespace host {

// Returns the complete table.
AVSKHostCallbacks MakeTable();

void FillAircraftSlots(AVSKHostCallbacks &table);
void FillCameraSlots(AVSKHostCallbacks &table);
void FillCommandSlots(AVSKHostCallbacks &table);
void FillDisplaySlots(AVSKHostCallbacks &table);
void FillFileSlots(AVSKHostCallbacks &table);
void FillGraphicsSlots(AVSKHostCallbacks &table);
void FillInputSlots(AVSKHostCallbacks &table);
void FillMenuSlots(AVSKHostCallbacks &table);
void FillNavigationSlots(AVSKHostCallbacks &table);
void FillObjectSlots(AVSKHostCallbacks &table);
void FillProbeSlots(AVSKHostCallbacks &table);
void FillSymbolSlots(AVSKHostCallbacks &table);
void FillSystemSlots(AVSKHostCallbacks &table);

} // namespace host

#endif
