// The user's aircraft, and control of the others: who has it, who waits for
// it, and what an offer survives.
#include "World.h"

#include "AVSK/AVSKPlanes.h"

#include <array>
#include <cstring>
#include <stdexcept>
#include <tuple>

namespace {

std::string gHeard; // apart from the journal: writes of the ai_loc datarefs, "[index]=value ", and offers

class Planes : public ThreePlugins {
  protected:
    // Has a plugin ask for control; f hears that it is free.
    int Acquire(const Puppet &owner, NoticePlayer f = nullptr, char **paths = nullptr) {
        const AVSKPlanesAvailable_f callback = f ? owner.code.notified : nullptr;
        void *const refcon = Keep(std::move(f));
        int answer = -1;
        owner.Run([&] { answer = AVSKAcquirePlanes(paths, callback, refcon); });
        return answer;
    }
    static std::string Release(const Puppet &owner) {
        owner.Run([] { AVSKReleasePlanes(); });
        return TakeCalls();
    }
    static int Controller() {
        int controller = -2;
        AVSKCountAircraft(nullptr, nullptr, &controller);
        TakeCalls();
        return controller;
    }
    // What the host hears when it asks for an aircraft's model.
    static std::string Model(int index) {
        char name[32] = "name";
        char path[600] = "own";
        AVSKUpdatePlaneNameAndPath(index, name, path);
        EXPECT_STREQ(name, "name");
        return path;
    }
    static void PublishDisables(int count) {
        static int indices[100];
        for (int i = 0; i < count; ++i) {
            indices[i] = i;
            const auto write = [](void *index, int value) {
                gHeard += "[" + std::to_string(*static_cast<int *>(index)) + "]=" + std::to_string(value) + " ";
            };
            AVSKRegisterDataAccessor(("sim/private/net_disables/ai_loc[" + std::to_string(i) + "]").c_str(),
                                     AVSKDataTypeInt, 1, nullptr, write, nullptr, nullptr, nullptr, nullptr, nullptr,
                                     nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, &indices[i]);
        }
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
    const auto use = [] {
        char path[700] = "";
        char name[256] = "";
        AVSKGetNthAircraftModel(2, name, path);
        EXPECT_EQ(name + std::string(path), "name" + std::string(511, 'p')) << "path first, and cut";
        AVSKReinitUsersPlane();
        AVSKSetActiveAircraftCount(1);
        AVSKDrawAircraft(1, 2, 3, 4, 5, 6, 7, 8, 9);
        AVSKSetUsersAircraft("/a/b/model.acf");
        AVSKSetUsersAircraft("model.acf");
        AVSKSetUsersAircraft(nullptr);
    };
    const std::string always = "loadAircraftModel(0, \"/a/b/model.acf\", \"model.acf\"); "
                               "loadAircraftModel(0, \"model.acf\", \"odel.acf\")";
    Acquire(a);
    b.Run(use);
    EXPECT_EQ(TakeCalls(), always);
    a.Run(use);
    EXPECT_EQ(TakeCalls(), "reinitUsersPlane(208, 201); drawAircraft(1, 2, 3, 4, 5, 6, 7, 8, 9); " + always);
}

// ---- In control

TEST_F(Planes, AcquiringTakesTheModelsOfItsListButTheUsers) {
    char one[] = "one";
    char empty[] = "";
    char three[] = "three";
    char *paths[] = {one, one, empty, three, nullptr};
    char *others[] = {three, three, nullptr};
    EXPECT_EQ(Controller(), -1);
    EXPECT_EQ(Acquire(a, nullptr, paths), 1);
    one[0] = '#'; // copied
    EXPECT_EQ(Acquire(a, nullptr, others), 1) << "has it already; the list is ignored";
    EXPECT_EQ(Controller(), 1);
    const char *const expected[] = {"own", "one", "own", "three", "own", "own"};
    for (int index = 0; index < 6; ++index)
        EXPECT_EQ(Model(index), expected[index]);
    Release(a);
    EXPECT_EQ(Acquire(b), 1);
    EXPECT_EQ(Model(1), "own") << "a null list requests nothing";
    EXPECT_EQ(Acquire(a), 0) << "and without a callback it does not wait";
}

TEST_F(Planes, AModelIsLoadedAtOnceWhenTheHostHasThatAircraft) {
    Acquire(a);
    host.on.loadAircraftModel = [](int index, const char *, const char *) {
        Note(Line("asked meanwhile: ", Model(index), " ", AVSKGetNumberPlanesToHandle(20, 0)));
    };
    a.Run([] {
        AVSKSetActiveAircraftCount(3);
        AVSKSetAircraftModel(5, "five");
        AVSKSetAircraftModel(-1, "bad");
        AVSKSetAircraftModel(6, nullptr);
    });
    EXPECT_EQ(TakeCalls(), "") << "no count reported yet";
    EXPECT_EQ(Model(5), "five");
    EXPECT_EQ(Model(6), "own");
    EXPECT_EQ(AVSKGetNumberPlanesToHandle(20, 0), 3);
    a.Run([] {
        for (const int index : {19, 20, 0x7FFFFFFF, 0})
            AVSKSetAircraftModel(index, "new");
    });
    EXPECT_EQ(TakeCalls(), "loadAircraftModel(19, \"new\", \"new\"); asked meanwhile: own 20; "
                           "loadAircraftModel(0, \"new\", \"new\"); asked meanwhile: own 20");
    EXPECT_EQ(Model(19), "new");
    EXPECT_EQ(Model(20), "new");
    EXPECT_EQ(Model(0), "own") << "the user's is never asked of it";
    host.on.loadAircraftModel = [](int, const char *, const char *) { throw std::runtime_error("model"); };
    a.Run([] { EXPECT_THROW(AVSKSetAircraftModel(19, "last"), std::runtime_error); });
    EXPECT_EQ(Model(19), "last") << "the load is over";
}

TEST_F(Planes, TheLimitHoldsForThoseItIsAskedFor) {
    host.on.countAircraft = [] { return 10; };
    Acquire(a);
    for (const auto &[limit, shown, count, flag, answer] : {std::tuple(3, 3, 20, 0, 3),
                                                            {3, 3, 20, 1, 20},
                                                            {3, 3, 2, 0, 2},
                                                            {0, 0, 20, 0, 0},
                                                            {-1, 10, 20, 0, 20},
                                                            {15, 10, 20, 0, 15}}) {
        const int set = limit;
        a.Run([=] { AVSKSetActiveAircraftCount(set); });
        int active = -1;
        AVSKCountAircraft(nullptr, &active, nullptr);
        EXPECT_EQ(active, shown) << limit;
        EXPECT_EQ(AVSKGetNumberPlanesToHandle(count, flag), answer) << limit;
    }
    Release(a);
    EXPECT_EQ(AVSKGetNumberPlanesToHandle(20, 0), 20);
}

// ---- Giving it up

TEST_F(Planes, ReleasingHandsTheAircraftBackToTheAI) {
    PublishDisables(22);
    Acquire(a);
    gHeard.clear();
    AVSKGetNumberPlanesToHandle(4, 1);
    for (const int index : {0, 21, -1, 99})
        b.Run([=] { AVSKDisableAIForPlane(index); });
    EXPECT_EQ(std::exchange(gHeard, ""), "[0]=1 [21]=1 ") << "anyone may stop it";
    Release(a);
    EXPECT_EQ(gHeard, "[1]=0 [2]=0 [3]=0 ");
}

TEST_F(Planes, ControlEndsWithThePluginWhicheverWayItGoes) {
    const auto acquire = [] { EXPECT_EQ(AVSKAcquirePlanes(nullptr, nullptr, nullptr), 1); };
    const auto wait = [this] { Acquire(a, [] { Note("offered"); }); };
    const struct {
        const char *way;
        std::function<void()> go;
        std::string offered;
    } cases[] = {{"disabled", [&] { Acquire(air), wait(), AVSKDisablePlugin(air.Id()); }, "offered; disable air"},
                 {"acquired while it was disabled",
                  [&] { air.disable = acquire, air.stop = wait, World::UnloadAircraft(); },
                  "disable air; stop air; offered"},
                 {"acquired in its stop call", [&] { air.stop = [&] { acquire(), wait(); }, World::UnloadAircraft(); },
                  "disable air; stop air; offered"}};
    for (const auto &each : cases) {
        SCOPED_TRACE(each.way);
        each.go();
        EXPECT_EQ(TakeCalls(), each.offered);
        EXPECT_EQ(Controller(), -1);
        air.disable = air.stop = nullptr;
        Restart();
    }
}

TEST_F(Planes, EveryoneWhoWaitsIsToldOnceInTheOrderOfAsking) {
    const auto says = [](const char *line) {
        return [=] {
            EXPECT_EQ(Controller(), -1) << "free before the first is told";
            gHeard += Line(line, AVSKGetMyID(), " ");
        };
    };
    gHeard.clear();
    Acquire(a);
    EXPECT_EQ(Acquire(b, says("B")), 0);
    EXPECT_EQ(Acquire(air, says("air")), 0);
    EXPECT_EQ(Acquire(b, says("again ")), 0) << "twice is called twice";
    Release(a);
    EXPECT_EQ(gHeard, "B2 air3 again 2 ");
}

// The first of three that wait, the aircraft's, does something.
TEST_F(Planes, AnOfferSurvivesWhatTheWaitingDo) {
    const auto acquire = [this](const Puppet &who, const char *label) {
        Note(label + std::to_string(Acquire(who, [=] { Note(std::string(label) + "offered"); })));
    };
    const struct {
        const char *what;
        std::function<void()> act;
        std::string now;
        int controller;
        std::string next; // when that one releases
    } cases[] = {
        {"acquires", [&] { acquire(air, "air "); }, "1; air 1; 2; 3", 3, ""},
        {"acquires and releases", [&] { acquire(air, "air "), acquire(b, "B "), air.Run([] { AVSKReleasePlanes(); }); },
         "1; air 1; B 0; B offered; 2; 3", -1, ""},
        {"acquires and is disabled", [&] { acquire(air, "air "), AVSKDisablePlugin(air.Id()); },
         "1; air 1; disable air; 2", -1, ""},
        {"is unloaded", [] { World::UnloadAircraft(); }, "1; disable air; stop air; 2", -1, ""},
        {"is unloaded and loaded, and waits afresh",
         [&] { World::UnloadAircraft(), World::LoadAircraft(), acquire(b, "B "), acquire(air, "air "); },
         "1; disable air; stop air; start air; enable air; B 1; air 0; 2", 2, "air offered"},
    };
    for (const auto &each : cases) {
        SCOPED_TRACE(each.what);
        ASSERT_EQ(Acquire(a), 1);
        Acquire(air, [&] {
            Note("1");
            each.act();
            air.returned = 0;
            EXPECT_TRUE(air.IsMapped());
        });
        Acquire(b, [] { Note("2"); });
        Acquire(air, [] { Note("3"); });
        TakeCalls();
        EXPECT_EQ(Release(a), each.now);
        EXPECT_GE(air.returned, 1);
        EXPECT_EQ(Controller(), each.controller);
        if (each.controller > 0) {
            EXPECT_EQ(Release(*std::array{&a, &b, &air}.at(each.controller - 1)), each.next);
        }
        EXPECT_EQ(AVSKGetMyID(), 0);
        Restart();
    }
}

} // namespace
