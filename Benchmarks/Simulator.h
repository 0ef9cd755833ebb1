// A folder of plugins and the library started on it.
#ifndef AVSK_BENCH_SIMULATOR_H
#define AVSK_BENCH_SIMULATOR_H

#include "BenchPlugin.h"

#include "AVSK/AVSKPlugins.h"

#include <string>
#include <vector>

// A temporary host folder with copies of the plugin in Resources/plugins, each
// in a folder of its own. Removed at the end of the scope.
class PluginFolder {
  public:
    explicit PluginFolder(int plugins);
    ~PluginFolder();
    PluginFolder(const PluginFolder &) = delete;
    PluginFolder &operator=(const PluginFolder &) = delete;

    // In the form that AVSKInitializePlugins() expects.
    const std::string &Root() const { return root; }
    // Adds an aircraft with one plugin and makes it the user's.
    void AddAircraft();
    // The plugins' files, in the order in which the library loads them.
    const std::vector<std::string> &Files() const { return files; }

  private:
    std::string root;
    std::vector<std::string> files;
};

// The library, started with a number of plugins with IDs from 1; shut down at the
// end of the scope.
class Simulator {
  public:
    explicit Simulator(int plugins);
    ~Simulator();
    Simulator(const Simulator &) = delete;
    Simulator &operator=(const Simulator &) = delete;

    const std::vector<std::string> &Files() const { return folder.Files(); }

    // Adds an aircraft with one plugin; event 3 loads the plugin and event 8 unloads it.
    void AddAircraft() { folder.AddAircraft(); }

    // Calls a function on a plugin's account.
    template <class Function>
    void AsPlugin(AVSKPluginID plugin, Function function) {
        BenchTask task = {[](void *argument) { (*static_cast<Function *>(argument))(); }, &function};
        AVSKSendMessageToPlugin(plugin, kBenchRun, &task);
    }

  private:
    PluginFolder folder;
};

#endif
