// Fault: a static constructor and destructor that call the library; no start entry.
#include "AVSK/AVSK.h"

extern "C" AVSK_API void AvskTestStatic(bool constructed, AVSKFlightLoop_f loop);

namespace {

int gCalls = 0;

float Count(float /*sinceLast*/, float /*total*/, int /*counter*/, void * /*refcon*/) {
    ++gCalls;
    return -1;
}

struct Static {
    Static() { AvskTestStatic(true, Count); }
    ~Static() { AvskTestStatic(false, Count); }
} gStatic;

} // namespace
