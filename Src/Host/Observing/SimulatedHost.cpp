// Answers from the simulator's parts; see SimulatedHost.h.
#include "SimulatedHost.h"

#include "Blame.h"

#include "OpenGL/Calls.h"
#include "Services/Simulator.h"

namespace host {

SimulatedHost::SimulatedHost(const Simulator &simulator) : mSimulator(simulator) {
    NameInnerCalls(opengl::AddCallUnderWay);
}

const int &SimulatedHost::Frame() const { return mSimulator.frame; }

std::string SimulatedHost::CommandName(const void *command) const {
    const Command *known = mSimulator.commands.Known(command);
    return known ? known->name : "";
}

bool SimulatedHost::HasCommand(const std::string &name) const {
    const Command *command = mSimulator.commands.Find(name.c_str());
    return command && command->act;
}

std::string SimulatedHost::Root() const { return mSimulator.options.root; }
std::string SimulatedHost::AircraftModel() const { return mSimulator.fleet.Model(0); }
std::string SimulatedHost::Shown(std::string_view text) const { return mSimulator.console.WithoutRoot(text); }
std::string SimulatedHost::LogFault() const { return mSimulator.console.LogFault(); }

} // namespace host
