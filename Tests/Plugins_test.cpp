// The registry, enabling, reloading, messages, features and errors.
#include "World.h"

#include "AVSK/AVSKUtilities.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <stdexcept>

namespace {

class Plugins : public testing::Test {
  protected:
    World world;
    FakeHost &host = Host();
};

std::string Info(int plugin) {
    char texts[4][AVSK_TEXT_SIZE];
    std::memset(texts, 'x', sizeof texts);
    AVSKGetPluginInfo(plugin, texts[0], texts[1], texts[2], texts[3]);
    return std::string(texts[0]) + "|" + texts[1] + "|" + texts[2] + "|" + texts[3];
}

// ---- Registry

TEST_F(Plugins, TheHostHasItsSignatureInThePathAndNoneOfItsOwn) {
    world.StartQuietly();
    EXPECT_EQ(Info(0), "Aerivo|corvane.aerivo.aerivo||Aerivo flight simulator");
    EXPECT_EQ(AVSKFindPluginByPath("corvane.aerivo.aerivo"), 0);
    EXPECT_EQ(AVSKFindPluginBySignature("corvane.aerivo.aerivo"), -1);
    EXPECT_EQ(AVSKFindPluginBySignature(""), 0);
    EXPECT_EQ(AVSKIsPluginEnabled(0), 1);
    EXPECT_EQ(AVSKGetMyID(), 0);
}

TEST_F(Plugins, AreFoundByExactPathAndSignature) {
    const Puppet &a = world.Install("A");
    world.StartQuietly();
    EXPECT_EQ(Info(1), "Name of A|" + a.path + "|test.A|Description of A");
    EXPECT_EQ(AVSKFindPluginByPath(a.path.c_str()), 1);
    EXPECT_EQ(AVSKFindPluginByPath((a.path + " ").c_str()), -1);
    EXPECT_EQ(AVSKFindPluginBySignature("test.a"), -1);
    EXPECT_EQ(AVSKFindPluginByPath(nullptr), -1);
    EXPECT_EQ(AVSKFindPluginBySignature(nullptr), -1);
}

TEST_F(Plugins, BadIDsAreHarmless) {
    world.Install("A");
    world.StartQuietly();
    for (const int bad : {-1, -2, 2, 7, 0x7fffffff}) {
        SCOPED_TRACE(bad);
        EXPECT_EQ(AVSKGetNthPlugin(bad), bad);
        EXPECT_EQ(AVSKIsPluginEnabled(bad), 0);
        EXPECT_EQ(AVSKEnablePlugin(bad), 0);
        AVSKDisablePlugin(bad);
        EXPECT_EQ(Info(bad), "|||");
        if (bad != -1)
            AVSKSendMessageToPlugin(bad, 1, nullptr);
    }
    AVSKGetPluginInfo(1, nullptr, nullptr, nullptr, nullptr);
    EXPECT_EQ(Take(), Lines());
}

TEST_F(Plugins, TheCallingPluginHasALabel) {
    const Puppet &a = world.Install("A");
    world.StartQuietly();
    EXPECT_STREQ(AVSKDebugGetCurrentPluginName(), "[AVSK_PLUGIN_AERIVO]");
    a.Run([] { EXPECT_STREQ(AVSKDebugGetCurrentPluginName(), "Name of A"); });
}

// ---- Enabling

TEST_F(Plugins, TheHostIsNeitherEnabledNorDisabled) {
    world.StartQuietly();
    EXPECT_EQ(AVSKEnablePlugin(0), 0);
    AVSKDisablePlugin(0);
    EXPECT_EQ(AVSKIsPluginEnabled(0), 1);
}

TEST_F(Plugins, EntriesSeeTheFlagOffAndTheirOwnID) {
    Puppet &a = world.Install("A");
    world.Install("B");
    const auto check = [] {
        EXPECT_EQ(AVSKGetMyID(), 1);
        EXPECT_EQ(AVSKIsPluginEnabled(1), 0);
        return 7; // anything but 0 accepts
    };
    a.enable = check;
    a.disable = check;
    world.StartQuietly();
    EXPECT_EQ(AVSKIsPluginEnabled(1), 1);
    EXPECT_EQ(AVSKEnablePlugin(1), 1) << "enabled already";
    EXPECT_EQ(Take(), Lines());
    AVSKDisablePlugin(1);
    AVSKDisablePlugin(1);
    EXPECT_EQ(Take(), Lines{"disable A"});
    EXPECT_EQ(AVSKEnablePlugin(1), 1);
    EXPECT_EQ(Take(), Lines{"enable A"});
    EXPECT_EQ(AVSKGetMyID(), 0);
}

TEST_F(Plugins, ARefusedEnableIsAskedAgainNextTime) {
    Puppet &a = world.Install("A");
    int answer = 0;
    a.enable = [&] { return answer; };
    world.StartQuietly();
    EXPECT_EQ(AVSKIsPluginEnabled(1), 0);
    EXPECT_EQ(AVSKEnablePlugin(1), 0);
    answer = 1;
    EXPECT_EQ(AVSKEnablePlugin(1), 1);
    EXPECT_EQ(Take(), (Lines{"enable A", "enable A"}));
}

TEST_F(Plugins, APluginMayDisableItself) {
    const Puppet &a = world.Install("A");
    world.StartQuietly();
    a.Run([] {
        AVSKDisablePlugin(AVSKGetMyID());
        EXPECT_EQ(AVSKGetMyID(), 1);
    });
    EXPECT_EQ(AVSKIsPluginEnabled(1), 0);
    EXPECT_EQ(Take(), Lines{"disable A"});
}

// ---- Messages

TEST_F(Plugins, ABroadcastReachesEverybodyInOrderTheSenderIncluded) {
    world.Install("A");
    const Puppet &b = world.Install("B");
    world.Install("C");
    world.InstallDefective("Resources/plugins/Deaf/lin.avp", "OnlyStart");
    world.StartQuietly();
    AVSKDisablePlugin(1);
    Take();
    b.Run([] { AVSKSendMessageToPlugin(NO_PLUGIN_ID, 42, reinterpret_cast<void *>(9)); });
    EXPECT_EQ(Take(), (Lines{"receiveMessage(2, 42, 9)", "message B 2 42 9", "message C 2 42 9"}));
}

TEST_F(Plugins, MessagesNestAndRestoreTheCaller) {
    const Puppet &a = world.Install("A");
    Puppet &b = world.Install("B");
    world.StartQuietly();
    b.message = [](int sender, int message, void *) {
        EXPECT_EQ(AVSKGetMyID(), 2);
        if (message < 3)
            AVSKSendMessageToPlugin(sender, message + 1, nullptr);
        EXPECT_EQ(AVSKGetMyID(), 2);
    };
    a.Run([] {
        AVSKSendMessageToPlugin(2, 1, nullptr);
        EXPECT_EQ(AVSKGetMyID(), 1);
        AVSKSendMessageToPlugin(0, 5, nullptr);
    });
    EXPECT_EQ(Take(), (Lines{"message B 1 1 0", "message A 2 2 0", "receiveMessage(1, 5, null)"}));
}

TEST_F(Plugins, AnExceptionPassesThroughAndRestoresTheCaller) {
    Puppet &a = world.Install("A");
    Puppet &b = world.Install("B");
    world.StartQuietly();
    b.message = [](int, int, void *) { throw std::runtime_error("b"); };
    a.Run([] {
        EXPECT_THROW(AVSKSendMessageToPlugin(2, 1, nullptr), std::runtime_error);
        EXPECT_EQ(AVSKGetMyID(), 1);
    });
    EXPECT_EQ(AVSKGetMyID(), 0);
    b.disable = [] { throw std::runtime_error("b"); };
    EXPECT_THROW(AVSKDisablePlugin(2), std::runtime_error);
    EXPECT_EQ(AVSKIsPluginEnabled(2), 0);
    EXPECT_EQ(AVSKGetMyID(), 0);
    b.enable = []() -> int { throw std::runtime_error("b"); };
    EXPECT_THROW(AVSKEnablePlugin(2), std::runtime_error);
    EXPECT_EQ(AVSKIsPluginEnabled(2), 0);
}

// ---- The registry changes inside calls

TEST_F(Plugins, TheRegistryMayGrowInsideAnyEntry) {
    constexpr int kMany = 40;
    for (int i = 0; i < kMany; ++i)
        world.InstallScenery("s" + std::to_string(i));
    const auto grow = [this] {
        world.LoadScenery();
        return 1;
    };
    const struct {
        const char *entry;
        void (*set)(Puppet &, const std::function<int()> &);
        void (*trigger)();
    } cases[] = {
        {"enable", [](Puppet &p, const std::function<int()> &f) { p.enable = f; }, [] { AVSKEnablePlugin(1); }},
        {"message", [](Puppet &p, const std::function<int()> &f) { p.message = [f](int, int, void *) { f(); }; },
         [] { AVSKSendMessageToPlugin(NO_PLUGIN_ID, 1, nullptr); }},
        {"disable", [](Puppet &p, const std::function<int()> &f) { p.disable = f; }, [] { AVSKDisablePlugin(1); }},
    };
    Puppet &a = world.Install("A");
    for (const auto &each : cases) {
        SCOPED_TRACE(each.entry);
        world.Start();
        if (std::string(each.entry) == "enable")
            AVSKDisablePlugin(1);
        each.set(a, grow);
        each.trigger();
        EXPECT_EQ(AVSKCountPlugins(), 2 + kMany);
        EXPECT_EQ(AVSKIsPluginEnabled(1), std::string(each.entry) != "disable");
        EXPECT_EQ(AVSKGetMyID(), 0);
        a.enable = nullptr;
        a.disable = nullptr;
        a.message = nullptr;
        world.Stop();
    }
}

TEST_F(Plugins, ABroadcastReachesPluginsThatItLoads) {
    Puppet &a = world.Install("A");
    world.InstallAircraft("air");
    world.StartQuietly();
    a.message = [](int, int message, void *) {
        if (message == 1)
            World::LoadAircraft();
    };
    AVSKSendMessageToPlugin(NO_PLUGIN_ID, 1, nullptr);
    EXPECT_EQ(Take(), (Lines{"receiveMessage(0, 1, null)", "message A 0 1 0", "receiveMessage(0, 102, null)",
                             "message A 0 102 0", "start air", "enable air", "message air 0 1 0"}));
}

TEST_F(Plugins, APluginLoadedInsideAStartComesBehindAndKeepsItsID) {
    Puppet &a = world.Install("A");
    const Puppet &air = world.InstallAircraft("air");
    a.start = [] {
        World::LoadAircraft();
        return 0;
    };
    world.StartQuietly();
    EXPECT_EQ(air.Id(), 2) << "the refused plugin's record keeps its place";
    EXPECT_EQ(AVSKIsPluginEnabled(1), 0);
    air.Run([] { EXPECT_EQ(AVSKGetMyID(), 2); });
}

TEST_F(Plugins, UnloadedInsideItsOwnCallbackItStaysMappedUntilThatReturns) {
    const struct {
        const char *callback;
        void (*arrange)(Puppet &, LoopPlayer &, MenuPlayer &, IntPlayer &);
        void (*trigger)();
    } cases[] = {
        {"message", [](Puppet &, LoopPlayer &, MenuPlayer &, IntPlayer &) {},
         [] { AVSKSendMessageToPlugin(1, 1, nullptr); }},
        {"flight loop",
         [](Puppet &p, LoopPlayer &player, MenuPlayer &, IntPlayer &) {
             AVSKRegisterFlightLoopCallback(p.code.flightLoop, -1, &player);
         },
         [] { World::Pass(1); }},
        {"menu",
         [](Puppet &p, LoopPlayer &, MenuPlayer &player, IntPlayer &) {
             AVSKAppendMenuItem(AVSKCreateMenu("M", nullptr, 0, p.code.menuPicked, &player), "I", nullptr, 0);
         },
         [] { AVSKMenuHook(Host().lastItemID); }},
        {"dataref",
         [](Puppet &p, LoopPlayer &, MenuPlayer &, IntPlayer &player) { Publish("air/x", p.code.readInt, &player); },
         [] { EXPECT_EQ(AVSKGetDatai(AVSKFindDataRef("air/x")), 5); }},
    };
    Puppet &air = world.InstallAircraft("air");
    const auto leave = [&air] {
        World::UnloadAircraft();
        EXPECT_TRUE(air.IsMapped());
        EXPECT_EQ(AVSKCountPlugins(), 1);
        EXPECT_EQ(AVSKGetMyID(), NO_PLUGIN_ID) << "what it still does is on nobody's account";
    };
    LoopPlayer loop = [&](float, float, int) { return leave(), -1.0F; };
    MenuPlayer menu = [&](void *) { leave(); };
    IntPlayer read = [&] { return leave(), 5; };
    world.StartQuietly();
    for (const auto &each : cases) {
        SCOPED_TRACE(each.callback);
        air.message = nullptr;
        World::LoadAircraft();
        air.Run([&] { each.arrange(air, loop, menu, read); });
        if (each.callback == std::string("message"))
            air.message = [&](int, int message, void *) {
                if (message == 1)
                    leave();
            };
        Take();
        air.returned = 0;
        each.trigger();
        EXPECT_GE(air.returned, 1) << "it came back into its own code";
        EXPECT_FALSE(air.IsMapped());
        EXPECT_EQ(AVSKGetMyID(), 0);
        const Lines journal = Take();
        EXPECT_EQ(std::count(journal.begin(), journal.end(), "stop air"), 1);
        World::Pass(2);
        EXPECT_EQ(Take(), Lines());
    }
}

TEST_F(Plugins, UnloadedInsideItsOwnCallOfAnotherItStaysMappedUntilBothReturn) {
    Puppet &a = world.Install("A");
    const Puppet &air = world.InstallAircraft("air");
    world.StartQuietly();
    World::LoadAircraft();
    a.message = [&](int, int message, void *) {
        if (message == 1)
            World::UnloadAircraft();
    };
    air.Run([&] {
        AVSKSendMessageToPlugin(a.Id(), 1, nullptr);
        EXPECT_TRUE(air.IsMapped());
        EXPECT_EQ(AVSKGetMyID(), NO_PLUGIN_ID);
    });
    EXPECT_FALSE(air.IsMapped());
}

TEST_F(Plugins, ItsExceptionMayStillBeUsedAfterItWasUnloaded) {
    const Puppet &air = world.InstallAircraft("air");
    world.StartQuietly();
    World::LoadAircraft();
    try {
        air.Run([&] {
            World::UnloadAircraft();
            air.code.throwOwn();
        });
        FAIL() << "nothing was thrown";
    } catch (...) {
        EXPECT_TRUE(air.IsMapped()) << "the exception's destructor is the plugin's";
    }
    AVSKEventHook(AVSKHostEventBroadcast101, 0, 0, 0);
    EXPECT_FALSE(air.IsMapped());
}

TEST_F(Plugins, StopIsCalledOnceThoughItEndsInUnloadingAgain) {
    Puppet &air = world.InstallAircraft("air");
    air.stop = [] { World::UnloadAircraft(); };
    world.StartQuietly();
    World::LoadAircraft();
    Take();
    World::UnloadAircraft();
    const Lines journal = Take();
    EXPECT_EQ(std::count(journal.begin(), journal.end(), "stop air"), 1);
    EXPECT_EQ(AVSKCountPlugins(), 1);
}

TEST_F(Plugins, StopIsCalledOnceThoughItEndsInAShutdown) {
    Puppet &a = world.Install("A");
    world.Install("B");
    a.stop = [] { AVSKShutdownPlugins(); };
    world.StartQuietly();
    world.Stop();
    EXPECT_EQ(Take(), (Lines{"disable A", "disable B", "stop A", "stop B"}));
    EXPECT_EQ(AVSKCountPlugins(), 0);
    EXPECT_FALSE(a.IsMapped());
}

TEST_F(Plugins, UnloadedInsideItsOwnEnableItStaysDisabled) {
    Puppet &air = world.InstallAircraft("air");
    world.InstallScenery("s");
    world.StartQuietly();
    World::LoadAircraft();
    world.LoadScenery(); // behind it, so that its record stays
    AVSKDisablePlugin(1);
    air.enable = [] {
        World::UnloadAircraft();
        return 1;
    };
    EXPECT_EQ(AVSKEnablePlugin(1), 0);
    EXPECT_EQ(AVSKIsPluginEnabled(1), 0);
    EXPECT_FALSE(air.IsMapped());
}

// ---- Reload

TEST_F(Plugins, AReloadRunsAtTheEndOfThePassAndOnce) {
    const Puppet &a = world.Install("A");
    world.InstallAircraft("air");
    world.InstallScenery("s");
    world.StartQuietly();
    world.LoadScenery();
    World::LoadAircraft();
    Take();
    int countDuringMessage = -1;
    host.on.showMessage = [&](const char *, const char *, const char *, const char *) {
        countDuringMessage = AVSKCountPlugins();
    };
    const LoopPlayer asks = [](float, float, int) {
        AVSKReloadPlugins();
        AVSKReloadPlugins();
        return Note("asks"), -1.0F;
    };
    const LoopPlayer next = [](float, float, int) { return Note("next"), -1.0F; };
    a.Run([&] {
        AVSKRegisterFlightLoopCallback(a.code.flightLoop, -1, const_cast<LoopPlayer *>(&next));
        AVSKRegisterFlightLoopCallback(a.code.flightLoop, -1, const_cast<LoopPlayer *>(&asks));
    });
    EXPECT_EQ(World::Pass(1), 1);
    EXPECT_EQ(Take(),
              (Lines{"asks", "next", "disable A", "disable s", "disable air", "stop air", "stop A", "stop s",
                     "showMessage(\"Please place your new plugin in the plugins folder.\", \"I will then reload all "
                     "plugins.\", \"\", \"\")",
                     "start A", "start air", "enable A", "enable air"}));
    EXPECT_EQ(countDuringMessage, 0);
    EXPECT_EQ(AVSKCountPlugins(), 3);
    World::Pass(2);
    EXPECT_EQ(Take(), Lines());
    World::UnloadAircraft();
    EXPECT_EQ(AVSKCountPlugins(), 2) << "the reloaded aircraft plugin is known as one";
}

TEST_F(Plugins, AReloadAskedForInsideAReloadIsDoneInTheNextPass) {
    Puppet &a = world.Install("A");
    world.StartQuietly();
    for (std::function<void()> Puppet::*entry : {&Puppet::disable, &Puppet::stop}) {
        a.*entry = [&a, entry] {
            a.*entry = nullptr;
            AVSKReloadPlugins();
        };
        AVSKReloadPlugins();
        for (const int starts : {1, 1, 0}) {
            World::Pass(1);
            const Lines journal = Take();
            EXPECT_EQ(std::count(journal.begin(), journal.end(), "start A"), starts);
        }
    }
}

// ---- Features

TEST_F(Plugins, FeaturesAreKnownByExactNameInAFixedOrder) {
    world.StartQuietly();
    AVSKEnumerateFeatures(
        [](const char *name, void *reference) { Note(name + std::string(static_cast<const char *>(reference))); },
        const_cast<char *>("!"));
    EXPECT_EQ(Take(), (Lines{"AVSK_WANTS_REFLECTIONS!", "AVSK_USE_NATIVE_PATHS!"}));
    EXPECT_EQ(AVSKHasFeature("AVSK_USE_NATIVE_PATHS"), 1);
    EXPECT_EQ(AVSKHasFeature("avsk_use_native_paths"), 0);
    EXPECT_EQ(AVSKHasFeature(nullptr), 0);
    AVSKEnumerateFeatures(nullptr, nullptr);
}

TEST_F(Plugins, AFeatureIsThePluginsOwnAndKeepsItsValue) {
    const Puppet &a = world.Install("A");
    const Puppet &b = world.Install("B");
    world.StartQuietly();
    a.Run([] {
        EXPECT_EQ(AVSKIsFeatureEnabled("AVSK_WANTS_REFLECTIONS"), 0);
        AVSKEnableFeature("AVSK_WANTS_REFLECTIONS", 5);
        EXPECT_EQ(AVSKIsFeatureEnabled("AVSK_WANTS_REFLECTIONS"), 5);
        EXPECT_EQ(AVSKIsFeatureEnabled("AVSK_USE_NATIVE_PATHS"), 0);
    });
    b.Run([] { EXPECT_EQ(AVSKIsFeatureEnabled("AVSK_WANTS_REFLECTIONS"), 0); });
    a.Run([] { EXPECT_EQ(AVSKIsFeatureEnabled("AVSK_WANTS_REFLECTIONS"), 5); });
}

TEST_F(Plugins, AnUnknownFeatureIsReportedInTheWordsOfTheEnablingCall) {
    const Puppet &a = world.Install("A");
    world.StartQuietly();
    const auto misuse = [] {
        EXPECT_EQ(AVSKIsFeatureEnabled("AVSK_FLYING_CARPETS"), 0);
        AVSKEnableFeature("AVSK_FLYING_CARPETS", 1);
    };
    const Lines twice(2, "error: Illegal feature name passed to AVSKEnableFeature");
    a.Run(misuse);
    EXPECT_EQ(Take(), Lines()) << "nobody listens";
    a.Run(JournalErrors);
    a.Run(misuse);
    EXPECT_EQ(Take(), twice);
    misuse();
    EXPECT_EQ(Take(), Lines()) << "the host has no callback of its own yet";
    JournalErrors();
    misuse();
    EXPECT_EQ(Take(), twice);
    a.Run([] { AVSKSetErrorCallback(nullptr); });
    a.Run(misuse);
    EXPECT_EQ(Take(), Lines());
    EXPECT_EQ(host.log, "") << "errors are not logged";
}

} // namespace
