// Camera control: who places it, and every way in which that ends.
#include "World.h"

#include <stdexcept>

namespace {

class Camera : public ThreePlugins {
  protected:
    void TearDown() override {
        AVSKDontControlCamera();
        ThreePlugins::TearDown();
    }

    void Control(const Puppet &owner, int duration, CameraPlayer f) {
        void *const refcon = Keep(std::move(f));
        owner.Run([&] { AVSKControlCamera(duration, owner.code.camera, refcon); });
    }
    // A function that notes its calls and moves the camera by 100.
    static CameraPlayer Says(const std::string &label) {
        return [=](AVSKCameraPosition *position, int isLosing) {
            Note(label + (isLosing ? " loses" : " places") + (position ? "" : " null"));
            if (position)
                position->f7 += 100;
            return 1;
        };
    }
    // One update: what the host hears, and its last field, which was 7.
    static std::string Update(int answer, float last) {
        float f[7] = {1, 2, 3, 4, 5, 6, 7};
        EXPECT_EQ(AVSKCameraHook(f, f + 1, f + 2, f + 3, f + 4, f + 5, f + 6), answer);
        EXPECT_EQ(f[6], last);
        return TakeCalls();
    }
    static std::string ChangeView() {
        EXPECT_EQ(AVSKEventHook(AVSKHostEventViewChanged, 0, 0, 0), 1);
        return TakeCalls();
    }
    // The duration, or 0.
    static int Controlled() {
        int duration = 0;
        AVSKIsCameraBeingControlled(&duration);
        return duration;
    }
};

TEST_F(Camera, PassesEveryFieldBothWays) {
    const auto expect = [](const AVSKCameraPosition &position, float first) {
        for (int i = 0; i < 7; ++i)
            EXPECT_EQ((&position.f1)[i], first + static_cast<float>(i));
    };
    Control(a, AVSKCameraForever, [&](AVSKCameraPosition *position, int) {
        EXPECT_EQ(AVSKGetMyID(), 1);
        expect(*position, 1);
        *position = {11, 12, 13, 14, 15, 16, 17};
        return 1;
    });
    AVSKCameraPosition position = {1, 2, 3, 4, 5, 6, 7};
    float *const f = &position.f1;
    EXPECT_EQ(AVSKCameraHook(f, f + 1, f + 2, f + 3, f + 4, f + 5, f + 6), 0);
    expect(position, 11);
    Host().on.readCameraPosition = [](float *f1, float *, float *, float *, float *, float *, float *f7) {
        EXPECT_EQ(f7 - f1, 6);
    };
    AVSKReadCameraPosition(&position);
    Control(b, AVSKCameraUntilViewChanges, [](AVSKCameraPosition *p, int) { return p->f1 = 0, 0; });
    TakeCalls();
    EXPECT_EQ(Update(1, 7), "") << "it declined";
    EXPECT_EQ(ChangeView(), "") << "and is not told anything more";
}

TEST_F(Camera, EndsInWaysOfWhichSomeAreTold) {
    const struct {
        const char *way;
        int duration;
        std::function<std::string()> end;
        std::string journal;
        bool ends;
    } cases[] = {
        {"view", AVSKCameraUntilViewChanges, ChangeView, "air loses null", true},
        {"view", AVSKCameraForever, ChangeView, "", false},
        {"given up", AVSKCameraForever, [this] { return b.Run(AVSKDontControlCamera), TakeCalls(); }, "", true},
        {"disabled", AVSKCameraForever, [this] { return AVSKDisablePlugin(air.Id()), TakeCalls(); },
         "air loses null; disable air", true},
        {"unloaded", 3, [] { return World::UnloadAircraft(), TakeCalls(); }, "air loses null; disable air; stop air",
         true},
        {"another disabled", AVSKCameraForever, [] { return AVSKDisablePlugin(1), TakeCalls(); }, "disable A", false},
    };
    for (const auto &each : cases) {
        SCOPED_TRACE(each.way);
        Control(air, each.duration, Says("air"));
        EXPECT_EQ(Controlled(), each.duration);
        EXPECT_EQ(Update(0, 107), "air places");
        EXPECT_EQ(each.end(), each.journal);
        EXPECT_EQ(AVSKIsCameraBeingControlled(nullptr), !each.ends);
        EXPECT_EQ(Update(each.ends, each.ends ? 7 : 107), each.ends ? "" : "air places");
        AVSKDontControlCamera();
        World::UnloadAircraft(); // is not told again
        World::LoadAircraft();
        AVSKEnablePlugin(1);
        EXPECT_EQ(TakeCalls().find("loses"), std::string::npos);
    }
}

TEST_F(Camera, WhoTakesItInsideTheLossIsToldOfTheNext) {
    const std::function<void()> takes[] = {[&] { Control(air, AVSKCameraUntilViewChanges, Says("other")); },
                                           [] {
                                               const auto says = [](AVSKCameraPosition *, int, void *) {
                                                   return Note("other loses null"), 1;
                                               };
                                               AVSKControlCamera(AVSKCameraUntilViewChanges, says, nullptr);
                                           }};
    for (const auto &take : takes) {
        Control(air, AVSKCameraUntilViewChanges, [&](AVSKCameraPosition *, int) {
            Note("loses");
            take();
            AVSKEventHook(AVSKHostEventViewChanged, 0, 0, 0);
            return 1;
        });
        EXPECT_EQ(ChangeView(), "loses; other loses null");
    }
}

// What a function does in its first call, an update or the loss by a change of the view.
TEST_F(Camera, SurvivesWhatItsFunctionDoes) {
    const struct {
        const char *what;
        std::function<void()> act;
        std::string updating; // an update that it keeps
        int left;             // how it is controlled after that update
        std::string losing;
        bool isLeft; // after the loss
    } cases[] = {
        {"takes control again", [&] { Control(air, AVSKCameraForever, Says("again")); }, "places", AVSKCameraForever,
         "loses", false},
        {"gives it up", [] { AVSKDontControlCamera(); }, "places", 0, "loses", false},
        {"is disabled", [&] { AVSKDisablePlugin(air.Id()); }, "places; loses; disable air", 0, "loses; disable air",
         false},
        {"is unloaded", [] { World::UnloadAircraft(); }, "places; loses; disable air; stop air", 0,
         "loses; disable air; stop air", false},
        {"changes the view", [] { AVSKEventHook(AVSKHostEventViewChanged, 0, 0, 0); }, "places; loses", 0, "loses",
         false},
    };
    for (const auto &each : cases)
        for (const bool losing : {false, true}) {
            SCOPED_TRACE(each.what + std::string(losing ? ", losing" : ", updating"));
            bool acted = false;
            Control(air, AVSKCameraUntilViewChanges, [&](AVSKCameraPosition *position, int isLosing) {
                EXPECT_EQ(isLosing, position == nullptr);
                Note(isLosing ? "loses" : "places");
                if (!std::exchange(acted, true)) {
                    each.act();
                    air.returned = 0;
                    EXPECT_TRUE(air.IsMapped());
                }
                if (position)
                    position->f7 = 9;
                return 1;
            });
            EXPECT_EQ(losing ? ChangeView() : Update(0, 9), losing ? each.losing : each.updating);
            EXPECT_EQ(air.returned, 1) << "the call came back into the plugin";
            EXPECT_EQ(AVSKGetMyID(), 0);
            EXPECT_EQ(Controlled(), losing ? each.isLeft : each.left);
            AVSKDontControlCamera();
            World::UnloadAircraft();
            EXPECT_FALSE(air.IsMapped());
            World::LoadAircraft();
            TakeCalls();
        }
}

TEST_F(Camera, WithoutAFunctionItIsGivenUpByTheFirstUpdateOrView) {
    for (const bool updated : {true, false}) {
        a.Run([] { AVSKControlCamera(AVSKCameraUntilViewChanges, nullptr, nullptr); });
        EXPECT_EQ(updated ? Update(1, 7) : ChangeView(), "");
        EXPECT_EQ(Controlled(), 0);
    }
    AVSKReadCameraPosition(nullptr);
}

// Each of the two is told of its own loss.
TEST_F(Camera, AControllerIsToldThoughAnotherIsJustBeingTold) {
    Control(a, AVSKCameraUntilViewChanges, [&](AVSKCameraPosition *, int isLosing) {
        Note("A loses");
        Control(b, AVSKCameraForever, Says("B"));
        AVSKDisablePlugin(2);
        return isLosing;
    });
    EXPECT_EQ(ChangeView(), "A loses; B loses null; disable B");
    EXPECT_EQ(Controlled(), 0);
}

TEST_F(Camera, AnExceptionLeavesControlAndTheHostsCameraAsTheyWere) {
    Control(a, AVSKCameraUntilViewChanges, [](AVSKCameraPosition *position, int) -> int {
        if (position)
            position->f7 = 9;
        throw std::runtime_error("camera");
    });
    EXPECT_THROW(Update(0, 7), std::runtime_error);
    float f[7] = {};
    EXPECT_THROW(AVSKCameraHook(f, f + 1, f + 2, f + 3, f + 4, f + 5, f + 6), std::runtime_error);
    EXPECT_EQ(f[6], 0);
    EXPECT_EQ(AVSKGetMyID(), 0);
    EXPECT_EQ(Controlled(), AVSKCameraUntilViewChanges);
    EXPECT_THROW(ChangeView(), std::runtime_error);
    EXPECT_EQ(AVSKGetMyID(), 0);
    Control(b, AVSKCameraUntilViewChanges, Says("B"));
    EXPECT_EQ(ChangeView(), "B loses null") << "and the next is told";
}

} // namespace
