// Finds what violates the rules about the host's table: at the start, and before and
// after each outermost hook while the library is started.
#ifndef AVSK_HOST_RULES_HOST_TABLE_CHECKS_H
#define AVSK_HOST_RULES_HOST_TABLE_CHECKS_H

#include "Findings.h"

#include "Crossings/Crossing.h"

#include "AVSK/AVSKHost.h"

#include <array>
#include <cstddef>
#include <string>
#include <vector>

namespace host {

class HostTableChecks : public crossings::Observer {
  public:
    explicit HostTableChecks(Findings &findings);
    ~HostTableChecks() override;
    HostTableChecks(const HostTableChecks &) = delete;
    HostTableChecks &operator=(const HostTableChecks &) = delete;

    crossings::Interest InterestIn(const crossings::Prototype &function) const override;
    void Begins(const crossings::Crossing &crossing) override;
    void Ends(const crossings::Crossing &crossing) override;

    // The words of the table: version, size, and the slots.
    using Words = std::array<AVSKWord, AVSK_HOST_SLOTS>;

  private:
    void Take(const crossings::Crossing &start);
    void JudgeSize(const crossings::Crossing &start, AVSKWord size);
    void JudgeSlot(const crossings::Crossing &crossing, std::size_t slot);
    void Compare(const crossings::Crossing &crossing, bool isDuringCall);
    std::string NameOf(std::size_t slot) const;

    Findings &mFindings;
    const std::vector<std::string> mNames;        // of the services
    const crossings::Prototype *mStart = nullptr; // known from their first calls
    const crossings::Prototype *mShutdown = nullptr;
    const void *mTable = nullptr; // the host's; null while the library is not started, and when it is lost
    std::size_t mCount = 0;       // words that the library reads
    Words mWords{};               // as they were last
};

} // namespace host

#endif
