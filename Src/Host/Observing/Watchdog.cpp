// The thread behind --timeout; see Watchdog.h.
#include "Watchdog.h"

#include <algorithm>
#include <chrono>
#include <cmath>

#include <csignal>

namespace host {

Watchdog::Watchdog(double seconds, int signal)
    : mSeconds(seconds), mPeriod(std::clamp(seconds / 16, 0.001, 0.25)),
      mLimit(static_cast<Ticks>(std::lround(std::ceil(seconds / mPeriod)))), mSignal(signal) {
    // The thread blocks all signals, so that the main thread receives them.
    sigset_t all;
    sigset_t before;
    sigfillset(&all);
    pthread_sigmask(SIG_SETMASK, &all, &before);
    mThread = std::thread([this] { Run(); });
    pthread_sigmask(SIG_SETMASK, &before, nullptr);
}

Watchdog::~Watchdog() {
    {
        const std::lock_guard lock(mMutex);
        mEnds = true;
    }
    mWakened.notify_one();
    mThread.join();
}

// The first tick may have come at once, so one more than the limit is needed.
bool Watchdog::IsOverdue() const {
    const Ticks since = mSince;
    return since != kNothing && Now() - since > mLimit;
}

void Watchdog::Run() {
    const std::chrono::duration<double> period(mPeriod);
    std::unique_lock lock(mMutex);
    while (!mWakened.wait_for(lock, period, [this] { return mEnds; })) {
        mNow.store(Now() + 1, std::memory_order_relaxed);
        if (IsOverdue())
            pthread_kill(mTarget, mSignal);
    }
}

} // namespace host
