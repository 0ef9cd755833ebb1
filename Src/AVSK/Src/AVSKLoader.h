// The life cycle of plugins: discovery, loading, unloading, enabling,
// disabling and reloading. Floor 3.
#ifndef AVSK_LOADER_H
#define AVSK_LOADER_H

#include <string>
#include <vector>

// Hidden symbols are reached without the global offset table.
#pragma GCC visibility push(hidden)

extern std::vector<int> &gCurrentAircraftPluginIDS; // in load order
extern bool gScheduleReload;                        // a plugin asked for a reload

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
// here: a caller that returns to a plugin restores it with a guard.
int LoadFatPlugin(const std::string &folder);
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
// The part of a path after its last "plugins" and the separator that follows.
const char *StripPluginsFolder(const char *path);

void AVSKEnableAllPlugins();
void AVSKDisableAllPlugins();
void AVSKEnableACFPlugins();
void AVSKDisableACFPlugins();
void AVSKReloadPluginsInternal();

#pragma GCC visibility pop

#endif
