// Keeps the actions of the program; see Signals.h. Owns these actions. Nothing is
// kept until the observers install their handlers.
#include "Signals.h"

#include "Observing/Fault.h"

#include "Crossings/RealSymbols.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <cerrno>

#include <dlfcn.h>
#include <unistd.h>

namespace host {
namespace {

using SigactionFunction = int (*)(int, const struct sigaction *, struct sigaction *);
using SigaltstackFunction = int (*)(const stack_t *, stack_t *);

template <class F>
F Real(const char *name) {
    return reinterpret_cast<F>(crossings::RealLookup()(RTLD_NEXT, name));
}

int RealSigaction(int signal, const struct sigaction *action, struct sigaction *old) {
    static const auto real = Real<SigactionFunction>("sigaction");
    return real(signal, action, old);
}

// Of the observers. SIGUSR1 asks for a report.
constexpr std::array kShared = [] {
    std::array<int, kFatalSignals.size() + 1> signals{};
    std::copy(kFatalSignals.begin(), kFatalSignals.end(), signals.begin());
    signals.back() = SIGUSR1;
    return signals;
}();

std::array<struct sigaction, kShared.size()> gActions{};
stack_t gStack{.ss_sp = nullptr, .ss_flags = SS_DISABLE, .ss_size = 0};
pthread_t gObserved;              // the thread whose alternate stack the observers set
std::atomic<bool> gKeeps = false; // the program's actions are in gActions
std::atomic<bool> gOwn = false;   // the observers install theirs

struct sigaction *ActionOf(int signal) {
    const auto found = std::find(kShared.begin(), kShared.end(), signal);
    return found == kShared.end() ? nullptr : &gActions[static_cast<std::size_t>(found - kShared.begin())];
}

// The program's handlers may run on any thread while another one changes them.
class Blocked {
  public:
    Blocked() {
        sigset_t all;
        sigfillset(&all);
        pthread_sigmask(SIG_BLOCK, &all, &mBefore);
        while (sLock.test_and_set(std::memory_order_acquire)) {
        }
    }
    ~Blocked() {
        sLock.clear(std::memory_order_release);
        pthread_sigmask(SIG_SETMASK, &mBefore, nullptr);
    }
    Blocked(const Blocked &) = delete;
    Blocked &operator=(const Blocked &) = delete;

  private:
    static inline std::atomic_flag sLock;
    sigset_t mBefore;
};

int ChangeAction(int signal, const struct sigaction *action, struct sigaction *old) {
    struct sigaction *const kept = gKeeps && !gOwn ? ActionOf(signal) : nullptr;
    if (!kept)
        return RealSigaction(signal, action, old);
    const Blocked signals;
    const struct sigaction before = *kept;
    if (action)
        *kept = *action;
    if (old)
        *old = before;
    return 0;
}

using Handler = void (*)(int);

Handler ChangeHandler(int signal, Handler handler, int flags) {
    struct sigaction action {};
    struct sigaction old {};
    action.sa_handler = handler;
    action.sa_flags = flags;
    return ChangeAction(signal, &action, &old) == 0 ? old.sa_handler : SIG_ERR;
}

} // namespace

OwnSignals::OwnSignals() {
    if (!gKeeps) {
        for (std::size_t i = 0; i < kShared.size(); ++i)
            RealSigaction(kShared[i], nullptr, &gActions[i]);
        sigaltstack(nullptr, &gStack);
    }
    gObserved = pthread_self();
    gOwn = true;
    gKeeps = true;
}

OwnSignals::~OwnSignals() { gOwn = false; }

bool IsHandledByProgram(int signal) {
    const struct sigaction *const action = gKeeps ? ActionOf(signal) : nullptr;
    return action && action->sa_handler != SIG_DFL && action->sa_handler != SIG_IGN;
}

void PassOn(int signal, siginfo_t *info, void *context) {
    struct sigaction *const kept = ActionOf(signal);
    const struct sigaction action = *kept;
    if (action.sa_handler == SIG_IGN && info->si_code <= 0)
        return; // sent and ignored
    if (!IsHandledByProgram(signal)) {
        // A fault occurs again when this returns. A signal that was sent is sent again; it is blocked until then.
        struct sigaction standard {};
        standard.sa_handler = SIG_DFL;
        RealSigaction(signal, &standard, nullptr);
        if (info->si_code <= 0)
            raise(signal);
        return;
    }
    if ((action.sa_flags & SA_RESETHAND) != 0)
        kept->sa_handler = SIG_DFL;
    sigset_t before;
    sigset_t blocked = action.sa_mask;
    if ((action.sa_flags & SA_NODEFER) == 0)
        sigaddset(&blocked, signal);
    pthread_sigmask(SIG_BLOCK, &blocked, &before);
    if ((action.sa_flags & SA_SIGINFO) != 0)
        action.sa_sigaction(signal, info, context);
    else
        action.sa_handler(signal);
    pthread_sigmask(SIG_SETMASK, &before, nullptr);
}

} // namespace host

// ---- The functions of the C library that change actions

extern "C" {

__attribute__((visibility("default"))) int sigaction(int signal, const struct sigaction *action,
                                                     struct sigaction *old) noexcept {
    return host::ChangeAction(signal, action, old);
}

__attribute__((visibility("default"))) host::Handler signal(int signal, host::Handler handler) noexcept {
    return host::ChangeHandler(signal, handler, SA_RESTART);
}

__attribute__((visibility("default"))) host::Handler bsd_signal(int signal, host::Handler handler) noexcept {
    return host::ChangeHandler(signal, handler, SA_RESTART);
}

__attribute__((visibility("default"))) host::Handler sysv_signal(int signal, host::Handler handler) noexcept {
    return host::ChangeHandler(signal, handler, SA_RESETHAND | SA_NODEFER);
}

// The handlers of the program run on the observers' stack, which is larger.
__attribute__((visibility("default"))) int sigaltstack(const stack_t *stack, stack_t *old) noexcept {
    using namespace host;
    if (!gKeeps || gOwn || pthread_equal(pthread_self(), gObserved) == 0) {
        static const auto real = Real<SigaltstackFunction>("sigaltstack");
        return real(stack, old);
    }
    if (old)
        *old = gStack;
    if (stack)
        gStack = *stack;
    return 0;
}
}
