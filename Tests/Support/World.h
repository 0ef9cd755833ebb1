// A temporary host folder with plugins in it, and the library running there;
// and the fixture of most tests.
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
    // Shuts the library down if it runs, and removes the folder.
    ~World();
    World(const World &) = delete;
    World &operator=(const World &) = delete;

    // The full path of something in the host's folder.
    std::string Path(const std::string &relative) const { return root + relative; }
    std::string PluginsFolder() const { return Path("Resources/plugins"); }

    // Puts a puppet file there; its label is as given, its signature "test." and the label.
    Puppet &InstallAt(const std::string &relative, const std::string &label);
    // As a plugin folder of that name in the plugins folder.
    Puppet &Install(const std::string &label);
    // In the user's aircraft's, and in a scenery's, plugins folder.
    Puppet &InstallAircraft(const std::string &label);
    Puppet &InstallScenery(const std::string &label);
    // Copies a plugin of the zoo.
    std::string InstallDefective(const std::string &relative, const std::string &fault);
    void MakeFolder(const std::string &relative) const;

    int Start();
    void Stop();
    // Start(), forgetting what it wrote.
    void StartQuietly();
    // The host's reports of the user's aircraft and of the scenery folder.
    static void LoadAircraft();
    static void UnloadAircraft();
    void LoadScenery() const;
    // One pass of the flight loops of phase 0.
    static int Pass(float now);

  private:
    std::string root; // ends in a separator
    bool running = false;
};

// A test with a folder that is still empty.
class InWorld : public testing::Test {
  protected:
    World world;
    FakeHost &host = Host();
};

// The stage of most tests of modules: plugins A and B and an aircraft's, which
// can be unloaded at any time by unloading the aircraft.
class ThreePlugins : public InWorld {
  protected:
    Puppet &a = world.Install("A");
    Puppet &b = world.Install("B");
    Puppet &air = world.InstallAircraft("air");

    void SetUp() override;
    // While what the plugins call is there.
    void TearDown() override { world.Stop(); }

    // Plugins leave nothing behind when all are unloaded.
    void Restart();
    // Keeps a player in place, for a refcon.
    template <class Player>
    void *Keep(Player f) {
        return players.emplace_back(std::make_shared<Player>(std::move(f))).get();
    }

  private:
    std::vector<std::shared_ptr<void>> players;
};

// The journal as "line; line", without messages, which come with every aircraft.
std::string TakeCalls();

// What a call answers and makes happen, "answer: line; line", or only the
// lines if it answers nothing. What happened before it is forgotten.
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

// Publishes a dataref of the calling plugin, an int if there is a reader.
AVSKDataRef Publish(const char *name, AVSKGetDatai_f readInt = nullptr, void *refcon = nullptr);

// Makes the calling plugin's errors lines of the journal: "error: text".
void JournalErrors();

#endif
