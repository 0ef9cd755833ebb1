// `avsk ps`: runs a while, then lists who owns what.
#include "Commands.h"
#include "SharedOptions.h"
#include "SimpleRun.h"

#include <CLI/CLI.hpp>

#include <memory>
#include <utility>

namespace host {

void AddPsCommand(CLI::App &app, Job &job) {
    const auto options = std::make_shared<SessionOptions>(QuietOptions());
    options->observing.owners = true;
    CLI::App *ps =
        app.add_subcommand("ps", "Runs a while, then lists what each plugin owns, and what it leaves behind.");
    CLI::Option *const root = AddRoot(*ps, options->simulator.root);
    AddPlugins(*ps, options->plugins, "load only this plugin; can be repeated");
    AddFrames(*ps, options->simulator.frames);
    AddCheck(*ps, options->observing);
    ps->footer(
        "The first list has what each plugin owns after the last frame, with the call that created it. The second "
        "has what it\nstill owned when its AVPluginStop had returned; the library removes these.\n\n"
        "Without --root, --plugin takes paths: lin.avp, its folder, or NAME.avp. With --root it also takes names in "
        "Resources/plugins.\n\n"
        "Examples:\n  avsk ps --root sim --plugin Lights\n  avsk ps --plugin build/lin.avp --frames 600\n\n"
        "Exit status: 0; 1 if --check found an error; 2 if no plugin is loaded.");
    ps->callback([options, root, &job] {
        options->rootGiven = root->count() > 0;
        job = [options] {
            SimpleRun run;
            run.options = std::move(*options);
            return RunFrames(std::move(run));
        };
    });
}

} // namespace host
