// The commands of avsk. Each has a source of its own, which adds its options to
// the command line and says what to run if the command is given. Its footer has a
// paragraph "Examples:" and ends with one "Exit status:", which become sections of
// the command's manual page.
#ifndef AVSK_HOST_COMMAND_LINE_COMMANDS_H
#define AVSK_HOST_COMMAND_LINE_COMMANDS_H

#include <functional>
#include <string>
#include <vector>

namespace CLI {
class App;
}

namespace host {

// What a command does; answers the exit status. Throws UsageError.
using Job = std::function<int()>;

// Each adds one command, and sets the job when the parser meets the command.
// The job must outlive the parser. argc and argv are those of the program.
void AddRunCommand(CLI::App &app, Job &job, char **argv);
void AddLiveCommand(CLI::App &app, Job &job, int argc, char **argv);
void AddCheckCommand(CLI::App &app, Job &job);
// The program and its arguments are those behind "--".
void AddExecCommand(CLI::App &app, Job &job, std::vector<std::string> program);
void AddPsCommand(CLI::App &app, Job &job);
void AddDatarefsCommand(CLI::App &app, Job &job);
void AddCommandsCommand(CLI::App &app, Job &job);
void AddKeysCommand(CLI::App &app, Job &job);
void AddFunctionsCommand(CLI::App &app, Job &job);
void AddExplainCommand(CLI::App &app, Job &job);
void AddNewCommand(CLI::App &app, Job &job);

// Adds the hidden option that prints all commands and options as JSON.
void AddOptionTable(CLI::App &app);

// Reads the command line. The job is empty if the parser has done what was
// asked (help, version). Throws UsageError.
Job ParseCommandLine(int argc, char **argv);

} // namespace host

#endif
