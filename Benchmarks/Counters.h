// Counts the calls of each callback of a benchmark. Each callback has its own
// counter: a shared one would be a chain of dependent stores.
#ifndef AVSK_BENCH_COUNTERS_H
#define AVSK_BENCH_COUNTERS_H

#include <cstdint>
#include <numeric>
#include <vector>

using Counters = std::vector<unsigned>;

inline void Count(void *counter) { ++*static_cast<unsigned *>(counter); }

inline std::uint64_t Sum(const Counters &counters) {
    return std::accumulate(counters.begin(), counters.end(), std::uint64_t{0});
}

#endif
