// `avsk run --watch`: what it prints after a change, that it survives crashes, and
// that rounds leave neither memory nor mappings behind.
#include "RunAvsk.h"
#include "World.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <csignal>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <utility>
#include <vector>

#include <poll.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

namespace fs = std::filesystem;
using Clock = std::chrono::steady_clock;

std::string ReadFile(const std::string &path) {
    std::ifstream stream(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(stream), {}};
}

struct WatchTest : testing::Test {
    World world;
    pid_t avsk = -1;
    int output = -1;
    std::string unread; // since the last Await()

    WatchTest() {
        fs::create_directories(world.Path("Resources/plugins/W"));
        Write("s.avs", "plugin W\nframes 1\nexpect log first\nscreenshot " + world.Path("p.png") + "\n");
        Install("FIRST");
    }
    ~WatchTest() override {
        if (avsk > 0)
            kill(avsk, SIGKILL);
    }

    // Writes a file as a build or an editor does.
    void Write(const std::string &name, const std::string &bytes) const {
        std::ofstream(world.Path("new.tmp"), std::ios::binary) << bytes;
        fs::rename(world.Path("new.tmp"), world.Path(name));
    }
    void Install(const std::string &build) const {
        Write("Resources/plugins/W/lin.avp", ReadFile(AVSK_TEST_WATCHED "/" + build + ".avp"));
    }

    void Start(const std::vector<std::string> &arguments) {
        std::array<int, 2> ends{};
        ASSERT_EQ(pipe(ends.data()), 0);
        std::vector<std::string> words{AVSK_TEST_HOST, "run", "--watch", "--root", world.Path("")};
        words.insert(words.end(), arguments.begin(), arguments.end());
        avsk = fork();
        if (avsk == 0) {
            dup2(ends[1], STDOUT_FILENO);
            dup2(ends[1], STDERR_FILENO);
            std::vector<char *> pointers;
            for (std::string &word : words)
                pointers.push_back(word.data());
            pointers.push_back(nullptr);
            execv(AVSK_TEST_HOST, pointers.data());
            _exit(127);
        }
        close(ends[1]);
        output = ends[0];
    }

    // Reads until a text and the end of its line. Returns what came before.
    std::string Await(const std::string &text) {
        const Clock::time_point end = Clock::now() + std::chrono::seconds(30);
        std::size_t at = std::string::npos;
        while ((at = unread.find(text)) == std::string::npos || unread.find('\n', at) == std::string::npos) {
            pollfd wait{output, POLLIN, 0};
            std::array<char, 4096> part{};
            const ssize_t length =
                Clock::now() < end && poll(&wait, 1, 1000) >= 0 && wait.revents ? read(output, part.data(), 4096) : -1;
            if (length == 0 || Clock::now() > end) {
                ADD_FAILURE() << "no '" << text << "' in\n" << unread;
                return std::exchange(unread, "");
            }
            if (length > 0)
                unread.append(part.data(), static_cast<std::size_t>(length));
        }
        const std::size_t next = unread.find('\n', at) + 1;
        std::string before = unread.substr(0, next);
        unread.erase(0, next);
        return before;
    }

    std::string Child() const {
        const std::string process = std::to_string(avsk);
        return std::to_string(std::stoi(ReadFile("/proc/" + process + "/task/" + process + "/children")));
    }
    long Resident() const { // pages
        std::ifstream stream("/proc/" + Child() + "/statm");
        long pages = 0;
        stream >> pages >> pages;
        return pages;
    }
    std::ptrdiff_t Mappings() const {
        const std::string maps = ReadFile("/proc/" + Child() + "/maps");
        return std::count(maps.begin(), maps.end(), '\n');
    }
    int Stop() {
        int status = 0;
        kill(std::exchange(avsk, -1), SIGTERM);
        while (wait(&status) > 0) {
        }
        return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    }
};

