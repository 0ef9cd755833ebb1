// DatarefReader: two flight loops that use the datarefs of DatarefOwner, one
// timed in passes and one in seconds.
#include <AVSK/AVSK.h>

#include <array>
#include <cstdio>

namespace {

AVSKDataRef gCounter = nullptr;
AVSKDataRef gLevels = nullptr;
AVSKFlightLoopID gCountLoop = nullptr;
AVSKFlightLoopID gReportLoop = nullptr;

// The owner may be loaded later, or not at all, so look the dataref up when it
// is needed. A handle stays valid: it works again when its owner comes back.
bool Ready(AVSKDataRef &ref, const char *name) {
    if (AVSKIsDataRefGood(ref) == 0)
        ref = AVSKFindDataRef(name);
    return ref != nullptr;
}

// Each frame: increments a value.
float Count(float /*sinceLastCall*/, float /*elapsed*/, int /*pass*/, void * /*refcon*/) {
    if (Ready(gCounter, "sample/counter"))
        AVSKSetDatai(gCounter, AVSKGetDatai(gCounter) + 1);
    return -1.0F; // negative: passes. The next pass of this loop's phase is in the next frame.
}

// Each second: fills the array and logs the values.
float Report(float sinceLastCall, float elapsed, int pass, void * /*refcon*/) {
    char line[AVSK_TEXT_SIZE];
    if (!Ready(gCounter, "sample/counter") || !Ready(gLevels, "sample/levels")) {
        AVSKDebugString("DatarefReader: nobody publishes sample/counter and sample/levels\n");
        return 5.0F; // try again later
    }
    std::array<float, 2> written{elapsed, sinceLastCall};
    AVSKSetDatavf(gLevels, written.data(), 1, static_cast<int>(written.size()));

    std::array<float, 4> read{};
    AVSKGetDatavf(gLevels, read.data(), 0, static_cast<int>(read.size()));
    std::snprintf(line, sizeof line, "DatarefReader: pass %d, counter %d, levels %.2f %.2f %.2f %.2f\n", pass,
                  AVSKGetDatai(gCounter), double{read[0]}, double{read[1]}, double{read[2]}, double{read[3]});
    AVSKDebugString(line);
    return 1.0F; // positive: seconds
}

AVSKFlightLoopID CreateLoop(AVSKFlightLoop_f callback) {
    const AVSKCreateFlightLoopParams params{sizeof(AVSKCreateFlightLoopParams), AVSKFlightLoopPhaseBefore, callback,
                                            nullptr};
    return AVSKCreateFlightLoop(&params);
}

} // namespace

int AVPluginStart(char *outName, char *outSignature, char *outDescription) {
    std::snprintf(outName, AVSK_TEXT_SIZE, "DatarefReader");
    std::snprintf(outSignature, AVSK_TEXT_SIZE, "aerivo.samples.datarefreader");
    std::snprintf(outDescription, AVSK_TEXT_SIZE, "Reads and writes the datarefs of DatarefOwner.");
    gCountLoop = CreateLoop(Count);
    gReportLoop = CreateLoop(Report);
    return 1;
}

// A new loop is not called until it is scheduled.
int AVPluginEnable(void) {
    AVSKScheduleFlightLoop(gCountLoop, -1.0F, 1);
    AVSKScheduleFlightLoop(gReportLoop, 1.0F, 1);
    return 1;
}

void AVPluginStop(void) {
    AVSKDestroyFlightLoop(gCountLoop);
    AVSKDestroyFlightLoop(gReportLoop);
}

// These are empty: the log reports every entry point that a plugin lacks.
void AVPluginDisable(void) {}
void AVPluginReceiveMessage(AVSKPluginID /*sender*/, int /*message*/, void * /*parameter*/) {}
