// Reads the command line with CLI11; see Commands.h.
#include "Commands.h"

#include "Common/UsageError.h"

#include <CLI/CLI.hpp>

#include <algorithm>
#include <string>

namespace host {
namespace {

std::string OneLine(std::string text) {
    std::replace(text.begin(), text.end(), '\n', ' ');
    while (!text.empty() && (text.back() == ' ' || text.back() == '.'))
        text.pop_back();
    return text;
}

} // namespace

Job ParseCommandLine(int argc, char **argv) {
    Job job;
    CLI::App app("avsk: runs plugins without the simulator, in a small one of its own.", "avsk");
    app.set_version_flag("--version", "avsk " AVSK_HOST_VERSION);
    app.require_subcommand(1);
    AddNewCommand(app, job);
    AddRunCommand(app, job, argv);
    AddPsCommand(app, job);
    try {
        app.parse(argc, argv);
    } catch (const CLI::Success &success) {
        app.exit(success);
        return {};
    } catch (const CLI::RequiredError &) {
        throw UsageError(
            "say what to do: 'avsk run --root DIR' runs the plugins of a folder, 'avsk --help' tells more");
    } catch (const CLI::ParseError &error) {
        throw UsageError(OneLine(error.what()) +
                         ": 'avsk run --help', 'avsk ps --help' and 'avsk new --help' list the options");
    }
    return job;
}

} // namespace host
