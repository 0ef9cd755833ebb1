// Camera control: who positions the camera, and every way in which control ends.
#include "World.h"

#include <array>
#include <bit>

namespace {

using Fields = std::array<float, 7>;

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
    // A camera function that journals its calls and moves the camera by 100.
    static CameraPlayer Says(const std::string &label) {
        return [=](AVSKCameraPosition *position, int isLosing) {
            Note(label + (isLosing ? " loses" : " places") + (position ? "" : " null"));
            if (position)
                position->f7 += 100;
            return 1;
        };
    }
    static int Hook(Fields &f) { return AVSKCameraHook(&f[0], &f[1], &f[2], &f[3], &f[4], &f[5], &f[6]); }
    // Runs one update. Returns its result, the journal, and the last field, which starts as 7.
    static std::string Update() {
        Fields fields = {1, 2, 3, 4, 5, 6, 7};
        return Line(DOES(Hook(fields)), ", ", fields[6]);
    }
    static std::string ChangeView() { return DOES(AVSKEventHook(AVSKHostEventViewChanged, 0, 0, 0)); }
    // The duration of the current control, or 0.
    static int Controlled() {
        int duration = 0;
        AVSKIsCameraBeingControlled(&duration);
        return duration;
    }
};

TEST_F(Camera, PassesEveryFieldBothWays) {
    Control(a, AVSKCameraForever, [](AVSKCameraPosition *position, int) {
        EXPECT_EQ(AVSKGetMyID(), 1);
        EXPECT_EQ(std::bit_cast<Fields>(*position), (Fields{1, 2, 3, 4, 5, 6, 7}));
        *position = {11, 12, 13, 14, 15, 16, 17};
        return 1;
    });
    Fields fields = {1, 2, 3, 4, 5, 6, 7};
    EXPECT_EQ(Hook(fields), 0);
    EXPECT_EQ(fields, (Fields{11, 12, 13, 14, 15, 16, 17}));
    host.on.readCameraPosition = [value = 20.0F](auto *...out) mutable { ((*out = ++value), ...); };
    AVSKCameraPosition position = {};
    AVSKReadCameraPosition(&position);
    AVSKReadCameraPosition(nullptr);
    EXPECT_EQ(std::bit_cast<Fields>(position), (Fields{21, 22, 23, 24, 25, 26, 27}));
    Control(b, AVSKCameraUntilViewChanges, [](AVSKCameraPosition *p, int) { return p->f7 = 0, 0; });
    EXPECT_EQ(Update(), "1, 7") << "it declined";
    EXPECT_EQ(ChangeView(), "1") << "and is not told anything more";
}

TEST_F(Camera, EndsInWaysOfWhichSomeAreTold) {
    for (const auto &[way, duration, end, journal, ends] :
         Table<std::string, int, std::function<std::string()>, std::string, bool>{
             {"view", AVSKCameraUntilViewChanges, ChangeView, "1: air loses null", true},
             {"view", AVSKCameraForever, ChangeView, "1", false},
             {"given up", AVSKCameraForever, [&] { return DOES_AS(b, AVSKDontControlCamera()); }, "", true},
             {"disabled", AVSKCameraForever, [&] { return DOES(AVSKDisablePlugin(air.Id())); },
              "air loses null; disable air", true},
             {"unloaded", 3, [] { return DOES(World::UnloadAircraft()); }, "air loses null; disable air; stop air",
              true},
             {"another", AVSKCameraForever, [] { return DOES(AVSKDisablePlugin(1)); }, "disable A", false}}) {
        SCOPED_TRACE(way);
        Control(air, duration, Says("air"));
        EXPECT_EQ(Controlled(), duration);
        EXPECT_EQ(Update(), "0: air places, 107");
        EXPECT_EQ(end(), journal);
        EXPECT_EQ(AVSKIsCameraBeingControlled(nullptr), !ends);
        EXPECT_EQ(Update(), ends ? "1, 7" : "0: air places, 107");
        AVSKDontControlCamera();
        const std::string calls = DOES(World::UnloadAircraft(), World::LoadAircraft(), AVSKEnablePlugin(1));
        EXPECT_EQ(calls.find("loses"), std::string::npos) << "not again";
    }
}

