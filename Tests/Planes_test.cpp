// The user's aircraft, and control of the others: who has it, who waits for
// it, and what an offer survives.
#include "Forwarding.h"
#include "ThreePlugins.h"

#include "AVSK/AVSKHost.h"
#include "AVSK/AVSKPlanes.h"

#include <cstring>
#include <stdexcept>

namespace {

std::string gDisables; // writes of the host's ai_loc datarefs: "[index]=value "

class Planes : public ThreePlugins<NoticePlayer> {
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
                gDisables += "[" + std::to_string(*static_cast<int *>(index)) + "]=" + std::to_string(value) + " ";
            };
            AVSKRegisterDataAccessor(("sim/private/net_disables/ai_loc[" + std::to_string(i) + "]").c_str(),
                                     AVSKDataTypeInt, 1, nullptr, write, nullptr, nullptr, nullptr, nullptr, nullptr,
                                     nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, &indices[i]);
        }
    }
};

// ---- Without control

TEST_F(Planes, TheUsersAircraftNeedsNoControl) {
    const struct {
        const char *path, *fileName;
    } cases[] = {{"/a/b/model.acf", "model.acf"}, {"a/", ""}, {"model.acf", "odel.acf"}, {"m", ""}, {"", ""}};
    Acquire(b);
    for (const auto &each : cases) {
        a.Run([&] { AVSKSetUsersAircraft(each.path); });
        EXPECT_EQ(TakeCalls(), "loadAircraftModel(0, \"" + std::string(each.path) + "\", \"" + each.fileName + "\")");
    }
    a.Run([] { AVSKSetUsersAircraft(nullptr); });
    EXPECT_EQ(TakeCalls(), "");
    EXPECT_FORWARDED(AVSKPlaceUserAtAirport, placeUserAtAirport);
}

TEST_F(Planes, AModelIsAskedForPathFirstAndCutTo512Bytes) {
    const std::string longPath(600, 'p');
    host.on.getAircraftModel = [&](int index, char *outPath, char *outFileName) {
        std::strcpy(outPath, index == 3 ? longPath.c_str() : "path");
        std::strcpy(outFileName, "name");
    };
    for (const int native : {0, 1})
        a.Run([&] {
            AVSKEnableFeature("AVSK_USE_NATIVE_PATHS", native);
            char path[700] = "";
            char name[256] = "";
            AVSKGetNthAircraftModel(-1, name, path);
            EXPECT_STREQ(path, "");
            AVSKGetNthAircraftModel(2, name, path);
            EXPECT_STREQ(path, "path");
            EXPECT_STREQ(name, "name");
            AVSKGetNthAircraftModel(3, nullptr, path);
            EXPECT_EQ(path, longPath.substr(0, native ? 600 : 511));
            AVSKGetNthAircraftModel(2, nullptr, nullptr);
        });
}

TEST_F(Planes, WithoutControlCallsAreIgnored) {
    Acquire(b);
    AVSKGetNumberPlanesToHandle(20, 0);
    a.Run([] {
        AVSKReleasePlanes();
        AVSKSetActiveAircraftCount(1);
        AVSKSetAircraftModel(1, "path");
        AVSKReinitUsersPlane();
        EXPECT_EQ(AVSKDrawAircraft(1, 2, 3, 4, 5, 6, 7, 8, 9), 1);
    });
    EXPECT_EQ(TakeCalls(), "");
    EXPECT_EQ(AVSKGetNumberPlanesToHandle(20, 0), 20);
    EXPECT_EQ(Model(1), "own");
    EXPECT_EQ(Controller(), 2);
}

TEST_F(Planes, AnyoneMayStopTheAIAndItsDatarefIsAnInt) {
    PublishDisables(12);
    gDisables.clear();
    a.Run([] {
        for (const int index : {3, 0, 11, -1, -2147483647 - 1, 99})
            AVSKDisableAIForPlane(index);
    });
    EXPECT_EQ(gDisables, "[3]=1 [0]=1 [11]=1 ");
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
    EXPECT_EQ(Model(-1), "own");
    EXPECT_EQ(Release(a), "");
    EXPECT_EQ(Model(1), "own");
    EXPECT_EQ(Acquire(b), 1);
    EXPECT_EQ(Model(1), "own") << "a null list requests nothing";
    EXPECT_EQ(Acquire(a), 0) << "and without a callback it does not wait";
    Release(b);
    EXPECT_EQ(Controller(), -1);
}

