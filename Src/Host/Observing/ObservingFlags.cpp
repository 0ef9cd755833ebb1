// The observers' options on a command line; see ObservingFlags.h.
#include "ObservingFlags.h"

#include <cmath>

namespace host {

namespace {

constexpr const char *kObserving = "Observing"; // the heading of these options

} // namespace

const CLI::Validator &PositiveNumber() {
    static const CLI::Validator validator(
        [](const std::string &text) {
            double number = 0;
            return CLI::detail::lexical_cast(text, number) && std::isfinite(number) && number > 0
                       ? std::string()
                       : "'" + text + "' is not a positive number";
        },
        "");
    return validator;
}

void AddCheck(CLI::App &command, ObservingOptions &options) {
    command
        .add_flag("--check", options.check,
                  "tell what plugins do wrong by the rules that 'avsk explain' lists, and fail on errors")
        ->group(kObserving);
}

void AddOpenGLCount(CLI::App &command, ObservingOptions &options) {
    command
        .add_flag("--gl", options.openGL,
                  "print at the end what plugins asked of OpenGL: calls, vertices, and textures and memory that they "
                  "did not delete; 'avsk exec' cannot: another host has its own OpenGL")
        ->group(kObserving);
}

void AddObservingOptions(CLI::App &command, ObservingOptions &options) {
    const char *group = kObserving;
    AddCheck(command, options);
    CLI::Option *trace =
        command
            .add_option("--trace", options.trace.file,
                        "write every call between plugins, library and host to this file: text, or JSON for trace "
                        "viewers if it ends in .json")
            ->type_name("FILE")
            ->group(group);
    command
        .add_option("--trace-plugin", options.trace.plugins,
                    "trace only calls to and from this plugin; can be repeated")
        ->type_name("NAME")
        ->allow_extra_args(false)
        ->needs(trace)
        ->group(group);
    command
        .add_option("--trace-function", options.trace.functions,
                    "trace only this function or callback; * is any text; can be repeated")
        ->type_name("NAME")
        ->allow_extra_args(false)
        ->needs(trace)
        ->group(group);
    command
        .add_flag("--ps", options.owners,
                  "print at the end what each plugin owns, and what it left behind when it was unloaded")
        ->group(group);
    command.add_flag("--profile", options.profile, "print at the end where plugins spent their time")->group(group);
    command.add_option("--budget", options.budget, "fail if a plugin takes longer than this in a frame")
        ->type_name("MILLISECONDS")
        ->check(PositiveNumber())
        ->group(group);
    command
        .add_option("--timeout", options.timeout,
                    "end the run with status 3 and say where, if a call into a plugin takes longer than this")
        ->type_name("SECONDS")
        ->check(PositiveNumber())
        ->group(group);
}

} // namespace host
