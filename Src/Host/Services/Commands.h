// The command table: named actions, the host's own and those plugins create.
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
    CommandAction act; // empty: a plugin's, which acts in its handlers
    int begun = 0;     // and not yet ended
};

class CommandTable {
  public:
    // With the host's own commands; see HostCommands.cpp. The simulator must stay where it is.
    explicit CommandTable(Simulator &simulator);

    Command *Find(std::string_view name) const;
    // The command of a handle; null for a handle that is not one.
    Command *Known(const void *handle) const;
    const std::vector<std::unique_ptr<Command>> &All() const { return mCommands; }
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