TEST_F(Planes, AModelIsLoadedAtOnceWhenTheHostHasThatAircraft) {
    Acquire(a);
    host.on.loadAircraftModel = [](int index, const char *, const char *) {
        Note("asked meanwhile: " + Model(index) + " " + std::to_string(AVSKGetNumberPlanesToHandle(20, 0)));
    };
    a.Run([] {
        AVSKSetActiveAircraftCount(3);
        AVSKSetAircraftModel(5, "five");
        for (const int bad : {-1, -2147483647 - 1})
            AVSKSetAircraftModel(bad, "bad");
        AVSKSetAircraftModel(6, nullptr);
    });
    EXPECT_EQ(TakeCalls(), "") << "no count reported yet";
    EXPECT_EQ(Model(5), "five");
    EXPECT_EQ(Model(4), "own");
    EXPECT_EQ(Model(6), "own");
    EXPECT_EQ(AVSKGetNumberPlanesToHandle(20, 1), 20);
    EXPECT_EQ(AVSKGetNumberPlanesToHandle(20, 0), 3);
    a.Run([] {
        AVSKSetAircraftModel(19, "last");
        AVSKSetAircraftModel(20, "one more");
        AVSKSetAircraftModel(0x7FFFFFFF, "far");
        AVSKSetAircraftModel(0, "user");
    });
    EXPECT_EQ(TakeCalls(), "loadAircraftModel(19, \"last\", \"last\"); asked meanwhile: own 20; loadAircraftModel(0, "
                           "\"user\", \"user\"); asked meanwhile: own 20");
    EXPECT_EQ(Model(19), "last");
    EXPECT_EQ(Model(20), "one more");
    EXPECT_EQ(Model(0), "own") << "the user's is never asked of it";
    host.on.loadAircraftModel = [](int, const char *, const char *) { throw std::runtime_error("model"); };
    a.Run([] { EXPECT_THROW(AVSKSetAircraftModel(19, "last"), std::runtime_error); });
    EXPECT_EQ(Model(19), "last") << "the load is over";
}

TEST_F(Planes, TheLimitHoldsForThoseItIsAskedFor) {
    host.on.countAircraft = [] { return 10; };
    Acquire(a);
    const struct {
        int limit, active, count, flag, answer;
    } cases[] = {{3, 3, 20, 0, 3}, {3, 3, 20, 1, 20},   {3, 3, 2, 0, 2},    {30, 10, 20, 0, 20},
                 {0, 0, 20, 0, 0}, {-1, 10, 20, 0, 20}, {15, 10, 20, 0, 15}};
    for (const auto &each : cases) {
        a.Run([&] { AVSKSetActiveAircraftCount(each.limit); });
        int total = 0;
        int active = -1;
        AVSKCountAircraft(&total, &active, nullptr);
        EXPECT_EQ(total, 10);
        EXPECT_EQ(active, each.active) << each.limit;
        EXPECT_EQ(AVSKGetNumberPlanesToHandle(each.count, each.flag), each.answer) << each.limit;
    }
    AVSKCountAircraft(nullptr, nullptr, nullptr);
    Release(a);
    EXPECT_EQ(AVSKGetNumberPlanesToHandle(20, 0), 20);
}

TEST_F(Planes, TheControllerDrawsAndSetsUpTheUsersPlane) {
    Acquire(a);
    a.Run([] { EXPECT_FORWARDED(AVSKDrawAircraft, drawAircraft); });
    TakeCalls();
    for (const int size : {288, 287, 0}) {
        host.table.sizeInBytes = size;
        a.Run([] { AVSKReinitUsersPlane(); });
    }
    EXPECT_EQ(TakeCalls(), "reinitUsersPlane(208, 201)") << "an old host has no such service";
    host.table.sizeInBytes = sizeof host.table;
}

// ---- Giving it up

TEST_F(Planes, ReleasingHandsTheAircraftBackToTheAI) {
    PublishDisables(22);
    Acquire(a);
    gDisables.clear();
    Release(a);
    EXPECT_EQ(gDisables, "") << "no count reported yet";
    AVSKGetNumberPlanesToHandle(4, 1);
    Acquire(a);
    Release(b);
    EXPECT_EQ(gDisables, "");
    Release(a);
    EXPECT_EQ(gDisables, "[1]=0 [2]=0 [3]=0 ");
}

