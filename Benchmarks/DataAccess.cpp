// Datarefs: reading one, finding one by name, and validating handles.
#include "Harness.h"
#include "Simulator.h"

#include "AVSK/AVSKDataAccess.h"

#include <algorithm>
#include <boost/signals2/dummy_mutex.hpp>
#include <boost/signals2/signal.hpp>
#include <boost/signals2/signal_type.hpp>
#include <boost/unordered/unordered_flat_map.hpp>
#include <functional>
#include <memory>
#include <random>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace {

constexpr AVSKPluginID kOwner = 1;

int ReadOne(void *refcon) { return *static_cast<int *>(refcon); }

AVSKDataRef Register(const char *name, int *value) {
    return AVSKRegisterDataAccessor(name, AVSKDataTypeInt, 0, ReadOne, nullptr, nullptr, nullptr, nullptr, nullptr,
                                    nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, value, nullptr);
}

// ---- Reading

// The value read is 1, so that the sum of the values is the number of reads.
template <class Read>
Side Reads(Read read) {
    constexpr unsigned kReads = 1000;
    const auto sum = std::make_shared<std::uint64_t>(0);
    return Side::Here(
        kReads,
        [sum, read = std::move(read)]() mutable {
            int batch = 0;
            for (unsigned i = 0; i < kReads; ++i)
                batch += read();
            *sum += static_cast<unsigned>(batch);
        },
        [sum] { return *sum; });
}

void CompareReading(Report &report) {
    Simulator simulator(1);
    int one = 1;
    AVSKDataRef ref = nullptr;
    simulator.AsPlugin(kOwner, [&] { ref = Register("sim/flightmodel/engine/running", &one); });

    struct Accessor {
        AVSKGetDatai_f read;
        void *refcon;
    };
    const Accessor accessor = {ReadOne, &one};
    const std::function<int()> function = [&one] { return ReadOne(&one); };
    // Only one thread reads, so the signal works without locks.
    using Signal =
        boost::signals2::signal_type<int(), boost::signals2::keywords::mutex_type<boost::signals2::dummy_mutex>>::type;
    Signal signal;
    signal.connect(function);

    const Side ours = Reads([ref] { return AVSKGetDatai(ref); });
    report.Compare("AVSKGetDatai / indirect call", 3.0, ours,
                   Reads([at = Opaque(&accessor)] { return at->read(at->refcon); }));
    report.Compare("AVSKGetDatai / std::function", Report::kNoGoal, ours,
                   Reads([at = Opaque(&function)] { return (*at)(); }));
    report.Compare("AVSKGetDatai / boost::signals2, one slot", Report::kNoGoal, ours,
                   Reads([&signal] { return *signal(); }));
}

// ---- Finding

std::vector<std::string> Names(int count) {
    static const char *const folders[] = {
        "sim/flightmodel/position/", "sim/flightmodel/engine/",  "sim/cockpit2/gauges/indicators/",
        "sim/aircraft/parts/",       "sim/weather/region/",      "sim/graphics/view/",
        "sim/multiplayer/position/", "corvane/avionics/display/"};
    static const char *const values[] = {
        "x",         "theta", "N1_percent",      "oil_pressure_psi", "airspeed_kts", "elevation", "heading_deg_mag",
        "fuel_flow", "is_on", "brightness_ratio"};
    constexpr int kFolders = std::size(folders);
    constexpr int kValues = std::size(values);
    std::vector<std::string> names;
    for (int i = 0; i < count; ++i)
        names.push_back(std::string(folders[i % kFolders]) + values[i / kFolders % kValues] + "_" +
                        std::to_string(i / (kFolders * kValues)));
    return names;
}

template <class T>
void Shuffle(std::vector<T> &values) {
    std::mt19937 random(20); // the same order in every run
    std::shuffle(values.begin(), values.end(), random);
}

// Looks up every name once, in random order.
template <class Find>
Side LookUps(const std::vector<std::string> &names, Find find) {
    const auto found = std::make_shared<std::uint64_t>(0);
    return Side::Here(
        static_cast<unsigned>(names.size()),
        [&names, found, find] {
            unsigned batch = 0;
            for (const std::string &name : names)
                batch += find(name);
            *found += batch;
        },
        [found] { return *found; });
}

// Hashes and compares a const char * without a conversion.
struct TextHash {
    using is_transparent = void;
    std::size_t operator()(std::string_view text) const { return std::hash<std::string_view>()(text); }
};

template <int count>
void CompareFinding(Report &report) {
    Simulator simulator(1);
    std::vector<std::string> names = Names(count);
    int one = 1;
    std::unordered_map<std::string, AVSKDataRef> map;
    boost::unordered_flat_map<std::string, AVSKDataRef, TextHash, std::equal_to<>> flatMap;
    simulator.AsPlugin(kOwner, [&] {
        for (const std::string &name : names)
            map[name] = flatMap[name] = Register(name.c_str(), &one);
    });
    Shuffle(names);

    const std::string among = "AVSKFindDataRef among " + std::to_string(count) + " / ";
    const Side ours = LookUps(names, [](const std::string &name) { return AVSKFindDataRef(name.c_str()) != nullptr; });
    report.Compare(among + "unordered_map", 1.0, ours,
                   LookUps(names, [&map](const std::string &name) { return map.find(name.c_str()) != map.end(); }));
    report.Compare(among + "unordered_map, ready keys", Report::kNoGoal, ours,
                   LookUps(names, [&map](const std::string &name) { return map.find(name) != map.end(); }));
    report.Compare(
        among + "unordered_flat_map", Report::kNoGoal, ours,
        LookUps(names, [&flatMap](const std::string &name) { return flatMap.find(name.c_str()) != flatMap.end(); }));
}

// ---- Validating

Side Validations(int count) {
    return Side::Elsewhere(static_cast<unsigned>(count), [count] {
        static int one = 1;
        std::vector<AVSKDataRef> refs;
        for (const std::string &name : Names(count))
            refs.push_back(Register(name.c_str(), &one));
        Shuffle(refs);
        const auto good = std::make_shared<std::uint64_t>(0);
        return Side::Here(
            static_cast<unsigned>(count),
            [refs, good] {
                int batch = 0;
                for (const AVSKDataRef ref : refs)
                    batch += AVSKIsDataRefGood(ref);
                *good += static_cast<unsigned>(batch);
            },
            [good] { return *good; });
    });
}

void CompareValidating(Report &report) {
    report.Compare("AVSKIsDataRefGood among 50000 / among 1000", 1.5, Validations(50000), Validations(1000));
}

} // namespace

std::vector<Comparison> DataAccessComparisons() {
    return {{"read a dataref", CompareReading},
            {"find a dataref among 1000", CompareFinding<1000>},
            {"find a dataref among 10000", CompareFinding<10000>},
            {"find a dataref among 50000", CompareFinding<50000>},
            {"validate a dataref", CompareValidating}};
}
