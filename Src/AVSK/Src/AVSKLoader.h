// The registry of plugins and the functions that load, enable and unload them.
#ifndef AVSK_LOADER_H
#define AVSK_LOADER_H

#include "AVSK/AVSKPlugins.h"
#include "AVSKDelivery.h"
#include "AVSKFeatures.h"

#include <memory>
#include <string>
#include <vector>

// Known to be local, so that it is reached without the global offset table.
#pragma GCC visibility push(hidden)

struct PluginRecord {
    void *handle = nullptr; // null for the host and after unloading
    std::string name;
    std::string path;
    std::string signature;
    std::string description;
    void (*stopFunc)() = nullptr;
    int (*enableFunc)() = nullptr;
    void (*disableFunc)() = nullptr;
    void (*receiveMessageFunc)(int sender, int message, void *parameter) = nullptr;
    AVSKError_f errorCallback = nullptr;
    bool enabled = false;
    int features[kFeatureCount] = {};
    AVSKDeliveryHead pendingDeliveries;  // the host has not completed them
    AVSKDeliveryHead deferredDeliveries; // completed while the plugin was disabled
    bool unloaded = false;               // torn down; the record only keeps its ID taken
    int id = NO_PLUGIN_ID;
};

// A plugin's ID is its index. Records are shared so that one outlives its
// removal while a function that called its plugin is still under way.
using PluginRegistry = std::vector<std::shared_ptr<PluginRecord>>;
extern PluginRegistry &gAllPlugins;
// The records' enabled flags once more, side by side, for the guard of every call.
struct AVSKCallFlags {
    const unsigned char *enabled;
    unsigned count;
};
extern AVSKCallFlags gCallFlags;
extern std::vector<int> &gCurrentAircraftPluginIDS; // in load order
extern bool gScheduleReload;                        // a plugin asked for a reload

// The record behind an ID, or null.
inline PluginRecord *AVSKPluginAt(int id) {
    return static_cast<unsigned>(id) < gAllPlugins.size() ? gAllPlugins[static_cast<unsigned>(id)].get() : nullptr;
}

// Registers the host as plugin 0 and loads the plugins of its "Resources/plugins" folder.
void AVSKFindAndLoadPlugins(const char *hostFolder);
// Loads, without enabling, the plugins of an aircraft folder.
void AVSKFindAndLoadAcfPlugins(const char *aircraftFolder);
// Loads and enables the plugins of a scenery folder, whose path ends in a separator.
void AVSKFindAndLoadSceneryPlugins(const char *sceneryFolder);
// Loads and enables the plugins of the user's aircraft, which the host names.
void AVSKLoadUsersAircraftPlugins();

// Load one plugin and return its ID, or log the reason and return -1.
int LoadFatPlugin(const std::string &folder);
int LoadOnePlugin(const std::string &path, int reportMissing);
// Tears one plugin down. Its record stays; it is neither disabled nor removed here.
void UnloadOnePlugin(int id);

// Tears every plugin down and empties the registry.
void AVSKUnloadPlugins();
// Disables every plugin, then tears them down.
void AVSKDisableAndUnloadPlugins();
// Tears the current aircraft plugins down and removes those at the registry's end.
void AVSKUnloadAcfPlugin();
// The part of a path behind its last "plugins" and the separator that follows.
const char *StripPluginsFolder(const char *path);

void AVSKEnableAllPlugins();
void AVSKDisableAllPlugins();
void AVSKEnableACFPlugins();
void AVSKDisableACFPlugins();
void AVSKReloadPluginsInternal();

#pragma GCC visibility pop

#endif
