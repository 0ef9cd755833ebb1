// The command table: named actions, the host's own and those plugins create.
#ifndef AVSK_HOST_COMMANDS_H
#define AVSK_HOST_COMMANDS_H

#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace host {

class Aeroplane;

enum class CommandPhase {
    Begin,
    Continue,
    End,
};

struct Command {
    std::string name;
    std::string description;
    std::function<void(CommandPhase)> act; // empty: a plugin's, which acts in its handlers
};

class CommandTable {
  public:
    // With the host's own commands, which steer the aeroplane.
    explicit CommandTable(Aeroplane &aeroplane);

    Command *Find(std::string_view name) const;
    // An existing command of that name is answered as it is.
    Command *Create(std::string_view name, std::string_view description);

    // Runs one phase: plugins before, the host, plugins after. A plugin that
    // stops it before keeps it from the others. An unknown command is ignored.
    void Run(void *command, CommandPhase phase) const;

  private:
    std::vector<std::unique_ptr<Command>> mCommands;
};

} // namespace host

#endif