TEST_F(Planes, ControlEndsWithThePluginWhicheverWayItGoes) {
    const struct {
        const char *way;
        std::function<void()> go;
        std::string offered;
    } cases[] = {
        {"disabled",
         [this] {
             Acquire(air);
             Acquire(a, [] { Note("offered"); });
             AVSKDisablePlugin(air.Id());
         },
         "offered; disable air"},
        {"acquired while it was disabled",
         [this] {
             air.disable = [] { EXPECT_EQ(AVSKAcquirePlanes(nullptr, nullptr, nullptr), 1); };
             air.stop = [this] { Acquire(a, [] { Note("offered"); }); };
             World::UnloadAircraft();
         },
         "disable air; stop air; offered"},
        {"acquired in its stop call",
         [this] {
             air.disable = nullptr;
             air.stop = [this] {
                 EXPECT_EQ(AVSKAcquirePlanes(nullptr, nullptr, nullptr), 1);
                 Acquire(a, [] { Note("offered"); });
             };
             World::UnloadAircraft();
         },
         "disable air; stop air; offered"},
    };
    for (const auto &each : cases) {
        SCOPED_TRACE(each.way);
        TakeCalls();
        each.go();
        EXPECT_EQ(TakeCalls(), each.offered);
        EXPECT_EQ(Controller(), -1);
        World::UnloadAircraft();
        air.stop = nullptr;
        World::LoadAircraft();
    }
}

TEST_F(Planes, EveryoneWhoWaitsIsToldInTheOrderOfAsking) {
    Acquire(a);
    const auto says = [](const char *line) {
        return [=] {
            int controller = -2;
            AVSKCountAircraft(nullptr, nullptr, &controller);
            EXPECT_EQ(controller, -1) << "free before the first is told";
            TakeCalls();
            gDisables += std::string(line) + std::to_string(AVSKGetMyID()) + " ";
        };
    };
    gDisables.clear();
    EXPECT_EQ(Acquire(b, says("B")), 0);
    EXPECT_EQ(Acquire(air, says("air")), 0);
    EXPECT_EQ(Acquire(b, says("again ")), 0) << "twice is called twice";
    Release(a);
    EXPECT_EQ(gDisables, "B2 air3 again 2 ");
    Acquire(a);
    gDisables.clear();
    Release(a);
    EXPECT_EQ(gDisables, "") << "an offer is made once";
    Acquire(a);
    Acquire(b, says("B"));
    Acquire(air, says("air"));
    AVSKDisablePlugin(2);
    Release(a);
    AVSKEnablePlugin(2);
    EXPECT_EQ(gDisables, "air3 ") << "a disabled one misses it";
    Acquire(a);
    Acquire(air, says("air"));
    World::UnloadAircraft();
    gDisables.clear();
    Release(a);
    EXPECT_EQ(gDisables, "");
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
        {"acquires for another, and waits again", [&] { acquire(a, "A "), acquire(air, "air "); },
         "1; A 1; air 0; 2; 3", 1, "air offered"},
        {"acquires and releases", [&] { acquire(air, "air "), acquire(b, "B "), air.Run([] { AVSKReleasePlanes(); }); },
         "1; air 1; B 0; B offered; 2; 3", -1, ""},
        {"releases without control", [] { AVSKReleasePlanes(); }, "1; 2; 3", -1, ""},
        {"has the next disabled", [] { AVSKDisablePlugin(2); }, "1; disable B; 3", -1, ""},
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
        for (const Puppet *who : {&a, &b, &air})
            if (each.controller > 0 && who->Id() == each.controller) {
                EXPECT_EQ(Release(*who), each.next);
            }
        EXPECT_EQ(AVSKGetMyID(), 0);
        World::UnloadAircraft();
        World::LoadAircraft();
        AVSKEnablePlugin(2);
        TakeCalls();
    }
}

TEST_F(Planes, AnOfferReachesNobodyWhoWasUnloadedWhileItWasMade) {
    Acquire(a);
    Acquire(b, [this] {
        World::UnloadAircraft();
        EXPECT_FALSE(air.IsMapped());
        World::LoadAircraft(); // another with its ID
    });
    Acquire(air, [] { Note("called"); });
    TakeCalls();
    EXPECT_EQ(Release(a), "disable air; stop air; start air; enable air");
}

TEST_F(Planes, AnExceptionEndsTheOfferAndLeavesControlFree) {
    Acquire(a);
    Acquire(b, [] { throw std::runtime_error("offered"); });
    a.Run([] { EXPECT_THROW(AVSKReleasePlanes(), std::runtime_error); });
    EXPECT_EQ(AVSKGetMyID(), 0);
    EXPECT_EQ(Controller(), -1);
    EXPECT_EQ(Acquire(air), 1);
    World::UnloadAircraft();
    EXPECT_EQ(Controller(), -1);
}

} // namespace
