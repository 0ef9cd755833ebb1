// The services for commands, and the table behind them. The host's own commands:
//
//     sim/flight/climb, sim/flight/descend    5 m/s while held
//     sim/flight/level                        straight on while held, instead of the circle
//     sim/view/next                           the next of the views below
//     sim/view/tower, chase, cockpit          that view
//
// Input.cpp binds keys and buttons to them.
#include "Commands.h"

#include "ServiceTable.h"
#include "Simulator.h"

#include <algorithm>

namespace host {
namespace {

void *FindCommand(const char *name, const char *description, int create) {
    CommandTable &commands = Enter().commands;
    if (!name)
        return nullptr;
    return create != 0 ? commands.Create(name, description ? description : "") : commands.Find(name);
}

void BeginCommand(void *command) { Enter().commands.Run(command, CommandPhase::Begin); }
void ContinueCommand(void *command) { Enter().commands.Run(command, CommandPhase::Continue); }
void EndCommand(void *command) { Enter().commands.Run(command, CommandPhase::End); }

// Climbs, or sinks, while the command is held.
CommandAction Climb(Aeroplane &aeroplane, double metresPerSecond) {
    return [&aeroplane, metresPerSecond](CommandPhase phase) {
        aeroplane.climb = phase == CommandPhase::End ? 0 : metresPerSecond;
    };
}

CommandAction Level(Aeroplane &aeroplane) {
    return [&aeroplane](CommandPhase phase) { aeroplane.turn = phase == CommandPhase::End ? Aeroplane::kTurn : 0; };
}

CommandAction ShowView(Simulator &simulator, View view) {
    return [&simulator, view](CommandPhase phase) {
        if (phase == CommandPhase::Begin)
            simulator.camera.ChangeView(simulator, view);
    };
}

CommandAction ShowNextView(Simulator &simulator) {
    return [&simulator](CommandPhase phase) {
        if (phase == CommandPhase::Begin)
            simulator.camera.NextView(simulator);
    };
}

} // namespace

CommandTable::CommandTable(Simulator &simulator) {
    Create("sim/flight/climb", "Climb while held")->act = Climb(simulator.aeroplane, 5);
    Create("sim/flight/descend", "Descend while held")->act = Climb(simulator.aeroplane, -5);
    Create("sim/flight/level", "Fly straight on while held")->act = Level(simulator.aeroplane);
    Create("sim/view/next", "Show the next view")->act = ShowNextView(simulator);
    Create("sim/view/tower", "Look down from above")->act = ShowView(simulator, View::Tower);
    Create("sim/view/chase", "Follow the aeroplane")->act = ShowView(simulator, View::Chase);
    Create("sim/view/cockpit", "Sit in the cockpit")->act = ShowView(simulator, View::Cockpit);
}

Command *CommandTable::Find(std::string_view name) const {
    const auto found =
        std::find_if(mCommands.begin(), mCommands.end(), [name](const auto &command) { return command->name == name; });
    return found == mCommands.end() ? nullptr : found->get();
}

Command *CommandTable::Known(const void *handle) const {
    const auto found = std::find_if(mCommands.begin(), mCommands.end(),
                                    [handle](const auto &command) { return command.get() == handle; });
    return found == mCommands.end() ? nullptr : found->get();
}

Command *CommandTable::Create(std::string_view name, std::string_view description) {
    if (Command *existing = Find(name))
        return existing;
    mCommands.push_back(
        std::make_unique<Command>(Command{std::string(name), std::string(description), /*act=*/nullptr}));
    return mCommands.back().get();
}

void CommandTable::Run(void *command, CommandPhase phase) const {
    Command *known = Known(command);
    if (!known)
        return;
    Command &running = *known; // handlers may create commands: the table moves, its entries do not
    const int begin = phase == CommandPhase::Begin;
    const int end = phase == CommandPhase::End;
    running.begun += begin - end;
    if (AVSKCommandHook(command, begin, end, /*before=*/1) == 0)
        return;
    if (running.act)
        running.act(phase);
    AVSKCommandHook(command, begin, end, /*before=*/0);
}

void FillCommandSlots(AVSKHostCallbacks &table) {
    table.findCommand = FindCommand;
    table.beginCommand = BeginCommand;
    table.continueCommand = ContinueCommand;
    table.endCommand = EndCommand;
}

} // namespace host
