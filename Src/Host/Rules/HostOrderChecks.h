// Finds what violates the rules about where the host calls hooks and with what:
// start and end, threads and signals, arguments, aircraft and scenery.
#ifndef AVSK_HOST_RULES_HOST_ORDER_CHECKS_H
#define AVSK_HOST_RULES_HOST_ORDER_CHECKS_H

#include "CallTable.h"
#include "Findings.h"

#include "Crossings/Crossing.h"

#include <cstdint>
#include <set>
#include <string>

namespace host {

// Whether only hosts call the function.
bool IsHook(const crossings::Prototype &function);

// Notes a hook that is called on another thread than the main one. Called on that
// thread; uses atomics only. False if the function is no hook.
bool NoteHookOnThread(const crossings::Prototype &function);

class HostOrderChecks : public crossings::Observer {
  public:
    explicit HostOrderChecks(Findings &findings);
    ~HostOrderChecks() override;
    HostOrderChecks(const HostOrderChecks &) = delete;
    HostOrderChecks &operator=(const HostOrderChecks &) = delete;

    crossings::Interest InterestIn(const crossings::Prototype &function) const override;
    void Begins(const crossings::Crossing &crossing) override;
    void Ends(const crossings::Crossing &crossing) override;
    // To be called at the end of the process.
    void Finish();

  private:
    enum class Phase : std::uint8_t {
        Before,
        Started,
        Ended
    };

    static const CallRow<HostOrderChecks> kBefore[];
    static const CallRow<HostOrderChecks> kAfter[];

    void BeforeHook(const crossings::Crossing &hook);
    void BeforeStart(const crossings::Crossing &start);
    void BeforeEnd(const crossings::Crossing &end);
    void AfterEnd(const crossings::Crossing &end);
    void BeforeEvent(const crossings::Crossing &hook);
    void BeforeDrawing(const crossings::Crossing &hook);
    void BeforeKey(const crossings::Crossing &hook);
    void BeforeCamera(const crossings::Crossing &hook);
    void BeforeModel(const crossings::Crossing &hook);
    void AfterCount(const crossings::Crossing &hook);
    void OnReload(const crossings::Crossing &call);

    bool IsInSignalHandler(const crossings::Crossing &hook);
    void CheckPlane(const crossings::Crossing &hook, int event, AVSKWord index);
    void CheckScenery(const crossings::Crossing &hook, const char *folder);
    // The folder, or an empty text if there is none to judge.
    std::string CheckFolder(const crossings::Crossing &hook, const char *parameter, const char *folder);
    void TakeForeign();

    Findings &mFindings;
    CallTable<HostOrderChecks> mBefore;
    CallTable<HostOrderChecks> mAfter;
    Phase mPhase = Phase::Before;
    std::uint64_t mBlocked;     // the signals that the host blocks in its hooks
    std::set<AVSKWord> mPlanes; // that are reported as loaded
    std::set<std::string> mScenery;
    int mPlaneCount = -1; // what the library answered last; -1 before
};

} // namespace host

#endif
