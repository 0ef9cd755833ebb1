// Hostile situations: plugins and hosts that throw, unload plugins or restart the
// library inside each other's calls.
#include "World.h"

#include "AVSK/AVSKDisplay.h"
#include "AVSK/AVSKPlanes.h"

#include <filesystem>

#include <dlfcn.h>

namespace {

using StaticPlayer = std::function<void(bool constructed, AVSKFlightLoop_f loop)>;
StaticPlayer &gStatic = *new StaticPlayer; // static constructors and destructors of test plugins call it

class Corners : public InWorld {
  protected:
    ~Corners() override { gStatic = nullptr; }

    // Makes the call and returns the number that it throws, or 0.
    static int Thrown(const std::function<void()> &call) {
        try {
            call();
        } catch (int number) {
            return number;
        }
        return 0;
    }
};

void Event101() { AVSKEventHook(AVSKHostEventBroadcast101, 0, 0, 0); }

// ---- Exceptions

TEST_F(Corners, ALibraryStaysMappedWhileItsExceptionIsHeldOrHandled) {
    Puppet &air = world.InstallAircraft("air");
    world.Install("A");
    const std::string model = host.aircraftModel;
    host.on.loadAircraftModel = [&](int, const char *, const char *) {
        World::UnloadAircraft();
        host.aircraftModel = "no folder";
        World::LoadAircraft();
    };
    const auto leave = [&air] {
        AVSKSetUsersAircraft("other");
        air.code.throwOwn();
    };
    const auto throws = [&air] { air.code.throwOwn(); };
    const std::function<void()> none, stops = [this] { world.Stop(); };
    for (const auto &[disable, stop, unload] :
         Table<std::function<void()>, std::function<void()>, std::function<void()>>{
             {leave, none, stops},
             {leave, none, World::UnloadAircraft},
             {none, throws, stops},
             {none, throws, World::UnloadAircraft},
             {none, none, [&] { air.Run([&] { World::UnloadAircraft(), throws(); }); }}}) {
        air.disable = disable;
        air.stop = stop;
        host.aircraftModel = model;
        world.Start();
        World::LoadAircraft();
        ASSERT_TRUE(air.IsMapped());
        try {
            unload();
            ADD_FAILURE() << "nothing was thrown";
        } catch (...) {
            Event101();
            EXPECT_TRUE(air.IsMapped()) << "the exception's destructor is the plugin's";
        }
        Event101();
        EXPECT_FALSE(air.IsMapped());
        air.disable = air.stop = nullptr;
        world.Stop();
    }
}

TEST_F(Corners, APluginThatThrowsKeepsNoOtherFromBeingLoadedAndEnabled) {
    for (const char *label : {"A", "B", "C"}) {
        world.Install(label);
        world.InstallAircraft(Line("air", label));
        world.InstallScenery(Line("s", label));
    }
    Puppet &first = world.InstallAt("Resources/plugins/A/32/lin.avp", "A32");
    const auto number = [](int n) { return [n]() -> int { throw n; }; };
    world.InstallAt("Resources/plugins/a.avp", "a").start = number(1);
    first.start = number(2);
    first.enable = number(9); // never called
    Puppet &air = world.InstallAircraft("air0");
    Puppet &scenery = world.InstallScenery("s0");
    for (std::function<int()> Puppet::*entry : {&Puppet::start, &Puppet::enable}) {
        const int lost = entry == &Puppet::start;
        air.*entry = number(3);
        scenery.*entry = number(4);
        const auto enabled = [] {
            int count = 0;
            for (int id = 1; id < AVSKCountPlugins(); ++id)
                count += AVSKIsPluginEnabled(id);
            return count;
        };
        EXPECT_EQ(Thrown([&] { world.Start(); }), 1);
        EXPECT_EQ(enabled(), 3) << "A's second file among them";
        EXPECT_EQ(Thrown(World::LoadAircraft), 3);
        EXPECT_EQ(enabled(), 6);
        EXPECT_EQ(Thrown([&] { world.LoadScenery(); }), 4);
        EXPECT_EQ(enabled(), 9);
        EXPECT_EQ(AVSKCountPlugins(), 12 - 2 * lost);
        AVSKReloadPlugins();
        EXPECT_EQ(Thrown([] { World::Pass(1); }), 1);
        EXPECT_EQ(enabled(), 6) << "without the scenery's";
        EXPECT_EQ(AVSKGetMyID(), 0);
        world.Stop();
        air.*entry = scenery.*entry = nullptr;
    }
}

TEST_F(Corners, AStopOrDisableEntryThatThrowsKeepsNothingFromBeingUnloaded) {
    Puppet &a = world.Install("A");
    Puppet &air = world.InstallAircraft("air");
    world.InstallAircraft("air2");
    a.stop = [] { throw 1; };
    air.disable = [] { throw 2; };
    world.StartQuietly();
    World::LoadAircraft();
    TakeCalls();
    EXPECT_EQ(Thrown(World::UnloadAircraft), 2);
    EXPECT_EQ(TakeCalls(), "disable air; disable air2; stop air; stop air2");
    EXPECT_EQ(Thrown([&] { world.Stop(); }), 1);
    EXPECT_EQ(AVSKCountPlugins(), 0);
}

// ---- Static constructors and destructors

TEST_F(Corners, WhatAStaticConstructorOrDestructorRegistersGoesWithItsFile) {
    const struct {
        const char *fault;
        bool constructor, destructor; // registers a flight loop
        bool staysMapped;
    } cases[] = {
        {"Constructs", false, true, false},      {"Constructs", true, true, false},
        {"ConstructsOnly", false, false, false}, {"ConstructsOnly", false, true, false},
        {"ConstructsOnly", true, false, true},
    };
    Puppet file;
    Puppet &heir = world.InstallScenery("heir");
    for (const auto &each : cases) {
        SCOPED_TRACE(Line(each.fault, each.constructor, each.destructor));
        file.path = world.InstallDefective("Resources/plugins/C.avp", each.fault);
        std::string accounts;
        gStatic = [&](bool constructed, AVSKFlightLoop_f loop) {
            accounts += Line(AVSKGetMyID(), " ");
            if (constructed && each.constructor)
                world.LoadScenery(); // must not get the ID of the file
            if (constructed ? each.constructor : each.destructor)
                AVSKRegisterFlightLoopCallback(loop, -1, nullptr);
        };
        world.Start();
        EXPECT_EQ(heir.Id(), each.constructor ? 2 : -1);
        AVSKEnablePlugin(1);
        World::Pass(1);
        world.Stop();
        EXPECT_EQ(file.IsMapped(), each.staysMapped);
        EXPECT_EQ(accounts, each.staysMapped ? "1 " : "1 1 ");
        std::filesystem::remove(file.path);
        world.Start();
        world.LoadScenery(); // gets the ID and inherits what was left
        World::Pass(2);
        world.Stop();
    }
    gStatic = nullptr;
    if (void *const left = dlopen(file.path.c_str(), RTLD_NOW | RTLD_NOLOAD))
        dlclose(left), dlclose(left);
}

TEST_F(Corners, WhatAStaticDestructorRegistersGoesEvenIfTheHostRestartsDuringItsCleanUp) {
    const std::string path = world.InstallDefective("Resources/plugins/C.avp", "Constructs");
    Puppet &heir = world.InstallScenery("heir");
    static int notices = 0;
    gStatic = [](bool constructed, AVSKFlightLoop_f /*loop*/) {
        if (constructed)
            return;
        AVSKCreateMenu("M", nullptr, 0, Nothing, nullptr);
        AVSKShareData(
            "x", AVSKDataTypeInt, [](void *) { ++notices; }, nullptr);
    };
    bool restarted = false;
    host.on.destroyMenu = [&](void *) {
        if (!std::exchange(restarted, true))
            AVSKShutdownPlugins(), world.Start();
    };
    world.Start();
    std::filesystem::remove(path);
    world.Stop();
    world.Start();
    world.LoadScenery();
    EXPECT_EQ(heir.Id(), 1);
    AVSKSetDatai(AVSKFindDataRef("x"), 1);
    EXPECT_EQ(notices, 0);
}

TEST_F(Corners, AHostMayShutDownInsideAStaticConstructorOrTheLog) {
    Puppet file;
    file.path = world.InstallDefective("Resources/plugins/C.avp", "ConstructsOnly");
    std::string accounts;
    gStatic = [&](bool constructed, AVSKFlightLoop_f loop) {
        if (constructed) {
            AVSKRegisterFlightLoopCallback(loop, -1, nullptr);
            EXPECT_EQ(AVSKEnablePlugin(1), 0) << "not yet started";
            AVSKShutdownPlugins();
        }
        accounts += Line(AVSKGetMyID(), " ");
        AVSKRegisterFlightLoopCallback(loop, -1, nullptr);
    };
    world.Start();
    EXPECT_EQ(accounts, "-1 -1 ");
    EXPECT_EQ(AVSKCountPlugins(), 0);
    gStatic = nullptr;
    Puppet &air = world.InstallAircraft("air");
    world.Start();
    World::LoadAircraft();
    EXPECT_FALSE(file.IsMapped());
    host.on.debugString = [](const char *text) { std::string(text) == ").\n\n" ? AVSKShutdownPlugins() : void(); };
    World::UnloadAircraft();
    World::LoadAircraft(); // the last line that it logs shuts the library down
    EXPECT_FALSE(air.IsMapped());
    host.on.debugString = nullptr;
    world.Start();
    world.InstallScenery("s");
    world.LoadScenery();
    World::UnloadAircraft();
    EXPECT_EQ(AVSKCountPlugins(), 2) << "the aircraft's plugins were forgotten with the library's life";
}

TEST_F(Corners, TheLogSeesTheCallerThenTheHostThenTheCallerAgain) {
    Puppet &a = world.Install("A");
    world.InstallAircraft("air");
    world.Start();
    std::string accounts;
    host.on.debugString = [&](const char *text) { accounts += Line(*text, AVSKGetMyID(), " "); };
    a.Run([] {
        World::LoadAircraft();
        AVSKDebugString("x");
    });
    EXPECT_EQ(accounts, "F1 /1 \n1 L0 /0  0 t0 )0 x1 ");
}

// ---- Shutdown and start inside services

TEST_F(Corners, ARunningCallOfAnEarlierLifeIsNobodys) {
    Puppet &a = world.Install("A");
    Puppet &b = world.Install("B");
    const auto restart = [this] {
        AVSKShutdownPlugins();
        AVSKInitializePlugins(world.Path("").c_str(), &host.table, 0);
    };
    host.on.reloadScenery = [&] { return restart(), 0; };
    // The restart happens directly, inside another plugin's call, and inside a start call of the earlier life.
    Puppet &air = world.InstallAircraft("air");
    const std::function<void()> ways[] = {AVSKReloadScenery, [&] { b.Run(AVSKReloadScenery); }, World::LoadAircraft};
    air.start = [this, &air] {
        air.start = nullptr;
        AVSKReloadScenery();
        EXPECT_EQ(AVSKGetMyID(), NO_PLUGIN_ID);
        return 1;
    };
    for (const auto &way : ways) {
        world.StartQuietly();
        a.Run([&] {
            way();
            EXPECT_EQ(AVSKGetMyID(), NO_PLUGIN_ID);
            EXPECT_EQ(AVSKCountPlugins(), 3);
            AVSKRegisterDrawCallback(Nothing, 5, 1, &a);
        });
        EXPECT_EQ(AVSKGetMyID(), 0);
        EXPECT_EQ(AVSKRegisterDrawCallback(Nothing, 5, 1, &a), 1) << "no plugin's call registered it";
        AVSKUnregisterDrawCallback(Nothing, 5, 1, &a);
        EXPECT_TRUE(AVSKIsPluginEnabled(a.Id()) && AVSKIsPluginEnabled(b.Id()));
        world.Stop();
        EXPECT_FALSE(a.IsMapped());
    }
}

TEST_F(Corners, AStartOrReloadEndsWhenTheHostShutsDownMeanwhile) {
    world.Install("A");
    const auto systemPath = host.on.getSystemPath;
    const auto createMenu = host.on.createMenu;
    for (const bool restarts : {false, true})
        for (const int slot : {53, 25, 30}) { // the first two are called by a reload, the last by a start
            bool acted = false;
            AVSKMenuID menu = nullptr;
            const auto act = [&](int called) {
                if (called != slot || std::exchange(acted, true))
                    return;
                Take();
                AVSKShutdownPlugins();
                if (restarts)
                    world.Start();
                menu = AVSKFindPluginsMenu();
            };
            host.on.showMessage = [&](auto...) { act(53); };
            host.on.getSystemPath = [&](char *out) { systemPath(out), act(25); };
            host.on.createMenu = [&](auto... all) { return act(30), createMenu(all...); };
            world.Start();
            if (slot != 30) {
                AVSKReloadPlugins();
                World::Pass(1);
            }
            EXPECT_EQ(TakeCalls(), restarts ? "createMenu(null, 0, \"Plugins\"); start A; enable A" : "");
            EXPECT_EQ(AVSKCountPlugins(), restarts ? 2 : 0) << slot;
            EXPECT_TRUE(!restarts || AVSKFindPluginsMenu() == menu) << slot;
            world.Stop();
        }
}

TEST_F(Corners, UnloadingAndEnablingEndWhenTheHostShutsDownMeanwhile) {
    Puppet &air = world.InstallAircraft("air");
    world.InstallAircraft("air2");
    host.on.loadObjectAsync = [](const char *, auto done, void *load) { done(load, load); };
    host.on.unloadObject = [](void *) { AVSKShutdownPlugins(); };
    air.stop = [&] { AVSKLoadObjectAsync("o", air.code.loaded, nullptr); }; // deferred, then given back
    world.Start();
    World::LoadAircraft();
    World::UnloadAircraft();
    EXPECT_TRUE(TakeCalls().ends_with("disable air2; stop air; loadObjectAsync(\"o\", pointer, 1); unloadObject(1); "
                                      "stop air2"));
    EXPECT_FALSE(air.IsMapped());
    world.InstallScenery("s2");
    world.InstallScenery("s1").enable = [&] {
        AVSKShutdownPlugins();
        world.Install("A");
        world.Install("B").enable = [] { return 0; }; // would be asked again as s2, which had its ID
        return world.Start();
    };
    world.Start();
    world.LoadScenery();
    EXPECT_TRUE(TakeCalls().ends_with("enable s1; stop s1; stop s2; createMenu(null, 0, \"Plugins\"); start A; "
                                      "start B; enable A; enable B"));
}

// ---- Plugin -1

// Everything that a plugin can create. A service of the host gives each a handle; the result tells whether it exists.
AVSKFlightLoopID CreateLoop() {
    static const AVSKCreateFlightLoopParams params = {sizeof params, 0, Nothing, nullptr};
    return AVSKCreateFlightLoop(&params);
}
AVSKWindowID CreateWindow() {
    static const AVSKCreateWindowParams params = {sizeof params, 0, 9, 9, 0, 1, Nothing, Nothing, Nothing, {}, {}, {}};
    return AVSKCreateWindowEx(&params);
}
bool (*const kCreations[])() = {
    [] { return AVSKLoadObject("o") != nullptr; },
    [] { return AVSKCreateProbe(0) != nullptr; },
    [] { return AVSKCreateMenu("M", nullptr, 0, Nothing, nullptr) != nullptr; },
    [] { return CreateLoop() != nullptr; },
    [] { return AVSKRegisterDrawCallback(Nothing, 5, 1, nullptr) != 0; },
    [] { return AVSKRegisterKeySniffer(Nothing, 1, nullptr) != 0; },
    [] { return AVSKRegisterHotKey('K', 0, "", Nothing, nullptr) != nullptr; },
    [] { return AVSKCreateWindow(0, 9, 9, 0, 1, Nothing, Nothing, Nothing, nullptr) != nullptr; },
    [] { return CreateWindow() != nullptr; },
    [] { return Publish("x") != nullptr; },
    [] { return AVSKShareData("y", AVSKDataTypeInt, Nothing, nullptr) != 0; },
    [] { return AVSKControlCamera(1, Nothing, nullptr), AVSKIsCameraBeingControlled(nullptr) != 0; },
    [] { return AVSKRegisterCommandHandler(&gStatic, Nothing, 0, nullptr), !AVSKCommandHook(&gStatic, 1, 0, 0); },
    [] { return AVSKRegisterCommandHandler(&gStatic, Nothing, 1, nullptr), !AVSKCommandHook(&gStatic, 1, 0, 1); },
    [] { return AVSKAcquirePlanes(nullptr, Nothing, nullptr) != 0; },
};

TEST_F(Corners, NobodyCreatesAnything) {
    Puppet &air = world.InstallAircraft("air");
    host.on.loadObject = [this](const char *) { return &host; };
    host.on.createProbe = [this] { return &host; };
    world.StartQuietly();
    World::LoadAircraft();
    air.Run([&] {
        World::UnloadAircraft();
        TakeCalls();
        for (const auto create : kCreations)
            EXPECT_FALSE(create());
        EXPECT_EQ(AVSKAppendMenuItem(AVSKFindPluginsMenu(), "I", nullptr, 0), -1);
        AVSKLoadObjectAsync("o", Nothing, this);
        AVSKCommandBegin(&host);
        AVSKCommandButtonPress(1);
        AVSKRegisterFlightLoopCallback(Nothing, -1, this);
        AVSKAppendMenuSeparator(AVSKFindPluginsMenu());
        EXPECT_EQ(TakeCalls(), "") << "the host is not called";
    });
    World::LoadAircraft();
    EXPECT_EQ(DOES(World::Pass(1)), "1") << "no button is held";
    air.Run([] {
        for (const auto create : kCreations)
            EXPECT_TRUE(create());
    });
}

// The plugin refuses to start during a pass of flight loops. The next plugin inherits its ID and its leftovers.
TEST_F(Corners, ARefusedPluginStaysMappedIfWhatItLeftCouldCallIt) {
    const Puppet &a = world.Install("A");
    Puppet &air = world.InstallAircraft("air");
    world.InstallScenery("heir");
    host.on.loadObject = [this](const char *) { return &host; };
    LoopPlayer load = [](float, float, int) { return World::LoadAircraft(), 0.0F; };
    Table<std::function<void()>, bool> cases = {
        {[&] { AVSKDestroyFlightLoop(CreateLoop()); }, false},
        {[&] { AVSKCreateMenu("M", nullptr, 0, nullptr, nullptr); }, false},
        {[] { AVSKUnloadObject(AVSKLoadObject("o")); }, false},
        {[] { AVSKControlCamera(1, nullptr, nullptr), AVSKDontControlCamera(); }, false},
        {[this] {
             AVSKRegisterCommandHandler(this, Nothing, 1, nullptr);
             AVSKUnregisterCommandHandler(this, Nothing, 1, nullptr);
         },
         false},
        {[&] { a.Run(AVSKReleasePlanes), AVSKAcquirePlanes(nullptr, nullptr, nullptr); }, true}};
    for (const auto create : kCreations)
        cases.emplace_back(create, true);
    for (const auto &[leave, mapped] : cases) {
        world.StartQuietly();
        air.start = [&act = leave] { return act(), 0; };
        a.Run([&] {
            AVSKRegisterFlightLoopCallback(a.code.flightLoop, -1, &load);
            AVSKAcquirePlanes(nullptr, nullptr, nullptr);
        });
        AVSKAcquirePlanes(nullptr, Nothing, nullptr); // the host waits
        World::Pass(1);
        EXPECT_EQ(air.IsMapped(), mapped);
        EXPECT_EQ(AVSKIsPluginEnabled(2), 0) << "withdrawn";
        AVSKDontControlCamera();
        world.LoadScenery();
        EXPECT_EQ(AVSKIsPluginEnabled(2), 1) << "the heir";
        world.Stop();
        if (void *const left = dlopen(air.path.c_str(), RTLD_NOW | RTLD_NOLOAD))
            dlclose(left), dlclose(left);
    }
}

// The service that creates something for the plugin unloads it.
TEST_F(Corners, WhatAHostCreatedForAPluginThatItUnloadsIsGivenBack) {
    Puppet &air = world.InstallAircraft("air");
    bool unloads = false;
    const auto unload = [&] { unloads ? World::UnloadAircraft() : void(); };
    host.on.loadObject = [&](const char *) { return unload(), &host; };
    host.on.createProbe = [&] { return unload(), &host; };
    host.on.getElapsedTime = [&] { return unload(), 0.0F; };
    host.on.createMenu = [&](void *, int, const char *) { return unload(), &host; };
    host.on.appendMenuItem = [&](void *, int, const char *, int) { return unload(), 7; };
    const auto menu = [] { return AVSKCreateMenu("M", AVSKFindPluginsMenu(), 0, Nothing, nullptr) == nullptr; };
    const auto topMenu = [] { return !AVSKCreateMenu("M", nullptr, 0, Nothing, nullptr) && AVSKMenuHook(7) == 1; };
    for (const auto &[isNull, size, last] : Table<std::function<bool()>, int, std::string>{
             {[] { return AVSKLoadObject("o") == nullptr; }, 288, "unloadObject(pointer)"},
             {[] { return AVSKCreateProbe(0) == nullptr; }, 288, "stop air"},
             {[] { return CreateLoop() == nullptr; }, 288, "stop air"},
             {menu, 288, "destroyMenu(pointer)"},
             {menu, 284, "stop air"}, // an old host has no service for it
             {topMenu, 288, "removeMenuItem(pointer, 0)"}}) {
        host.table.sizeInBytes = size;
        world.StartQuietly();
        World::LoadAircraft();
        unloads = true;
        air.Run([&, &create = isNull] { EXPECT_TRUE(create()); });
        unloads = false;
        EXPECT_EQ(Take().back(), last);
        world.Stop();
    }
    host.table.sizeInBytes = 288;
}

// ---- Endless calls

TEST_F(Corners, PluginsThatEnableEachOtherAreEnabledOnce) {
    Puppet &a = world.Install("A");
    Puppet &b = world.Install("B");
    int inner[2] = {};
    a.enable = [&] { return inner[0] = AVSKEnablePlugin(b.Id()), 1; };
    b.enable = [&] { return inner[1] = AVSKEnablePlugin(a.Id()), 1; };
    world.Start();
    EXPECT_TRUE(TakeCalls().ends_with("start A; start B; enable A; enable B"));
    EXPECT_EQ(std::pair(inner[0], inner[1]), std::pair(1, 0));
    EXPECT_EQ(AVSKEnablePlugin(a.Id()), 1);
}

} // namespace

extern "C" AVSK_API void AvskTestStatic(bool constructed, AVSKFlightLoop_f loop) {
    if (gStatic)
        gStatic(constructed, loop);
}
