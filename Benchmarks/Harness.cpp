// Sampling, alternating and printing. Called by every comparison.
#include "Harness.h"

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstring>
#include <ctime>
#include <memory>
#include <optional>

#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

// Returns the processor time of this thread, which excludes other load on the machine.
double Now() {
    timespec time = {};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
    return static_cast<double>(time.tv_sec) * 1e9 + static_cast<double>(time.tv_nsec);
}

// ---- A side in another process, controlled through two pipes

[[noreturn]] void FailPipe(const char *what) {
    throw std::runtime_error(std::string("cannot ") + what + " the process of one side (" + std::strerror(errno) + ")");
}

template <class T>
bool ReadWhole(int file, T &value) {
    return read(file, &value, sizeof value) == static_cast<ssize_t>(sizeof value);
}

template <class T>
bool WriteWhole(int file, const T &value) {
    return write(file, &value, sizeof value) == static_cast<ssize_t>(sizeof value);
}

struct Worker {
    int ask = -1;
    int answer = -1;
    pid_t process = -1;

    Worker() = default;
    Worker(const Worker &) = delete;
    Worker &operator=(const Worker &) = delete;
    ~Worker() {
        close(ask); // the worker reads end of file and exits
        close(answer);
        if (process > 0)
            waitpid(process, nullptr, 0);
    }
};

[[noreturn]] void Work(int questions, int answers, const std::function<Side()> &make) {
    prctl(PR_SET_PDEATHSIG, SIGKILL);
    try {
        const Side side = make();
        unsigned batches = 0;
        while (ReadWhole(questions, batches))
            if (!WriteWhole(answers, side.take(batches)))
                break;
    } catch (const std::exception &error) {
        std::fprintf(stderr, "avsk_bench: %s\n", error.what());
    }
    _exit(0);
}

// ---- Sampling

class Sampler {
  public:
    Sampler(const std::string &row, const char *label, const Side &measured)
        : name(row), which(label), side(measured) {}

    // Finds how many batches fill a sample. This also warms up.
    void Calibrate(double sampleTime) {
        while (Take() < sampleTime && batches < (1U << 20))
            batches *= 2;
    }

    void Keep() { times.push_back(Take() / batches / side.callsPerBatch); }

    double Median() {
        const auto middle = times.begin() + static_cast<std::ptrdiff_t>(times.size() / 2);
        std::nth_element(times.begin(), middle, times.end());
        return *middle;
    }

  private:
    double Take() {
        const Side::Sample sample = side.take(batches);
        const std::uint64_t expected = std::uint64_t{batches} * side.callsPerBatch;
        if (sample.calls != expected)
            throw WrongCount(name + ", " + which + " side: " + std::to_string(sample.calls) + " calls happened, not " +
                             std::to_string(expected) + ": its time means nothing");
        return sample.nanoseconds;
    }

    const std::string &name;
    const char *which;
    const Side &side;
    unsigned batches = 1;
    std::vector<double> times;
};

// Formats nanoseconds, large values as milliseconds with the unit.
std::string TimeText(double nanoseconds) {
    char text[24];
    if (nanoseconds < 1e5)
        std::snprintf(text, sizeof text, "%.1f", nanoseconds);
    else
        std::snprintf(text, sizeof text, "%.2f ms", nanoseconds / 1e6);
    return text;
}

std::string GoalText(double goal, const char *format) {
    char text[24] = "-";
    if (goal != Report::kNoGoal)
        std::snprintf(text, sizeof text, format, goal);
    return text;
}

const char *VerdictFor(double goal, bool isOver) { return goal == Report::kNoGoal ? "" : isOver ? "over" : "ok"; }

