// The registry, enabling, reloading, messages, features and errors.
#include "World.h"

namespace {

class Registry : public InWorld {};
class Plugins : public ThreePlugins {};

std::string Info(int plugin) {
    char texts[4][AVSK_TEXT_SIZE];
    std::memset(texts, 'x', sizeof texts);
    AVSKGetPluginInfo(plugin, texts[0], texts[1], texts[2], texts[3]);
    return Line(texts[0], "|", texts[1], "|", texts[2], "|", texts[3]);
}

// ---- Registry

TEST_F(Registry, TheHostHasItsSignatureInThePathAndNoneOfItsOwn) {
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
    EXPECT_EQ(AVSKGetNthPlugin(7), 7);
    for (const int bad : {-1, -2, 4, 0x7fffffff}) {
        AVSKDisablePlugin(bad);
        AVSKSendMessageToPlugin(bad == NO_PLUGIN_ID ? 4 : bad, 1, nullptr);
        EXPECT_EQ(Line(AVSKIsPluginEnabled(bad), AVSKEnablePlugin(bad), Info(bad)), "00|||");
    }
    EXPECT_EQ(Take(), Lines());
    EXPECT_EQ(AVSKFindPluginByPath(nullptr), NO_PLUGIN_ID);
    EXPECT_EQ(AVSKFindPluginBySignature(nullptr), NO_PLUGIN_ID);
}

// ---- Enabling

TEST_F(Plugins, EntriesSeeTheFlagOffAndTheirOwnID) {
    int answer = 7; // any value but 0 accepts
    a.disable = [] { EXPECT_EQ(AVSKIsPluginEnabled(AVSKGetMyID()), 0); };
    a.enable = [&] { return a.disable(), answer; };
    Restart();
    EXPECT_EQ(DOES(AVSKEnablePlugin(1)), "1") << "enabled already";
    EXPECT_EQ(DOES_AS(a, AVSKDisablePlugin(1)), "disable A");
    EXPECT_EQ(DOES(AVSKDisablePlugin(1)), "");
    answer = 0;
    EXPECT_EQ(DOES(AVSKEnablePlugin(1)), "0: enable A");
    EXPECT_EQ(AVSKIsPluginEnabled(1), 0);
    answer = 1;
    EXPECT_EQ(DOES(AVSKEnablePlugin(1)), "1: enable A") << "asked again after a refusal";
    EXPECT_EQ(AVSKGetMyID(), 0);
}

// ---- Messages

TEST_F(Registry, ABroadcastReachesEverybodyInOrderTheSenderIncluded) {
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

// ---- The registry changes inside calls

TEST_F(Registry, TheRegistryMayGrowInsideAnyEntry) {
    for (int i = 0; i < 60; ++i)
        world.InstallScenery(Line("s", i));
    Puppet &a = world.Install("A");
    const auto grow = [&] { return AVSKCountPlugins() == 2 ? world.LoadScenery(), 1 : 1; };
    a.message = [&](int, int message, void *) { message == 1 ? grow() : 0; };
    a.disable = grow;
    for (const int entry : {0, 1, 2}) {
        a.enable = [&] { return entry ? 1 : grow(); };
        world.Start();
        entry == 1 ? AVSKSendMessageToPlugin(NO_PLUGIN_ID, 1, nullptr) : void();
        entry == 2 ? AVSKDisablePlugin(1) : void();
        EXPECT_EQ(AVSKCountPlugins(), 62);
        EXPECT_EQ(AVSKIsPluginEnabled(1), entry != 2);
        EXPECT_EQ(AVSKGetMyID(), 0);
        world.Stop();
    }
}

TEST_F(Plugins, WhatItStillDoesOnceUnloadedIsNobodys) {
    // Nests deeper than the library counts calls.
    air.message = [&, depth = 0](int, int message, void *) mutable {
        if (message == 1)
            ++depth < 1500 ? AVSKSendMessageToPlugin(3, 1, nullptr) : World::UnloadAircraft();
    };
    AVSKSendMessageToPlugin(3, 1, nullptr);
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
    World::LoadAircraft();
    int caller = -2;
    LoopPlayer hosts = [&](float, float, int) { return air.Run(World::UnloadAircraft), caller = AVSKGetMyID(), 0.0F; };
    AVSKRegisterFlightLoopCallback(a.code.flightLoop, -1, &hosts);
    World::Pass(1);
    EXPECT_EQ(caller, 0) << "a callback of the host stays the host's";
}

TEST_F(Registry, StopIsCalledOnceThoughItEndsInUnloadingAgainOrAShutdown) {
    Puppet &air = world.InstallAircraft("air");
    Puppet &a = world.Install("A");
    air.stop = World::UnloadAircraft;
    a.stop = AVSKShutdownPlugins;
    world.StartQuietly();
    World::LoadAircraft();
    EXPECT_EQ(DOES(World::UnloadAircraft()), "disable air; stop air");
    EXPECT_EQ(AVSKCountPlugins(), 2);
    EXPECT_EQ(DOES(world.Stop()), "disable A; stop A");
    EXPECT_EQ(AVSKCountPlugins(), 0);
    EXPECT_FALSE(a.IsMapped());

    a.stop = [] { AVSKReloadPlugins(), World::Pass(1); }; // the reload stays pending until the next start
    air.stop = AVSKShutdownPlugins;
    world.StartQuietly();
    World::LoadAircraft();
    // After the shutdown, nothing is loaded.
    EXPECT_EQ(DOES(World::UnloadAircraft(), World::LoadAircraft()), "disable air; stop air; disable A; stop A");
    EXPECT_EQ(AVSKCountPlugins(), 0);
}

// Disabling throws. The cleanup then still notifies the window of its lost focus, after it has removed the
// command handlers.
TEST_F(Plugins, WhatALastCallRegistersAnewIsTakenToo) {
    NoticePlayer losing;
    CommandPlayer command = [](AVSKCommandRef, int) { return Note("handled"), 1; };
    const auto key = [](AVSKWindowID, char, int, char, void *f, int) { (*static_cast<const NoticePlayer *>(f))(); };
    const AVSKPlanesAvailable_f offered = [](void *) { throw 3; };
    for (const bool throws : {false, true}) { // it throws again, then the host, which is offered the planes
        Restart();
        losing = [] { throw 1; };
        a.stop = [&] {
            losing = [&] { AVSKRegisterCommandHandler(&host, a.code.command, 1, &command), throws ? throw 2 : 0; };
        };
        a.Run([&] {
            AVSKAcquirePlanes(nullptr, nullptr, nullptr);
            Publish("mine");
            AVSKTakeKeyboardFocus(AVSKCreateWindow(0, 1, 1, 0, 1, nullptr, key, nullptr, &losing));
        });
        if (throws)
            AVSKAcquirePlanes(nullptr, offered, nullptr);
        EXPECT_THROW(world.Stop(), int);
        AVSKCommandHook(&host, 1, 0, 1);
        EXPECT_TRUE(TakeCalls().ends_with("stop A; stop B; stop air"));
        EXPECT_EQ(AVSKFindDataRef("mine"), nullptr);
        EXPECT_FALSE(a.IsMapped());
    }
}

// ---- Reload

TEST_F(Registry, AReloadRunsAtTheEndOfThePassAndOnce) {
    const Puppet &a = world.Install("A");
    world.InstallAircraft("air");
    world.InstallScenery("s");
    world.StartQuietly();
    world.LoadScenery();
    World::LoadAircraft();
    host.on.showMessage = [](auto...) { EXPECT_EQ(AVSKCountPlugins(), 0); };
    LoopPlayer asks = [](float, float, int) { return AVSKReloadPlugins(), AVSKReloadPlugins(), Note("asks"), -1.0F; };
    LoopPlayer next = [](float, float, int) { return Note("next"), -1.0F; };
    for (LoopPlayer *each : {&next, &asks})
        a.Run([&] { AVSKRegisterFlightLoopCallback(a.code.flightLoop, -1, each); });
    EXPECT_EQ(DOES(World::Pass(1)),
              "1: asks; next; disable A; disable s; disable air; stop air; stop A; stop s; showMessage(\"Please place "
              "your new plugin in the plugins folder.\", \"I will then reload all plugins.\", \"\", \"\"); start A; "
              "start air; enable A; enable air");
    EXPECT_EQ(DOES(World::Pass(2)), "1");
    World::UnloadAircraft();
    EXPECT_EQ(AVSKCountPlugins(), 2) << "the reloaded aircraft plugin is known as one";
}

// ---- Features

TEST_F(Plugins, AnUnknownFeatureIsReportedInTheWordsOfTheEnablingCall) {
    const auto noting = [](const char *name, void *) { Note(Line(name, AVSKHasFeature(name))); };
    EXPECT_EQ(DOES(AVSKEnumerateFeatures(noting, nullptr)), "AVSK_WANTS_REFLECTIONS1; AVSK_USE_NATIVE_PATHS1");
    AVSKEnumerateFeatures(nullptr, nullptr);
    EXPECT_EQ(AVSKHasFeature(nullptr), 0);
    const auto misuse = [] {
        AVSKEnableFeature("AVSK_FLYING_CARPETS", 1);
        return AVSKIsFeatureEnabled("AVSK_FLYING_CARPETS");
    };
    const std::string error = "error: Illegal feature name passed to AVSKEnableFeature";
    EXPECT_EQ(DOES_AS(a, misuse()), "0") << "nobody listens";
    a.Run(JournalErrors);
    EXPECT_EQ(DOES_AS(a, misuse()), "0: " + error + "; " + error);
    EXPECT_EQ(DOES(misuse()), "0") << "the host has no callback of its own";
    EXPECT_EQ(host.log, "") << "errors are not logged";
}

} // namespace
