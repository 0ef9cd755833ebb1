// Starts the library with the simulator's services and stops it again. Called
// by Main.cpp and by sessions.
#ifndef AVSK_HOST_SERVICES_LIFETIME_H
#define AVSK_HOST_SERVICES_LIFETIME_H

namespace host {

struct Simulator;

// Makes the simulator the one that the slots find, and its table of services.
void Prepare(Simulator &simulator);
// Loads the plugins of all places. Throws UsageError if there are none.
void StartPlugins(Simulator &simulator);
// Unloads them and finishes what they left under way.
void StopPlugins(Simulator &simulator);

} // namespace host

#endif
