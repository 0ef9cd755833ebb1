// Growth: calls whose cost must not depend on how much exists besides what they
// are about. Each is measured among 100, 1,000 and 10,000 others.
#include "Harness.h"
#include "Simulator.h"

#include "AVSK/AVSKDataAccess.h"
#include "AVSK/AVSKHost.h"

namespace {

std::string NameOf(const char *kind, int number) {
    return std::string("corvane/bench/") + kind + "/" + std::to_string(number);
}

int ReadInt(void * /*refcon*/) { return 1; }

void Publish(const std::string &name) {
    AVSKRegisterDataAccessor(name.c_str(), AVSKDataTypeInt, 0, ReadInt, nullptr, nullptr, nullptr, nullptr, nullptr,
                             nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr);
}

// ---- Unloading a plugin with ten datarefs

constexpr AVSKPluginID kAircraftPlugin = 1;

void LoadAircraftPlugin(Simulator &simulator) {
    AVSKEventHook(AVSKHostEventPlaneLoaded, 0, 0, 0);
    simulator.AsPlugin(kAircraftPlugin, [] {
        for (int i = 0; i < 10; ++i)
            Publish(NameOf("own", i));
    });
}

void MeasureUnload(Report &report, int others) {
    Simulator simulator(0);
    simulator.AddAircraft();
    for (int i = 0; i < others; ++i)
        Publish(NameOf("foreign", i));
    LoadAircraftPlugin(simulator);
    std::uint64_t unloaded = 0;
    report.Measure("unload a plugin of 10 datarefs beside " + std::to_string(others),
                   Side::Here(
                       1, [] { AVSKEventHook(AVSKHostEventPlaneUnloaded, 0, 0, 0); }, [&unloaded] { return unloaded; },
                       [&simulator, &unloaded] {
                           unloaded += AVSKCountPlugins() == 1 ? 1 : 0;
                           LoadAircraftPlugin(simulator);
                       }));
}

// ---- Sharing

constexpr unsigned kShares = 1000; // in a batch

void Ignore(void * /*refcon*/) {}

void MeasureShare(Report &report, int others) {
    const Simulator simulator(1);
    std::vector<std::string> names;
    for (int i = 0; i < others; ++i) {
        names.push_back(NameOf("shared", i));
        AVSKShareData(names.back().c_str(), AVSKDataTypeInt, nullptr, nullptr);
    }
    std::uint64_t shared = 0;
    report.Measure("share and unshare a name among " + std::to_string(others),
                   Side::Here(
                       kShares,
                       [&names, &shared] {
                           for (unsigned i = 0; i < kShares; ++i) {
                               const char *name = names[i % names.size()].c_str();
                               const int added = AVSKShareData(name, AVSKDataTypeInt, Ignore, nullptr);
                               shared += static_cast<unsigned>(added &
                                                               AVSKUnshareData(name, AVSKDataTypeInt, Ignore, nullptr));
                           }
                       },
                       [&shared] { return shared; }));
}

} // namespace

std::vector<Comparison> GrowthComparisons() {
    return {{"unload among 100", [](Report &report) { MeasureUnload(report, 100); }},
            {"unload among 1000", [](Report &report) { MeasureUnload(report, 1000); }},
            {"unload among 10000", [](Report &report) { MeasureUnload(report, 10000); }},
            {"share among 100", [](Report &report) { MeasureShare(report, 100); }},
            {"share among 1000", [](Report &report) { MeasureShare(report, 1000); }},
            {"share among 10000", [](Report &report) { MeasureShare(report, 10000); }}};
}
