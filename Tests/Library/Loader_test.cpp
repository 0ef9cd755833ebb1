// Discovery, loading and unloading, with the exact log.
#include "World.h"

#include <regex>

namespace {

const char *const kPluginsMenu = "createMenu(null, 0, \"Plugins\")";

class Loader : public InWorld {
  protected:
    const std::string folder = world.PluginsFolder();
    const std::string fetching = "Fetching plugins for " + folder + "\n\n";

    // Starts the library and returns what it logs after the first line.
    std::string LogOfStart() {
        world.Start();
        EXPECT_EQ(host.log.substr(0, fetching.size()), fetching);
        return host.TakeLog().substr(fetching.size());
    }
};

// Replaces the system's reason after "dlerror:", since its text is not ours.
std::string WithoutReasons(const std::string &log) {
    return std::regex_replace(log, std::regex("dlerror:.+"), "dlerror:...");
}

TEST_F(Loader, AdminComesFirstThenFilesThenFoldersInByteOrder) {
    for (const char *label : {"b", "Z", "PluginAdmin", "PluginAdmin copy", "AVSK.framework", "AVWidgets.framework"})
        world.Install(label);
    for (const std::string file : {"z.avp", "A.AVP", "OldPluginAdmin.avp"})
        world.InstallAt("Resources/plugins/" + file, file);
    EXPECT_EQ(DOES(world.Start()),
              Line("18: ", kPluginsMenu, "; start PluginAdmin; showProgress(\"Loading Plugin: A.AVP\"); start A.AVP; ",
                   "showProgress(\"Loading Plugin: z.avp\"); start z.avp; start Z; start b; enable PluginAdmin; ",
                   "enable A.AVP; enable z.avp; enable Z; enable b"));
    EXPECT_EQ(AVSKFindPluginBySignature("test.PluginAdmin"), 1);
}

TEST_F(Loader, ALoadedPluginIsLoggedInPieces) {
    const Puppet &a = world.Install("A");
    EXPECT_EQ(world.Start(), 18);
    EXPECT_EQ(host.logPieces,
              (Lines{"Fetching plugins for ", folder, "\n\n", "Loaded: ", a.path, " (", a.signature, ").\n\n"}));
    world.Stop();
    host.TakeLog();
    AVSKInitializePlugins(nullptr, &host.table, 0);
    EXPECT_EQ(host.logPieces, (Lines{"Fetching plugins for ", "Resources/plugins", "\n\n"}));
    AVSKShutdownPlugins();
}

TEST_F(Loader, DefectiveFilesAreLoggedAndPassedOver) {
    const std::string entries = "dlerror:...\ndlerror:...\ndlerror:...\ndlerror:...\n", failed = "Failed: %. ";
    const std::string missing =
        "dlerror:...\n" + failed +
        " (This file is missing, not a DLL or could not be loaded due to another missing DLL.)\n\n";
    for (const auto &[fault, log] : Table<std::string, std::string>{
             {"NotALibrary", missing},
             {"UnresolvedSymbol", missing},
             {"NoStart", "dlerror:...\n" + failed +
                             " (This file is a loadable DLL but is missing the AVPluginStart callback.)\n\n"},
             {"RefusesStart",
              entries + failed + "(The plugin refused to start by returning 0 from AVPluginStart.)\n\n"},
             {"EmptySignature", "Warning: % Signature: . (A version of this plugin is already loaded.)\n"}}) {
        SCOPED_TRACE(fault);
        const std::string path = world.InstallDefective("Resources/plugins/" + fault + ".avp", fault);
        std::string expected = log;
        expected.replace(expected.find('%'), 1, path);
        EXPECT_EQ(WithoutReasons(LogOfStart()), expected);
        EXPECT_EQ(AVSKCountPlugins(), 1);
        EXPECT_EQ(AVSKGetMyID(), 0);
        world.Stop();
        std::filesystem::remove(path);
    }
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

TEST_F(Loader, AFolderPrefers32AndFallsBackForAnyReason) {
    for (const std::string fault : {"", "NoStart", "NotALibrary", "RefusesStart"}) {
        const std::string base = "Resources/plugins/x" + fault;
        world.InstallAt(base + "/lin.avp", "x" + fault);
        if (fault.empty())
            world.InstallAt(base + "/32/lin.avp", "32");
        else
            world.InstallDefective(base + "/32/lin.avp", fault);
    }
    world.MakeFolder("Resources/plugins/Empty/32");
    world.Start();
    const std::string calls = TakeCalls();
    EXPECT_TRUE(calls.ends_with("; enable 32; enable xNoStart; enable xNotALibrary; enable xRefusesStart")) << calls;
}

TEST_F(Loader, DuringStartThePluginHasItsIDAndProvisionalTextsAndThenAsMuchAsFits) {
    Puppet &a = world.Install("A");
    a.name = std::string(255, 'n');
    a.signature = std::string(300, 's');
    a.description = std::string(300, 'd');
    char texts[4][AVSK_TEXT_SIZE];
    a.start = [&] {
        EXPECT_EQ(AVSKGetMyID(), 1);
        EXPECT_EQ(AVSKIsPluginEnabled(1), 0);
        AVSKGetPluginInfo(1, texts[0], texts[1], texts[2], texts[3]);
        EXPECT_EQ((Lines{texts, texts + 4}), (Lines{"A/lin.avp", a.path, "", a.path}));
        return 1;
    };
    world.Start();
    AVSKGetPluginInfo(1, texts[0], texts[1], texts[2], texts[3]);
    EXPECT_EQ((Lines{texts, texts + 4}),
              (Lines{a.name, a.path, a.signature.substr(0, 255), a.description.substr(0, 255)}));
    EXPECT_EQ(AVSKFindPluginBySignature(texts[2]), 1);
}

TEST_F(Loader, ADuplicateIsStoppedCleanedUpAndUnloaded) {
    world.Install("A");
    Puppet &b = world.Install("B");
    b.signature = "test.A";
    b.start = [] { return Publish("b/value") != nullptr; };
    b.stop = [] { EXPECT_EQ(AVSKGetMyID(), 2); };
    EXPECT_EQ(DOES(world.Start()), Line("18: ", kPluginsMenu, "; start A; start B; stop B; enable A"));
    EXPECT_EQ(AVSKFindDataRef("b/value"), nullptr);
    EXPECT_FALSE(b.IsMapped());
    EXPECT_EQ(AVSKCountPlugins(), 2);
    EXPECT_TRUE(host.log.ends_with("Warning: " + b.path +
                                   " Signature: test.A. (A version of this plugin is already loaded.)\n"));
    world.Stop();
    b.stop = [] { throw 1; };
    EXPECT_THROW(world.Start(), int);
    EXPECT_EQ(AVSKCountPlugins(), 2);
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
    a.start = []() -> int { throw 1; };
    EXPECT_THROW(world.Start(), int);
    EXPECT_EQ(AVSKCountPlugins(), 1);
    world.Stop();
    a.start = []() -> int { AVSKShutdownPlugins(), throw 1; };
    EXPECT_THROW(world.Start(), int);
    EXPECT_EQ(AVSKCountPlugins(), 0);
    a.start = nullptr;
    world.InstallDefective("Resources/plugins/A.avp", "NotALibrary");
    host.on.debugString = [](const char *text) { std::strcmp(text, "dlerror:") == 0 ? throw 1 : 0; };
    EXPECT_THROW(world.Start(), int) << "from the log";
    EXPECT_EQ(a.Id(), 1);
}

TEST_F(Loader, AShutdownDuringAStartEndsTheLoading) {
    std::string who;
    const auto shutdown = [&](const char *place) {
        return [&, place](const char *) { who == place ? AVSKShutdownPlugins() : void(); };
    };
    for (const std::string file : {"Resources/plugins/PluginAdmin/32/lin.avp", "Resources/plugins/PluginAdmin/lin.avp",
                                   "Resources/plugins/a.avp", "Resources/plugins/b.avp", "Resources/plugins/c/lin.avp",
                                   "Aircraft/plugins/d/32/lin.avp", "Aircraft/plugins/e/lin.avp"})
        world.InstallAt(file, file).start = [&, file] { return file.ends_with(who) ? AVSKShutdownPlugins(), 0 : 1; };
    host.on.debugString = shutdown("log");
    host.on.showProgress = shutdown("progress");
    for (const auto &[name, started] : {std::pair("log", 0),
                                        {"progress", 1},
                                        {"Admin/32/lin.avp", 1},
                                        {"a.avp", 2},
                                        {"b.avp", 3},
                                        {"c/lin.avp", 4},
                                        {"d/32/lin.avp", 5}}) {
        who = name;
        world.Start();
        World::LoadAircraft();
        const Lines calls = Take();
        EXPECT_EQ(std::count_if(calls.begin(), calls.end(), [](auto &line) { return line.starts_with("start "); }),
                  started);
        EXPECT_EQ(AVSKCountPlugins(), 0);
    }
}

// ---- Aircraft and scenery plugins

class Aircraft : public Loader {};

TEST_F(Aircraft, HearsTheAircraftGoButNotCome) {
    Puppet &x = world.InstallAircraft("x");
    world.StartQuietly();
    World::LoadAircraft();
    Take();
    World::UnloadAircraft();
    EXPECT_EQ(Take(), (Lines{"receiveMessage(0, 106, null)", "message x 0 106 0", "disable x", "stop x"}));
    EXPECT_EQ(AVSKCountPlugins(), 1);
    EXPECT_FALSE(x.IsMapped());
    AVSKEventHook(AVSKHostEventPlaneLoaded, 0, 0, 3);
    EXPECT_EQ(AVSKCountPlugins(), 1) << "of another aircraft no plugins are loaded";
    World::LoadAircraft();
    AVSKEventHook(AVSKHostEventPlaneUnloaded, 0, 0, 3);
    EXPECT_EQ(x.Id(), 1);
    World::UnloadAircraft();
    AVSKEventHook(AVSKHostEventSceneryFolder, 0, 0, 0);
    host.aircraftModel = "no folder";
    World::LoadAircraft();
    EXPECT_EQ(AVSKCountPlugins(), 1) << "there is none to load from";
}

TEST_F(Aircraft, ARecordBeforeASceneryPluginsStaysAndIsNeverCalledAgain) {
    const Puppet &air = world.InstallAircraft("air"), &air2 = world.InstallAircraft("air2");
    const Puppet &scenery = world.InstallScenery("scenery");
    world.StartQuietly();
    World::LoadAircraft();
    world.LoadScenery();
    World::UnloadAircraft();
    EXPECT_EQ(Line(air.Id(), air2.Id(), scenery.Id(), AVSKCountPlugins()), "1234");
    EXPECT_FALSE(air.IsMapped());
    EXPECT_EQ(AVSKIsPluginEnabled(1), 0);
    EXPECT_EQ(DOES(AVSKEnablePlugin(1)), "0");
    Take();
    AVSKSendMessageToPlugin(1, 7, nullptr);
    World::UnloadAircraft();
    world.Stop();
    EXPECT_EQ(Take(),
              (Lines{"receiveMessage(0, 106, null)", "message scenery 0 106 0", "disable scenery", "stop scenery"}));
}

// ---- Unloading

class Unloading : public ThreePlugins {};

// Each callback during the tear-down sees what still exists. A plugin whose disabling failed is called, too.
TEST_F(Unloading, APluginsThingsGoInTheirOrder) {
    std::string there;
    const auto probe = [&](auto...) {
        there = AVSKFindDataRef("a/x") ? "dataref" : "nothing";
        World::Pass(1);
        AVSKSetDatai(AVSKFindDataRef("shared"), 1);
        return Note(there), 1;
    };
    bool isThrowing = false;
    NoticePlayer window = [&] {
        if (std::exchange(isThrowing, false))
            throw 1;
        Note("window"), probe();
    };
    NoticePlayer offer = [&] { Note("offer"), probe(); }, notified = [&] { there += " shared"; };
    LoopPlayer loop = [&](float, float, int) { return there += " loop", -1.0F; };
    CameraPlayer camera = [&](AVSKCameraPosition *, int) { return Note("camera"), probe(); };
    const auto play = [](void *player) { (*static_cast<const NoticePlayer *>(player))(); };
    const auto key = [](AVSKWindowID, char, int, char, void *player, int) {
        (*static_cast<const NoticePlayer *>(player))();
    };
    host.on.loadObject = [&](const char *) { return &host; };
    host.on.endCommand = host.on.destroyMenu = host.on.unloadObject = probe;
    const auto arrange = [&] {
        AVSKTakeKeyboardFocus(AVSKCreateWindow(0, 1, 1, 0, 1, nullptr, key, nullptr, &window));
        AVSKControlCamera(AVSKCameraForever, a.code.camera, &camera);
        AVSKAcquirePlanes(nullptr, nullptr, nullptr);
    };
    a.Run([&] {
        arrange();
        AVSKCommandBegin(&host);
        AVSKRegisterFlightLoopCallback(a.code.flightLoop, -1, &loop);
        AVSKCreateMenu("M", nullptr, 0, nullptr, nullptr);
        Publish("a/x");
        AVSKShareData("shared", 1, a.code.notified, &notified);
        AVSKLoadObject("o");
    });
    const std::string all = "dataref loop shared";
    AVSKAcquirePlanes(nullptr, play, &offer);
    EXPECT_EQ(DOES(AVSKDisablePlugin(1)), Line("window; ", all, "; camera; ", all, "; offer; ", all, "; disable A"));
    AVSKEnablePlugin(1);
    a.Run(arrange);
    AVSKAcquirePlanes(nullptr, play, &offer);
    isThrowing = true;
    TakeCalls();
    EXPECT_THROW(world.Stop(), int);
    const std::string less = "; dataref shared; ";
    EXPECT_EQ(TakeCalls(), Line("disable B; disable air; stop A; endCommand(pointer); ", all, "; window; ", all,
                                "; camera", less, "destroyMenu(menu2)", less, "removeMenuItem(menu1, 0); offer", less,
                                "unloadObject(pointer); nothing; stop B; stop air"));
    EXPECT_EQ(AVSKFindDataRef("a/x"), nullptr);
}

TEST_F(Unloading, ARefusedPluginThatEnabledItselfIsNotCalledThoughItsRecordStays) {
    world.InstallScenery("s");
    World::UnloadAircraft();
    LoopPlayer loop = [](float, float, int) { return Note("called"), -1.0F; };
    air.start = [&] {
        AVSKEnablePlugin(AVSKGetMyID());
        AVSKRegisterFlightLoopCallback(air.code.flightLoop, -1, &loop);
        return world.LoadScenery(), 0;
    };
    World::LoadAircraft();
    EXPECT_EQ(DOES(World::Pass(1)), "1");
}

} // namespace
