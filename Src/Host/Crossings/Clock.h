// The clock of the crossings. It reads the processor's counter, which takes a
// fraction of the time that a clock of the system takes.
#ifndef AVSK_HOST_CLOCK_H
#define AVSK_HOST_CLOCK_H

#include <chrono>
#include <cstdint>

#include <x86intrin.h>

namespace crossings {

class Clock {
  public:
    using duration = std::chrono::nanoseconds;
    using rep = duration::rep;
    using period = duration::period;
    using time_point = std::chrono::time_point<Clock>;
    static constexpr bool is_steady = true;

    // Measures the counter's speed; takes half a millisecond the first time. Without
    // it, or if the counter's speed varies, the time is that of the steady clock.
    static void Prepare();

    static time_point now() noexcept {
        if (sScale == 0)
            return time_point(std::chrono::steady_clock::now().time_since_epoch());
        const std::uint64_t ticks = __rdtsc() - sFirst;
        const std::uint64_t high = (ticks >> 32) * sScale;
        const std::uint64_t low = (static_cast<std::uint32_t>(ticks) * std::uint64_t{sScale}) >> 32;
        return time_point(duration(sStart + static_cast<rep>(high + low)));
    }

  private:
    static inline std::uint32_t sScale = 0; // nanoseconds for each 2^32 ticks; 0: the steady clock
    static inline std::uint64_t sFirst = 0;
    static inline rep sStart = 0; // of the steady clock, at that tick
};

} // namespace crossings

#endif
