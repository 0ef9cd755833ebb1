// The thread behind --timeout; see Watchdog.h.
#include "Watchdog.h"

#include <algorithm>

#include <csignal>

namespace host {

Watchdog::Watchdog(double seconds, int signal) : mSeconds(seconds), mSignal(signal) {
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

std::uint32_t Watchdog::Milliseconds(Clock::time_point time) const {
    // 0 means that no call is under way.
    return static_cast<std::uint32_t>(std::chrono::duration_cast<std::chrono::milliseconds>(time - mStart).count()) + 1;
}

bool Watchdog::IsOverdue() const {
    const std::uint32_t since = mSince;
    return since != kNothing && (Milliseconds(Clock::now()) - since) / 1000.0 >= mSeconds;
}

void Watchdog::Run() {
    const std::chrono::duration<double> period(std::min(mSeconds / 8, 0.25));
    std::unique_lock lock(mMutex);
    while (!mWakened.wait_for(lock, period, [this] { return mEnds; })) {
        if (IsOverdue())
            pthread_kill(mTarget, mSignal);
    }
}

} // namespace host