void PrintRow(const std::string &name, double ours, std::optional<double> other, const std::string &goal,
              const char *verdict) {
    const std::string otherText = other ? TimeText(*other) : "-";
    char ratioText[24] = "-";
    if (other)
        std::snprintf(ratioText, sizeof ratioText, "%.2f", ours / *other);
    std::printf("%-58s %10s %10s %7s %7s  %s\n", name.c_str(), TimeText(ours).c_str(), otherText.c_str(), ratioText,
                goal.c_str(), verdict);
    std::fflush(stdout);
}

} // namespace

Side Side::Here(unsigned callsPerBatch, std::function<void()> run, std::function<std::uint64_t()> counted,
                std::function<void()> cleanUp) {
    return {callsPerBatch, [=](unsigned batches) {
                const std::uint64_t before = counted();
                double time = 0;
                if (cleanUp) {
                    for (unsigned i = 0; i < batches; ++i) {
                        const double start = Now();
                        run();
                        time += Now() - start;
                        cleanUp();
                    }
                } else {
                    const double start = Now();
                    for (unsigned i = 0; i < batches; ++i)
                        run();
                    time = Now() - start;
                }
                return Sample{time, counted() - before};
            }};
}

Side Side::Elsewhere(unsigned callsPerBatch, const std::function<Side()> &make) {
    int questions[2];
    int answers[2];
    if (pipe(questions) != 0 || pipe(answers) != 0)
        FailPipe("open a pipe to");
    const auto worker = std::make_shared<Worker>();
    worker->process = fork();
    if (worker->process < 0)
        FailPipe("start");
    if (worker->process == 0) {
        close(questions[1]);
        close(answers[0]);
        Work(questions[0], answers[1], make);
    }
    close(questions[0]);
    close(answers[1]);
    worker->ask = questions[1];
    worker->answer = answers[0];
    return {callsPerBatch, [worker](unsigned batches) {
                Sample sample = {};
                if (!WriteWhole(worker->ask, batches) || !ReadWhole(worker->answer, sample))
                    FailPipe("talk to");
                return sample;
            }};
}

void Report::PrintHead() {
    std::printf("%-58s %10s %10s %7s %7s\n", "ours / other", "ours ns", "other ns", "ratio", "goal");
    std::fflush(stdout);
}

Report::Medians Report::Alternate(const std::string &name, const Side &ours, const Side &other) {
    const double sampleTime = options.quick ? 2e5 : 2e6;
    const int rounds = options.quick ? 5 : 21;
    Sampler left(name, "our", ours);
    Sampler right(name, "other", other);
    left.Calibrate(sampleTime);
    right.Calibrate(sampleTime);
    for (int round = 0; round < rounds; ++round) {
        // Alternate which side is measured first.
        Sampler &first = round % 2 == 0 ? left : right;
        Sampler &second = round % 2 == 0 ? right : left;
        first.Keep();
        second.Keep();
    }
    return {left.Median(), right.Median()};
}

void Report::Compare(const std::string &name, double goal, const Side &ours, const Side &other) {
    const auto [mine, theirs] = Alternate(name, ours, other);
    const bool over = goal != kNoGoal && mine / theirs > goal;
    ++totals.rows;
    totals.over += over;
    PrintRow(name, mine, theirs, GoalText(goal, "%.2f"), VerdictFor(goal, over));
}

void Report::Limit(const std::string &name, double goal, const Side &ours, const Side &other) {
    const auto [mine, theirs] = Alternate(name, ours, other);
    const bool over = goal != kNoGoal && mine - theirs > goal;
    ++totals.rows;
    totals.over += over;
    PrintRow(name, mine, theirs, GoalText(goal, "%.0f ns"), VerdictFor(goal, over));
}

void Report::Measure(const std::string &name, const Side &ours) {
    Sampler sampler(name, "our", ours);
    sampler.Calibrate(options.quick ? 2e5 : 2e6);
    for (int round = 0; round < (options.quick ? 5 : 21); ++round)
        sampler.Keep();
    ++totals.rows;
    PrintRow(name, sampler.Median(), std::nullopt, "-", "");
}
