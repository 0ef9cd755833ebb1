// The registry: one record per plugin, and the enabled flags beside the
// records. Floor 3.
#ifndef AVSK_LOADER_REGISTRY_H
#define AVSK_LOADER_REGISTRY_H

#include "AVSK/AVSKPlugins.h"
#include "AVSKDelivery.h"
#include "AVSKFeatures.h"

#include <memory>
#include <string>
#include <vector>

// Hidden symbols are reached without the global offset table.
#pragma GCC visibility push(hidden)

struct PluginRecord {
    void *handle = nullptr; // null for the host, while the file is being loaded, and after unloading
    std::string name;
    std::string path;
    std::string signature;
    std::string description;
    void (*stopFunc)() = nullptr;
    int (*enableFunc)() = nullptr;
    void (*disableFunc)() = nullptr;
    void (*receiveMessageFunc)(int sender, int message, void *parameter) = nullptr;
    AVSKError_f errorCallback = nullptr;
    bool enabled = false;  // written by SetPluginEnabled
    bool enabling = false; // the enable entry is running
    int features[kFeatureCount] = {};
    AVSKDeliveryHead pendingDeliveries;  // the host has not completed them
    AVSKDeliveryHead deferredDeliveries; // completed while the plugin was disabled
    bool unloaded = false;               // the record only reserves its ID
    bool unmapping = false;              // its static destructors, or the clean-up after them, are running
    int id = NO_PLUGIN_ID;
};

// Exceptions that LastCalls holds. No library is unmapped meanwhile.
extern int gHeldExceptions;

// A plugin's ID is the index of its record. Records are shared: a function
// that calls a plugin keeps the record alive if it leaves the registry during
// the call.
using PluginShare = std::shared_ptr<PluginRecord>;
using PluginRegistry = std::vector<PluginShare>;
extern PluginRegistry &gAllPlugins;

inline int PluginCount() { return static_cast<int>(gAllPlugins.size()); }

// The record of an ID, or null.
inline PluginRecord *PluginAt(int id) {
    return static_cast<unsigned>(id) < gAllPlugins.size() ? gAllPlugins[static_cast<unsigned>(id)].get() : nullptr;
}

// The same, and keeps it alive.
PluginShare SharePlugin(int id);

// These keep the records and the flags in step.
void AppendPlugin(const PluginShare &record);
void RemoveLastPlugin();
PluginRegistry RemoveAllPlugins();
void SetPluginEnabled(PluginRecord &record, bool enabled);

#pragma GCC visibility pop

#endif
