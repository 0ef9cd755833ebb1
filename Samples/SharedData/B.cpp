// SharedDataB: is notified of each write to the shared array and reads it.
#include "Shared.h"

#include <AVSK/AVSK.h>

#include <array>
#include <cstdio>

namespace {

void Changed(void * /*refcon*/) {
    // The notification does not say which part was written. The dataref exists: sharing created it.
    std::array<float, 16> values{};
    const int count = AVSKGetDatavf(AVSKFindDataRef(shared::kName), values.data(), 0, static_cast<int>(values.size()));
    if (count <= 0)
        return;
    std::array<char, AVSK_TEXT_SIZE> line{};
    std::snprintf(line.data(), line.size(), "SharedDataB: %d numbers, the last is %.2f\n", count,
                  double{values[static_cast<std::size_t>(count) - 1]});
    AVSKDebugString(line.data());
}

} // namespace

int AVPluginStart(char *outName, char *outSignature, char *outDescription) {
    std::snprintf(outName, AVSK_TEXT_SIZE, "SharedDataB");
    std::snprintf(outSignature, AVSK_TEXT_SIZE, "aerivo.samples.shareddatab");
    std::snprintf(outDescription, AVSK_TEXT_SIZE, "Reads the array that it shares with SharedDataA.");
    return AVSKShareData(shared::kName, AVSKDataTypeFloatArray, Changed, nullptr);
}

// The library removes our subscription; the value stays.
void AVPluginStop(void) {}

// These are empty: the log reports every entry point that a plugin lacks.
int AVPluginEnable(void) { return 1; }
void AVPluginDisable(void) {}
void AVPluginReceiveMessage(AVSKPluginID /*sender*/, int /*message*/, void * /*parameter*/) {}
