// Runs the fuzz target without libFuzzer. Inputs are replayed; with seconds
// they are the seeds of random ones, until one fails or the time is over. The
// one that fails is written to a file.
#include <algorithm>
#include <chrono>
#include <csignal>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <random>
#include <string>
#include <vector>

#include <fcntl.h>
#include <unistd.h>

extern "C" int LLVMFuzzerInitialize(int *argc, char ***argv);
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size);

namespace {

namespace fs = std::filesystem;
using Bytes = std::vector<std::uint8_t>;

Bytes current;
std::string finding; // the file for an input that fails

// Saves the input under way, and lets the signal end the process.
void OnSignal(int number) {
    const int file = open(finding.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0644);
    if (write(file, current.data(), current.size()) == static_cast<ssize_t>(current.size()))
        std::fprintf(stderr, "fuzz: signal %d; the input is %s\n", number, finding.c_str());
    std::signal(number, SIG_DFL);
    std::raise(number);
}

void CatchSignals() {
    static char room[1 << 16]; // recursion without end leaves no stack
    stack_t stack = {};
    stack.ss_sp = room;
    stack.ss_size = sizeof room;
    sigaltstack(&stack, nullptr);
    struct sigaction action = {};
    action.sa_handler = OnSignal;
    action.sa_flags = SA_ONSTACK | SA_NODEFER;
    for (const int number : {SIGABRT, SIGSEGV, SIGBUS, SIGFPE, SIGILL, SIGALRM})
        sigaction(number, &action, nullptr);
}

Bytes Read(const fs::path &path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

// A seed with changes, behind it random bytes.
void Mutate(const std::vector<Bytes> &seeds, std::mt19937_64 &random) {
    const auto below = [&](std::size_t limit) { return static_cast<std::size_t>(random() % limit); };
    current.clear();
    for (std::size_t parts = below(4); parts > 0; --parts) {
        const Bytes &seed = seeds[below(seeds.size())];
        const std::size_t from = current.empty() ? 0 : below(seed.size() + 1);
        current.insert(current.end(), seed.begin() + static_cast<std::ptrdiff_t>(from), seed.end());
    }
    for (std::size_t changes = current.empty() ? 0 : below(16); changes > 0; --changes) {
        const std::size_t at = below(current.size());
        const std::size_t end = std::min(current.size(), at + 1 + below(8) * below(8));
        for (std::size_t i = at; i < end; ++i)
            current[i] = static_cast<std::uint8_t>(random());
    }
    const std::size_t whole = current.size() + 64 + below(6000);
    while (current.size() < whole) {
        const std::uint64_t bytes = random();
        const auto *at = reinterpret_cast<const std::uint8_t *>(&bytes);
        current.insert(current.end(), at, at + sizeof bytes);
    }
}

} // namespace

int main(int argc, char **argv) {
    int seconds = 0;
    std::uint64_t start = 1;
    std::string findings = ".";
    std::vector<fs::path> paths;
    bool usable = true;
    for (int option; (option = getopt(argc, argv, "t:s:o:")) != -1;)
        switch (option) {
        case 't':
            seconds = std::atoi(optarg);
            break;
        case 's':
            start = std::strtoull(optarg, nullptr, 10);
            break;
        case 'o':
            findings = optarg;
            break;
        default:
            usable = false;
        }
    for (int i = optind; i < argc; ++i) {
        if (fs::is_directory(argv[i]))
            std::copy_if(fs::recursive_directory_iterator(argv[i]), {}, std::back_inserter(paths),
                         [](const fs::path &path) { return fs::is_regular_file(path); });
        else
            paths.emplace_back(argv[i]);
    }
    if (!usable || paths.empty()) {
        std::fprintf(stderr, "usage: %s [-t SECONDS [-s SEED] [-o FOLDER]] FILE-OR-FOLDER...\n", argv[0]);
        return 2;
    }
    std::sort(paths.begin(), paths.end());
    LLVMFuzzerInitialize(&argc, &argv);
    std::vector<Bytes> inputs;
    for (const fs::path &path : paths) {
        if (seconds == 0) {
            std::printf("%s\n", path.c_str()); // the last line names an input that fails
            std::fflush(stdout);
        }
        inputs.push_back(Read(path));
        if (seconds == 0)
            LLVMFuzzerTestOneInput(inputs.back().data(), inputs.back().size());
    }
    std::printf("%zu inputs\n", inputs.size());

    CatchSignals();
    std::mt19937_64 random(start);
    const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(seconds);
    for (unsigned run = 0; std::chrono::steady_clock::now() < end; ++run) {
        if (run % 256 == 0) {
            finding = findings + "/fast-" + std::to_string(start) + "-" + std::to_string(run);
            alarm(20); // for one that does not end
        }
        Mutate(inputs, random);
        LLVMFuzzerTestOneInput(current.data(), current.size());
    }
    return 0;
}
