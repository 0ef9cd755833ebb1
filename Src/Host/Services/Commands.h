// The command table: named actions, those of the host and those that plugins create.
#ifndef AVSK_HOST_SERVICES_COMMANDS_H
#define AVSK_HOST_SERVICES_COMMANDS_H

#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace host {

struct Simulator;

enum class CommandPhase {
    Begin,
    Continue,
    End,
};

using CommandAction = std::function<void(CommandPhase)>;

struct Command {
    std::string name;
    std::string description;
    CommandAction act; // empty for a plugin's command, whose handlers act
    int begun = 0;     // and not yet ended
};

class CommandTable {
  public:
    // Contains the host's own commands; see Commands.cpp. The simulator must not move.
    explicit CommandTable(Simulator &simulator);

    Command *Find(std::string_view name) const;
    // The command of a handle; null for a handle that is not one.
    Command *Known(const void *handle) const;
    const std::vector<std::unique_ptr<Command>> &All() const { return mCommands; }
    // Returns the existing command of that name, if there is one.
    Command *Create(std::string_view name, std::string_view description);

    // Runs one phase: handlers before the host, the host, handlers after it. A
    // handler before the host can stop the phase. An unknown command is ignored.
    void Run(void *command, CommandPhase phase) const;

  private:
    std::vector<std::unique_ptr<Command>> mCommands;
};

} // namespace host

#endif
