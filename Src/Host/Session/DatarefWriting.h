// Writes values of a session into datarefs.
#ifndef AVSK_HOST_SESSION_DATAREF_WRITING_H
#define AVSK_HOST_SESSION_DATAREF_WRITING_H

#include "Forms.h"
#include "Step.h"

#include "Observing/DatarefValues.h"

namespace host {

// Writes the words after the first to the dataref that the first one names.
// Fails, and writes nothing, if the dataref's type cannot hold them as written.
Failure WriteDataref(const FoundDataref &target, const Step &step);

} // namespace host

#endif
