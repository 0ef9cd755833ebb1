// Puts the observers together; see Bench.h.
#include "Bench.h"

#include "Simulator.h"

#include <cstdio>

namespace host {
namespace {

void Print(const char *title, const std::vector<std::string> &lines, const char *none) {
    std::printf("\n%s\n", title);
    for (const std::string &line : lines)
        std::printf("  %s\n", line.c_str());
    if (lines.empty())
        std::printf("  %s\n", none);
    std::fflush(stdout);
}

} // namespace

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
        Print("Owned by plugins:", mLedger.Owned(), "nothing");
}

void Bench::ReportUnloaded() const {
    if (mSimulator.options.bench.owners)
        Print("Left behind when they were unloaded:", mLedger.LeftBehind(), "nothing");
    if (mSimulator.options.bench.profile)
        Print("Time in plugins:", mProfile.Table(), "none");
}

} // namespace host
