// Starting the library, the event switch, and what older hosts are spared.
#include "World.h"

#include "AVSK/AVSKUtilities.h"

#include <gtest/gtest.h>

#include <regex>
#include <set>

namespace {

class HostHooks : public testing::Test {
  protected:
    World world;
    FakeHost &host = Host();
};

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
    const struct {
        int event;
        const char *message; // null: none
        const char *parameter;
    } cases[] = {{-1, nullptr, ""}, {0, nullptr, ""}, {1, nullptr, ""},  {2, "101", "0"},
                 {3, "102", "5"},   {4, "103", "0"},  {5, nullptr, ""},  {6, "104", "0"},
                 {7, "105", "0"},   {8, "106", "5"},  {9, nullptr, ""},  {10, nullptr, ""},
                 {11, "107", "0"},  {13, "108", "5"}, {14, nullptr, ""}, {1000, nullptr, ""}};
    world.Install("A");
    world.StartQuietly();
    for (const auto &each : cases) {
        SCOPED_TRACE(each.event);
        EXPECT_EQ(AVSKEventHook(each.event, 1, 99, 5), 1);
        const std::string parameter = each.parameter;
        const std::string shown = parameter == "0" ? "null" : parameter;
        const Lines expected = each.message
                                   ? Lines{std::string("receiveMessage(0, ") + each.message + ", " + shown + ")",
                                           std::string("message A 0 ") + each.message + " " + parameter}
                                   : Lines{};
        EXPECT_EQ(Take(), expected);
        EXPECT_EQ(host.TakeLog(), "");
    }
}

TEST_F(HostHooks, AnEventInsideAPluginsCallIsStillTheHosts) {
    Puppet &a = world.Install("A");
    world.StartQuietly();
    a.Run([&] {
        AVSKEventHook(AVSKHostEventBroadcast101, 0, 0, 0);
        EXPECT_EQ(AVSKGetMyID(), a.Id());
    });
    EXPECT_EQ(Take(), (Lines{"receiveMessage(0, 101, null)", "message A 0 101 0"}));
}

TEST_F(HostHooks, ANullSceneryFolderIsIgnored) {
    world.StartQuietly();
    EXPECT_EQ(AVSKEventHook(AVSKHostEventSceneryFolder, 0, 0, 0), 1);
    EXPECT_EQ(host.log, "");
}

// Slot 54 needs version 4, slot 53 version 3, slot 33 a table of 288 bytes.
TEST_F(HostHooks, OlderHostsAreSparedTheSlotsTheyDoNotHave) {
    const struct {
        int version;
        int size;
        Lines called;
    } cases[] = {
        {2, 287, {}},
        {3, 287, {"showMessage"}},
        {4, 287, {"showMessage", "showProgress"}},
        {2, 288, {"destroyMenu"}},
        {5, 400, {"destroyMenu", "showMessage", "showProgress"}},
    };
    Puppet &a = world.InstallAt("Resources/plugins/A.avp", "A");
    for (const auto &each : cases) {
        SCOPED_TRACE(testing::Message() << "version " << each.version << ", size " << each.size);
        host.table.version = each.version;
        host.table.sizeInBytes = each.size;
        world.Start();
        a.Run([] { AVSKDestroyMenu(AVSKCreateMenu("M", nullptr, 0, nullptr, nullptr)); });
        AVSKReloadPlugins();
        World::Pass(1);
        world.Stop();
        std::set<std::string> called;
        for (const std::string &line : Take())
            for (const char *guarded : {"destroyMenu", "showMessage", "showProgress"})
                if (line.rfind(guarded, 0) == 0)
                    called.insert(guarded);
        EXPECT_EQ(Lines(called.begin(), called.end()), each.called);
    }
}

TEST_F(HostHooks, TheTableOutlivesTheShutdown) {
    world.StartQuietly();
    world.Stop();
    AVSKDebugString("still here");
    EXPECT_EQ(host.log, "still here");
    EXPECT_EQ(AVSKEventHook(AVSKHostEventBroadcast101, 0, 0, 0), 1);
    EXPECT_EQ(World::Pass(1), 1);
}

} // namespace
