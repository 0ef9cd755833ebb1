// The end of a run by a plugin's fault: a signal, a call that takes too long,
// an exit(). Says which plugin it was and what it was doing, and ends the
// process with status 3. Of an exception it remembers who threw it.
#ifndef AVSK_HOST_OBSERVING_BLAME_H
#define AVSK_HOST_OBSERVING_BLAME_H

#include "Watchdog.h"

#include "Crossings/Crossing.h"

#include <memory>
#include <optional>
#include <string>

namespace host {

constexpr int kBlamedStatus = 3;

// Made on the main thread, one at a time.
class Blame : public crossings::Observer {
  public:
    // Seconds that one call into the library or a plugin may take; 0: for ever.
    explicit Blame(double timeout);
    ~Blame() override;
    Blame(const Blame &) = delete;
    Blame &operator=(const Blame &) = delete;

    void Begins(const crossings::Crossing &crossing) override;
    void Ends(const crossings::Crossing &crossing) override;

    bool IsOverdue() const { return mWatchdog && mWatchdog->IsOverdue(); }
    double Limit() const { return mWatchdog ? mWatchdog->Limit() : 0; }

  private:
    struct Handlers; // those that were there before
    std::unique_ptr<Handlers> mBefore;
    std::optional<Watchdog> mWatchdog;
    int mPluginDepth = -1; // of the outermost call of a plugin; -1: none
};

// Who threw the exception that has reached main, also when the Blame is gone:
// "plugin 'Menu' in AVSKMenuHandler_f OnPick"; empty if it crossed no border.
std::string ThrownBy();
// The last calls before it, on standard error.
void PrintLastCalls();

} // namespace host

#endif
