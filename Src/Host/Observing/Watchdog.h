// Notices calls that take too long. It is a thread that sleeps most of the time,
// because periodic signals would interrupt the plugins' own sleeps. The thread
// counts its periods, and calls are timed in periods, so that they need no clock.
#ifndef AVSK_HOST_OBSERVING_WATCHDOG_H
#define AVSK_HOST_OBSERVING_WATCHDOG_H

#include <atomic>
#include <condition_variable>
#include <cstdint>
#include <mutex>
#include <thread>

#include <pthread.h>

namespace host {

class Watchdog {
  public:
    using Ticks = std::uint32_t;

    // While a call is overdue, sends the signal periodically to the thread that made the watchdog.
    Watchdog(double seconds, int signal);
    ~Watchdog();

    // A call begins or ends.
    void Restart() { mSince.store(Now(), std::memory_order_relaxed); }
    void Stop() { mSince.store(kNothing, std::memory_order_relaxed); }

    // These are also safe in a signal handler.
    Ticks Now() const { return mNow.load(std::memory_order_relaxed); }
    bool IsOverdue() const;
    // Whether a call that began then has taken almost the whole time.
    bool IsNearlyOverdue(Ticks began) const { return Now() - began >= mLimit - mLimit / 10; }
    double Limit() const { return mSeconds; }

  private:
    static constexpr Ticks kNothing = 0;

    void Run();

    const double mSeconds;
    const double mPeriod; // seconds
    const Ticks mLimit;   // whole periods
    const int mSignal;
    const pthread_t mTarget = pthread_self();
    std::atomic<Ticks> mNow = kNothing + 1;
    std::atomic<Ticks> mSince = kNothing;
    std::mutex mMutex;
    std::condition_variable mWakened;
    bool mEnds = false;
    std::thread mThread; // last, because it uses the other members
};

} // namespace host

#endif
