// Reports a plugin that ends the run: by a signal, a call that takes too long, or
// exit(). The report names the plugin and what it was doing; the process ends
// with status 3. Exceptions are reported by main(), which then ends with status 1.
#ifndef AVSK_HOST_OBSERVING_BLAME_H
#define AVSK_HOST_OBSERVING_BLAME_H

#include "Watchdog.h"

#include "Crossings/Crossing.h"
#include "Crossings/Line.h"

#include <memory>
#include <optional>
#include <string_view>

#include <csignal>

namespace host {

constexpr int kBlamedStatus = 3;

// Constructed on the main thread, one at a time.
class Blame : public crossings::Observer {
  public:
    // The seconds that one call into the library or a plugin may take; 0: no limit.
    // The frame's number is read when a report is written.
    Blame(const int &frame, double timeout);
    ~Blame() override;
    Blame(const Blame &) = delete;
    Blame &operator=(const Blame &) = delete;

    crossings::Interest InterestIn(const crossings::Prototype & /*function*/) const override {
        return crossings::Interest::Calls;
    }
    void Begins(const crossings::Crossing &crossing) override;
    void Ends(const crossings::Crossing &crossing) override;

    // The calling thread is now the one that calls the library.
    void MoveToThisThread();

    // Null without a limit.
    const Watchdog *Timer() const { return mWatchdog ? &*mWatchdog : nullptr; }

  private:
    struct Handlers; // installs ours and restores the previous ones
    std::unique_ptr<Handlers> mBefore;
    std::optional<Watchdog> mWatchdog;
    unsigned mCalls = 0;   // of the host
    int mPluginDepth = -1; // depth of the outermost call of a plugin; -1: none
};

// The function writes what reports of Blame contain at their end. It runs in signal
// handlers. Null for none. Returns the one before.
void (*AddToBlame(void (*write)()))();

// The function adds the call that a plugin makes where the stack pointer has the given value, if it is one that the
// library does not see, and tells whether it is. It runs in signal handlers. Null for none.
void NameInnerCalls(bool (*add)(crossings::Line &line, const void *stack));

// In a program of somebody else's, a report of a fault does not end the process: the
// program does what it would do without an observer. The functions run in signal handlers.
struct ForeignSignals {
    bool (*isHandled)(int signal); // by the program itself
    void (*passOn)(int signal, siginfo_t *info, void *context);
};
// Null for this program. To be set before a Blame is constructed.
void SetForeignSignals(const ForeignSignals *signals);

// Whether a report is being written now.
bool IsReporting();

// Reports the exception that is being handled: which plugin threw it, what it
// says, the last calls, and the stack where it was thrown. Also valid without a
// Blame, after the run.
void ReportException(std::string_view what);

} // namespace host

#endif
