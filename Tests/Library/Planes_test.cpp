// The user's aircraft, and control of the other aircraft: acquiring it, waiting
// for it, and offering it to those who wait.
#include "World.h"

#include <array>

namespace {

std::string gHeard; // writes to the ai_loc datarefs, "[index]=value "

class Planes : public ThreePlugins {
  protected:
    // The plugin asks for control. The library calls f when control becomes available.
    int Acquire(const Puppet &owner, NoticePlayer f = nullptr, char **paths = nullptr) {
        const AVSKPlanesAvailable_f callback = f ? owner.code.notified : nullptr;
        void *const refcon = Keep(std::move(f));
        return owner.Run([&] { return AVSKAcquirePlanes(paths, callback, refcon); });
    }
    static std::string Release(const Puppet &owner) { return DOES_AS(owner, AVSKReleasePlanes()); }
    static int Controller() {
        int controller = -2;
        Host().on.countAircraft = [] { return 10; };
        AVSKCountAircraft(nullptr, nullptr, &controller);
        return controller;
    }
    // The path that the host receives for an aircraft's model.
    static std::string Model(int index) {
        char name[32] = "name", path[600] = "own";
        AVSKUpdatePlaneNameAndPath(index, name, path);
        EXPECT_STREQ(name, "name");
        return path;
    }
};

// ---- The calls that reach the host

TEST_F(Planes, SomeCallsNeedControlAndTheUsersAircraftDoesNot) {
    AVSKGetNthAircraftModel(2, nullptr, nullptr);
    AVSKGetNthAircraftModel(-1, nullptr, nullptr);
    host.on.getAircraftModel = [](int, char *path, char *name) {
        std::strcpy(path, std::string(600, 'p').c_str());
        std::strcpy(name, "name");
    };
    int native = 0;
    const auto use = [&] {
        AVSKEnableFeature("AVSK_USE_NATIVE_PATHS", native);
        char path[700] = "", name[256] = "";
        AVSKGetNthAircraftModel(2, name, path);
        EXPECT_EQ(name + std::string(path), "name" + std::string(native ? 600 : 511, 'p')) << "path first, and cut";
        AVSKSetAircraftModel(1, native ? "native" : "old");
        AVSKReinitUsersPlane();
        AVSKSetActiveAircraftCount(1);
        AVSKDrawAircraft(1, 2, 3, 4, 5, 6, 7, 8, 9);
        for (const char *model : {"/a/b/model.acf", "model.acf", static_cast<const char *>(nullptr)})
            AVSKSetUsersAircraft(model);
    };
    const std::string always = "loadAircraftModel(0, \"/a/b/model.acf\", \"model.acf\"); "
                               "loadAircraftModel(0, \"model.acf\", \"odel.acf\")";
    Acquire(a);
    for (; native < 2; ++native) {
        EXPECT_EQ(DOES_AS(b, use()), always);
        EXPECT_EQ(DOES_AS(a, use()), "reinitUsersPlane(208, 201); drawAircraft(1, 2, 3, 4, 5, 6, 7, 8, 9); " + always);
        EXPECT_EQ(Model(1), native ? "native" : "old");
    }
    host.on.drawAircraft = [](auto...) { return 5; };
    EXPECT_EQ(a.Run([] { return AVSKDrawAircraft(1, 2, 3, 4, 5, 6, 7, 8, 9); }), 5);
    EXPECT_EQ(AVSKDrawAircraft(1, 2, 3, 4, 5, 6, 7, 8, 9), 1);
}

// ---- In control

TEST_F(Planes, AcquiringTakesTheModelsOfItsListButTheUsers) {
    char one[] = "one", empty[] = "", three[] = "three";
    char *paths[] = {one, one, empty, three, nullptr}, *others[] = {three, three, nullptr};
    EXPECT_EQ(Controller(), -1);
    EXPECT_EQ(Acquire(a, nullptr, paths), 1);
    one[0] = '#'; // the library has copied the list
    EXPECT_EQ(Acquire(a, nullptr, others), 1) << "has it already; the list is ignored";
    EXPECT_EQ(Controller(), 1);
    EXPECT_EQ((Lines{Model(0), Model(1), Model(2), Model(3), Model(4)}), (Lines{"own", "one", "own", "three", "own"}));
    Release(a);
    EXPECT_EQ(Acquire(b), 1);
    EXPECT_EQ(Model(1), "own") << "a null list requests nothing";
    EXPECT_EQ(Acquire(a), 0) << "and without a callback it does not wait";
    EXPECT_EQ(Release(b), "");
}

TEST_F(Planes, AModelIsLoadedAtOnceWhenTheHostHasThatAircraft) {
    Acquire(a);
    host.on.loadAircraftModel = [](int index, const char *, const char *) {
        Note(Line("asked meanwhile: ", Model(index), " ", AVSKGetNumberPlanesToHandle(20, 0)));
    };
    const auto set = [&](int index, const char *path) { return DOES_AS(a, AVSKSetAircraftModel(index, path)); };
    a.Run([] { AVSKSetActiveAircraftCount(3); });
    EXPECT_EQ((Lines{set(5, "five"), set(-1, "bad"), set(6, nullptr)}), Lines(3)) << "no count reported yet";
    EXPECT_EQ((Lines{Model(5), Model(6)}), (Lines{"five", "own"}));
    EXPECT_EQ(AVSKGetNumberPlanesToHandle(20, 0), 3);
    for (const int index : {19, 20, 0x7FFFFFFF, 0})
        EXPECT_EQ(set(index, "new"),
                  index % 19 ? "" : Line("loadAircraftModel(", index, ", \"new\", \"new\"); asked meanwhile: own 20"));
    EXPECT_EQ((Lines{Model(19), Model(20), Model(0)}), (Lines{"new", "new", "own"})) << "never of the user's";
    host.on.loadAircraftModel = [](int, const char *, const char *) { throw 1; };
    EXPECT_THROW(set(19, "last"), int);
    EXPECT_EQ(Model(19), "last") << "the load is over";
}

TEST_F(Planes, TheLimitHoldsForThoseItIsAskedFor) {
    Controller(); // sets ten aircraft in the host
    Acquire(a);
    for (const auto &[limit, shown, count, flag, answer] : Table<int, int, int, int, int>{{3, 3, 20, 0, 3},
                                                                                          {3, 3, 20, 1, 20},
                                                                                          {3, 3, 2, 0, 2},
                                                                                          {0, 0, 20, 0, 0},
                                                                                          {-1, 10, 20, 0, 20},
                                                                                          {15, 10, 20, 0, 15}}) {
        a.Run([limit = limit] { AVSKSetActiveAircraftCount(limit); });
        int total = -1, active = -1;
        AVSKCountAircraft(&total, &active, nullptr);
        EXPECT_EQ(std::pair(total, active), std::pair(10, shown)) << limit;
        EXPECT_EQ(AVSKGetNumberPlanesToHandle(count, flag), answer) << limit;
    }
    Release(a);
    EXPECT_EQ(AVSKGetNumberPlanesToHandle(20, 0), 20);
}

TEST_F(Planes, AModelsPathFitsIntoTheHostsBuffer) {
    std::string fits(AVSK_TEXT_SIZE - 1, 'f'), tooLong(AVSK_TEXT_SIZE, 'l');
    char *paths[] = {fits.data(), fits.data(), tooLong.data(), nullptr};
    AVSKGetNumberPlanesToHandle(9, 0);
    const std::string refused = " was passed a path of more than 255 bytes.";
    a.Run(JournalErrors);
    EXPECT_EQ(DOES_AS(a, AVSKAcquirePlanes(paths, nullptr, nullptr)), "1: error: AVSKAcquirePlanes" + refused);
    for (const int index : {3, 1})
        EXPECT_EQ(DOES_AS(a, AVSKSetAircraftModel(index, tooLong.c_str())), "error: AVSKSetAircraftModel" + refused);
    EXPECT_EQ((Lines{Model(1), Model(2), Model(3)}), (Lines{fits, "own", "own"}));
    Release(a);
    a.Run([] { AVSKSetErrorCallback([](const char *) { AVSKReleasePlanes(); }); });
    EXPECT_EQ(Acquire(a, nullptr, paths), 0) << "released by the error callback";
}

// ---- Giving it up

TEST_F(Planes, ReleasingHandsTheAircraftBackToTheAI) {
    static int indices[22];
    const auto write = [](void *index, int value) {
        gHeard += Line("[", *static_cast<int *>(index), "]=", value, " ");
    };
    for (int i = 0; i < 22; ++i) {
        indices[i] = i;
        AVSKRegisterDataAccessor(Line("sim/private/net_disables/ai_loc[", i, "]").c_str(), AVSKDataTypeInt, 1, nullptr,
                                 write, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr,
                                 nullptr, nullptr, &indices[i]);
    }
    Acquire(a);
    AVSKGetNumberPlanesToHandle(4, 1);
    for (const int index : {0, 21, -1, 99})
        b.Run([=] { AVSKDisableAIForPlane(index); });
    EXPECT_EQ(std::exchange(gHeard, ""), "[0]=1 [21]=1 ") << "anyone may stop it";
    Release(a);
    EXPECT_EQ(gHeard, "[1]=0 [2]=0 [3]=0 ");
}

TEST_F(Planes, ControlEndsWithThePluginWhicheverWayItGoes) {
    const auto acquire = [] { EXPECT_EQ(AVSKAcquirePlanes(nullptr, nullptr, nullptr), 1); };
    const auto wait = [&] { Acquire(a, [] { Note("offered"); }); };
    for (const auto &[go, calls] : Table<std::function<void()>, std::string>{
             {[&] { Acquire(air), wait(), AVSKDisablePlugin(air.Id()); }, "offered; disable air"},
             {[&] { air.disable = acquire, air.stop = wait, World::UnloadAircraft(); },
              "disable air; stop air; offered"},
             {[&] { air.stop = [&] { acquire(), wait(); }, World::UnloadAircraft(); },
              "disable air; stop air; offered"}}) {
        EXPECT_EQ(DOES(go()), calls);
        EXPECT_EQ(Controller(), -1);
        air.disable = air.stop = nullptr;
        Restart();
    }
}

TEST_F(Planes, EveryoneWhoWaitsIsToldOnceInTheOrderOfAsking) {
    const auto says = [](const char *line) { // control is free before the first call
        return [=] { Note(Line(line, AVSKGetMyID(), Controller())); };
    };
    Acquire(a);
    EXPECT_EQ(Acquire(b, says("B")), 0);
    EXPECT_EQ(Acquire(air, says("air")), 0);
    EXPECT_EQ(Acquire(b, says("again")), 0) << "twice is called twice";
    EXPECT_EQ(Release(a), "countAircraft(); B2-1; countAircraft(); air3-1; countAircraft(); again2-1");
}

// Three wait. The first, the aircraft plugin, acts inside its offer.
TEST_F(Planes, AnOfferSurvivesWhatTheWaitingDo) {
    const auto acquire = [this](const Puppet &who, const char *label) {
        Note(label + std::to_string(Acquire(who, [=] { Note(std::string(label) + "offered"); })));
    };
    for (const auto &[what, act, now, controller, next] :
         Table<std::string, std::function<void()>, std::string, int, std::string>{
             {"acquires", [&] { acquire(air, "air "); }, "1; air 1; 2; 3", 3, ""},
             {"acquires and releases",
              [&] { acquire(air, "air "), acquire(b, "B "), air.Run([] { AVSKReleasePlanes(); }); },
              "1; air 1; B 0; B offered; 2; 3", -1, ""},
             {"acquires and is disabled", [&] { acquire(air, "air "), AVSKDisablePlugin(air.Id()); },
              "1; air 1; disable air; 2", -1, ""},
             {"is unloaded", World::UnloadAircraft, "1; disable air; stop air; 2", -1, ""},
             {"is unloaded and loaded, and waits afresh",
              [&] { World::UnloadAircraft(), World::LoadAircraft(), acquire(b, "B "), acquire(air, "air "); },
              "1; disable air; stop air; start air; enable air; B 1; air 0; 2", 2, "air offered"}}) {
        SCOPED_TRACE(what);
        ASSERT_EQ(Acquire(a), 1);
        Acquire(air, [&, &act = act] {
            Note("1");
            act();
            air.returned = 0;
            EXPECT_TRUE(air.IsMapped());
        });
        Acquire(b, [] { Note("2"); });
        Acquire(air, [] { Note("3"); });
        EXPECT_EQ(Release(a), now);
        EXPECT_GE(air.returned, 1);
        EXPECT_EQ(Controller(), controller);
        if (controller > 0) {
            EXPECT_EQ(Release(*std::array{&a, &b, &air}.at(controller - 1)), next);
        }
        EXPECT_EQ(AVSKGetMyID(), 0);
        Restart();
    }
}

} // namespace
