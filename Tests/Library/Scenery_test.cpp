// Terrain probes, scenery objects, and loads that complete some time.
#include "World.h"

#include <cstring>
#include <stdexcept>

namespace {

void *const kTree = reinterpret_cast<void *>(21);
void *const kRock = reinterpret_cast<void *>(22);

class Scenery : public ThreePlugins {
  protected:
    // What the host was asked to load and has not completed.
    struct Load {
        void (*complete)(void *object, void *argument);
        void *argument;
        void operator()(void *object) const { complete(object, argument); }
    };
    std::vector<Load> loads;

    void SetUp() override {
        host.on.loadObject = [](const char *path) {
            return !path || std::strcmp(path, "missing") == 0 ? nullptr : kTree;
        };
        host.on.loadObjectAsync = [this](const char *, auto complete, void *argument) {
            loads.push_back({complete, argument});
        };
        ThreePlugins::SetUp();
    }

    // Has a plugin ask for an object; f hears of it.
    void Ask(const Puppet &owner, ObjectPlayer f) {
        void *const refcon = Keep(std::move(f));
        owner.Run([&] { AVSKLoadObjectAsync("path", owner.code.loaded, refcon); });
        TakeCalls();
    }
    void AskNoting(const Puppet &owner) {
        Ask(owner, [](void *object) {
            Note(Line("loaded ", reinterpret_cast<std::uintptr_t>(object), " as ", AVSKGetMyID()));
        });
    }
    static std::string Unload(const Puppet &owner, void *object) {
        owner.Run([=] { AVSKUnloadObject(object); });
        return TakeCalls();
    }
};

// ---- Probes

TEST_F(Scenery, AHostsProbeIsUsedAgainSmallestFirst) {
    std::uintptr_t last = 30;
    host.on.createProbe = [&] { return reinterpret_cast<void *>(last += 8); };
    std::uintptr_t used = 0;
    AVSKProbeInfo info = {sizeof info, {}, {}, {}, 0};
    host.on.probeTerrain = [&](void *probe, const float *xyz, float *one, float *two, float *three, int *flag) {
        EXPECT_EQ(std::vector<float>(xyz, xyz + 3), (std::vector<float>{1, 2, 3}));
        EXPECT_TRUE(one == info.triple1 && two == info.triple2 && three == info.triple3 && flag == &info.flag);
        used = reinterpret_cast<std::uintptr_t>(probe);
        return 1;
    };
    const auto probe = [&](AVSKProbeRef ref) { return AVSKProbeTerrainXYZ(ref, 1, 2, 3, &info); };
    AVSKProbeRef refs[3] = {};
    a.Run([&] {
        for (AVSKProbeRef &ref : refs)
            ref = AVSKCreateProbe(AVSK_PROBE_Y);
    });
    b.Run([&] { // anybody may
        for (const int i : {2, 0, 0, 1})
            AVSKDestroyProbe(refs[i]);
        AVSKDestroyProbe(reinterpret_cast<AVSKProbeRef>(&used));
    });
    EXPECT_EQ(TakeCalls(), "createProbe(); createProbe(); createProbe()");
    for (const std::uintptr_t expected : {38U, 46U}) {
        air.Run([&] { refs[0] = AVSKCreateProbe(AVSK_PROBE_Y); });
        EXPECT_EQ(probe(refs[0]), AVSKProbeHit);
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
    EXPECT_EQ(probe(AVSKCreateProbe(AVSK_PROBE_Y)), AVSKProbeHit);
}

// ---- Objects

TEST_F(Scenery, DrawingIsCheckedOnlyForAPluginThatHearsOfErrors) {
    const AVSKDrawInfo good = {28, 1, 2, 3, 4, 5, 6};
    const AVSKDrawInfo bad = {24, 1, 2, 3, 4, 5, 6};
    const std::string drawn = ", 1, 2, 3, 5, 4, 6, 7, 8)"; // the second angle first
    const std::string tree = "drawObject(21" + drawn;
    const std::string rock = "drawObject(22" + drawn;
    const std::string notOwned = "error: Illegal object, or object not owned by this plugin.";
    const struct {
        void *object;
        int count;
        std::vector<AVSKDrawInfo> infos;
        std::string unchecked, checked;
    } cases[] = {
        {kTree, 2, {good, good}, tree + "; " + tree, tree + "; " + tree},
        {kRock, 1, {bad}, rock, notOwned},
        {kRock, 0, {good}, "", notOwned},
        {kTree, 2, {good, bad}, tree + "; " + tree, "error: Struct size mismatch for AVSKDrawObjects"},
        {kTree, 1, {good, bad}, tree, tree},
        {kTree, -1, {bad}, "", ""},
    };
    a.Run([] { AVSKLoadObject("tree"); });
    TakeCalls();
    for (const bool checked : {false, true}) {
        if (checked)
            a.Run(JournalErrors);
        for (const auto &each : cases) {
            std::vector<AVSKDrawInfo> infos = each.infos;
            a.Run([&] { AVSKDrawObjects(each.object, each.count, infos.data(), 7, 8); });
            EXPECT_EQ(TakeCalls(), checked ? each.checked : each.unchecked);
        }
        a.Run([] { AVSKDrawObjects(kTree, 1, nullptr, 7, 8); });
        EXPECT_EQ(TakeCalls(), "");
    }
}

// ---- Loads that complete some time

TEST_F(Scenery, ALoadReachesItsPluginOnceAndThenBelongsToIt) {
    a.Run(JournalErrors);
    AskNoting(a);
    AskNoting(a);
    loads[1](nullptr);
    loads[0](kTree);
    EXPECT_EQ(TakeCalls(), "loaded 0 as 1; loaded 21 as 1") << "null too";
    for (const Load &each : loads)
        each(kRock);
    loads[0].complete(kRock, nullptr);
    loads[0].complete(kRock, &loads);
    EXPECT_EQ(TakeCalls(), "") << "reported again, or never heard of";
    b.Run([] { AVSKUnloadObject(kTree); });
    EXPECT_EQ(TakeCalls(), "") << "another plugin's";
    EXPECT_EQ(Unload(a, kTree), "unloadObject(21)");
    EXPECT_EQ(Unload(a, kTree), "error: Unknown object for AVSKUnloadObject") << "once";

    a.Run([] {
        EXPECT_EQ(AVSKLoadObject(nullptr), nullptr);
        for (const char *path : {static_cast<const char *>(nullptr), "path"})
            AVSKLoadObjectAsync(path, nullptr, nullptr);
    });
    EXPECT_EQ(TakeCalls(), "loadObject(null); loadObjectAsync(null, pointer, 3); loadObjectAsync(\"path\", pointer, 4)")
        << "as they are";
    loads[3](kTree);
    TakeCalls();
    EXPECT_EQ(Unload(a, kTree), "unloadObject(21)") << "its own, though it did not hear of it";
}

TEST_F(Scenery, ALoadMayCompleteInsideTheRequest) {
    host.on.loadObjectAsync = [](const char *, auto complete, void *argument) {
        complete(kTree, argument);
        complete(kRock, argument);
    };
    bool asked = false;
    ObjectPlayer inner = [](void *) { Note("inner"); };
    Ask(a, [&](void *) {
        AVSKLoadObjectAsync("path", a.code.loaded, &inner);
        asked = true;
    });
    EXPECT_TRUE(asked);
    for (int i = 0; i < 2; ++i)
        EXPECT_EQ(Unload(a, kTree), "unloadObject(21)");
    EXPECT_EQ(Unload(a, kTree), "");
    EXPECT_EQ(AVSKGetMyID(), 0);
}

TEST_F(Scenery, TheLoadsOfAnUnloadedPluginAreGivenBack) {
    for (int i = 0; i < 4; ++i)
        AskNoting(air);
    air.disable = [this] { loads[0](kTree), loads[1](nullptr); };
    air.stop = [this] { AVSKLoadObjectAsync("path", air.code.loaded, nullptr); };
    World::UnloadAircraft();
    EXPECT_TRUE(
        TakeCalls().starts_with("disable air; unloadObject(null); unloadObject(21); stop air; loadObjectAsync("));
    ASSERT_EQ(loads.size(), 5U);
    EXPECT_FALSE(air.IsMapped());
    World::LoadAircraft(); // another plugin with the same ID
    TakeCalls();
    for (const Load &each : loads)
        each(kRock);
    EXPECT_EQ(TakeCalls(), "unloadObject(22); unloadObject(22); unloadObject(22)");
}

TEST_F(Scenery, ADisabledPluginGetsWhatArrivedWhenEnabledTheLatestFirst) {
    for (int i = 0; i < 3; ++i)
        AskNoting(a);
    for (int i = 0; i < 30; ++i)
        world.InstallScenery(Line("s", i));
    world.LoadScenery(); // the registry grows
    AVSKDisablePlugin(1);
    loads[0](kTree);
    loads[0](kRock);
    loads[2](kRock);
    TakeCalls();
    AVSKEnablePlugin(1);
    EXPECT_EQ(TakeCalls(), "enable A; loaded 22 as 1; loaded 21 as 1");
    loads[1](nullptr);
    EXPECT_EQ(TakeCalls(), "loaded 0 as 1");
}

// Whatever way a record leaves the registry, nothing of its stays queued with it.
TEST_F(Scenery, ALoadIsGivenBackWhicheverWayItsPluginGoes) {
    const auto ask = [this] { return AVSKLoadObjectAsync("path", air.code.loaded, nullptr), 1; };
    const struct {
        const char *way;
        std::function<void()> go; // from an aircraft that is not loaded
    } cases[] = {{"refused", [&] { air.start = [&] { return ask(), 0; }, World::LoadAircraft(); }},
                 {"duplicate", [&] { air.start = ask, air.signature = "test.A", World::LoadAircraft(); }},
                 {"threw",
                  [&] {
                      air.start = [&]() -> int { return ask(), throw 1, 0; };
                      EXPECT_THROW(World::LoadAircraft(), int);
                  }},
                 {"asked in its stop call", [&] { air.stop = ask, World::LoadAircraft(), World::UnloadAircraft(); }},
                 {"reload", [&] { World::LoadAircraft(), air.Run(ask), AVSKReloadPlugins(), World::Pass(1); }},
                 {"shutdown", [&] { air.Run(ask), world.Stop(); }}};
    for (const auto &each : cases) {
        SCOPED_TRACE(each.way);
        if (each.way != std::string("shutdown"))
            World::UnloadAircraft();
        each.go();
        air.start = nullptr;
        air.stop = nullptr;
        air.signature = "test.air";
        TakeCalls();
        loads.back()(kTree);
        EXPECT_EQ(TakeCalls(), "unloadObject(21)");
    }
}

TEST_F(Scenery, ACompletionMayEndItsObjectOrItsPlugin) {
    const std::string cleaned = "disable air; stop air; unloadObject(21)";
    const struct {
        const char *what;
        std::function<void()> act;
        std::string journal;
        std::string unloading; // the aircraft, afterwards
    } cases[] = {
        {"unloads the object, which is not its own yet", [] { AVSKUnloadObject(kTree); },
         "error: Unknown object for AVSKUnloadObject", cleaned},
        {"disables", [this] { AVSKDisablePlugin(air.Id()); }, "disable air", "stop air; unloadObject(21)"},
        {"unloads", [] { World::UnloadAircraft(); }, cleaned, ""},
        {"unloads and loads", [] { World::UnloadAircraft(), World::LoadAircraft(); },
         "disable air; stop air; start air; enable air; unloadObject(21)", "disable air; stop air"},
        {"throws", [] { throw std::runtime_error("loaded"); }, "", cleaned},
    };
    for (const auto &each : cases)
        for (const bool late : {false, true}) {
            SCOPED_TRACE(each.what + std::string(late ? ", handed over at enabling" : ""));
            air.Run(JournalErrors);
            Ask(air, [&](void *) {
                TakeCalls();
                each.act();
                EXPECT_TRUE(air.IsMapped());
            });
            if (late)
                AVSKDisablePlugin(air.Id());
            try {
                loads.back()(kTree);
                AVSKEnablePlugin(late ? air.Id() : 0);
            } catch (const std::runtime_error &) {
            }
            EXPECT_EQ(TakeCalls(), each.journal);
            EXPECT_EQ(AVSKGetMyID(), 0);
            World::UnloadAircraft();
            EXPECT_EQ(TakeCalls(), each.unloading);
            EXPECT_FALSE(air.IsMapped());
            World::LoadAircraft();
        }
}

} // namespace
