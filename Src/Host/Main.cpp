// avsk, the reference host: starts the library as the simulator does, flies a
// number of frames and reports. An example of embedding, and a bench for plugins.
#include "Bench/Bench.h"
#include "Bench/Blame.h"
#include "Lifetime.h"
#include "LineEditor.h"
#include "Options.h"
#include "Report.h"
#include "SessionRoot.h"
#include "SessionRunner.h"
#include "Simulator.h"

#include <cstdio>
#include <exception>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace {

using namespace host;

int Run(Options options) {
    SessionRoot chosen; // must outlive the plugins
    if (!options.plugins.empty()) {
        options.root = chosen.Make(options.rootGiven ? options.root : "", options.plugins);
        CheckPlaces(options, /*aircraft=*/"");
    }
    const auto simulator = std::make_unique<Simulator>(std::move(options));
    if (!simulator->options.report)
        simulator->console.Keep(simulator->options.root); // its lists do not name a temporary root
    Bench bench(*simulator);
    Prepare(*simulator);
    StartPlugins(*simulator);
    while (simulator->frame < simulator->options.frames)
        simulator->RunFrame();
    simulator->console.ClearProgress();
    if (simulator->options.report)
        PrintReport(*simulator, bench.Times());
    bench.ReportLoaded();
    StopPlugins(*simulator);
    bench.ReportUnloaded();
    const std::vector<std::string> excesses = bench.Times().OverBudget();
    for (const std::string &excess : excesses)
        std::printf("budget: %s\n", excess.c_str());
    return excesses.empty() ? 0 : 1;
}

// What was to be read went somewhere, or there is a line about it.
bool OutputIsWhole() {
    if (std::fflush(stdout) == 0 && std::ferror(stdout) == 0)
        return true;
    std::fputs("avsk: standard output could not be written: what it shows is not complete\n", stderr);
    return false;
}

// Plugins' exceptions pass through the library and end up in main.
void ReportException(const std::string &what) {
    const std::string thrower = ThrownBy();
    std::fflush(stdout);
    std::fprintf(stderr, "avsk: the run was broken off by an exception%s%s: %s\n", thrower.empty() ? "" : " of ",
                 thrower.c_str(), what.c_str());
    if (!thrower.empty())
        PrintLastCalls();
}

} // namespace

int main(int argc, char **argv) {
    try {
        auto options = ParseOptions(argc, argv);
        if (!options)
            return 0;
        if (options->interactive)
            EditLines(argv);
        const bool session = options->interactive || !options->session.empty();
        const int status = session ? RunSession(std::move(*options)) : Run(std::move(*options));
        return OutputIsWhole() ? status : 1;
    } catch (const UsageError &error) {
        std::fprintf(stderr, "avsk: %s\n", error.what());
        return 2;
    } catch (const std::exception &error) {
        ReportException(error.what());
    } catch (...) {
        ReportException("its type is unknown");
    }
    return 1;
}
