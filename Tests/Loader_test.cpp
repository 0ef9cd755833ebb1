// Discovery, loading and unloading, with the exact log.
#include "World.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <stdexcept>

#include <unistd.h>

namespace {

const char *const kPluginsMenu = "createMenu(null, 0, \"Plugins\")";

class Loader : public testing::Test {
  protected:
    World world;
    FakeHost &host = Host();
    const std::string folder = world.PluginsFolder();
    const std::string fetching = "Fetching plugins for " + folder + "\n\n";

    std::string Loaded(const Puppet &puppet) const {
        return "Loaded: " + puppet.path + " (" + puppet.signature + ").\n\n";
    }

    // Starts the library and returns what it logs after the first line.
    std::string LogOfStart() {
        world.Start();
        EXPECT_EQ(host.log.substr(0, fetching.size()), fetching);
        return host.TakeLog().substr(fetching.size());
    }
};

// "dlerror:" and the system's reason, of which only the presence is ours.
std::string WithoutReasons(const std::string &log) {
    std::string result;
    for (std::size_t at = 0; at < log.size();) {
        const std::size_t end = log.find('\n', at);
        const std::string line = log.substr(at, end - at);
        const bool reason = line.rfind("dlerror:", 0) == 0 && line.size() > 8;
        result += (reason ? "dlerror:..." : line) + "\n";
        at = end + 1;
    }
    return result;
}

TEST_F(Loader, AnEmptyFolderIsLoggedAndTheHostRegistered) {
    EXPECT_EQ(world.Start(), 18);
    EXPECT_EQ(host.logPieces, (Lines{"Fetching plugins for ", folder, "\n\n"}));
    EXPECT_EQ(AVSKCountPlugins(), 1);
}

TEST_F(Loader, AdminComesFirstThenFilesThenFoldersInByteOrder) {
    for (const char *label : {"b", "Z", "PluginAdmin", "PluginAdmin copy", "AVSK.framework", "AVWidgets.framework"})
        world.Install(label);
    world.InstallAt("Resources/plugins/z.avp", "z.avp");
    world.InstallAt("Resources/plugins/A.AVP", "A.AVP");
    world.InstallAt("Resources/plugins/OldPluginAdmin.avp", "OldPluginAdmin");
    world.Start();
    EXPECT_EQ(Take(), (Lines{kPluginsMenu, "start PluginAdmin", "showProgress(\"Loading Plugin: A.AVP\")",
                             "start A.AVP", "showProgress(\"Loading Plugin: z.avp\")", "start z.avp", "start Z",
                             "start b", "enable PluginAdmin", "enable A.AVP", "enable z.avp", "enable Z", "enable b"}));
    EXPECT_EQ(AVSKFindPluginBySignature("test.PluginAdmin"), 1);
}

TEST_F(Loader, ALoadedPluginIsLoggedInPieces) {
    const Puppet &a = world.Install("A");
    world.Start();
    EXPECT_EQ(Lines(host.logPieces.begin() + 3, host.logPieces.end()),
              (Lines{"Loaded: ", a.path, " (", a.signature, ").\n\n"}));
}

TEST_F(Loader, DefectiveFilesAreLoggedAndPassedOver) {
    const struct {
        const char *fault;
        const char *log; // % is the path
    } cases[] = {
        {"NotALibrary", "dlerror:...\nFailed: %.  (This file is missing, not a DLL or could not be loaded due to "
                        "another missing DLL.)\n\n"},
        {"UnresolvedSymbol", "dlerror:...\nFailed: %.  (This file is missing, not a DLL or could not be loaded due "
                             "to another missing DLL.)\n\n"},
        {"NoStart", "dlerror:...\nFailed: %.  (This file is a loadable DLL but is missing the AVPluginStart "
                    "callback.)\n\n"},
        {"RefusesStart", "dlerror:...\ndlerror:...\ndlerror:...\ndlerror:...\nFailed: %. (The plugin refused to "
                         "start by returning 0 from AVPluginStart.)\n\n"},
        {"EmptySignature", "Warning: % Signature: . (A version of this plugin is already loaded.)\n"},
    };
    for (const auto &each : cases) {
        SCOPED_TRACE(each.fault);
        const std::string relative = std::string("Resources/plugins/") + each.fault + ".avp";
        const std::string path = world.InstallDefective(relative, each.fault);
        std::string expected = each.log;
        expected.replace(expected.find('%'), 1, path);
        EXPECT_EQ(WithoutReasons(LogOfStart()), expected);
        EXPECT_EQ(AVSKCountPlugins(), 1);
        EXPECT_EQ(AVSKGetMyID(), 0);
        world.Stop();
        std::remove(path.c_str());
    }
}

TEST_F(Loader, ADanglingFileIsMissing) {
    ASSERT_EQ(symlink("nowhere", world.Path("Resources/plugins/Gone.avp").c_str()), 0);
    EXPECT_EQ(LogOfStart(), "Failed: " + folder +
                                "/Gone.avp.  (This file is missing, not a DLL or could not be "
                                "loaded due to another missing DLL.)\n\n");
}

TEST_F(Loader, MissingOptionalEntriesAreLoggedAndDone) {
    const std::string path = world.InstallDefective("Resources/plugins/OnlyStart/lin.avp", "OnlyStart");
    EXPECT_EQ(WithoutReasons(LogOfStart()),
              "dlerror:...\ndlerror:...\ndlerror:...\ndlerror:...\nLoaded: " + path + " (zoo.only-start).\n\n");
    EXPECT_EQ(AVSKIsPluginEnabled(1), 1);
    AVSKSendMessageToPlugin(1, 5, nullptr);
    AVSKDisablePlugin(1);
    EXPECT_EQ(AVSKIsPluginEnabled(1), 0);
}

TEST_F(Loader, APluginThatRefusesToBeEnabledStaysLoaded) {
    world.InstallDefective("Resources/plugins/RefusesEnable/lin.avp", "RefusesEnable");
    world.Start();
    EXPECT_EQ(AVSKCountPlugins(), 2);
    EXPECT_EQ(AVSKIsPluginEnabled(1), 0);
    EXPECT_EQ(AVSKEnablePlugin(1), 0);
}

TEST_F(Loader, AFolderPrefers32AndFallsBackForAnyReason) {
    const struct {
        const char *folder;
        const char *fault; // of 32/lin.avp
    } cases[] = {
        {"Both", nullptr}, {"NoStart", "NoStart"}, {"NotALibrary", "NotALibrary"}, {"Refuses", "RefusesStart"}};
    for (const auto &each : cases) {
        const std::string base = std::string("Resources/plugins/") + each.folder;
        world.InstallAt(base + "/lin.avp", each.folder);
        if (each.fault)
            world.InstallDefective(base + "/32/lin.avp", each.fault);
        else
            world.InstallAt(base + "/32/lin.avp", "Both32");
    }
    world.Start();
    std::string paths;
    for (int id = 1; id < AVSKCountPlugins(); ++id) {
        char path[AVSK_TEXT_SIZE];
        AVSKGetPluginInfo(id, nullptr, path, nullptr, nullptr);
        paths += std::string(path).substr(folder.size() + 1) + " ";
    }
    EXPECT_EQ(paths, "Both/32/lin.avp NoStart/lin.avp NotALibrary/lin.avp Refuses/lin.avp ");
}

TEST_F(Loader, AFolderWithNeitherFileIsPassedOverSilently) {
    world.MakeFolder("Resources/plugins/Empty/32");
    EXPECT_EQ(LogOfStart(), "");
}

TEST_F(Loader, AFolderWhoseNameEndsInDirIsTriedTwice) {
    const Puppet &twice = world.Install("my.dir");
    EXPECT_EQ(LogOfStart(), Loaded(twice) + "Warning: " + twice.path +
                                " Signature: test.my.dir. (A version of this plugin is already loaded.)\n");
    EXPECT_EQ(AVSKCountPlugins(), 2);
}

TEST_F(Loader, DuringStartThePluginHasItsIDAndProvisionalTexts) {
    Puppet &a = world.Install("A");
    a.start = [&] {
        EXPECT_EQ(AVSKGetMyID(), 1);
        EXPECT_EQ(AVSKIsPluginEnabled(1), 0);
        char name[AVSK_TEXT_SIZE];
        char path[AVSK_TEXT_SIZE];
        char signature[AVSK_TEXT_SIZE];
        char description[AVSK_TEXT_SIZE];
        AVSKGetPluginInfo(1, name, path, signature, description);
        EXPECT_STREQ(name, "A/lin.avp");
        EXPECT_EQ(path, a.path);
        EXPECT_STREQ(signature, "");
        EXPECT_EQ(description, a.path);
        return 1;
    };
    world.Start();
    EXPECT_EQ(AVSKGetMyID(), 0);
}

TEST_F(Loader, TextsAreTakenUpTo255Characters) {
    world.InstallDefective("Resources/plugins/LongTexts/lin.avp", "LongTexts");
    world.Start();
    char name[AVSK_TEXT_SIZE];
    char description[AVSK_TEXT_SIZE];
    AVSKGetPluginInfo(1, name, nullptr, nullptr, description);
    EXPECT_EQ(name, std::string(255, 'n'));
    EXPECT_EQ(description, std::string(255, 'd'));
    EXPECT_EQ(AVSKFindPluginBySignature(std::string(255, 's').c_str()), 1);
}

TEST_F(Loader, ADuplicateIsStoppedCleanedUpAndUnloaded) {
    world.Install("A");
    Puppet &b = world.Install("B");
    b.signature = "test.A";
    b.start = [] {
        Publish("b/value");
        return 1;
    };
    b.stop = [] { EXPECT_EQ(AVSKGetMyID(), 2); };
    world.Start();
    EXPECT_EQ(Take(), (Lines{kPluginsMenu, "start A", "start B", "stop B", "enable A"}));
    EXPECT_EQ(AVSKFindDataRef("b/value"), nullptr);
    EXPECT_FALSE(b.IsMapped());
    EXPECT_EQ(AVSKCountPlugins(), 2);
    EXPECT_NE(host.log.find("Warning: " + b.path +
                            " Signature: test.A. (A version of this plugin is already "
                            "loaded.)\n"),
              std::string::npos);
}

TEST_F(Loader, ARefusedStartGetsNoStopAndIsUnmapped) {
    Puppet &a = world.Install("A");
    a.start = [] { return 0; };
    world.Start();
    EXPECT_EQ(Take(), (Lines{kPluginsMenu, "start A"}));
    EXPECT_FALSE(a.IsMapped());
}

TEST_F(Loader, WhatARefusedStartLeavesPassesToTheNextPlugin) {
    world.InstallDefective("Resources/plugins/A.avp", "RefusesStart");
    Puppet &heir = world.Install("Heir");
    world.StartQuietly();
    ASSERT_EQ(heir.Id(), 1);
    const AVSKDataRef calls = AVSKFindDataRef("zoo/leftover");
    ASSERT_NE(calls, nullptr);
    World::Pass(1);
    EXPECT_EQ(AVSKGetDatai(calls), 1) << "the loop runs as the heir's";
    EXPECT_EQ(AVSKMenuHook(host.lastItemID), 0);
    EXPECT_EQ(AVSKGetDatai(calls), 1001);
    AVSKDisablePlugin(1);
    World::Pass(2);
    EXPECT_EQ(AVSKGetDatai(calls), 0) << "the dataref is the heir's";
    world.Stop();
    EXPECT_EQ(AVSKFindDataRef("zoo/leftover"), nullptr) << "the heir's cleanup takes it";
}

TEST_F(Loader, AnExceptionInStartLeavesNoRecord) {
    Puppet &a = world.Install("A");
    a.start = []() -> int { throw std::runtime_error("start"); };
    EXPECT_THROW(world.Start(), std::runtime_error);
    EXPECT_EQ(AVSKCountPlugins(), 1);
    EXPECT_EQ(AVSKGetMyID(), 0);
}

// ---- Aircraft and scenery plugins

class Aircraft : public Loader {};

TEST_F(Aircraft, AllAreLoadedBeforeTheFirstIsEnabledAndNoNameIsSkipped) {
    world.InstallAircraft("y PluginAdmin");
    const Puppet &x = world.InstallAircraft("x");
    world.StartQuietly();
    World::LoadAircraft();
    EXPECT_EQ(Take(), (Lines{"receiveMessage(0, 102, null)", "start x", "start y PluginAdmin", "enable x",
                             "enable y PluginAdmin"}));
    EXPECT_EQ(host.log.rfind("Fetching plugins for " + world.Path("Aircraft/plugins") + "\n\n" + Loaded(x), 0), 0U);
}

TEST_F(Aircraft, HearsTheAircraftGoButNotCome) {
    Puppet &x = world.InstallAircraft("x");
    world.StartQuietly();
    World::LoadAircraft();
    Take();
    World::UnloadAircraft();
    EXPECT_EQ(Take(), (Lines{"receiveMessage(0, 106, null)", "message x 0 106 0", "disable x", "stop x"}));
    EXPECT_EQ(AVSKCountPlugins(), 1);
    EXPECT_FALSE(x.IsMapped());
    World::LoadAircraft();
    EXPECT_EQ(x.Id(), 1);
}

TEST_F(Aircraft, OtherAircraftAreNoneOfTheLoadersBusiness) {
    world.InstallAircraft("x");
    world.StartQuietly();
    AVSKEventHook(AVSKHostEventPlaneLoaded, 0, 0, 3);
    EXPECT_EQ(AVSKCountPlugins(), 1);
    World::LoadAircraft();
    AVSKEventHook(AVSKHostEventPlaneUnloaded, 0, 0, 3);
    EXPECT_EQ(AVSKCountPlugins(), 2);
}

TEST_F(Aircraft, WithoutASlashInThePathOrSubfoldersNothingIsLoadedOrLogged) {
    world.StartQuietly();
    for (const std::string &model : {std::string("model.acf"), std::string(), world.Path("Nowhere/model.acf")}) {
        host.aircraftModel = model;
        World::LoadAircraft();
        EXPECT_EQ(host.log, "");
        EXPECT_EQ(AVSKCountPlugins(), 1);
    }
}

TEST_F(Aircraft, SceneryPluginsAreEnabledAfterAllAreLoadedAndStay) {
    world.InstallAircraft("air");
    world.InstallScenery("s2");
    const Puppet &s1 = world.InstallScenery("s1");
    world.StartQuietly();
    world.LoadScenery();
    EXPECT_EQ(Take(), (Lines{"start s1", "start s2", "enable s1", "enable s2"}));
    EXPECT_EQ(host.log.rfind("Fetching plugins for " + world.Path("Scenery/plugins") + "\n\n" + Loaded(s1), 0), 0U);
    World::LoadAircraft();
    World::UnloadAircraft();
    EXPECT_EQ(AVSKCountPlugins(), 3);
    EXPECT_EQ(AVSKIsPluginEnabled(s1.Id()), 1);
}

TEST_F(Aircraft, ARecordBeforeASceneryPluginsStaysAndIsNeverCalledAgain) {
    Puppet &air = world.InstallAircraft("air");
    Puppet &air2 = world.InstallAircraft("air2");
    const Puppet &scenery = world.InstallScenery("scenery");
    world.StartQuietly();
    World::LoadAircraft();
    world.LoadScenery();
    World::UnloadAircraft();
    Take();
    EXPECT_EQ(scenery.Id(), 3);
    EXPECT_EQ(AVSKCountPlugins(), 4);
    EXPECT_EQ(air.Id(), 1);
    EXPECT_EQ(air2.Id(), 2);
    EXPECT_FALSE(air.IsMapped());
    EXPECT_EQ(AVSKIsPluginEnabled(1), 0);

    EXPECT_EQ(AVSKEnablePlugin(1), 0);
    AVSKSendMessageToPlugin(1, 7, nullptr);
    AVSKDisablePlugin(1);
    World::UnloadAircraft();
    world.Stop();
    EXPECT_EQ(Take(),
              (Lines{"receiveMessage(0, 106, null)", "message scenery 0 106 0", "disable scenery", "stop scenery"}));
}

TEST_F(Aircraft, ThoseAtTheEndOfTheRegistryLeaveIt) {
    world.InstallScenery("scenery");
    world.InstallAircraft("air");
    world.InstallAircraft("air2");
    world.StartQuietly();
    world.LoadScenery();
    World::LoadAircraft();
    World::UnloadAircraft();
    EXPECT_EQ(AVSKCountPlugins(), 2);
}

TEST_F(Aircraft, AShutdownForgetsThem) {
    world.InstallAircraft("air");
    world.StartQuietly();
    World::LoadAircraft();
    world.Stop();
    const Puppet &a = world.Install("A");
    world.Start();
    World::UnloadAircraft();
    EXPECT_EQ(AVSKIsPluginEnabled(1), 1) << "A has the ID that the aircraft's plugin had";
    EXPECT_TRUE(a.IsMapped());
}

// ---- Unloading

TEST_F(Loader, ShutdownDisablesAllThenStopsAllAndEmptiesTheRegistry) {
    Puppet &a = world.Install("A");
    world.Install("B");
    world.StartQuietly();
    AVSKDisablePlugin(2);
    a.stop = [] {
        EXPECT_EQ(AVSKGetMyID(), 1);
        AVSKRegisterFlightLoopCallback([](float, float, int, void *) { return -1.0F; }, -1, nullptr);
    };
    world.Stop();
    EXPECT_EQ(Take(), (Lines{"disable B", "disable A", "stop A", "stop B"}));
    EXPECT_EQ(AVSKCountPlugins(), 0);
    EXPECT_EQ(AVSKIsPluginEnabled(0), 0);
    EXPECT_FALSE(a.IsMapped());
    World::Pass(1); // what A registered last went with it
}

TEST_F(Loader, TheLibraryCanBeStartedAgain) {
    Puppet &a = world.Install("A");
    world.StartQuietly();
    world.Stop();
    EXPECT_EQ(world.Start(), 18);
    EXPECT_EQ(a.Id(), 1);
    EXPECT_EQ(AVSKIsPluginEnabled(1), 1);
}

TEST_F(Loader, ACleanupTakesMenusThenDatarefsAfterTheStopCall) {
    Puppet &a = world.Install("A");
    world.StartQuietly();
    a.Run([] {
        AVSKCreateMenu("Mine", nullptr, 0, nullptr, nullptr);
        Publish("a/x");
    });
    Take();
    a.stop = [] { EXPECT_NE(AVSKFindDataRef("a/x"), nullptr); };
    host.on.destroyMenu = [](void *) { EXPECT_NE(AVSKFindDataRef("a/x"), nullptr); };
    world.Stop();
    EXPECT_EQ(Take(), (Lines{"disable A", "stop A", "destroyMenu(menu2)", "removeMenuItem(menu1, 0)"}));
    EXPECT_EQ(AVSKFindDataRef("a/x"), nullptr);
}

} // namespace
