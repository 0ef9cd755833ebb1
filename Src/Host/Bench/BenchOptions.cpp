// The options that watch a run, for CLI11; see BenchOptions.h.
#include "BenchOptions.h"

#include <CLI/CLI.hpp>

namespace host {

void AddBenchOptions(CLI::App &run, BenchOptions &options, const CLI::Validator &positive) {
    const char *group = "Watching";
    CLI::Option *trace =
        run.add_option("--trace", options.trace.file,
                       "write every call between plugins, library and host to this file: text, or JSON for trace "
                       "viewers if it ends in .json")
            ->type_name("FILE")
            ->group(group);
    run.add_option("--trace-plugin", options.trace.plugins, "trace only calls to and from this plugin; can be repeated")
        ->type_name("NAME")
        ->allow_extra_args(false)
        ->needs(trace)
        ->group(group);
    run.add_option("--trace-function", options.trace.functions,
                   "trace only this function or callback; * is any text; can be repeated")
        ->type_name("NAME")
        ->allow_extra_args(false)
        ->needs(trace)
        ->group(group);
    run.add_flag("--ps", options.owners,
                 "print at the end what each plugin owns, and what it left behind when it was unloaded")
        ->group(group);
    run.add_flag("--profile", options.profile, "print at the end where plugins spent their time")->group(group);
    run.add_option("--budget", options.budget, "fail if a plugin takes longer than this in a frame")
        ->type_name("MILLISECONDS")
        ->check(positive)
        ->group(group);
    run.add_option("--timeout", options.timeout,
                   "end the run with status 3 and say where, if a call into a plugin takes longer than this")
        ->type_name("SECONDS")
        ->check(positive)
        ->group(group);
}

} // namespace host
