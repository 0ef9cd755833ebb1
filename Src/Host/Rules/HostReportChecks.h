// Finds what violates the rules about what a host reports: commands and their
// phases, and the user's aircraft.
#ifndef AVSK_HOST_RULES_HOST_REPORT_CHECKS_H
#define AVSK_HOST_RULES_HOST_REPORT_CHECKS_H

#include "CallTable.h"
#include "Findings.h"

#include "Crossings/Crossing.h"

#include <functional>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace host {

class HostReportChecks : public crossings::Observer {
  public:
    explicit HostReportChecks(Findings &findings);
    ~HostReportChecks() override;
    HostReportChecks(const HostReportChecks &) = delete;
    HostReportChecks &operator=(const HostReportChecks &) = delete;

    crossings::Interest InterestIn(const crossings::Prototype &function) const override;
    void Begins(const crossings::Crossing &crossing) override;
    void Ends(const crossings::Crossing &crossing) override;

  private:
    // The first report of a phase, until the second one.
    struct Phase {
        const crossings::Crossing *outer; // the service that reports; null if no service does
        const void *command;
        bool begin;
        bool end;
        bool isStopped; // by a plugin: there is no second report
    };
    // A service under way that runs a command.
    struct Run {
        const crossings::Crossing *service;
        bool isReported;
    };

    static const CallRow<HostReportChecks> kBefore[];
    static const CallRow<HostReportChecks> kAfter[];

    void BeforeRun(const crossings::Crossing &call);
    void BeforeCommand(const crossings::Crossing &call);
    void AfterCommand(const crossings::Crossing &call);
    void AfterFind(const crossings::Crossing &call);
    void AfterRun(const crossings::Crossing &call);
    void BeforeEvent(const crossings::Crossing &call);
    void AfterEvent(const crossings::Crossing &call);
    void AfterModel(const crossings::Crossing &call);
    void AfterStop(const crossings::Crossing &call);

    void CheckPairing(const crossings::Crossing &call);
    void CheckSecond(const crossings::Crossing &call);
    void EndService(const crossings::Crossing &service);
    void AddMissing(const Phase &phase, const crossings::Crossing &call);
    std::string NameOf(const void *command) const;

    Findings &mFindings;
    CallTable<HostReportChecks> mBefore;
    CallTable<HostReportChecks> mAfter;
    std::map<std::string, const void *, std::less<>> mCommands; // by name
    std::unordered_map<const void *, std::string> mNames;
    std::unordered_map<const void *, int> mHeld; // how often the host has begun a command and not ended it
    std::vector<Phase> mPhases;
    std::vector<Run> mRuns;
    bool mMayChange = true; // the user's aircraft: before the first event 3, and between events 8 and 3
    std::optional<std::string> mModel;
};

} // namespace host

#endif
