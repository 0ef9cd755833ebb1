// Reports a plugin that ends the run: by a signal, a call that takes too long, or
// exit(). The report names the plugin and what it was doing; the process ends
// with status 3. For an exception it remembers which plugin threw it.
#ifndef AVSK_HOST_OBSERVING_BLAME_H
#define AVSK_HOST_OBSERVING_BLAME_H

#include "Watchdog.h"

#include "Crossings/Crossing.h"

#include <memory>
#include <optional>
#include <string>

namespace host {

constexpr int kBlamedStatus = 3;

// Constructed on the main thread, one at a time.
class Blame : public crossings::Observer {
  public:
    // The seconds that one call into the library or a plugin may take; 0: no limit.
    explicit Blame(double timeout);
    ~Blame() override;
    Blame(const Blame &) = delete;
    Blame &operator=(const Blame &) = delete;

    void Begins(const crossings::Crossing &crossing) override;
    void Ends(const crossings::Crossing &crossing) override;

    bool IsOverdue() const { return mWatchdog && mWatchdog->IsOverdue(); }
    double Limit() const { return mWatchdog ? mWatchdog->Limit() : 0; }

  private:
    struct Handlers; // installs ours and restores the previous ones
    std::unique_ptr<Handlers> mBefore;
    std::optional<Watchdog> mWatchdog;
    int mPluginDepth = -1; // depth of the outermost call of a plugin; -1: none
};

// Who threw the exception that has reached main(): "plugin 'Menu' in
// AVSKMenuHandler_f OnPick"; empty if it ended no call. Also valid without a Blame.
std::string ThrownBy();
// Writes the last calls before it to standard error.
void PrintLastCalls();

} // namespace host

#endif
