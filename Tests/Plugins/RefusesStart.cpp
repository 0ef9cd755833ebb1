// Fault: refuses to start and leaves a dataref, a flight loop and a menu behind.
#include "AVSK/AVSK.h"

namespace {

int gCalls = 0;

float Count(float /*sinceLast*/, float /*total*/, int /*counter*/, void * /*refcon*/) {
    ++gCalls;
    return -1;
}

void Picked(void * /*menuRef*/, void * /*itemRef*/) { gCalls += 1000; }

} // namespace

int AVPluginStart(char * /*outName*/, char * /*outSignature*/, char * /*outDescription*/) {
    AVSKRegisterDataAccessor(
        "zoo/leftover", AVSKDataTypeInt, 0, [](void *calls) { return *static_cast<int *>(calls); }, nullptr, nullptr,
        nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, &gCalls, nullptr);
    AVSKRegisterFlightLoopCallback(Count, -1, nullptr);
    AVSKAppendMenuItem(AVSKCreateMenu("Leftover", nullptr, 0, Picked, nullptr), "Item", nullptr, 0);
    return 0;
}
