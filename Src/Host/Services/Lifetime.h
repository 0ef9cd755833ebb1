// Starts the library with the simulator's services and stops it. Called by runs
// and by sessions.
#ifndef AVSK_HOST_SERVICES_LIFETIME_H
#define AVSK_HOST_SERVICES_LIFETIME_H

namespace host {

struct Simulator;

// Makes this the simulator that the services use, and fills its table of services.
void Prepare(Simulator &simulator);
// Loads the plugins of all places; through the library's reload, if the
// simulator has a function that places them. Throws UsageError if none was loaded and one is needed.
void StartPlugins(Simulator &simulator, bool isOneNeeded = true);
// Unloads all plugins and completes the loads that they left pending.
void StopPlugins(Simulator &simulator);

} // namespace host

#endif
