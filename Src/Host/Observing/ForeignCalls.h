// Calls of the library on other threads than the host's, for the trace. They are
// not observed, but noted without a lock.
#ifndef AVSK_HOST_OBSERVING_FOREIGN_CALLS_H
#define AVSK_HOST_OBSERVING_FOREIGN_CALLS_H

#include "Crossings/Crossing.h"

#include <functional>

namespace host {

// One at a time.
class ForeignCalls {
  public:
    using Use = std::function<void(const crossings::Prototype &function, int thread)>;

    ForeignCalls();
    ~ForeignCalls();
    ForeignCalls(const ForeignCalls &) = delete;
    ForeignCalls &operator=(const ForeignCalls &) = delete;

    // Whether some were noted since they were taken last. Costs one comparison.
    bool IsAny() const;
    // Those since the last time, the oldest first. If there were very many, the oldest are lost.
    void Take(const Use &use);
};

} // namespace host

#endif