#ifdef __SANITIZE_ADDRESS__
constexpr bool kIsSanitized = true;
constexpr int kRounds = 16;
#else
constexpr bool kIsSanitized = false;
constexpr int kRounds = 30;
#endif
constexpr const char *kEnd = " s\n"; // of the last line of a round

TEST_F(WatchTest, RoundsTellWhatChangedAndLeaveNothing) {
    Start({world.Path("s.avs"), "--quiet"});
    EXPECT_NE(Await("0 failed;").find("watch: first run\n"), std::string::npos);
    std::string child;
    long resident = 0;
    std::ptrdiff_t mappings = 0;
    for (int round = 1; round <= kRounds; ++round) {
        const bool isFirst = round % 2 == 0;
        const Clock::time_point built = Clock::now();
        Install(round == 10 ? "CRASHES" : isFirst ? "FIRST" : "SECOND");
        Await("watch: W/lin.avp changed");
        EXPECT_LT(Clock::now() - built, std::chrono::seconds(kIsSanitized ? 20 : 1));
        if (round == 10) {
            EXPECT_NE(Await("status 3").find("plugin 'Watched' died of SIGSEGV"), std::string::npos);
            continue;
        }
        const std::string said = Await("steps and expectations");
        if (round != 11) { // its last complete run had the same build
            EXPECT_NE(said.find(isFirst ? "came right: expect log first" : "s.avs:3: frame 1: expect log first: seen:"),
                      std::string::npos)
                << said;
        }
        EXPECT_EQ(said.find("picture differs: ") == std::string::npos, round == 11) << said;
        if (round == 15) {
            child = Child();
            resident = Resident();
            mappings = Mappings();
        }
    }
    EXPECT_EQ(Child(), child);
    if (!kIsSanitized) { // which delays what is freed
        EXPECT_EQ(Mappings(), mappings);
        EXPECT_LT(Resident(), resident + 64);
    }
    Install("UNIQUE");
    const std::string said = Await("steps and expectations");
    EXPECT_NE(said.find("its unique symbol 'kept'"), std::string::npos) << said;
    Install("SECOND"); // in a new process: the old file would still define the symbol
    Await("1 failed;");
    EXPECT_NE(Child(), child);
    EXPECT_EQ(Stop(), 1) << "the status of the last run";
}

TEST_F(WatchTest, IncompleteFilesAreWaitedFor) {
    const std::string whole = ReadFile(AVSK_TEST_WATCHED "/SECOND.avp");
    Start({world.Path("Resources/plugins/W/lin.avp"), "--frames", "2"});
    EXPECT_NE(Await(kEnd).find("Watched: first\n"), std::string::npos);
    Write("Resources/plugins/W/lin.avp", whole.substr(0, 5000));
    EXPECT_NE(Await("waiting for a change").find("lin.avp' is not complete"), std::string::npos);
    fs::remove(world.Path("Resources/plugins/W/lin.avp"));
    Write("Resources/plugins/W/lin.avp", whole);
    const std::string said = Await(kEnd);
    EXPECT_NE(said.find("  - Watched: first\n  + Watched: second\n"), std::string::npos) << said;
    EXPECT_EQ(Stop(), 0);
}

TEST_F(WatchTest, WrongSessionsAreWaitedFor) {
    Write("s.avs", "plugin Nobody\nframs 1\n");
    Start({world.Path("s.avs"), "--quiet"});
    const std::string said = Await("waiting for a change");
    EXPECT_NE(said.find("s.avs:1:8: no plugin 'Nobody'"), std::string::npos) << said;
    EXPECT_NE(said.find("s.avs:2:1: "), std::string::npos) << said;
    Write("s.avs", "plugin W\nframes 1\n");
    Await("0 failed;");
    EXPECT_EQ(Stop(), 0);
    for (const char *refused : {"--interactive", "s.avs --keep-root k"}) {
        const AvskRun run = RunAvsk(std::string("run --watch ") + refused);
        EXPECT_EQ(run.status, 2);
        EXPECT_EQ(run.said.find("avsk: --watch: "), 0U) << run.said;
    }
}

} // namespace
