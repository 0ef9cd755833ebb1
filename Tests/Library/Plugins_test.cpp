// The registry, enabling, reloading, messages, features and errors.
#include "World.h"

#include "AVSK/AVSKDisplay.h"
#include "AVSK/AVSKPlanes.h"
#include "AVSK/AVSKUtilities.h"

#include <cstring>

namespace {

class Plugins : public InWorld {};

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
    EXPECT_EQ(AVSKEnablePlugin(0), 0);
    AVSKDisablePlugin(0);
    EXPECT_EQ(AVSKIsPluginEnabled(0), 1);
    EXPECT_EQ(AVSKGetMyID(), 0);
}

TEST_F(Plugins, BadIDsAreHarmless) {
    world.Install("A");
    world.StartQuietly();
    EXPECT_EQ(AVSKGetNthPlugin(7), 7);
    for (const int bad : {-1, -2, 2, 0x7fffffff}) {
        EXPECT_EQ(AVSKIsPluginEnabled(bad), 0);
        EXPECT_EQ(AVSKEnablePlugin(bad), 0);
        AVSKDisablePlugin(bad);
        EXPECT_EQ(Info(bad), "|||");
        AVSKSendMessageToPlugin(bad == NO_PLUGIN_ID ? 2 : bad, 1, nullptr);
    }
    EXPECT_EQ(Take(), Lines());
    EXPECT_EQ(AVSKFindPluginByPath(nullptr), NO_PLUGIN_ID);
    EXPECT_EQ(AVSKFindPluginBySignature(nullptr), NO_PLUGIN_ID);
}

// ---- Enabling

TEST_F(Plugins, EntriesSeeTheFlagOffAndTheirOwnID) {
    Puppet &a = world.Install("A");
    int answer = 7; // anything but 0 accepts
    a.disable = [] { EXPECT_EQ(AVSKIsPluginEnabled(AVSKGetMyID()), 0); };
    a.enable = [&] { return a.disable(), answer; };
    world.StartQuietly();
    EXPECT_EQ(AVSKEnablePlugin(1), 1) << "enabled already";
    EXPECT_EQ(Take(), Lines());
    a.Run([] { AVSKDisablePlugin(1); });
    AVSKDisablePlugin(1);
    answer = 0;
    EXPECT_EQ(AVSKEnablePlugin(1), 0);
    EXPECT_EQ(AVSKIsPluginEnabled(1), 0);
    answer = 1;
    EXPECT_EQ(AVSKEnablePlugin(1), 1) << "asked again after a refusal";
    EXPECT_EQ(Take(), (Lines{"disable A", "enable A", "enable A"}));
    EXPECT_EQ(AVSKGetMyID(), 0);
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
        EXPECT_STREQ(AVSKDebugGetCurrentPluginName(), "Name of A");
        AVSKSendMessageToPlugin(0, 5, nullptr);
    });
    EXPECT_EQ(Take(), (Lines{"message B 1 1 0", "message A 2 2 0", "receiveMessage(1, 5, null)"}));
}

TEST_F(Plugins, AnExceptionPassesThroughAndRestoresTheCaller) {
    Puppet &a = world.Install("A");
    Puppet &b = world.Install("B");
    world.StartQuietly();
    b.message = [](int, int, void *) { throw 1; };
    a.Run([] {
        EXPECT_THROW(AVSKSendMessageToPlugin(2, 1, nullptr), int);
        EXPECT_EQ(AVSKGetMyID(), 1);
    });
    b.disable = [] { throw 1; };
    EXPECT_THROW(AVSKDisablePlugin(2), int);
    b.enable = []() -> int { throw 1; };
    EXPECT_THROW(AVSKEnablePlugin(2), int);
    EXPECT_EQ(AVSKIsPluginEnabled(2), 0);
    EXPECT_EQ(AVSKGetMyID(), 0);
}

// ---- The registry changes inside calls

