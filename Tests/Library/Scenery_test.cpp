// Terrain probes, scenery objects, and asynchronous loads.
#include "World.h"

namespace {

void *const kTree = reinterpret_cast<void *>(21);
void *const kRock = reinterpret_cast<void *>(22);

class Scenery : public ThreePlugins {
  protected:
    // The completion callbacks of all asynchronous loads requested from the host.
    std::vector<std::function<void(void *object)>> loads;

    void SetUp() override {
        host.on.loadObject = [](const char *path) { return !path || !std::strcmp(path, "missing") ? nullptr : kTree; };
        host.on.loadObjectAsync = [this](const char *, auto complete, void *argument) {
            loads.emplace_back([=](void *object) { complete(object, argument); });
        };
        ThreePlugins::SetUp();
    }

    // The plugin requests an object asynchronously. On completion f runs; without f, a line is journaled.
    void Ask(const Puppet &owner, ObjectPlayer f = nullptr) {
        void *const refcon = Keep<ObjectPlayer>(f ? std::move(f) : [](void *object) {
            Note(Line("loaded ", reinterpret_cast<std::uintptr_t>(object), " as ", AVSKGetMyID()));
        });
        owner.Run([&] { AVSKLoadObjectAsync("path", owner.code.loaded, refcon); });
        TakeCalls();
    }
    std::string Complete(std::size_t load, void *object) { return DOES(loads.at(load)(object)); }
    static std::string Unload(const Puppet &owner, void *object) { return DOES_AS(owner, AVSKUnloadObject(object)); }
};

// ---- Probes

TEST_F(Scenery, AHostsProbeIsUsedAgainSmallestFirst) {
    std::uintptr_t last = 30, used = 0;
    host.on.createProbe = [&] { return reinterpret_cast<void *>(last += 8); };
    AVSKProbeInfo info = {sizeof info, {}, {}, {}, 0};
    host.on.probeTerrain = [&](void *probe, const float *xyz, float *one, float *two, float *three, int *flag) {
        EXPECT_EQ(std::vector<float>(xyz, xyz + 3), (std::vector<float>{1, 2, 3}));
        EXPECT_TRUE(one == info.triple1 && two == info.triple2 && three == info.triple3 && flag == &info.flag);
        used = reinterpret_cast<std::uintptr_t>(probe);
        return used != 46;
    };
    const auto probe = [&](AVSKProbeRef ref) { return AVSKProbeTerrainXYZ(ref, 1, 2, 3, &info); };
    AVSKProbeRef refs[3] = {};
    const auto create = [&] {
        for (AVSKProbeRef &ref : refs)
            ref = AVSKCreateProbe(AVSK_PROBE_Y);
    };
    EXPECT_EQ(DOES_AS(a, create()), "createProbe(); createProbe(); createProbe()");
    b.Run([&] { // B may destroy A's probes
        for (const int i : {2, 0, 0, 1})
            AVSKDestroyProbe(refs[i]);
        AVSKDestroyProbe(reinterpret_cast<AVSKProbeRef>(&used));
    });
    for (const auto &[expected, result] : {std::pair(38U, AVSKProbeHit), {46U, AVSKProbeMissed}}) {
        refs[0] = air.Run([&] { return AVSKCreateProbe(AVSK_PROBE_Y); });
        EXPECT_EQ(probe(refs[0]), result);
        EXPECT_EQ(used, expected);
    }
    info.structSize = 40;
    EXPECT_EQ(probe(refs[0]), AVSKProbeError);
    info.structSize = sizeof info;
    EXPECT_EQ(AVSKProbeTerrainXYZ(refs[0], 1, 2, 3, nullptr), AVSKProbeError);
    World::UnloadAircraft();
    EXPECT_EQ(probe(refs[0]), AVSKProbeError) << "went with its plugin";
    EXPECT_EQ(probe(nullptr), AVSKProbeError);
    EXPECT_EQ(probe(AVSKCreateProbe(AVSK_PROBE_Y + 1)), AVSKProbeError);
    EXPECT_EQ(probe(AVSKCreateProbe(AVSK_PROBE_Y)), AVSKProbeMissed);
}

// ---- Objects

TEST_F(Scenery, DrawingIsCheckedOnlyForAPluginThatHearsOfErrors) {
    const AVSKDrawInfo good = {28, 1, 2, 3, 4, 5, 6}, bad = {24, 1, 2, 3, 4, 5, 6};
    const std::string tree = "drawObject(21, 1, 2, 3, 5, 4, 6, 7, 8)"; // the host takes the second angle first
    const std::string rock = "drawObject(22, 1, 2, 3, 5, 4, 6, 7, 8)";
    const std::string notOwned = "error: Illegal object, or object not owned by this plugin.";
    a.Run([] { AVSKLoadObject("tree"); });
    for (const bool checked : {false, true}) {
        if (checked)
            a.Run(JournalErrors);
        for (const auto &[object, count, given, uncheckedCalls, checkedCalls] :
             Table<void *, int, std::vector<AVSKDrawInfo>, std::string, std::string>{
                 {kTree, 2, {good, good}, tree + "; " + tree, tree + "; " + tree},
                 {kRock, 1, {bad}, rock, notOwned},
                 {kRock, 0, {good}, "", notOwned},
                 {kTree, 2, {good, bad}, tree + "; " + tree, "error: Struct size mismatch for AVSKDrawObjects"},
                 {kTree, 1, {good, bad}, tree, tree},
                 {kTree, -1, {bad}, "", ""},
                 {kTree, 1, {}, "", ""}}) {
            std::vector<AVSKDrawInfo> infos = given;
            EXPECT_EQ(DOES_AS(a, AVSKDrawObjects(object, count, infos.data(), 7, 8)),
                      checked ? checkedCalls : uncheckedCalls);
        }
    }
}

// ---- Asynchronous loads

TEST_F(Scenery, ALoadReachesItsPluginOnceAndThenBelongsToIt) {
    a.Run(JournalErrors);
    void *arguments[2];
    host.on.loadObjectAsync = [&, i = 0](const char *, auto complete, void *argument) mutable {
        arguments[i++] = argument;
        loads.emplace_back([=](void *object) { complete(object, argument); });
        complete(kRock, nullptr);
        complete(kRock, &loads);
    };
    for (int i = 0; i < 2; ++i)
        Ask(a);
    EXPECT_NE(arguments[0], arguments[1]);
    EXPECT_EQ((Lines{Complete(1, nullptr), Complete(0, kTree), Complete(0, kRock), Complete(1, kRock)}),
              (Lines{"loaded 0 as 1", "loaded 21 as 1", "", ""}))
        << "null too, and not again";
    EXPECT_EQ(Unload(b, kTree), "") << "another plugin's";
    EXPECT_EQ((Lines{Unload(a, kTree), Unload(a, kTree)}),
              (Lines{"unloadObject(21)", "error: Unknown object for AVSKUnloadObject"}));
    host.on.loadObjectAsync = [](const char *, auto complete, void *argument) { complete(kTree, argument); };
    EXPECT_EQ(DOES_AS(a, AVSKLoadObject(nullptr)), "0: loadObject(null)");
    EXPECT_EQ(DOES_AS(a, AVSKLoadObjectAsync(nullptr, nullptr, nullptr)), "loadObjectAsync(null, pointer, 3)");
    EXPECT_EQ(Unload(a, kTree), "unloadObject(21)") << "its own, though it did not hear of it";
    EXPECT_EQ(Unload(a, nullptr), "error: Unknown object for AVSKUnloadObject") << "a failed load is no object";
}

TEST_F(Scenery, ALoadMayCompleteInsideTheRequest) {
    host.on.loadObjectAsync = [](const char *, auto complete, void *argument) {
        complete(kTree, argument);
        complete(kRock, argument);
    };
    bool asked = false;
    ObjectPlayer inner = [](void *) {};
    Ask(a, [&](void *) { AVSKLoadObjectAsync("path", a.code.loaded, &inner), asked = true; });
    EXPECT_TRUE(asked);
    EXPECT_EQ((Lines{Unload(a, kTree), Unload(a, kTree), Unload(a, kTree)}),
              (Lines{"unloadObject(21)", "unloadObject(21)", ""}));
    EXPECT_EQ(AVSKGetMyID(), 0);
}

TEST_F(Scenery, TheLoadsOfAnUnloadedPluginAreGivenBack) {
    for (int i = 0; i < 4; ++i)
        Ask(air);
    air.disable = [this] { loads[0](kTree), loads[1](nullptr); };
    EXPECT_EQ(DOES(World::UnloadAircraft()), "disable air; unloadObject(null); unloadObject(21); stop air");
    EXPECT_FALSE(air.IsMapped());
    World::LoadAircraft(); // another plugin with the same ID
    EXPECT_EQ((Lines{Complete(0, kRock), Complete(1, kRock), Complete(2, kRock), Complete(3, kRock)}),
              (Lines{"", "", "unloadObject(22)", "unloadObject(22)"}));
}

TEST_F(Scenery, ADisabledPluginGetsWhatArrivedWhenEnabledTheLatestFirst) {
    for (int i = 0; i < 3; ++i)
        Ask(a);
    for (int i = 0; i < 30; ++i)
        world.InstallScenery(Line("s", i));
    world.LoadScenery(); // grows the registry
    AVSKDisablePlugin(1);
    EXPECT_EQ((Lines{Complete(0, kTree), Complete(0, kRock), Complete(2, kRock)}), Lines(3));
    EXPECT_EQ(DOES(AVSKEnablePlugin(1)), "1: enable A; loaded 22 as 1; loaded 21 as 1");
    EXPECT_EQ(Complete(1, nullptr), "loaded 0 as 1");
}

// However a plugin leaves the registry, no load stays queued for it.
TEST_F(Scenery, ALoadIsGivenBackWhicheverWayItsPluginGoes) {
    const auto ask = [this] { return AVSKLoadObjectAsync("path", air.code.loaded, nullptr), 1; };
    for (const auto &[way, go] : Table<std::string, std::function<void()>>{
             {"refused", [&] { air.start = [&] { return ask(), 0; }, World::LoadAircraft(); }},
             {"duplicate", [&] { air.start = ask, air.signature = "test.A", World::LoadAircraft(); }},
             {"threw",
              [&] {
                  air.start = [&]() -> int { throw ask(); };
                  EXPECT_THROW(World::LoadAircraft(), int);
              }},
             {"asked in its stop call", [&] { air.stop = ask, World::LoadAircraft(), World::UnloadAircraft(); }},
             {"reload", [&] { World::LoadAircraft(), air.Run(ask), AVSKReloadPlugins(), World::Pass(1); }},
             {"shutdown", [&] { World::LoadAircraft(), air.Run(ask), world.Stop(); }},
             {"asked in its stop call inside its own call, and its record stays", [&] {
                  Restart(), world.InstallScenery("s"), world.LoadScenery();
                  air.stop = ask, air.Run(World::UnloadAircraft);
              }}}) {
        SCOPED_TRACE(way);
        World::UnloadAircraft();
        go();
        air.start = nullptr, air.stop = nullptr, air.signature = "test.air";
        EXPECT_EQ(Complete(loads.size() - 1, kTree), "unloadObject(21)");
    }
}

TEST_F(Scenery, ACompletionMayEndItsObjectOrItsPlugin) {
    const std::string cleaned = "disable air; stop air; unloadObject(21)";
    for (const auto &[what, act, journal, unloading] :
         Table<std::string, std::function<void()>, std::string, std::string>{
             {"unloads the object, which is not its own yet", [] { AVSKUnloadObject(kTree); },
              "error: Unknown object for AVSKUnloadObject", cleaned},
             {"disables", [&] { AVSKDisablePlugin(air.Id()); }, "disable air", "stop air; unloadObject(21)"},
             {"unloads", World::UnloadAircraft, cleaned, ""},
             {"unloads and loads", [] { World::UnloadAircraft(), World::LoadAircraft(); },
              "disable air; stop air; start air; enable air; unloadObject(21)", "disable air; stop air"},
             {"throws", [] { throw 1; }, "", cleaned}})
        for (const bool late : {false, true}) {
            SCOPED_TRACE(what + (late ? ", handed over at enabling" : ""));
            air.Run(JournalErrors);
            Ask(air, [&, &act = act](void *) {
                TakeCalls();
                act();
                EXPECT_TRUE(air.IsMapped());
            });
            if (late)
                AVSKDisablePlugin(air.Id());
            try {
                loads.back()(kTree);
                AVSKEnablePlugin(late ? air.Id() : 0);
            } catch (int) {
            }
            EXPECT_EQ(TakeCalls(), journal);
            EXPECT_EQ(AVSKGetMyID(), 0);
            EXPECT_EQ(DOES(World::UnloadAircraft()), unloading);
            EXPECT_FALSE(air.IsMapped());
            World::LoadAircraft();
        }
}

} // namespace
