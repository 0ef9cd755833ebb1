// Finds what violates the rules about where and when calls are made.
#ifndef AVSK_HOST_RULES_PLACE_CHECKS_H
#define AVSK_HOST_RULES_PLACE_CHECKS_H

#include "CallTable.h"
#include "Findings.h"
#include "KnownHandles.h"

#include "Crossings/Crossing.h"

#include "AVSK/AVSKTypes.h"

#include <map>
#include <string>
#include <utility>
#include <vector>

namespace host {

class PlaceChecks : public crossings::Observer {
  public:
    // The handles must outlive it.
    PlaceChecks(Findings &findings, const KnownHandles &handles);
    ~PlaceChecks() override;
    PlaceChecks(const PlaceChecks &) = delete;
    PlaceChecks &operator=(const PlaceChecks &) = delete;

    void Begins(const crossings::Crossing &crossing) override;
    void Ends(const crossings::Crossing &crossing) override;
    // Adds what was never ended or scheduled until now.
    void Finish();

  private:
    // A command that a plugin has begun at some time.
    struct Hold {
        Finding finding;
        bool isHeld = false;
    };
    // A flight loop that is not scheduled yet.
    struct Loop {
        AVSKPluginID owner;
        const void *callback;
        const void *refcon;
        Finding finding;
    };
    using Registration = std::pair<AVSKPluginID, std::string>; // of a plugin, with its values as text

    static const CallRow<PlaceChecks> kBefore[];
    static const CallRow<PlaceChecks> kAfter[];

    void BeforeDrawing(const crossings::Crossing &call);
    void BeforeState(const crossings::Crossing &call);
    void BeforeFocus(const crossings::Crossing &call);
    void BeforeAircraft(const crossings::Crossing &call);
    void BeforeWindows(const crossings::Crossing &call);
    void BeforeWindow(const crossings::Crossing &call);
    void BeforeLookUp(const crossings::Crossing &call);
    void BeforeLoop(const crossings::Crossing &call);
    void AfterUnique(const crossings::Crossing &call);
    void AfterRegistration(const crossings::Crossing &call);
    void AfterUnregistration(const crossings::Crossing &call);
    void AfterBegin(const crossings::Crossing &call);
    void AfterEnd(const crossings::Crossing &call);
    void AfterLoop(const crossings::Crossing &call);
    void AfterSchedule(const crossings::Crossing &call);
    void AfterInterval(const crossings::Crossing &call);
    void BeforeDestruction(const crossings::Crossing &call);
    void BeforeStart(const crossings::Crossing &call);
    void AfterStop(const crossings::Crossing &call);
    void CheckTime(const crossings::Crossing &call);
    void Leave(AVSKPluginID plugin);

    Findings &mFindings;
    const KnownHandles &mHandles;
    CallTable<PlaceChecks> mBefore;
    CallTable<PlaceChecks> mAfter;
    std::vector<crossings::Crossing::Clock::duration> mInner; // of the calls under way: the time of the calls they made
    std::map<Registration, int> mRegistrations;
    std::map<std::pair<AVSKPluginID, const void *>, Hold> mHolds; // by command
    std::map<const void *, Loop> mLoops;                          // by handle
    bool mHasLookedUp = true; // a window, since the last draw function of a window began
};

} // namespace host

#endif
