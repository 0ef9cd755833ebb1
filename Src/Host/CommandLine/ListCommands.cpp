// `avsk datarefs` and `avsk commands`: print lists for plugin authors.
#include "Commands.h"
#include "SharedOptions.h"
#include "SimpleRun.h"

#include "Observing/DatarefNames.h"
#include "Observing/Listings.h"
#include "Observing/Observers.h"
#include "Services/Simulator.h"

#include <CLI/CLI.hpp>

#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace host {
namespace {

// What there is to list, after the last frame.
struct Listed {
    const Simulator &simulator;
    const DatarefNames &datarefs;
    const Ledger &owners;
};
using List = std::vector<std::string> (*)(const Listed &listed, const std::string &pattern);

struct Request {
    SessionOptions options = QuietOptions();
    std::string pattern;
};

constexpr const char *kListsHelp = R"(
Without --root and --plugin, the plugins of ./Resources/plugins are loaded; without that folder, no plugin.

Exit status: 0; 1 if --check found an error or an exception of a plugin ended the run; 2 if no name matches or a plugin that was named does not
exist; 3 if a plugin ended the run in another way.)";

// A command that runs the plugins for a while and then prints a list.
void AddListCommand(CLI::App &app, Job &job, const std::string &name, const std::string &help,
                    const std::string &footer, List list) {
    const auto request = std::make_shared<Request>();
    CLI::App *command = app.add_subcommand(name, help);
    AddPattern(*command, request->pattern);
    CLI::Option *const root = AddRoot(*command, request->options.simulator.root);
    AddPlugins(*command, request->options.plugins, "load only this plugin; can be repeated");
    AddFrames(*command, request->options.simulator.frames);
    AddCheck(*command, request->options.observing);
    command->footer(footer + "\n\nExamples:\n  avsk " + name + " sim/\n  avsk " + name +
                    " --root sim --plugin Lights 'lights/*'\n" + kListsHelp);
    command->callback([request, root, list, &job] {
        request->options.rootGiven = root->count() > 0;
        job = [request, list] {
            const DatarefNames datarefs; // must be there before the plugins start
            SimpleRun run;
            run.options = std::move(request->options);
            run.needsPlugins = false;
            run.report = [&](Simulator &simulator, Observers &observers) {
                PrintLines(list({simulator, datarefs, observers.Owners()}, request->pattern));
            };
            return RunFrames(std::move(run));
        };
    });
}

} // namespace

void AddDatarefsCommand(CLI::App &app, Job &job) {
    AddListCommand(
        app, job, "datarefs", "Lists the datarefs of the simulator and of the plugins.",
        "The list has the type, whether plugins may write it, the value after the last frame, the unit, the owner\n"
        "(a plugin, 'simulator', or 'shared' if plugins share the value), and the meaning. Of an array the first\n"
        "three values are shown.",
        [](const Listed &listed, const std::string &pattern) {
            return ListDatarefs(listed.datarefs, listed.owners, pattern, Values::Shown);
        });
}

void AddCommandsCommand(CLI::App &app, Job &job) {
    AddListCommand(app, job, "commands", "Lists the commands of the simulator and of the plugins.",
                   "The list has the command's owner, the keys and joystick buttons that run it, and its description.",
                   [](const Listed &listed, const std::string &pattern) {
                       return ListCommands(listed.simulator.commands, listed.owners, pattern);
                   });
}

} // namespace host
