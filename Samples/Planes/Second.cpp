// PlanesSecond: waits until the other aircraft are free, then takes control of
// them.
#include <AVSK/AVSK.h>

#include <array>
#include <cstdio>

namespace {

// The aircraft are free. Another plugin may already have taken them; then this one waits again.
void Take(void * /*refcon*/) {
    if (AVSKAcquirePlanes(nullptr, Take, nullptr) == 0) {
        AVSKDebugString("PlanesSecond: waits\n");
        return;
    }
    int total = 0;
    AVSKPluginID controller = NO_PLUGIN_ID;
    AVSKCountAircraft(&total, nullptr, &controller);
    std::array<char, AVSK_TEXT_SIZE> line{};
    std::snprintf(line.data(), line.size(), "PlanesSecond: has the aircraft, %d with the user's%s\n", total,
                  controller == AVSKGetMyID() ? "" : ", and nobody knows");
    AVSKDebugString(line.data());
}

} // namespace

int AVPluginStart(char *outName, char *outSignature, char *outDescription) {
    std::snprintf(outName, AVSK_TEXT_SIZE, "PlanesSecond");
    std::snprintf(outSignature, AVSK_TEXT_SIZE, "aerivo.samples.planessecond");
    std::snprintf(outDescription, AVSK_TEXT_SIZE, "Waits for the other aircraft.");
    return 1;
}

// Not earlier: a disabled plugin is not called when the aircraft become free.
int AVPluginEnable(void) {
    Take(nullptr);
    return 1;
}

// The library releases control when we are disabled, and our place in the queue when we are unloaded.
void AVPluginDisable(void) {}

// These are empty: the log reports every entry point that a plugin lacks.
void AVPluginStop(void) {}
void AVPluginReceiveMessage(AVSKPluginID /*sender*/, int /*message*/, void * /*parameter*/) {}
