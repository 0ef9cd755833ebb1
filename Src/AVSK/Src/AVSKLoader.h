// The life cycle of plugins: discovery, loading, unloading, enabling,
// disabling and reloading. Floor 3.
#ifndef AVSK_LOADER_H
#define AVSK_LOADER_H

#include <string>
#include <vector>

// Hidden symbols are reached without the global offset table.
#pragma GCC visibility push(hidden)

class LastCalls;

extern std::vector<int> &gCurrentAircraftPluginIDS; // in load order
extern bool gScheduleReload;                        // a plugin asked for a reload

// These load or enable several plugins. If one throws, the others are loaded
// and enabled all the same, and the first exception passes on afterwards.

// Starts the library: calls prepare, then loads the plugins of the host's folder
// and enables them. Ends if prepare leads to a shutdown or to another start.
void LoadAndEnablePlugins(const char *hostFolder, void (*prepare)());
// Registers the host as plugin 0 and loads the plugins of its "Resources/plugins" folder.
void AVSKFindAndLoadPlugins(const char *hostFolder);
// Loads, without enabling, the plugins of an aircraft folder.
void AVSKFindAndLoadAcfPlugins(const char *aircraftFolder);
// Loads and enables the plugins of a scenery folder, whose path ends in a separator.
void AVSKFindAndLoadSceneryPlugins(const char *sceneryFolder);
// Loads and enables the plugins of the user's aircraft, which the host names.
void LoadUsersAircraftPlugins();

// Load one plugin and return its ID, or log the reason and return -1. The host
// is the dispatched plugin after every start call, even if a plugin's call led
// here: a caller that returns to a plugin restores it with a guard. LoadFatPlugin
// tries two files and leaves their exceptions with its caller's calls.
int LoadFatPlugin(const std::string &folder, LastCalls &calls);
int LoadOnePlugin(const std::string &path, int reportMissing);
// Tears one plugin down. It does not call the plugin's disable entry, and the
// record stays in the registry.
void UnloadOnePlugin(int id);

// Tears every plugin down and empties the registry.
void AVSKUnloadPlugins();
// Disables every plugin, then tears them down.
void DisableAndUnloadPlugins();
// Tears the current aircraft plugins down and removes those at the registry's end.
void AVSKUnloadAcfPlugin();
// Disables the current aircraft plugins, then tears them down.
void UnloadUsersAircraftPlugins();
// The part of a path after its last "plugins" and the separator that follows.
const char *StripPluginsFolder(const char *path);

void AVSKEnableAllPlugins();
void AVSKDisableAllPlugins();
void AVSKEnableACFPlugins();
void AVSKDisableACFPlugins();
void AVSKReloadPluginsInternal();

#pragma GCC visibility pop

#endif
