// `avsk new`: writes a plugin project that builds outside this tree. Offered by
// Options.cpp; knows nothing of the simulator.
#ifndef AVSK_HOST_NEW_PROJECT_H
#define AVSK_HOST_NEW_PROJECT_H

namespace CLI {
class App;
}

namespace host {

// Adds the subcommand "new", which does its work while the command line is
// parsed. It throws UsageError.
void AddNewProjectCommand(CLI::App &app);

} // namespace host

#endif
