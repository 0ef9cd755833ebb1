// The library's start and end; see Lifetime.h.
#include "Lifetime.h"

#include "Graphics.h"
#include "ServiceTable.h"
#include "Simulator.h"

#include "Common/UsageError.h"
#include "Elf/PluginFiles.h"
#include "OpenGL/Context.h"

#include "AVSK/AVSKHost.h"
#include "AVSK/AVSKPlugins.h"

#include <string>

namespace host {
namespace {

// The library keeps the pointer until the process ends.
AVSKHostCallbacks gTable;

} // namespace

void Prepare(Simulator &simulator) {
    gSimulator = &simulator;
    gTable = MakeTable();
    opengl::OnMissing([] { gSimulator->console.Note(opengl::Missing()); });
    ServeOpenGL();
    opengl::Prepare(simulator.options.screenWidth, simulator.options.screenHeight);
}

void StartPlugins(Simulator &simulator, bool isOneNeeded) {
    if (simulator.placePlugins)
        Datarefs::Withdraw(); // those of the last round's simulator, which the library keeps
    simulator.datarefs.Publish(simulator);
    AVSKInitializePlugins(simulator.options.root.c_str(), &gTable, /*self=*/0);
    if (simulator.placePlugins) { // the reload calls it, between unloading and loading
        AVSKReloadPlugins();
        AVSKEventHook(AVSKHostEventFrameEnd, simulator.Elapsed(), 0, 0);
    }
    simulator.fleet.Update(simulator);
    simulator.fleet.ReportUsersAircraft(simulator, AVSKHostEventPlaneLoaded);
    simulator.ReportScenery();
    if (isOneNeeded && AVSKCountPlugins() <= 1) { // the host itself is one
        AVSKShutdownPlugins();
        const std::string folder = simulator.options.root + "Resources/plugins";
        if (FindPluginFiles(folder, PluginFolder::Simulators).empty())
            throw UsageError("no plugin in '" + folder + "': put one there as NAME/lin.avp or NAME.avp");
        throw UsageError("no plugin was loaded; the lines above say why");
    }
}

void StopPlugins(Simulator &simulator) {
    simulator.fleet.ReportUsersAircraft(simulator, AVSKHostEventPlaneUnloaded);
    AVSKShutdownPlugins();
    opengl::Finish();
    // The library returns the objects of loads that complete now.
    simulator.objects.CompleteAllLoads();
    if (const std::size_t kept = simulator.objects.Count(); kept > 0)
        simulator.console.Note(std::to_string(kept) + " objects were not given back: a fault of the library's");
}

} // namespace host