TEST_F(Plugins, TheRegistryMayGrowInsideAnyEntry) {
    for (int i = 0; i < 60; ++i)
        world.InstallScenery(Line("s", i));
    Puppet &a = world.Install("A");
    const auto grow = [&] { return world.LoadScenery(), 1; };
    a.enable = grow;
    a.disable = [&] {
        if (AVSKCountPlugins() == 2)
            grow();
    };
    a.message = [&](int, int message, void *) {
        if (message == 1)
            grow();
    };
    void (*const triggers[])() = {[] {}, [] { AVSKSendMessageToPlugin(NO_PLUGIN_ID, 1, nullptr); },
                                  [] { AVSKDisablePlugin(1); }};
    for (std::size_t i = 0; i < 3; ++i) {
        world.Start(); // enables A
        a.enable = nullptr;
        triggers[i]();
        EXPECT_EQ(AVSKCountPlugins(), 62);
        EXPECT_EQ(AVSKIsPluginEnabled(1), i != 2);
        EXPECT_EQ(AVSKGetMyID(), 0);
        world.Stop();
    }
}

TEST_F(Plugins, UnloadedInsideItsOwnCallbackItStaysMappedUntilThatReturns) {
    Puppet &air = world.InstallAircraft("air");
    const auto leave = [&air] {
        World::UnloadAircraft();
        EXPECT_TRUE(air.IsMapped());
        EXPECT_EQ(AVSKCountPlugins(), 1);
        EXPECT_EQ(AVSKGetMyID(), NO_PLUGIN_ID) << "what it still does is on nobody's account";
        AVSKEnableFeature("AVSK_USE_NATIVE_PATHS", 1);
        return 5;
    };
    LoopPlayer loop = [&](float, float, int) { return leave(), -1.0F; };
    MenuPlayer menu = [&](void *) { leave(); };
    IntPlayer read = leave;
    const struct {
        const char *callback;
        std::function<void()> arrange;
        void (*trigger)();
    } cases[] = {
        {"flight loop", [&] { AVSKRegisterFlightLoopCallback(air.code.flightLoop, -1, &loop); },
         [] { World::Pass(1); }},
        {"menu",
         [&] { AVSKAppendMenuItem(AVSKCreateMenu("M", nullptr, 0, air.code.menuPicked, &menu), "I", nullptr, 0); },
         [] { AVSKMenuHook(Host().lastItemID); }},
        {"dataref", [&] { Publish("air/x", air.code.readInt, &read); },
         [] { EXPECT_EQ(AVSKGetDatai(AVSKFindDataRef("air/x")), 5); }},
        {"message",
         [&] {
             air.message = [&](int, int message, void *) {
                 if (message == 1)
                     leave();
             };
         },
         [] { AVSKSendMessageToPlugin(1, 1, nullptr); }},
    };
    world.StartQuietly();
    for (const auto &each : cases) {
        SCOPED_TRACE(each.callback);
        World::LoadAircraft();
        air.Run(each.arrange);
        Take();
        air.returned = 0;
        each.trigger();
        EXPECT_GE(air.returned, 1) << "it came back into its own code";
        EXPECT_FALSE(air.IsMapped());
        EXPECT_EQ(AVSKGetMyID(), 0);
        EXPECT_EQ(TakeCalls().substr(0, 21), "disable air; stop air");
        World::Pass(2);
        EXPECT_EQ(Take(), Lines());
    }
}

