// avsk, the reference host: starts the library as the simulator does, flies a
// number of frames and reports. An example of embedding, and a bench for plugins.
#include "HostTable.h"
#include "Options.h"
#include "Report.h"
#include "Simulator.h"

#include "AVSK/AVSKHost.h"
#include "AVSK/AVSKPlugins.h"

#include <cstdio>
#include <exception>
#include <memory>
#include <string>
#include <utility>

namespace {

using namespace host;

// The library keeps the pointer for ever.
AVSKHostCallbacks gTable;

// Loads the plugins of all places. Throws UsageError if there are none.
void Start(Simulator &simulator) {
    simulator.datarefs.Publish(simulator);
    AVSKInitializePlugins(simulator.options.root.c_str(), &gTable, /*self=*/0);
    simulator.fleet.Update(simulator);
    simulator.fleet.ReportUsersAircraft(simulator, AVSKHostEventPlaneLoaded);
    simulator.ReportScenery();
    if (AVSKCountPlugins() <= 1) { // the host itself is one
        AVSKShutdownPlugins();
        throw UsageError("no plugin was loaded from '" + simulator.options.root +
                         "Resources/plugins': put one there as NAME/lin.avp or NAME.avp; the log, without --quiet, "
                         "says what was tried");
    }
}

void Stop(Simulator &simulator) {
    simulator.console.ClearProgress();
    PrintReport(simulator);
    simulator.fleet.ReportUsersAircraft(simulator, AVSKHostEventPlaneUnloaded);
    AVSKShutdownPlugins();
    // Loads that are still under way: the library gives their objects back.
    simulator.objects.CompleteAllLoads();
    if (const std::size_t kept = simulator.objects.Count(); kept > 0)
        simulator.console.Note(std::to_string(kept) + " objects were not given back: a fault of the library's");
}

void Run(Options options) {
    const auto simulator = std::make_unique<Simulator>(std::move(options));
    gSimulator = simulator.get();
    gTable = MakeTable();
    Start(*simulator);
    while (simulator->frame < simulator->options.frames)
        simulator->RunFrame();
    Stop(*simulator);
}

} // namespace

int main(int argc, char **argv) {
    try {
        if (auto options = ParseOptions(argc, argv))
            Run(std::move(*options));
        return 0;
    } catch (const UsageError &error) {
        std::fprintf(stderr, "avsk: %s\n", error.what());
        return 2;
    } catch (const std::exception &error) {
        // Plugins' exceptions pass through the library and end up here.
        std::fprintf(stderr, "avsk: the run was broken off by an exception: %s\n", error.what());
    } catch (...) {
        std::fputs("avsk: the run was broken off by an exception of unknown type, thrown by a plugin\n", stderr);
    }
    return 1;
}
