// Measures the processor's counter; see Clock.h.
#include "Clock.h"

#include <algorithm>

#include <cpuid.h>

namespace crossings {
namespace {

using Steady = std::chrono::steady_clock;

// The same moment on both clocks.
struct Moment {
    std::uint64_t ticks;
    Steady::time_point time;
};

// The closest of some readings: this thread may be interrupted between the two clocks.
Moment Now() {
    Moment closest{};
    std::uint64_t least = ~std::uint64_t{0};
    for (int i = 0; i < 8; ++i) {
        const std::uint64_t before = __rdtsc();
        const Steady::time_point time = Steady::now();
        const std::uint64_t distance = __rdtsc() - before;
        if (distance < least)
            closest = {before + distance / 2, time};
        least = std::min(least, distance);
    }
    return closest;
}

// Whether the counter's speed is always the same.
bool IsInvariant() {
    unsigned a = 0;
    unsigned b = 0;
    unsigned c = 0;
    unsigned d = 0;
    constexpr unsigned kPowerManagement = 0x80000007;
    return __get_cpuid(kPowerManagement, &a, &b, &c, &d) != 0 && (d & (1U << 8)) != 0;
}

} // namespace

void Clock::Prepare() {
    static bool isPrepared = false;
    if (isPrepared || !IsInvariant())
        return;
    isPrepared = true;
    const Moment first = Now();
    Moment last = Now();
    while (last.time - first.time < std::chrono::microseconds(500))
        last = Now();
    const double nanoseconds = std::chrono::duration<double, std::nano>(last.time - first.time).count();
    const double scale = nanoseconds / static_cast<double>(last.ticks - first.ticks) * 4294967296.0;
    if (scale >= 4294967295.0) // a counter slower than 1 GHz
        return;
    sFirst = first.ticks;
    sStart = std::chrono::duration_cast<duration>(first.time.time_since_epoch()).count();
    sScale = static_cast<std::uint32_t>(scale);
}

} // namespace crossings
