// Starting the library, and the event switch.
#include "World.h"

#include <regex>

namespace {

class HostHooks : public InWorld {};

// Before the start the host publishes the dataref for the library's build; the
// library writes it between creating the menu and looking for plugins.
TEST_F(HostHooks, StartCreatesTheMenuWritesTheBuildLoadsAndEnables) {
    static std::string build;
    AVSKRegisterDataAccessor(
        "sim/version/avsk_build_string", AVSKDataTypeData, 1, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr,
        nullptr, nullptr, nullptr, nullptr, nullptr,
        [](void *, void *bytes, int offset, int count) {
            EXPECT_EQ(offset, 0);
            build.assign(static_cast<const char *>(bytes), static_cast<std::size_t>(count));
            Note("build");
        },
        nullptr, nullptr);
    world.Install("A");
    world.Install("B");
    EXPECT_EQ(AVSKInitialized(), 0);
    EXPECT_EQ(world.Start(), 18);
    EXPECT_EQ(AVSKInitialized(), 1);
    EXPECT_EQ(Take(),
              (Lines{"createMenu(null, 0, \"Plugins\")", "build", "start A", "start B", "enable A", "enable B"}));
    ASSERT_FALSE(build.empty());
    EXPECT_EQ(build.back(), '\0');
    build.pop_back();
    EXPECT_TRUE(std::regex_match(build, std::regex("[A-Z][a-z]{2} [ 1-3]\\d \\d{4} \\d{2}:\\d{2}:\\d{2}"))) << build;
}

TEST_F(HostHooks, EventsAreBroadcastWithTheirMessages) {
    // By event, from -1 on: message and parameter.
    const std::string messages[] = {"",      "",      "", "101 0", "102 5", "103 0", "",      "104 0",
                                    "105 0", "106 5", "", "",      "107 0", "",      "108 5", ""};
    const Puppet &a = world.Install("A");
    world.StartQuietly();
    for (int event = -1; event < 15; ++event) {
        const std::string message = messages[event + 1];
        a.Run([&] { EXPECT_EQ(AVSKEventHook(event, 1, 99, event == AVSKHostEventSceneryFolder ? 0 : 5), 1); });
        const Lines heard = Take();
        ASSERT_EQ(heard.size(), message.empty() ? 0U : 2U) << event;
        if (!message.empty()) {
            EXPECT_EQ(heard[1], "message A 0 " + message) << "from the host, though inside A's call";
        }
        EXPECT_EQ(host.TakeLog(), "");
    }
}

TEST_F(HostHooks, StartedInsideAPluginsCallTheMenuIsTheHosts) {
    Puppet &a = world.Install("A");
    a.start = [&] { return AVSKGetMyID(); };
    world.StartQuietly();
    a.Run([&] { AVSKInitializePlugins(world.Path("").c_str(), &host.table, 0); });
    AVSKAppendMenuItem(AVSKFindPluginsMenu(), "item", nullptr, 0);
    AVSKDisablePlugin(1);
    EXPECT_EQ(AVSKMenuItemEnabled(host.Menu(2), 0), 1);
}

} // namespace
