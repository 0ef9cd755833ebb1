// Finds what violates the rules about frames and the clock. Only outermost hooks
// belong to a frame: a service may call hooks at any time.
#ifndef AVSK_HOST_RULES_HOST_FRAME_CHECKS_H
#define AVSK_HOST_RULES_HOST_FRAME_CHECKS_H

#include "CallTable.h"
#include "Findings.h"

#include "Crossings/Crossing.h"

#include <array>
#include <cstdint>

namespace host {

class HostFrameChecks : public crossings::Observer {
  public:
    explicit HostFrameChecks(Findings &findings);
    ~HostFrameChecks() override;
    HostFrameChecks(const HostFrameChecks &) = delete;
    HostFrameChecks &operator=(const HostFrameChecks &) = delete;

    // The clock follows a session and not real time, so frames may take any time.
    void AcceptLongSteps() { mAcceptsLongSteps = true; }

    crossings::Interest InterestIn(const crossings::Prototype &function) const override;
    void Begins(const crossings::Crossing &crossing) override;
    void Ends(const crossings::Crossing &crossing) override;

  private:
    // The hooks from one event 0 to the next.
    struct Frame {
        bool hasBegun = false;      // event 0
        bool hasCommands = false;   // event 9
        bool hasEnded = false;      // event 10
        bool isDrawnLate = false;   // after event 10: of this frame, or the next one without its event 0
        bool isBroken = false;      // an exception left a hook, so the host may have left out the others
        std::uint32_t drawn = 0;    // a bit for each draw code
        std::array<int, 2> first{}; // codes of the present pass, without and with reflection; 0 for none
        std::array<int, 2> last{};
    };
    // A clock's last time; negative before.
    struct Clock {
        const char *name;
        double last = -1;
    };

    static const CallRow<HostFrameChecks> kBefore[];
    static const CallRow<HostFrameChecks> kAfter[];

    void BeforeStart(const crossings::Crossing &start);
    void BeforeEvent(const crossings::Crossing &hook);
    void BeforeDrawing(const crossings::Crossing &hook);
    void BeforeEnd(const crossings::Crossing &end);
    void AfterTime(const crossings::Crossing &service);

    void BeginFrame();
    void EndFrame();
    void JudgeFrame();
    void Report(const Rule &rule, FindingValues values);
    bool IsTime(const crossings::Crossing &call, const Clock &clock, double time);
    void CheckClock(const crossings::Crossing &call, Clock &clock, double time);
    void CheckStep(const crossings::Crossing &hook, double time);

    Findings &mFindings;
    bool mAcceptsLongSteps = false;
    CallTable<HostFrameChecks> mBefore;
    CallTable<HostFrameChecks> mAfter;
    Frame mFrame;
    int mFrames = 0;
    bool mHasDrawn = false;
    Clock mEvents{"elapsed"};
    Clock mService{"slot 14"};
    double mBegin = -1;                              // the time of the last event 0; negative before
    int mStanding = 0;                               // frames since that time changed
    crossings::Crossing::Clock::time_point mEventAt; // of the last event 0 or 10
    crossings::Crossing::Clock::time_point mBeganAt; // of the last event 0
};

} // namespace host

#endif
