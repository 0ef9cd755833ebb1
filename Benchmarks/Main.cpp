// Both programs: options, and one process for each comparison, since the library's
// state is global to a process.
#include "Harness.h"

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <exception>

#include <sched.h>
#include <sys/mman.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

constexpr int kUsageError = 2;

void PrintHelp(const std::vector<Comparison> &comparisons) {
    std::puts("usage: PROGRAM [--filter TEXT] [--quick] [--strict]\n"
              "\n"
              "Measures calls through the library against the same work without it, in turns,\n"
              "and prints medians of processor time per call, in nanoseconds where no unit stands,\n"
              "and their ratio.\n"
              "\n"
              "  --filter TEXT  only comparisons whose name contains TEXT\n"
              "  --quick        short samples: to see that all of it works, not to quote\n"
              "  --strict       exit with status 3 if a ratio or a time is over its goal\n"
              "  --help         print this\n"
              "\n"
              "Exit status: 0, 1 if a benchmark failed, 2 for a wrong command line.\n"
              "\n"
              "Comparisons:");
    for (const Comparison &comparison : comparisons)
        std::printf("  %s\n", comparison.name);
}

[[noreturn]] void UsageError(const std::string &what) {
    std::fprintf(stderr, "%s: %s: --help prints the usage\n", program_invocation_short_name, what.c_str());
    std::exit(kUsageError);
}

Options ParseOptions(int argc, char **argv, const std::vector<Comparison> &comparisons) {
    Options options;
    for (int i = 1; i < argc; ++i) {
        const std::string argument = argv[i];
        if (argument == "--help" || argument == "-h") {
            PrintHelp(comparisons);
            std::exit(0);
        } else if (argument == "--quick") {
            options.quick = true;
        } else if (argument == "--strict") {
            options.strict = true;
        } else if (argument == "--filter") {
            if (++i == argc)
                UsageError("--filter wants a text after it");
            options.filter = argv[i];
        } else {
            UsageError("unknown argument '" + argument + "'");
        }
    }
    return options;
}

// Returns whether the comparison succeeded.
bool RunInChild(const Comparison &comparison, const Options &options, Totals &totals) {
    std::fflush(stdout);
    const pid_t child = fork();
    if (child < 0) {
        std::fprintf(stderr, "cannot start a process for '%s' (%s)\n", comparison.name, std::strerror(errno));
        return false;
    }
    if (child == 0) {
        int status = 0;
        try {
            Report report(options, totals);
            comparison.run(report);
        } catch (const std::exception &error) {
            std::fprintf(stderr, "'%s' failed: %s\n", comparison.name, error.what());
            status = 1;
        }
        std::fflush(stdout);
        _exit(status);
    }
    int status = 0;
    waitpid(child, &status, 0);
    if (WIFSIGNALED(status))
        std::fprintf(stderr, "'%s' crashed (%s): run it alone with --filter\n", comparison.name,
                     strsignal(WTERMSIG(status)));
    return WIFEXITED(status) && WEXITSTATUS(status) == 0;
}

// Processors of one machine may run at different and changing speeds, so both
// sides of a comparison run on the same one.
void StayOnOneProcessor() {
    cpu_set_t here;
    CPU_ZERO(&here);
    CPU_SET(sched_getcpu(), &here);
    if (sched_setaffinity(0, sizeof here, &here) != 0)
        std::fprintf(stderr, "not kept on one processor (%s): ratios will vary more\n", std::strerror(errno));
}

Totals *ShareTotals() {
    void *memory = mmap(nullptr, sizeof(Totals), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0);
    if (memory == MAP_FAILED) {
        std::fprintf(stderr, "cannot share memory with its processes (%s)\n", std::strerror(errno));
        std::exit(1);
    }
    return static_cast<Totals *>(memory);
}

} // namespace

int main(int argc, char **argv) {
    const std::vector<Comparison> comparisons = Comparisons();
    const Options options = ParseOptions(argc, argv, comparisons);

    std::vector<Comparison> chosen;
    for (const Comparison &comparison : comparisons)
        if (std::strstr(comparison.name, options.filter.c_str()))
            chosen.push_back(comparison);
    if (chosen.empty())
        UsageError("no comparison's name contains '" + options.filter + "'");

    Totals &totals = *ShareTotals();
    bool failed = false;
    StayOnOneProcessor();
    Report::PrintHead();
    for (const Comparison &comparison : chosen)
        failed |= !RunInChild(comparison, options, totals);
    std::printf("%d rows, %d over goal\n", totals.rows, totals.over);
    if (failed)
        return 1;
    return options.strict && totals.over > 0 ? 3 : 0;
}
