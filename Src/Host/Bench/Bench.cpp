// Puts the observers together; see Bench.h.
#include "Bench.h"

#include "Simulator.h"

#include <cstdio>

namespace host {

void PrintList(const char *title, const std::vector<std::string> &lines, const char *none) {
    std::printf("%s\n", title);
    for (const std::string &line : lines)
        std::printf("  %s\n", line.c_str());
    if (lines.empty())
        std::printf("  %s\n", none);
    std::fflush(stdout);
}

Bench::Bench(const Simulator &simulator)
    : mSimulator(simulator), mBlame(simulator.options.bench.timeout), mLedger(simulator), mProfile(simulator) {
    const BenchOptions &options = simulator.options.bench;
    if (options.budget > 0)
        mProfile.SetBudget("", options.budget);
    if (!options.trace.file.empty())
        mTrace.emplace(options.trace);
}

void Bench::ReportLoaded() const {
    if (mSimulator.options.bench.owners)
        PrintList("\nOwned by plugins:", mLedger.Owned());
}

void Bench::ReportUnloaded() const {
    if (mSimulator.options.bench.owners)
        PrintList("\nLeft behind when they were unloaded:", mLedger.LeftBehind());
    if (mSimulator.options.bench.profile)
        PrintList("\nTime in plugins:", mProfile.Table(), "none");
}

} // namespace host
