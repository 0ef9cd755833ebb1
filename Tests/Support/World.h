// A temporary host folder with plugins, in which the library runs, and the
// fixture of most tests.
#ifndef AVSK_TESTS_WORLD_H
#define AVSK_TESTS_WORLD_H

#include "FakeHost.h"
#include "Puppet.h"

#include "AVSK/AVSK.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <memory>
#include <tuple>
#include <utility>

// The rows of a table-driven test: for (const auto &[input, output] : Table<int, std::string>{{1, "a"}, ...})
template <class... Columns>
using Table = std::vector<std::tuple<Columns...>>;

class World {
  public:
    World();
    // Shuts the library down if it is running and removes the folder.
    ~World();
    World(const World &) = delete;
    World &operator=(const World &) = delete;

    // Returns the full path of an entry of the host's folder.
    std::string Path(const std::string &relative) const { return root + relative; }
    std::string PluginsFolder() const { return Path("Resources/plugins"); }

    // Installs a puppet at that path. Its signature is "test." followed by its label.
    Puppet &InstallAt(const std::string &relative, const std::string &label);
    // Installs it in a folder named like the label, in the plugins folder.
    Puppet &Install(const std::string &label) { return InstallAt("Resources/plugins/" + label + "/lin.avp", label); }
    // Install it in the plugins folder of the user's aircraft, or of a scenery.
    Puppet &InstallAircraft(const std::string &label) {
        return InstallAt("Aircraft/plugins/" + label + "/lin.avp", label);
    }
    Puppet &InstallScenery(const std::string &label) {
        return InstallAt("Scenery/plugins/" + label + "/lin.avp", label);
    }
    // Copies a plugin of the zoo.
    std::string InstallDefective(const std::string &relative, const std::string &fault);
    void MakeFolder(const std::string &relative) const { std::filesystem::create_directories(Path(relative)); }

    int Start();
    void Stop();
    // Calls Start() and clears the journal and the log.
    void StartQuietly();
    // Send the host events for the user's aircraft and for the scenery folder.
    static void LoadAircraft() { AVSKEventHook(AVSKHostEventPlaneLoaded, 0, 0, 0); }
    static void UnloadAircraft() { AVSKEventHook(AVSKHostEventPlaneUnloaded, 0, 0, 0); }
    void LoadScenery() const;
    // Runs one pass of the flight loops of phase 0.
    static int Pass(float now) { return AVSKEventHook(AVSKHostEventFrame, now, 0, 0); }

  private:
    std::string root; // ends in a separator
    bool running = false;
};

// A test whose folder has no plugins yet.
class InWorld : public testing::Test {
  protected:
    World world;
    FakeHost &host = Host();
};

// The fixture of most module tests: plugins A and B, and an aircraft plugin,
// which a test can unload at any time by unloading the aircraft.
class ThreePlugins : public InWorld {
  protected:
    Puppet &a = world.Install("A");
    Puppet &b = world.Install("B");
    Puppet &air = world.InstallAircraft("air");

    void SetUp() override;
    // Shuts down while the objects that the plugins call still exist.
    void TearDown() override { world.Stop(); }

    // Unloads all plugins and starts again, so that nothing is left of earlier cases.
    void Restart();
    // Stores a player at a fixed address and returns that address, for use as a refcon.
    template <class Player>
    void *Keep(Player f) {
        return players.emplace_back(std::make_shared<Player>(std::move(f))).get();
    }

  private:
    std::vector<std::shared_ptr<void>> players;
};

// Returns the journal as "line; line" and clears it. Leaves messages out: every aircraft load sends some.
std::string TakeCalls();

// Clears the journal, makes the call, and returns its result and its journal
// lines as "result: line; line". Without a result, returns only the lines.
template <class Call>
std::string Does(Call call) {
    TakeCalls();
    if constexpr (std::is_void_v<decltype(call())>) {
        call();
        return TakeCalls();
    } else {
        const std::string answer = Line(call());
        const std::string calls = TakeCalls();
        return calls.empty() ? answer : answer + ": " + calls;
    }
}
#define DOES(...) Does([&] { return __VA_ARGS__; })
#define DOES_AS(plugin, ...) Does([&] { return (plugin).Run([&] { return __VA_ARGS__; }); })

// A callback of any type.
template <class Result, class... Arguments>
Result Nothing(Arguments... /*all*/) {
    return Result();
}

// Registers a dataref of the calling plugin. readInt, which may be null, reads it.
AVSKDataRef Publish(const char *name, AVSKGetDatai_f readInt = nullptr, void *refcon = nullptr);

// Journals the calling plugin's errors as "error: text".
void JournalErrors();

#endif
