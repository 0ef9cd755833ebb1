// Reads the command line with CLI11; see Commands.h.
#include "Commands.h"

#include "Common/NearestName.h"
#include "Common/Text.h"
#include "Common/UsageError.h"

#include <CLI/CLI.hpp>

#include <algorithm>
#include <string>
#include <vector>

namespace host {
namespace {

std::string OneLine(std::string text) {
    std::replace(text.begin(), text.end(), '\n', ' ');
    while (!text.empty() && (text.back() == ' ' || text.back() == '.'))
        text.pop_back();
    return text;
}

// The command that the arguments name; null if they name none.
const CLI::App *Chosen(const CLI::App &app) {
    const auto chosen = app.get_subcommands();
    return chosen.empty() ? nullptr : chosen.front();
}

// What to say of a word that the command line does not know.
std::string UnknownWord(const CLI::App &app, const std::string &word) {
    const CLI::App *command = Chosen(app);
    std::vector<std::string> names;
    for (const CLI::App *known : app.get_subcommands([](const CLI::App * /*any*/) { return true; }))
        names.push_back(known->get_name());
    if (!command && !word.starts_with('-')) {
        const std::string nearest = DidYouMean(word, names, 1);
        return "no command '" + word + "'" +
               (nearest.empty() ? ": the commands are " + Join(names) + "; 'avsk --help' explains them" : nearest);
    }
    if (!word.starts_with('-'))
        return command->get_name() + ": '" + word + "' is one argument too many: 'avsk " + command->get_name() +
               " --help' shows its arguments";
    names.clear();
    for (const CLI::Option *option : (command ? command : &app)->get_options())
        names.push_back(option->get_name());
    const std::string nearest = DidYouMean(word.substr(0, word.find('=')), names, 1);
    const std::string help = command ? "'avsk " + command->get_name() + " --help'" : "'avsk --help'";
    return (command ? command->get_name() + ": " : "") + "no option '" + word + "'" +
           (nearest.empty() ? ": " + help + " lists the options" : nearest);
}

} // namespace

namespace {

// What follows "--" in the arguments of `avsk exec` is another program's. The parser does not see it.
std::vector<std::string> TakeProgram(int &argc, char **argv) {
    if (argc < 2 || std::string_view(argv[1]) != "exec")
        return {};
    const auto isEnd = [](const char *argument) { return std::string_view(argument) == "--"; };
    char **const end = std::find_if(argv + 2, argv + argc, isEnd);
    std::vector<std::string> program;
    if (end != argv + argc)
        program.assign(end + 1, argv + argc);
    argc = static_cast<int>(end - argv);
    return program;
}

} // namespace

Job ParseCommandLine(int argc, char **argv) {
    Job job;
    CLI::App app("avsk: runs plugins without the simulator, in a small one of its own.", "avsk");
    app.set_version_flag("--version", "avsk " AVSK_HOST_VERSION, "print the version and exit");
    app.set_help_flag("-h,--help", "print this help and exit");
    app.require_subcommand(1);
    app.footer("'avsk COMMAND --help' and the manual page avsk-COMMAND explain a command.\n\n"
               "Examples:\n  avsk new Counter --c\n      a plugin project to begin with\n"
               "  avsk run --root sim\n      the plugins in sim/Resources/plugins, for 300 frames\n\n"
               "Exit status: that of the command; 2 if the command line is wrong.");
    AddNewCommand(app, job);
    AddRunCommand(app, job, argv);
    AddLiveCommand(app, job, argc, argv);
    AddCheckCommand(app, job);
    AddExecCommand(app, job, TakeProgram(argc, argv));
    AddPsCommand(app, job);
    AddDatarefsCommand(app, job);
    AddCommandsCommand(app, job);
    AddKeysCommand(app, job);
    AddFunctionsCommand(app, job);
    AddExplainCommand(app, job);
    AddOptionTable(app);
    try {
        app.parse(argc, argv);
    } catch (const CLI::Success &success) {
        app.exit(success);
        return {};
    } catch (const CLI::ParseError &error) {
        const std::vector<std::string> unknown = app.remaining(/*recurse=*/true);
        if (!unknown.empty())
            throw UsageError(UnknownWord(app, unknown.front()));
        const CLI::App *command = Chosen(app);
        if (!command)
            throw UsageError("say what to do: 'avsk run --root DIR' runs the plugins of a folder, 'avsk --help' lists "
                             "the commands");
        throw UsageError(command->get_name() + ": " + OneLine(error.what()) + ": 'avsk " + command->get_name() +
                         " --help' lists the options");
    }
    return job;
}

} // namespace host