TEST_F(Camera, WhoTakesItInsideTheLossIsToldOfTheNext) {
    const auto other = [](AVSKCameraPosition *, int, void *) { return Note("other loses null"), 1; };
    for (const bool plugin : {true, false}) {
        Control(air, AVSKCameraUntilViewChanges, [&](AVSKCameraPosition *, int) {
            Note("loses");
            if (plugin)
                Control(air, AVSKCameraUntilViewChanges, Says("other"));
            else
                AVSKControlCamera(AVSKCameraUntilViewChanges, other, nullptr);
            return AVSKEventHook(AVSKHostEventViewChanged, 0, 0, 0);
        });
        EXPECT_EQ(ChangeView(), "1: loses; other loses null");
    }
}

// The function acts in its first call, which is an update or a loss of control to a view change.
TEST_F(Camera, SurvivesWhatItsFunctionDoes) {
    for (const bool isUpdate : {true, false})
        for (const auto &[what, act, updating, losing, left] :
             Table<std::string, std::function<void()>, std::string, std::string, int>{
                 {"takes control again", [&] { Control(air, AVSKCameraForever, Says("again")); }, "", "", 2},
                 {"gives it up", [] { AVSKDontControlCamera(); }, "", "", 0},
                 {"is disabled", [&] { AVSKDisablePlugin(air.Id()); }, "; loses; disable air", "; disable air", 0},
                 {"is unloaded", [] { World::UnloadAircraft(); }, "; loses; disable air; stop air",
                  "; disable air; stop air", 0},
                 {"changes the view", [] { AVSKEventHook(AVSKHostEventViewChanged, 0, 0, 0); }, "; loses", "", 0}}) {
            SCOPED_TRACE(what + (isUpdate ? ", updating" : ", losing"));
            Control(air, AVSKCameraUntilViewChanges,
                    [&act = act, acted = false](AVSKCameraPosition *position, int isLosing) mutable {
                        EXPECT_EQ(isLosing, position == nullptr);
                        Note(isLosing ? "loses" : "places");
                        std::exchange(acted, true) ? void() : act();
                        return position ? position->f7 = 9, 1 : 1;
                    });
            EXPECT_EQ(isUpdate ? Update() : ChangeView(),
                      isUpdate ? "0: places" + updating + ", 9" : "1: loses" + losing);
            EXPECT_EQ(Controlled(), isUpdate ? left : 0);
            EXPECT_EQ(AVSKGetMyID(), 0);
            Restart();
        }
}

TEST_F(Camera, WithoutAFunctionOrByADisabledPluginItIsGivenUpByTheFirstUpdateOrView) {
    CameraPlayer says = Says("A");
    a.disable = [&] { AVSKControlCamera(AVSKCameraUntilViewChanges, a.code.camera, &says); };
    for (const bool isDisabled : {true, false})
        for (const bool updated : {true, false}) {
            AVSKEnablePlugin(1);
            if (isDisabled)
                AVSKDisablePlugin(1);
            else
                a.Run([] { AVSKControlCamera(AVSKCameraUntilViewChanges, nullptr, nullptr); });
            EXPECT_EQ(Controlled(), AVSKCameraUntilViewChanges);
            EXPECT_EQ(updated ? Update() : ChangeView(), updated ? "1, 7" : "1");
            EXPECT_EQ(Controlled(), 0);
        }
}

TEST_F(Camera, AnExceptionLeavesControlAndTheHostsCameraAsTheyWere) {
    Control(a, AVSKCameraUntilViewChanges, [](AVSKCameraPosition *position, int) -> int {
        if (position)
            position->f7 = 9;
        throw 1;
    });
    Fields fields = {};
    EXPECT_THROW(Hook(fields), int);
    EXPECT_EQ(fields, Fields());
    EXPECT_EQ(Controlled(), AVSKCameraUntilViewChanges);
    EXPECT_THROW(ChangeView(), int);
    EXPECT_EQ(AVSKGetMyID(), 0);
    Control(b, AVSKCameraUntilViewChanges, Says("B"));
    EXPECT_EQ(ChangeView(), "1: B loses null") << "and the next is told";
}

} // namespace
