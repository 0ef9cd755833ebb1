// A run of a number of frames; see SimpleRun.h.
#include "SimpleRun.h"

#include "Common/Terminal.h"
#include "Observing/Observers.h"
#include "Observing/OpenGLUsage.h"
#include "Observing/SimulatedHost.h"
#include "Rules/Checker.h"
#include "Rules/OpenGLChecks.h"
#include "Services/Lifetime.h"
#include "Services/Simulator.h"
#include "Session/Round.h"
#include "Session/TemporaryRoot.h"

#include <cstdio>
#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <system_error>
#include <utility>
#include <vector>

#include <unistd.h>

namespace host {

namespace fs = std::filesystem;

int RunFrames(SimpleRun run) {
    SessionOptions &options = run.options;
    TemporaryRoot chosen; // must outlive the plugins
    std::error_code error;
    const bool hasRoot = options.rootGiven || run.needsPlugins || fs::is_directory("Resources/plugins", error);
    const bool isTemporary = options.round || !options.plugins.empty() || !hasRoot;
    if (options.round)
        MakeRoundsRoot(options, run.aircraft, chosen);
    else if (isTemporary)
        options.simulator.root = chosen.Make(options.rootGiven ? options.simulator.root : "", options.plugins);
    if (!options.round)
        CheckFolders(options.simulator, run.aircraft);
    const auto simulator = std::make_unique<Simulator>(std::move(options.simulator));
    if (isTemporary || !run.namesRoot)
        simulator->console.Keep(simulator->options.root);
    Observers observers(std::make_unique<SimulatedHost>(*simulator), options.observing);
    std::optional<Checker> checker;
    if (options.observing.check) {
        checker.emplace(simulator->frame, observers.Owners(), options.observing.allowed);
        checker->AcceptLongSteps();
        checker->Add(std::make_unique<OpenGLChecks>(checker->Found()));
    }
    std::optional<OpenGLUsage> usage;
    if (options.observing.openGL)
        usage.emplace();
    if (options.round)
        simulator->placePlugins = [&chosen] { chosen.PlacePlugins(); };
    Prepare(*simulator);
    StartPlugins(*simulator, run.needsPlugins);
    while (simulator->frame < simulator->options.frames) {
        simulator->RunFrame();
        simulator->console.Forget(); // nobody looks at the log
    }
    simulator->console.ClearProgress();
    if (run.report)
        run.report(*simulator, observers);
    observers.ReportLoaded();
    StopPlugins(*simulator);
    observers.ReportUnloaded();
    if (usage)
        usage->Print();
    const int errors = checker ? checker->PrintReport() : 0;
    const std::vector<std::string> failures = observers.Failures();
    for (const std::string &failure : failures)
        std::printf("%s\n", Emphasised(Emphasis::Failure, failure, STDOUT_FILENO).c_str());
    return failures.empty() && errors == 0 ? 0 : 1;
}

} // namespace host
