// Finds memory that grows with each reload: the rule memory-grows.
#ifndef AVSK_HOST_RULES_MEMORY_CHECKS_H
#define AVSK_HOST_RULES_MEMORY_CHECKS_H

#include "Findings.h"

#include "Crossings/Crossing.h"

#include <string>
#include <vector>

namespace host {

class MemoryChecks : public crossings::Observer {
  public:
    explicit MemoryChecks(Findings &findings);
    ~MemoryChecks() override;
    MemoryChecks(const MemoryChecks &) = delete;
    MemoryChecks &operator=(const MemoryChecks &) = delete;

    void Begins(const crossings::Crossing &crossing) override;
    void Ends(const crossings::Crossing &crossing) override;

    // Judges the reloads of the whole run.
    void Finish();

  private:
    // What the process has after a load.
    struct Sample {
        std::size_t heap;     // bytes in use
        std::size_t mappings; // ranges of addresses
        std::size_t made;     // by plugins, since the start of the process
    };

    Findings &mFindings;
    std::string mPlugin;   // the first one that was started in this load; empty outside of loads
    std::string mReloaded; // the same of the first load
    std::size_t mMade = 0; // things that the library keeps
    std::vector<Sample> mSamples;
};

} // namespace host

#endif
