// The signals that the observers and the observed program both handle. This object
// defines sigaction() and its relatives, so that it keeps the program's actions while
// its own handlers are installed, and runs them afterwards.
#ifndef AVSK_HOST_PRELOAD_SIGNALS_H
#define AVSK_HOST_PRELOAD_SIGNALS_H

#include <csignal>

namespace host {

// During its lifetime actions are those of the process: the observers install
// their handlers. Before that, the actions that exist become the program's.
class OwnSignals {
  public:
    OwnSignals();
    ~OwnSignals();
    OwnSignals(const OwnSignals &) = delete;
    OwnSignals &operator=(const OwnSignals &) = delete;
};

// Whether the program handles the signal itself. Safe in a signal handler.
bool IsHandledByProgram(int signal);

// Does with a signal what the program asked for. If that is the default action, it
// is restored, and the signal acts when the handler returns. Safe in a signal handler.
void PassOn(int signal, siginfo_t *info, void *context);

} // namespace host

#endif
