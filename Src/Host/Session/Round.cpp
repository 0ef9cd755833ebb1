// The folders of a watch's round; see Round.h. Called by sessions and plain runs.
#include "Round.h"

#include "TemporaryRoot.h"

#include <cstddef>

namespace host {

void MakeRoundsRoot(SessionOptions &options, std::string &aircraft, TemporaryRoot &root) {
    SimulatorOptions &simulator = options.simulator;
    const std::string &folder = options.round->folder;
    const bool hasRoot = options.rootGiven || options.plugins.empty();
    if (hasRoot) {
        SimulatorOptions real = simulator; // so that errors name the real folders
        CheckFolders(real, aircraft);
    }
    simulator.root = root.MakeForCopies(hasRoot ? simulator.root : "", options.plugins, folder + "root");
    if (!aircraft.empty())
        aircraft = CopyPluginsOf(aircraft, folder + "aircraft");
    for (std::size_t i = 0; i < simulator.scenery.size(); ++i)
        simulator.scenery[i] = CopyPluginsOf(simulator.scenery[i], folder + "scenery" + std::to_string(i));
    CheckFolders(simulator, aircraft);
}

} // namespace host
