// `avsk datarefs`, `avsk commands` and `avsk keys`: print lists for plugin authors.
#include "Commands.h"
#include "SharedOptions.h"
#include "SimpleRun.h"

#include "Observing/DatarefNames.h"
#include "Observing/Descriptions.h"
#include "Observing/Observers.h"
#include "Services/Simulator.h"

#include <CLI/CLI.hpp>

#include <cstdio>
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
PATTERN is any part of a name; with * for any text it is a whole name: 'sim/*/x'. Upper and lower case are equal.

Without --root and --plugin, the plugins of ./Resources/plugins are loaded; without that folder, no plugin.

Exit status: 0, or 2 if no name matches or a plugin that was named does not exist.)";

void Print(const std::vector<std::string> &lines) {
    for (const std::string &line : lines)
        std::puts(line.c_str());
}

void AddPattern(CLI::App &command, std::string &pattern, const std::string &help) {
    command.add_option("PATTERN", pattern, help)->type_name("");
}

// A command that runs the plugins for a while and then prints a list.
void AddListCommand(CLI::App &app, Job &job, const std::string &name, const std::string &help,
                    const std::string &footer, List list) {
    const auto request = std::make_shared<Request>();
    CLI::App *command = app.add_subcommand(name, help);
    AddPattern(*command, request->pattern, "list only the names that match");
    CLI::Option *const root = AddRoot(*command, request->options.simulator.root);
    AddPlugins(*command, request->options.plugins, "load only this plugin; can be repeated");
    AddFrames(*command, request->options.simulator.frames);
    command->footer(footer + "\n" + kListsHelp);
    command->callback([request, root, list, &job] {
        request->options.rootGiven = root->count() > 0;
        job = [request, list] {
            const DatarefNames datarefs; // must be there before the plugins start
            SimpleRun run;
            run.options = std::move(request->options);
            run.needsPlugins = false;
            run.report = [&](Simulator &simulator, Observers &observers) {
                Print(list({simulator, datarefs, observers.Owners()}, request->pattern));
            };
            return RunFrames(std::move(run));
        };
    });
}

} // namespace

void AddDatarefsCommand(CLI::App &app, Job &job) {
    AddListCommand(
        app, job, "datarefs", "Lists the datarefs of the simulator and of the plugins.",
        "The list has the type, whether plugins may write it, the value after the last frame, the unit, and\n"
        "what it means or which plugin publishes it. Of an array the first three values are shown.",
        [](const Listed &listed, const std::string &pattern) {
            return DescribeDatarefs(listed.datarefs, listed.owners, pattern);
        });
}

void AddCommandsCommand(CLI::App &app, Job &job) {
    AddListCommand(app, job, "commands", "Lists the commands of the simulator and of the plugins.",
                   "The list has the command's owner, the keys and joystick buttons that run it, and its description.",
                   [](const Listed &listed, const std::string &pattern) {
                       return DescribeCommands(listed.simulator.commands, listed.owners, pattern);
                   });
}

void AddKeysCommand(CLI::App &app, Job &job) {
    const auto pattern = std::make_shared<std::string>();
    CLI::App *command = app.add_subcommand("keys", "Prints the key codes and flags as constants for C and C++.");
    AddPattern(*command, *pattern, "print only the keys whose names match");
    command->footer(
        "The output compiles as it is: 'avsk keys > keys.h'. The comment beside a code is the key's name, as "
        "sessions use it,\nand the command of the simulator that the key runs.\n\n"
        "PATTERN is any part of a name; with * for any text it is a whole name: 'F*'. Upper and lower case "
        "are equal.\n\nExit status: 0, or 2 if no key matches.");
    command->callback([pattern, &job] {
        job = [pattern] {
            Print(DescribeKeys(*pattern));
            return 0;
        };
    });
}

} // namespace host
