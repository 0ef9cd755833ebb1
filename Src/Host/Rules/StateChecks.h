// Finds what violates the rules about state that a plugin must leave as it was:
// that of the processor and the thread around each call, that of the process
// around entry points. The state of the process is not restored.
#ifndef AVSK_HOST_RULES_STATE_CHECKS_H
#define AVSK_HOST_RULES_STATE_CHECKS_H

#include "Findings.h"

#include "Crossings/CallState.h"
#include "Crossings/Crossing.h"

#include <cstdint>
#include <map>
#include <string>
#include <utility>
#include <vector>

namespace host {

// Two masks of blocked signals: "SIGUSR1 is blocked, SIGALRM is no longer blocked"
std::string SignalChanges(std::uint64_t before, std::uint64_t after);

class StateChecks : public crossings::Observer {
  public:
    explicit StateChecks(Findings &findings);
    ~StateChecks() override;
    StateChecks(const StateChecks &) = delete;
    StateChecks &operator=(const StateChecks &) = delete;

    void Begins(const crossings::Crossing &crossing) override;
    void Ends(const crossings::Crossing &crossing) override;

    // The values by rule and name; the name is empty for rules about one value.
    using ProcessState = std::map<std::pair<const Rule *, std::string>, std::string>;

  private:
    void CompareCall(const crossings::Crossing &crossing, const crossings::CallState &before,
                     const crossings::CallState &after);
    void CompareProcess(const crossings::Crossing &entryPoint, const ProcessState &before);

    Findings &mFindings;
    crossings::CallState mExpected;  // at the begin of the next start
    std::vector<ProcessState> mOpen; // at the begins of the entry points under way
};

} // namespace host

#endif