TEST_F(Plugins, WhatItStillDoesThenIsNobodys) {
    Puppet &air = world.InstallAircraft("air");
    world.StartQuietly();
    World::LoadAircraft();
    // Deeper than calls are counted.
    int depth = 0;
    air.message = [&](int, int message, void *) {
        if (message == 1 && ++depth < 1500)
            AVSKSendMessageToPlugin(1, 1, nullptr);
        else if (message == 1)
            World::UnloadAircraft();
    };
    AVSKSendMessageToPlugin(1, 1, nullptr);
    EXPECT_FALSE(air.IsMapped());
    World::LoadAircraft();
    air.Run([&] {
        World::UnloadAircraft();
        EXPECT_STREQ(AVSKDebugGetCurrentPluginName(), "[NO_PLUGIN_ID]");
        JournalErrors();
        host.TakeLog();
        AVSKCreateCommand("sim/x", "text");
    });
    EXPECT_EQ(host.TakeLog(), "[unknown]: It is illegal to register a command starting with sim/\n");
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

TEST_F(Plugins, StopIsCalledOnceThoughItEndsInUnloadingAgainOrAShutdown) {
    Puppet &air = world.InstallAircraft("air");
    Puppet &a = world.Install("A");
    air.stop = World::UnloadAircraft;
    a.stop = [] { AVSKShutdownPlugins(); };
    world.StartQuietly();
    World::LoadAircraft();
    Take();
    World::UnloadAircraft();
    EXPECT_EQ(TakeCalls(), "disable air; stop air");
    EXPECT_EQ(AVSKCountPlugins(), 2);
    world.Stop();
    EXPECT_EQ(TakeCalls(), "disable A; stop A");
    EXPECT_EQ(AVSKCountPlugins(), 0);
    EXPECT_FALSE(a.IsMapped());

    a.stop = [] { AVSKReloadPlugins(), World::Pass(1); }; // waits for the next flight
    air.stop = [] { AVSKShutdownPlugins(); };
    world.StartQuietly();
    World::LoadAircraft();
    TakeCalls();
    World::UnloadAircraft();
    World::LoadAircraft(); // without the host nothing is loaded
    EXPECT_EQ(TakeCalls(), "disable air; stop air; disable A; stop A");
    EXPECT_EQ(AVSKCountPlugins(), 0);
}

// The disabling fails, so at its cleanup the window is still told, when command handlers were taken already.
TEST_F(Plugins, WhatALastCallRegistersAnewIsTakenToo) {
    Puppet &a = world.Install("A");
    world.StartQuietly();
    CommandPlayer command = [](AVSKCommandRef, int) { return Note("handled"), 1; };
    NoticePlayer losing = [] { throw 1; };
    a.stop = [&] { losing = [&] { AVSKRegisterCommandHandler(&host, a.code.command, 1, &command); }; };
    a.Run([&] {
        AVSKTakeKeyboardFocus(AVSKCreateWindow(
            0, 1, 1, 0, 1, nullptr,
            [](AVSKWindowID, char, int, char, void *refcon, int) { (*static_cast<const NoticePlayer *>(refcon))(); },
            nullptr, &losing));
    });
    TakeCalls();
    EXPECT_THROW(world.Stop(), int);
    AVSKCommandHook(&host, 1, 0, 1);
    EXPECT_EQ(TakeCalls(), "stop A");
}

// ---- Reload

TEST_F(Plugins, AReloadRunsAtTheEndOfThePassAndOnce) {
    const Puppet &a = world.Install("A");
    world.InstallAircraft("air");
    world.InstallScenery("s");
    world.StartQuietly();
    world.LoadScenery();
    World::LoadAircraft();
    host.on.showMessage = [&](const char *, const char *, const char *, const char *) {
        EXPECT_EQ(AVSKCountPlugins(), 0);
    };
    LoopPlayer asks = [](float, float, int) { return AVSKReloadPlugins(), AVSKReloadPlugins(), Note("asks"), -1.0F; };
    LoopPlayer next = [](float, float, int) { return Note("next"), -1.0F; };
    for (LoopPlayer *each : {&next, &asks})
        a.Run([&] { AVSKRegisterFlightLoopCallback(a.code.flightLoop, -1, each); });
    Take();
    EXPECT_EQ(World::Pass(1), 1);
    EXPECT_EQ(Take(),
              (Lines{"asks", "next", "disable A", "disable s", "disable air", "stop air", "stop A", "stop s",
                     "showMessage(\"Please place your new plugin in the plugins folder.\", \"I will then reload all "
                     "plugins.\", \"\", \"\")",
                     "start A", "start air", "enable A", "enable air"}));
    World::Pass(2);
    EXPECT_EQ(Take(), Lines());
    World::UnloadAircraft();
    EXPECT_EQ(AVSKCountPlugins(), 2) << "the reloaded aircraft plugin is known as one";
}

// ---- Features

TEST_F(Plugins, AnUnknownFeatureIsReportedInTheWordsOfTheEnablingCall) {
    const Puppet &a = world.Install("A");
    world.StartQuietly();
    AVSKEnumerateFeatures([](const char *name, void *) { Note(Line(name, AVSKHasFeature(name))); }, nullptr);
    EXPECT_EQ(Take(), (Lines{"AVSK_WANTS_REFLECTIONS1", "AVSK_USE_NATIVE_PATHS1"}));
    AVSKEnumerateFeatures(nullptr, nullptr);
    EXPECT_EQ(AVSKHasFeature(nullptr), 0);
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
    EXPECT_EQ(Take(), Lines()) << "the host has no callback of its own";
    EXPECT_EQ(host.log, "") << "errors are not logged";
}

} // namespace
