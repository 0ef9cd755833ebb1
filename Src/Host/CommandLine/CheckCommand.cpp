// `avsk check`: judges plugins by the rules, from their files and in scenarios.
#include "Commands.h"
#include "SharedOptions.h"

#include "Common/Columns.h"
#include "Common/UsageError.h"
#include "Verdict/Check.h"
#include "Verdict/Scenarios.h"

#include <CLI/CLI.hpp>

#include <cerrno>
#include <cstring>
#include <fstream>
#include <memory>
#include <string>
#include <vector>

namespace host {
namespace {

struct CheckRequest {
    CheckOptions options;
    std::string json;
    std::string junit;
};

// Opens the file before anything runs, so that a wrong name costs no time.
std::ofstream Open(const std::string &option, const std::string &file) {
    std::ofstream stream(file);
    if (!stream)
        throw UsageError(option + ": cannot write '" + file + "' (" + std::strerror(errno) +
                         "): name a file in a folder that is writable");
    return stream;
}

int Do(const CheckRequest &request) {
    if (request.options.paths.empty())
        throw UsageError("check: name a plugin, a folder of plugins, or a simulator's folder");
    if (request.options.inProcess)
        return CheckInProcess(request.options);
    std::ofstream json;
    std::ofstream junit;
    if (!request.json.empty())
        json = Open("--json", request.json);
    if (!request.junit.empty())
        junit = Open("--junit", request.junit);
    const Verdict verdict = JudgePlugins(request.options);
    PrintLines(VerdictLines(verdict));
    for (const auto &[stream, text, name] :
         {std::tuple(&json, &VerdictJson, &request.json), std::tuple(&junit, &VerdictJunit, &request.junit)}) {
        if (!stream->is_open())
            continue;
        *stream << text(verdict) << std::flush;
        if (!*stream)
            throw UsageError("check: '" + *name + "' could not be written completely");
    }
    return verdict.Status();
}

std::string Footer() {
    std::vector<std::vector<std::string>> rows;
    for (const Scenario &scenario : Scenarios())
        rows.push_back({std::string(scenario.name), std::string(scenario.meaning)});
    std::string text = "Scenarios:\n";
    for (const std::string &line : AlignColumns(rows))
        text += "  " + line + "\n";
    return text + R"(
Examples:
  avsk check build/sim/Resources/plugins/Counter
      one plugin, by its folder
  avsk check --level 3 --junit check.xml build/sim
      all plugins of a simulator's folder; notes fail too; the results also go to a file
  avsk check Counter.avp --scenario windows --in-process
      one scenario in this process, for a debugger
  avsk check Counter.avp --scenario monkey --seed 7 --minutes 5
      random steps for five minutes

Exit status: 0 if all plugins pass; 1 if there are findings of the level or worse; 2 if the request cannot be met as it
was made; 3 if a plugin crashed or did not return.)";
}

} // namespace

void AddCheckCommand(CLI::App &app, Job &job) {
    const auto request = std::make_shared<CheckRequest>();
    CheckOptions &options = request->options;
    CLI::App *command = app.add_subcommand("check", "Judges plugins by the rules, from their files and in scenarios.");
    command
        ->add_option("PLUGIN", options.paths,
                     "plugins, folders of plugins, or simulators' folders, which hold Resources/plugins")
        ->type_name("");
    command
        ->add_option("--level", options.level, "what fails: 1 errors, 2 warnings too, 3 notes too; others are counted")
        ->check(CLI::Range(1, 3))
        ->capture_default_str();
    const auto add = [command](const char *name, std::vector<std::string> &values, const char *type, const char *help) {
        command->add_option(name, values, help)->type_name(type)->allow_extra_args(false);
    };
    add("--only", options.only, "RULE", "judge by this rule only; can be repeated");
    add("--except", options.except, "RULE", "do not judge by this rule; can be repeated");
    add("--scenario", options.scenarios, "NAME", "run this scenario only; can be repeated");
    command->add_flag("--in-process", options.inProcess, "run the scenario in this process, for a debugger");
    command->add_option("--seed", options.seed, "the seed of the monkey's random steps")->capture_default_str();
    command->add_option("--minutes", options.minutes, "how long the monkey tries each plugin; without it, one session")
        ->check(PositiveNumber());
    command->add_option("--timeout", options.timeout, "how many seconds a call into a plugin may take")
        ->check(PositiveNumber())
        ->capture_default_str();
    command->add_option("--jobs", options.jobs, "how many processes run at once; without it, one for each processor")
        ->check(CLI::Range(1, 64));
    command->add_option("--sessions", options.folder, "keep the sessions of the scenarios in this folder")
        ->type_name("DIR");
    command->add_option("--json", request->json, "also write the result to this file, as JSON")->type_name("FILE");
    command->add_option("--junit", request->junit, "also write the result to this file, as JUnit's XML")
        ->type_name("FILE");
    command->footer(Footer());
    command->callback([request, &job] { job = [request] { return Do(*request); }; });
}

} // namespace host
