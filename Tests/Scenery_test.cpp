// Terrain probes, scenery objects, and loads that complete some time.
#include "Forwarding.h"
#include "ThreePlugins.h"

#include "AVSK/AVSKHost.h"

#include <cmath>
#include <cstring>
#include <limits>
#include <stdexcept>

namespace {

void *const kTree = reinterpret_cast<void *>(21);
void *const kRock = reinterpret_cast<void *>(22);

class Scenery : public ThreePlugins<ObjectPlayer> {
  protected:
    // What the host was asked to load and has not completed.
    struct Load {
        void (*complete)(void *object, void *argument);
        void *argument;
        void operator()(void *object) const { complete(object, argument); }
    };
    std::vector<Load> loads;

    void SetUp() override {
        host.on.loadObject = [](const char *path) { return std::strcmp(path, "missing") == 0 ? nullptr : kTree; };
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
            Note("loaded " + std::to_string(reinterpret_cast<std::uintptr_t>(object)) + " as " +
                 std::to_string(AVSKGetMyID()));
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
    std::vector<std::uintptr_t> used;
    host.on.probeTerrain = [&](void *probe, const float *, float *, float *, float *, int *) {
        return used.push_back(reinterpret_cast<std::uintptr_t>(probe)), 1;
    };
    const auto probe = [](AVSKProbeRef ref) {
        AVSKProbeInfo info = {sizeof info, {}, {}, {}, 0};
        return AVSKProbeTerrainXYZ(ref, 0, 0, 0, &info);
    };
    AVSKProbeRef refs[3] = {};
    a.Run([&] {
        for (AVSKProbeRef &ref : refs)
            ref = AVSKCreateProbe(AVSK_PROBE_Y);
    });
    b.Run([&] { // anybody may
        for (const int i : {2, 0, 0, 1})
            AVSKDestroyProbe(refs[i]);
        AVSKDestroyProbe(nullptr);
        AVSKDestroyProbe(reinterpret_cast<AVSKProbeRef>(&used));
    });
    EXPECT_EQ(TakeCalls(), "createProbe(); createProbe(); createProbe()");
    for (AVSKProbeRef &ref : refs)
        EXPECT_EQ(probe(ref = AVSKCreateProbe(AVSK_PROBE_Y)), AVSKProbeHit);
    EXPECT_EQ(used, (std::vector<std::uintptr_t>{38, 46, 54}));
    air.Run([&] { AVSKDestroyProbe(refs[1]), refs[1] = AVSKCreateProbe(AVSK_PROBE_Y); });
    TakeCalls();
    World::UnloadAircraft();
    EXPECT_EQ(probe(refs[1]), AVSKProbeError) << "went with its plugin";
    EXPECT_EQ(probe(refs[0]), AVSKProbeHit);
    EXPECT_EQ(probe(nullptr), AVSKProbeError);
    used.clear();
    EXPECT_EQ(probe(AVSKCreateProbe(AVSK_PROBE_Y)), AVSKProbeHit);
    EXPECT_EQ(used, std::vector<std::uintptr_t>{46});
}

TEST_F(Scenery, AProbeHandsThePointAndTheFieldsToTheHost) {
    float nan[3];
    for (AVSKWord i = 0; i < 3; ++i)
        SetWord(nan[i], kSignallingNaN + i);
    AVSKProbeInfo info = {sizeof info, {}, {}, {}, 0};
    char *const at = reinterpret_cast<char *>(&info);
    int answer = 5;
    host.on.probeTerrain = [&](void *, const float *xyz, float *one, float *two, float *three, int *flag) {
        AVSKWord words[3];
        std::memcpy(words, xyz, sizeof words);
        for (AVSKWord i = 0; i < 3; ++i)
            EXPECT_EQ(words[i], kSignallingNaN + i);
        EXPECT_EQ(reinterpret_cast<char *>(one) - at, 4);
        EXPECT_EQ(reinterpret_cast<char *>(two) - at, 16);
        EXPECT_EQ(reinterpret_cast<char *>(three) - at, 28);
        EXPECT_EQ(reinterpret_cast<char *>(flag) - at, 40);
        return answer;
    };
    const AVSKProbeRef ref = AVSKCreateProbe(AVSK_PROBE_Y);
    EXPECT_EQ(AVSKProbeTerrainXYZ(ref, nan[0], nan[1], nan[2], &info), AVSKProbeHit);
    answer = 0;
    EXPECT_EQ(AVSKProbeTerrainXYZ(ref, nan[0], nan[1], nan[2], &info), AVSKProbeMissed);
}

TEST_F(Scenery, AProbeOfAnotherTypeOrSizeAsksNothing) {
    for (const int type : {AVSK_PROBE_Y, 1, -1}) {
        const AVSKProbeRef ref = AVSKCreateProbe(type);
        TakeCalls();
        for (const int size : {40, 44, 48, 0})
            if (type != AVSK_PROBE_Y || size != 44) {
                AVSKProbeInfo info = {size, {1, 1, 1}, {1, 1, 1}, {1, 1, 1}, 1};
                const AVSKProbeInfo before = info;
                EXPECT_EQ(AVSKProbeTerrainXYZ(ref, 0, 0, 0, &info), AVSKProbeError);
                EXPECT_EQ(std::memcmp(&info, &before, sizeof info), 0);
            }
        EXPECT_EQ(AVSKProbeTerrainXYZ(ref, 0, 0, 0, nullptr), AVSKProbeError);
        EXPECT_EQ(TakeCalls(), "");
    }
}

// ---- Objects

TEST_F(Scenery, EachLoadIsUndoneByOneUnloadOfItsPlugin) {
    a.Run(JournalErrors);
    b.Run(JournalErrors);
    a.Run([] {
        for (int i = 0; i < 2; ++i)
            EXPECT_EQ(AVSKLoadObject("tree"), kTree);
        EXPECT_EQ(AVSKLoadObject("missing"), nullptr);
        EXPECT_EQ(AVSKLoadObject(nullptr), nullptr);
    });
    EXPECT_EQ(TakeCalls(), "loadObject(\"tree\"); loadObject(\"tree\"); loadObject(\"missing\")");
    const std::string unknown = "error: Unknown object for AVSKUnloadObject";
    EXPECT_EQ(Unload(b, kTree), unknown);
    EXPECT_EQ(Unload(a, nullptr), unknown);
    EXPECT_EQ(Unload(a, kTree), "unloadObject(21)");
    EXPECT_EQ(Unload(a, kTree), "unloadObject(21)");
    EXPECT_EQ(Unload(a, kTree), unknown);
}

TEST_F(Scenery, DrawingIsCheckedOnlyForAPluginThatHearsOfErrors) {
    constexpr float nan = std::bit_cast<float>(kSignallingNaN);
    const AVSKDrawInfo good = {28, 1, 2, nan, 4, 5, 6};
    const AVSKDrawInfo bad = {24, 1, 2, nan, 4, 5, 6};
    int exact = 0;
    host.on.drawObject = [&](void *, float, float, float z, float, float, float, int, int) {
        exact += std::bit_cast<AVSKWord>(z) == kSignallingNaN;
    };
    const std::string drawn = ", 1, 2, nan, 5, 4, 6, 7, 8)"; // the second angle first
    const std::string tree = "drawObject(21" + drawn;
    const std::string rock = "drawObject(22" + drawn;
    const std::string notOwned = "error: Illegal object, or object not owned by this plugin.";
    const std::string misfit = "error: Struct size mismatch for AVSKDrawObjects";
    const struct {
        void *object;
        int count;
        std::vector<AVSKDrawInfo> infos;
        std::string unchecked, checked;
    } cases[] = {
        {kTree, 2, {good, good}, tree + "; " + tree, tree + "; " + tree},
        {kRock, 1, {good}, rock, notOwned},
        {kRock, 0, {good}, "", notOwned},
        {kRock, 1, {bad}, rock, notOwned},
        {kTree, 3, {good, bad, good}, tree + "; " + tree + "; " + tree, misfit},
        {kTree, 1, {good, bad}, tree, tree},
        {kTree, 0, {bad}, "", ""},
        {kTree, -1, {bad}, "", ""},
    };
    a.Run([] { AVSKLoadObject("tree"); });
    b.Run([] { AVSKLoadObject("tree"); });
    TakeCalls();
    for (const bool checked : {false, true}) {
        if (checked)
            a.Run(JournalErrors);
        for (const auto &each : cases) {
            std::vector<AVSKDrawInfo> infos = each.infos;
            a.Run([&] { AVSKDrawObjects(each.object, each.count, infos.data(), 7, 8); });
            EXPECT_EQ(TakeCalls(), checked ? each.checked : each.unchecked);
        }
    }
    EXPECT_EQ(exact, 8 + 3) << "bit for bit";
    EXPECT_FORWARDED(AVSKLookupObjects, lookupObjects);
}

TEST_F(Scenery, AnUnloadedPluginsObjectsAreGivenBackInTheirOrder) {
    air.Run([this] {
        for (void *object : {kRock, kTree, kRock}) {
            host.on.loadObject = [=](const char *) { return object; };
            AVSKLoadObject("path");
        }
    });
    TakeCalls();
    World::UnloadAircraft();
    EXPECT_EQ(TakeCalls(), "disable air; stop air; unloadObject(22); unloadObject(21); unloadObject(22)");
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
    EXPECT_EQ(Unload(a, kTree), "unloadObject(21)");
    EXPECT_EQ(Unload(a, kRock), "error: Unknown object for AVSKUnloadObject");
    a.Run([] { AVSKLoadObjectAsync(nullptr, nullptr, nullptr); });
    EXPECT_EQ(TakeCalls(), "");
    a.Run([] { AVSKLoadObjectAsync("path", nullptr, nullptr); });
    loads.back()(kTree);
    TakeCalls();
    EXPECT_EQ(Unload(a, kTree), "unloadObject(21)") << "without a callback";
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

TEST_F(Scenery, ADisabledPluginGetsWhatArrivedWhenEnabledTheLatestFirst) {
    for (int i = 0; i < 3; ++i)
        AskNoting(a);
    AVSKDisablePlugin(1);
    loads[0](kTree);
    loads[0](kRock);
    loads[2](kRock);
    EXPECT_EQ(TakeCalls(), "disable A");
    AVSKEnablePlugin(1);
    EXPECT_EQ(TakeCalls(), "enable A; loaded 22 as 1; loaded 21 as 1");
    loads[1](nullptr);
    EXPECT_EQ(TakeCalls(), "loaded 0 as 1");
}

TEST_F(Scenery, TheLoadsOfAnUnloadedPluginAreGivenBack) {
    for (int i = 0; i < 4; ++i)
        AskNoting(air);
    air.disable = [this] { loads[0](kTree), loads[1](nullptr); };
    air.stop = [this] { AVSKLoadObjectAsync("path", air.code.loaded, nullptr); };
    World::UnloadAircraft();
    EXPECT_EQ(
        TakeCalls(),
        "disable air; unloadObject(null); unloadObject(21); stop air; loadObjectAsync(\"path\", pointer, pointer)");
    ASSERT_EQ(loads.size(), 5U);
    EXPECT_FALSE(air.IsMapped());
    World::LoadAircraft(); // another plugin with the same ID
    TakeCalls();
    for (const Load &each : loads)
        each(kRock);
    EXPECT_EQ(TakeCalls(), "unloadObject(22); unloadObject(22); unloadObject(22)");
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
            loads.clear();
            air.Run(JournalErrors);
            Ask(air, [&](void *) {
                air.returned = 0;
                each.act();
                air.returned = 0;
            });
            if (late)
                AVSKDisablePlugin(air.Id());
            try {
                loads[0](kTree);
                if (late) {
                    TakeCalls();
                    AVSKEnablePlugin(air.Id());
                }
            } catch (const std::runtime_error &) {
            }
            std::string journal = TakeCalls();
            if (late)
                journal.erase(0, journal.starts_with("enable air; ") ? 12 : 10);
            EXPECT_EQ(journal, each.journal);
            EXPECT_EQ(air.returned, 1) << "the call came back into the plugin";
            EXPECT_EQ(AVSKGetMyID(), 0);
            World::UnloadAircraft();
            EXPECT_EQ(TakeCalls(), each.unloading);
            EXPECT_FALSE(air.IsMapped());
            World::LoadAircraft();
            TakeCalls();
        }
}

} // namespace
