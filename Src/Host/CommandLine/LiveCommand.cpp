// `avsk live`: the simulator in real time, seen and used in a browser. The process
// serves the page; it starts itself again with the hidden option --simulator, and
// that process loads the plugins.
#include "Commands.h"
#include "SharedOptions.h"

#include "Common/UsageError.h"
#include "Live/LiveOptions.h"
#include "Session/Round.h"

#include <CLI/CLI.hpp>

#include <filesystem>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include <csignal>
#include <sys/prctl.h>
#include <unistd.h>

namespace host {
namespace {

namespace fs = std::filesystem;

constexpr const char *kExamples =
    R"(The page shows the screen and takes mouse and keys; beside it are panels for plugins, datarefs, menus, commands, times,
calls, findings and the log. What is done on the page can be saved as a session for 'avsk run'.

The address is for this computer only, and its last part is a secret of this run: whoever has it can do on the page what
you can do. From another computer, forward the port: the program prints how when it runs over ssh.

Examples:
  avsk live --root build/release/demo
      the plugins in build/release/demo/Resources/plugins
  avsk live build/sim/Resources/plugins/Counter/lin.avp --watch
      one plugin; each build of it is loaded at once
  avsk live Menu.avs --root build/release/demo --no-open --port 8080
      goes on where a session ends; the address is only printed, with a port of your choice
  avsk live --root sim --plugin Lights --trace calls.json
      one plugin of the root; all calls also go to a file for trace viewers

Exit status: 0 if Ctrl-C or a signal to terminate ended it; 2 if the request cannot be met as it was made.)";

struct LiveRequest {
    SessionOptions options;
    LiveOptions live;
    bool staysClosed = false;
    int simulator = -1; // the channel, of the simulator's process
    Round round;        // with --watch, of the simulator's process
};

// A session contains these itself, so they are refused together with one.
std::vector<CLI::Option *> AddLiveOnlyOptions(CLI::App &command, LiveRequest &request) {
    SimulatorOptions &simulator = request.options.simulator;
    std::vector<CLI::Option *> added{
        command.add_option("--fps", simulator.fps, "frames a second")->check(PositiveNumber())->capture_default_str(),
        command
            .add_option("--aircraft", request.live.aircraft,
                        "folder of the user's aircraft, whose plugins are loaded too")
            ->type_name("DIR"),
        command
            .add_option("--scenery", simulator.scenery,
                        "a scenery folder whose plugins are loaded too; can be repeated")
            ->type_name("DIR")
            ->allow_extra_args(false)};
    for (CLI::Option *option : added)
        option->group("Without a session");
    return added;
}

void AddObserving(CLI::App &command, ObservingOptions &options) {
    constexpr const char *kObserving = "Observing";
    command
        .add_option("--trace", options.trace.file,
                    "write every call between plugins, library and host to this file: text, or JSON for trace viewers "
                    "if it ends in .json")
        ->type_name("FILE")
        ->group(kObserving);
    command
        .add_option("--budget", options.budget, "what a plugin may take in a frame; the page shows who takes longer")
        ->type_name("MILLISECONDS")
        ->check(PositiveNumber())
        ->group(kObserving);
    command
        .add_option("--timeout", options.timeout,
                    "end the simulator, but not the page, if a call into a plugin takes longer than this")
        ->type_name("SECONDS")
        ->check(PositiveNumber())
        ->group(kObserving);
}

// Tells a plugin from a session. Throws UsageError for what does not belong together.
void SortOut(LiveRequest &request, const std::vector<CLI::Option *> &liveOnly) {
    SessionOptions &options = request.options;
    if (!options.file.empty() && IsPlugin(options.file))
        options.plugins.push_back(fs::absolute(std::exchange(options.file, "")).string());
    if (options.file.empty())
        return;
    for (const CLI::Option *option : liveOnly) {
        const std::string name = option->get_name();
        if (option->count() > 0)
            throw UsageError(name + ": the session '" + options.file +
                             "' says this itself: leave out the option, or write '" + name.substr(2) +
                             "' into the session");
    }
}

int Do(LiveRequest &request) {
    request.options.observing.check = true;
    if (request.simulator < 0)
        return LiveServe(request.options, request.live);
    prctl(PR_SET_PDEATHSIG, SIGKILL); // even if a plugin does not return
    if (!request.round.folder.empty())
        request.options.round = &request.round;
    return LiveSimulate(std::move(request.options), request.live, request.simulator);
}

} // namespace

void AddLiveCommand(CLI::App &app, Job &job, int argc, char **argv) {
    const auto request = std::make_shared<LiveRequest>();
    SessionOptions &options = request->options;
    LiveOptions &live = request->live;
    live.arguments.assign(argv, argv + argc);
    CLI::App *command = app.add_subcommand("live", "Runs the plugins in real time, to see and use in a browser.");
    command
        ->add_option("FILE", options.file,
                     "a session, whose steps are executed first; or a plugin to run: lin.avp or its folder")
        ->type_name("");
    CLI::Option *const root = AddRoot(*command, options.simulator.root);
    const std::vector<CLI::Option *> liveOnly = AddLiveOnlyOptions(*command, *request);
    AddPlugins(*command, options.plugins, "load only this plugin; can be repeated");
    command
        ->add_option("--port", live.port, "the port on 127.0.0.1; 0 is any free one. Without it: 4780 if that is free")
        ->check(CLI::Range(0, 65535));
    command->add_flag("--no-open", request->staysClosed, "open no browser, only print the address");
    command->add_flag("--watch", live.watch, "start the simulator again whenever a plugin was rebuilt");
    command->add_option("--log", options.simulator.logFile, "also write the log to this file")->type_name("FILE");
    command->add_flag("--quiet", options.simulator.quiet, "keep the log off standard output");
    AddObserving(*command, options.observing);
    command->add_option("--simulator", request->simulator)->group("");
    command->add_option("--round", request->round.folder)->group("");
    command->footer(kExamples);
    command->callback([request, root, liveOnly, &job] {
        request->options.rootGiven = root->count() > 0;
        request->live.opensBrowser = !request->staysClosed;
        SortOut(*request, liveOnly);
        job = [request] { return Do(*request); };
    });
}

} // namespace host
