// Notices calls that take too long. It is a thread that sleeps most of the time,
// because periodic signals would interrupt the plugins' own sleeps.
#ifndef AVSK_HOST_OBSERVING_WATCHDOG_H
#define AVSK_HOST_OBSERVING_WATCHDOG_H

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <mutex>
#include <thread>

#include <pthread.h>

namespace host {

class Watchdog {
  public:
    using Clock = std::chrono::steady_clock;

    // While a call is overdue, sends the signal periodically to the thread that made the watchdog.
    Watchdog(double seconds, int signal);
    ~Watchdog();

    // A call begins or ends.
    void Restart(Clock::time_point now) { mSince = Milliseconds(now); }
    void Stop() { mSince = kNothing; }
    // Also safe in a signal handler.
    bool IsOverdue() const;
    double Limit() const { return mSeconds; }

  private:
    static constexpr std::uint32_t kNothing = 0;

    std::uint32_t Milliseconds(Clock::time_point time) const;
    void Run();

    const double mSeconds;
    const int mSignal;
    const pthread_t mTarget = pthread_self();
    const Clock::time_point mStart = Clock::now();
    std::atomic<std::uint32_t> mSince = kNothing;
    std::mutex mMutex;
    std::condition_variable mWakened;
    bool mEnds = false;
    std::thread mThread; // last, because it uses the other members
};

} // namespace host

#endif
