// avsk, the reference host: starts the library as the simulator does, flies a
// number of frames and reports. An example of embedding, and a bench for plugins.
#include "Lifetime.h"
#include "Options.h"
#include "Report.h"
#include "SessionRunner.h"
#include "Simulator.h"

#include <cstdio>
#include <exception>
#include <memory>
#include <utility>

namespace {

using namespace host;

int Run(Options options) {
    const auto simulator = std::make_unique<Simulator>(std::move(options));
    Prepare(*simulator);
    StartPlugins(*simulator);
    while (simulator->frame < simulator->options.frames)
        simulator->RunFrame();
    simulator->console.ClearProgress();
    PrintReport(*simulator);
    StopPlugins(*simulator);
    return 0;
}

} // namespace

int main(int argc, char **argv) {
    try {
        auto options = ParseOptions(argc, argv);
        if (!options)
            return 0;
        const bool session = options->interactive || !options->session.empty();
        return session ? RunSession(std::move(*options)) : Run(std::move(*options));
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
