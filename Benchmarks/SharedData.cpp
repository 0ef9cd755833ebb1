// Shared data: a write that notifies subscribers.
#include "Counters.h"
#include "Harness.h"
#include "Simulator.h"

#include "AVSK/AVSKDataAccess.h"

#include <boost/signals2/dummy_mutex.hpp>
#include <boost/signals2/signal.hpp>
#include <boost/signals2/signal_type.hpp>

namespace {

constexpr int kSubscribers = 10;
constexpr unsigned kWrites = 100; // in a batch
constexpr char kName[] = "corvane/bench/shared";

// The value written last is read back.
template <class Write, class Read>
Side Writes(const Counters &counters, Write write, Read read) {
    return Side::Here(
        kWrites * kSubscribers,
        [write, read] {
            for (unsigned i = 1; i <= kWrites; ++i)
                write(static_cast<int>(i));
            if (read() != static_cast<int>(kWrites))
                throw WrongCount("the value that was written last is not there");
        },
        [&counters] { return Sum(counters); });
}

void CompareSharedWrite(Report &report) {
    namespace signals2 = boost::signals2;
    Simulator simulator(kSubscribers);
    Counters counters(kSubscribers);
    for (int i = 0; i < kSubscribers; ++i)
        simulator.AsPlugin(1 + i,
                           [&] { AVSKShareData(kName, AVSKDataTypeInt, Count, &counters[static_cast<unsigned>(i)]); });
    const AVSKDataRef ref = AVSKFindDataRef(kName);

    // Only one thread writes, so the signal works without locks.
    using Signal = signals2::signal_type<void(), signals2::keywords::mutex_type<signals2::dummy_mutex>>::type;
    Counters slotCounters(kSubscribers);
    Signal signal;
    int value = 0;
    for (unsigned &counter : slotCounters)
        signal.connect([&counter] { Count(&counter); });

    report.Compare(
        "shared write, 10 subscribers, each / boost::signals2", 1.0,
        Writes(
            counters, [ref](int written) { AVSKSetDatai(ref, written); }, [ref] { return AVSKGetDatai(ref); }),
        Writes(
            slotCounters,
            [at = Opaque(&value), &signal](int written) {
                *at = written;
                signal();
            },
            [at = Opaque(&value)] { return *at; }));
}

} // namespace

std::vector<Comparison> SharedDataComparisons() { return {{"shared write", CompareSharedWrite}}; }
