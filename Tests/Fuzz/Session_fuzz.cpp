// One run: the host starts the library with the puppets, acts as the input says,
// shuts the library down, and checks that nothing is left.
#include "Model.h"

#include "AVSKDisplay.h"
#include "AVSKLoader.h"
#include "AVSKModules.h"

#include "AVSK/AVSK.h"

#include <chrono>
#include <ctime>

namespace {

const auto kStarted = std::chrono::steady_clock::now();

void Report() {
    const std::chrono::duration<double> seconds = std::chrono::steady_clock::now() - kStarted;
    const auto all = static_cast<double>(gCounters.calls + gCounters.hooks);
    std::fprintf(stderr,
                 "fuzz: %llu runs, %llu calls and %llu hooks, %.0f a second with %.0f %% of a core; "
                 "%llu callbacks, %llu starts, %llu exceptions\n",
                 gCounters.runs, gCounters.calls, gCounters.hooks, all / seconds.count(),
                 100.0 * static_cast<double>(std::clock()) / CLOCKS_PER_SEC / seconds.count(), gCounters.callbacks,
                 gCounters.starts, gCounters.throws);
}

void Begin(const std::uint8_t *data, std::size_t size) {
    gFuzz = Fuzz();
    gFuzz.in.Set(data, size);
    gFuzz.registrations.reserve(kMaxRegistrations);
    gFuzz.files[kProgram].mapped = 1;
    // Resets state of the library that earlier runs may have changed.
    gScheduleReload = false;
    AVSKSetDispatchedPlugin(AVSK_PLUGIN_AERIVO);
    AVSKGetNumberPlanesToHandle(4, 1);
}

// Removes what the host or plugin -1 owns and what plugins inherited, so that runs are independent.
void CleanUpRest() {
    AVSKSetDispatchedPlugin(AVSK_PLUGIN_AERIVO);
    AVSKDontControlCamera();
    for (const int button : gFuzz.buttons)
        AVSKCommandButtonRelease(button);
    constexpr void (*hooks[])(int) = {AVSKCommandCleanupHook,  AVSKDisplayCleanupHook,    AVSKProcessingCleanupHook,
                                      AVSKCameraCleanupHook,   AVSKMenuCleanupHook,       AVSKPlaneCleanupHook,
                                      AVSKDataRefsCleanupHook, AVSKSharedDataCleanupHook, AVSKSceneryCleanupHook};
    for (int id = NO_PLUGIN_ID; id <= static_cast<int>(gFuzz.latest.size()); ++id)
        for (auto *const hook : hooks)
            if (id != AVSK_PLUGIN_AERIVO || hook != AVSKDataRefsCleanupHook) // keeps the library's own datarefs
                hook(id);
    AVSKSetDispatchedPlugin(AVSK_PLUGIN_AERIVO);
    for (const Registration *each : gFuzz.Of(Kind::Data))
        AVSKUnregisterDataAccessor(static_cast<AVSKDataRef>(each->handle));
    // Queries left walks open. Each registration closes one.
    for (int i = 0; i < 2; ++i)
        AVSKUnregisterHotKey(AVSKRegisterHotKey(0, 0, "", nullptr, nullptr));
    AVSKWindowCallbackRecord::ForEach([](const AVSKWindowCallbackRecord *window) {
        REQUIRE(false, "a window of %d, which is in the list %d, is left", window->owner, window->IsLinked());
    });
}

} // namespace

void StartLibrary() {
    for (File &file : gFuzz.files)
        file.tried = false;
    const int upheavals = gFuzz.upheavals;
    Catching([] {
        REQUIRE(AVSKInitializePlugins("/", gFuzz.table, 0) == AVSK_HOST_INTERFACE, "a start answers another number");
    });
    if (gFuzz.depth == 0 && upheavals == gFuzz.upheavals)
        CheckAfterStart();
}

void ShutDownLibrary() {
    const int upheavals = gFuzz.upheavals;
    Catching(AVSKShutdownPlugins);
    if (gFuzz.depth > 0)
        return;
    { const StDispatchCallback last; } // the end of a call unmaps the libraries that wait for it
    if (upheavals == gFuzz.upheavals)
        CheckAfterShutdown();
}

extern "C" int LLVMFuzzerInitialize(int *, char ***) {
    std::atexit(Report);
    gFuzz.files[kProgram].mapped = 1;
    ShareNames();
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
    ++gCounters.runs;
    Begin(data, size);
    const unsigned kind = gFuzz.in.Byte();
    gFuzz.wildHost = (kind & 4U) != 0;
    gFuzz.table = FreshHost(2 + static_cast<int>(kind >> 4U & 3U), (kind & 11U) != 3);
    StartLibrary();
    CheckQuiet();
    while (!gFuzz.in.Empty() && gFuzz.actions < kMaxActions) {
        ActAtTop();
        CheckQuiet();
    }

    gFuzz.calm = true;
    TRACE("shutdown");
    ShutDownLibrary();
    CheckQuiet();
    CompleteAllLoads(); // their plugins are already unloaded
    CleanUpRest();
    CheckObjectsReturned();
    return 0;
}
