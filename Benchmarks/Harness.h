// Measures two ways of doing the same work in one run: calibrates, alternates
// the two, and prints a row of medians. Each side tells how many calls really
// happened, and a wrong number ends the run.
#ifndef AVSK_BENCH_HARNESS_H
#define AVSK_BENCH_HARNESS_H

#include <cstdint>
#include <functional>
#include <stdexcept>
#include <string>
#include <vector>

struct Options {
    std::string filter;
    bool quick = false;
    bool strict = false;
};

// A benchmark that did not do the work it is timed for.
struct WrongCount : std::runtime_error {
    using std::runtime_error::runtime_error;
};

// What the rows add up to. Shared by the processes of a run.
struct Totals {
    int rows;
    int over;
};

// Keeps the compiler from knowing where a value came from.
template <class T>
T Opaque(T value) {
    asm volatile("" : "+r"(value));
    return value;
}

// One side of a comparison: batches of calls, timed.
class Side {
  public:
    struct Sample {
        double nanoseconds;
        std::uint64_t calls; // that really happened
    };

    unsigned callsPerBatch;
    std::function<Sample(unsigned batches)> take;

    // run makes the calls of a batch; counted tells how many have happened
    // ever; cleanUp, not timed, makes the next batch possible.
    static Side Here(unsigned callsPerBatch, std::function<void()> run, std::function<std::uint64_t()> counted,
                     std::function<void()> cleanUp = {});

    // The same in a process of its own, for two sides that each need the
    // library in a state of their own. make runs there.
    static Side Elsewhere(unsigned callsPerBatch, const std::function<Side()> &make);
};

class Report {
  public:
    Report(const Options &chosen, Totals &sum) : options(chosen), totals(sum) {}

    static void PrintHead();

    // A row without a goal informs only.
    static constexpr double kNoGoal = 0;

    // The goal is the largest ratio of our time to the other's.
    void Compare(const std::string &name, double goal, const Side &ours, const Side &other);
    void Measure(const std::string &name, const Side &ours);

  private:
    const Options &options;
    Totals &totals;
};

// Comparisons that need the same state of the library, run in a process of their own.
struct Comparison {
    const char *name; // what --filter looks at
    void (*run)(Report &report);
};

std::vector<Comparison> CommandComparisons();
std::vector<Comparison> DataAccessComparisons();
std::vector<Comparison> DisplayComparisons();
std::vector<Comparison> FolderComparisons();
std::vector<Comparison> MenuComparisons();
std::vector<Comparison> PluginComparisons();
std::vector<Comparison> ProcessingComparisons();
std::vector<Comparison> SharedDataComparisons();

#endif
