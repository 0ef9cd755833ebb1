// Flight loops: a pass that calls all loops, and one that calls none.
#include "Counters.h"
#include "Floor.h"
#include "Harness.h"
#include "Simulator.h"

#include "AVSK/AVSKHost.h"
#include "AVSK/AVSKProcessing.h"

namespace {

constexpr int kPlugins = 10;
constexpr unsigned kLoops = 1000;

float CountCall(float /*sinceLast*/, float /*elapsed*/, int /*counter*/, void *refcon) {
    Count(refcon);
    return -1.0F;
}

// Adjacent records belong to different plugins.
int OwnerOf(unsigned index) { return 1 + static_cast<int>(index % kPlugins); }

void CreateLoops(Simulator &simulator, Counters &counters, float interval) {
    for (unsigned i = 0; i < kLoops; ++i)
        simulator.AsPlugin(OwnerOf(i), [&] { AVSKRegisterFlightLoopCallback(CountCall, interval, &counters[i]); });
}

void ComparePass(Report &report) {
    Simulator simulator(kPlugins);
    Counters counters(kLoops);
    CreateLoops(simulator, counters, -1.0F);
    float time = 0;
    const Side ours = Side::Here(
        kLoops, [&time] { AVSKEventHook(AVSKHostEventFrame, time += 0.01F, 0, 0); },
        [&counters] { return Sum(counters); });

    struct Callback {
        AVSKFlightLoop_f function;
        void *refcon;
    };
    Counters bareCounters(kLoops);
    std::vector<Callback> callbacks;
    for (unsigned &counter : bareCounters)
        callbacks.push_back({Opaque(&CountCall), &counter});
    float bareTime = 0;
    int pass = 0;
    const Side bare = Side::Here(
        kLoops,
        [&] {
            bareTime += 0.01F;
            ++pass;
            for (const Callback &callback : callbacks)
                callback.function(0.01F, bareTime, pass, callback.refcon);
        },
        [&bareCounters] { return Sum(bareCounters); });
    report.Compare("flight-loop pass, 1000 due / indirect calls", 4.0, ours, bare);

    Counters floorCounters(kLoops);
    for (unsigned i = 0; i < kLoops; ++i)
        FloorAddLoop(Opaque(&CountCall), OwnerOf(i), -1.0F, &floorCounters[i]);
    float floorTime = 0;
    const Side floor = Side::Here(
        kLoops, [&floorTime] { FloorFrameHook(floorTime += 0.01F); }, [&floorCounters] { return Sum(floorCounters); });
    report.Compare("flight-loop pass, 1000 due / floor", 1.15, ours, floor);
}

void MeasureIdlePass(Report &report) {
    Simulator simulator(kPlugins);
    Counters counters(kLoops);
    CreateLoops(simulator, counters, 0);
    // The unit is a loop that is skipped. No loop may be called.
    report.Measure(
        "flight-loop pass, 1000 idle, each",
        Side::Here(
            kLoops, [] { AVSKEventHook(AVSKHostEventFrame, 1.0F, 0, 0); },
            [&counters] { return static_cast<std::uint64_t>(AVSKGetCycleNumber()) * kLoops + Sum(counters); }));
}

} // namespace

std::vector<Comparison> ProcessingComparisons() {
    return {{"flight loops, all due", ComparePass}, {"flight loops, all idle", MeasureIdlePass}};
}
