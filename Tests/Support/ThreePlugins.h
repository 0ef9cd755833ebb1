// The stage of most tests of modules: plugins A and B and an aircraft's, which
// can be unloaded at any time by unloading the aircraft.
#ifndef AVSK_TESTS_THREE_PLUGINS_H
#define AVSK_TESTS_THREE_PLUGINS_H

#include "World.h"

#include <gtest/gtest.h>

#include <deque>
#include <utility>

// Player is what the refcon of the module's callbacks points to.
template <class Player>
class ThreePlugins : public testing::Test {
  protected:
    World world;
    FakeHost &host = Host();
    Puppet &a = world.Install("A");
    Puppet &b = world.Install("B");
    Puppet &air = world.InstallAircraft("air");

    void SetUp() override {
        world.Start();
        World::LoadAircraft();
        Take();
        host.TakeLog();
    }
    // While what the plugins call is there.
    void TearDown() override { world.Stop(); }

    // Plugins leave nothing behind when all are unloaded.
    void Restart() {
        world.Stop();
        SetUp();
    }
    // Keeps a player in place, for its refcon.
    void *Keep(Player f) { return &players.emplace_back(std::move(f)); }

  private:
    std::deque<Player> players;
};

#endif
