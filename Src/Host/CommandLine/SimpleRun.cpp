// A run of a number of frames; see SimpleRun.h.
#include "SimpleRun.h"

#include "Common/Terminal.h"
#include "Observing/Observers.h"
#include "Observing/Report.h"
#include "Services/Lifetime.h"
#include "Services/Simulator.h"
#include "Session/TemporaryRoot.h"

#include <cstdio>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include <unistd.h>

namespace host {

int RunFrames(SessionOptions options, bool report) {
    TemporaryRoot chosen; // must outlive the plugins
    if (!options.plugins.empty()) {
        options.simulator.root = chosen.Make(options.rootGiven ? options.simulator.root : "", options.plugins);
        CheckFolders(options.simulator, /*aircraft=*/"");
    }
    const auto simulator = std::make_unique<Simulator>(std::move(options.simulator));
    if (!report)
        simulator->console.Keep(simulator->options.root); // keeps a temporary root out of the lists
    Observers observers(*simulator, options.observing);
    Prepare(*simulator);
    StartPlugins(*simulator);
    while (simulator->frame < simulator->options.frames)
        simulator->RunFrame();
    simulator->console.ClearProgress();
    if (report)
        PrintReport(*simulator, observers.Times());
    observers.ReportLoaded();
    StopPlugins(*simulator);
    observers.ReportUnloaded();
    const std::vector<std::string> failures = observers.Failures();
    for (const std::string &failure : failures)
        std::printf("%s\n", Emphasised(Emphasis::Failure, failure, STDOUT_FILENO).c_str());
    return failures.empty() ? 0 : 1;
}

} // namespace host
