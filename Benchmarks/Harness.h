// Measures two ways of doing the same work in one run: calibrates, alternates
// the two, and prints a row of medians. Each side counts the calls that really
// happened; a wrong count ends the run.
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

// Thrown when a benchmark did not do the work that was timed.
struct WrongCount : std::runtime_error {
    using std::runtime_error::runtime_error;
};

// Totals of the rows. Shared by the processes of a run.
struct Totals {
    int rows;
    int over;
};

// Hides the origin of a value from the optimiser.
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

    // run makes the calls of a batch; counted returns the number of calls so far;
    // cleanUp, which is not timed, prepares the next batch.
    static Side Here(unsigned callsPerBatch, std::function<void()> run, std::function<std::uint64_t()> counted,
                     std::function<void()> cleanUp = {});

    // The same in a separate process, for two sides that need the library in
    // different states. make runs in that process.
    static Side Elsewhere(unsigned callsPerBatch, const std::function<Side()> &make);
};

class Report {
  public:
    Report(const Options &chosen, Totals &sum) : options(chosen), totals(sum) {}

    static void PrintHead();

    // A row without a goal is informative only.
    static constexpr double kNoGoal = 0;

    // The goal is the largest allowed ratio of our time to the other.
    void Compare(const std::string &name, double goal, const Side &ours, const Side &other);
    // The goal is how much longer ours may take than the other, in nanoseconds.
    void Limit(const std::string &name, double goal, const Side &ours, const Side &other);
    void Measure(const std::string &name, const Side &ours);

  private:
    struct Medians {
        double ours;
        double other;
    };
    Medians Alternate(const std::string &name, const Side &ours, const Side &other);

    const Options &options;
    Totals &totals;
};

// Comparisons that need the same state of the library, run in a process of their own.
struct Comparison {
    const char *name; // what --filter looks at
    void (*run)(Report &report);
};

// Those of the program.
std::vector<Comparison> Comparisons();

std::vector<Comparison> CommandComparisons();
std::vector<Comparison> DataAccessComparisons();
std::vector<Comparison> GrowthComparisons();
std::vector<Comparison> DisplayComparisons();
std::vector<Comparison> FolderComparisons();
std::vector<Comparison> MenuComparisons();
std::vector<Comparison> PluginComparisons();
std::vector<Comparison> ProcessingComparisons();
std::vector<Comparison> SharedDataComparisons();

#endif
