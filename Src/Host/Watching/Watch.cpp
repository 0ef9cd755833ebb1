// The watch; see Watch.h. This process watches files and prints; it loads no
// plugin. A child process runs the rounds; see RoundProcess.h. Called by
// `avsk run --watch`.
#include "Watch.h"

#include "Differences.h"
#include "FileWatch.h"
#include "Plan.h"
#include "RoundFolders.h"
#include "RoundProcess.h"

#include "Common/Files.h"
#include "Common/Terminal.h"
#include "Common/UsageError.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <cstdio>
#include <cstring>
#include <ctime>
#include <optional>
#include <sstream>
#include <string_view>
#include <utility>

#include <poll.h>
#include <sys/signalfd.h>
#include <unistd.h>

namespace host {
namespace {

using Clock = std::chrono::steady_clock;

// SIGINT and the like become readable. Restores the mask at its end.
class Signals {
  public:
    Signals() {
        sigset_t ours;
        sigemptyset(&ours);
        for (const int signal : {SIGINT, SIGTERM, SIGHUP, SIGPIPE})
            sigaddset(&ours, signal);
        sigprocmask(SIG_BLOCK, &ours, &mBefore);
        mDescriptor = signalfd(-1, &ours, SFD_CLOEXEC | SFD_NONBLOCK);
    }
    ~Signals() {
        signalfd_siginfo taken = {};
        while (read(mDescriptor, &taken, sizeof taken) > 0) {
        }
        close(mDescriptor);
        sigprocmask(SIG_SETMASK, &mBefore, nullptr);
    }
    Signals(const Signals &) = delete;
    Signals &operator=(const Signals &) = delete;

    int Descriptor() const { return mDescriptor; }
    const sigset_t &Before() const { return mBefore; }

  private:
    sigset_t mBefore{};
    int mDescriptor = -1;
};

class Watcher {
  public:
    explicit Watcher(const WatchRequest &request) : mRequest(request), mProcess(request, mSignals.Before()) {}

    int Run();

  private:
    bool Poll(int milliseconds, bool hasProcess = true);
    void AwaitQuiet();
    void NoteChanges();
    std::vector<std::string> AwaitChange();
    void Prepare();
    void ReportFaults();
    void PrintHead(const std::vector<std::string> &changed) const;
    void RunRound();
    void PassOn();
    void Report(const RoundResult &result, double seconds);
    RoundOutcome OutcomeOf(const RoundResult &result) const;

    const WatchRequest &mRequest;
    Signals mSignals;
    FileWatch mFiles;
    RoundFolders mFolders;
    RoundProcess mProcess;
    std::optional<RoundOutcome> mLast; // of the last complete round
    Plan mPlan;
    std::vector<std::string> mToldFaults;
    std::vector<std::string> mPending; // files that changed during a round
    std::size_t mPassedOn = 0;         // bytes of the output
    int mStatus = 0;
    bool mIsInterrupted = false;
};

void Say(const std::string &line, bool isFailure = false) {
    const std::string text = "watch: " + line;
    std::printf("%s\n", isFailure ? Emphasised(Emphasis::Failure, text, STDOUT_FILENO).c_str() : text.c_str());
    std::fflush(stdout);
}

std::string TimeOfDay() {
    const std::time_t now = std::time(nullptr);
    std::tm local{};
    std::array<char, 16> text{};
    std::strftime(text.data(), text.size(), "%H:%M:%S", localtime_r(&now, &local));
    return text.data();
}

// Why there is no result. Blame reports most signals, but not those after the plugins are unloaded.
std::string EarlyEnd(int status) {
    constexpr int kSignalled = 128;
    if (status == 2)
        return "the run could not begin";
    if (status <= kSignalled)
        return "the run ended early with status " + std::to_string(status);
    return std::string("the process died of a signal (") + strsignal(status - kSignalled) +
           "), after the plugins were unloaded: does a plugin's thread still run? End and join it in AVPluginStop";
}

// Without the escape sequences of colours.
std::string Plain(std::string_view text) {
    std::string plain;
    for (std::size_t at = 0; at < text.size(); ++at) {
        if (text[at] == '\033')
            at = std::min(text.find('m', at), text.size());
        else
            plain += text[at];
    }
    return plain;
}

std::vector<std::string> SplitLines(const std::string &text) {
    std::vector<std::string> lines;
    std::istringstream stream(text);
    for (std::string line; std::getline(stream, line);)
        lines.push_back(Plain(line));
    return lines;
}

// ---- Waiting

// Waits for an event of any kind. True if files may have changed.
bool Watcher::Poll(int milliseconds, bool hasProcess) {
    std::vector<pollfd> waits{{mSignals.Descriptor(), POLLIN, 0}, {mFiles.Descriptor(), POLLIN, 0}};
    if (hasProcess) {
        for (const int descriptor : mProcess.Descriptors())
            waits.push_back({descriptor, POLLIN, 0});
    }
    poll(waits.data(), waits.size(), milliseconds);
    mIsInterrupted = mIsInterrupted || waits[0].revents != 0;
    return waits[1].revents != 0 && mFiles.Read();
}

// A build writes several files, and an editor one file several times.
void Watcher::AwaitQuiet() {
    constexpr int kQuiet = 50; // milliseconds
    constexpr std::chrono::seconds kPatience(10);
    const Clock::time_point end = Clock::now() + kPatience;
    while (!mIsInterrupted && (Poll(kQuiet, /*hasProcess=*/false) || (mFiles.IsBeingWritten() && Clock::now() < end))) {
    }
}

// Data that changes during a round was probably written by the plugins: it does not start another one.
void Watcher::NoteChanges() {
    for (const std::string &path : mFiles.Take()) {
        if (IsCode(path) || path == mRequest.options.file)
            mPending.push_back(path);
    }
}

std::vector<std::string> Watcher::AwaitChange() {
    bool isChange = !mPending.empty();
    while (!mIsInterrupted) {
        if (isChange) {
            AwaitQuiet();
            std::vector<std::string> changed = mFiles.Take();
            changed.insert(changed.end(), mPending.begin(), mPending.end());
            mPending.clear();
            if (!changed.empty() || !mPlan.faults.empty())
                return changed;
        }
        isChange = Poll(-1);
        if (mProcess.IsRunning() && mProcess.Continue() && !mProcess.IsRunning())
            Say(EarlyEnd(mProcess.Result().status), /*isFailure=*/true);
    }
    return {};
}

// ---- A round

void Watcher::Prepare() {
    mPlan = MakePlan(mRequest);
    mFiles.Watch(mPlan.paths);
    mFiles.Take();
}

void Watcher::ReportFaults() {
    if (std::exchange(mToldFaults, mPlan.faults) == mPlan.faults)
        return;
    std::fflush(stdout);
    for (const std::string &fault : mPlan.faults)
        std::fprintf(stderr, "avsk: %s\n", fault.c_str());
    if (!mPlan.faults.empty())
        Say("waiting for a change", /*isFailure=*/true);
}

void Watcher::PrintHead(const std::vector<std::string> &changed) const {
    const std::string what = changed.empty() ? "first run" : NamesOf(changed) + " changed";
    if (!HasColours(STDOUT_FILENO))
        return Say(what);
    std::printf("%s\n", Emphasised(Emphasis::Heading, "-- " + TimeOfDay() + "  " + what, STDOUT_FILENO).c_str());
    std::fflush(stdout);
}

void Watcher::RunRound() {
    constexpr std::chrono::seconds kPatience(5);
    const Clock::time_point began = Clock::now();
    std::optional<Clock::time_point> end; // set by a change during the round
    mPassedOn = 0;
    mProcess.Begin(mFolders.Next());
    for (bool isDone = false; !isDone;) {
        if (Poll(end ? 100 : -1))
            NoteChanges();
        if (mIsInterrupted)
            return;
        isDone = mProcess.Continue();
        PassOn();
        if (!end && !mPending.empty())
            end = Clock::now() + kPatience;
        if (!isDone && end && Clock::now() > *end) {
            mProcess.Stop();
            return Say("the run had not ended " + std::to_string(kPatience.count()) +
                           " s after a file changed: it was stopped",
                       /*isFailure=*/true);
        }
    }
    NoteChanges();
    Report(mProcess.Result(), std::chrono::duration<double>(Clock::now() - began).count());
}

// The first complete run is shown as it is.
void Watcher::PassOn() {
    const std::string &output = mProcess.Result().output;
    if (!mLast && output.size() > mPassedOn) {
        std::fwrite(output.data() + mPassedOn, 1, output.size() - mPassedOn, stdout);
        std::fflush(stdout);
    }
    mPassedOn = output.size();
}

RoundOutcome Watcher::OutcomeOf(const RoundResult &result) const {
    RoundOutcome outcome{result.checks, {}, SplitLines(result.output)};
    if (!mRequest.options.file.empty() && !outcome.output.empty())
        outcome.output.pop_back(); // the summary of the session
    std::vector<std::string> failures;
    for (const Check &check : result.checks) {
        for (std::string &line : SplitLines(check.failure))
            failures.push_back(std::move(line));
    }
    std::erase_if(outcome.output, [&failures](const std::string &line) {
        return std::find(failures.begin(), failures.end(), line) != failures.end();
    });
    for (const std::string &picture : mPlan.pictures) {
        if (std::string bytes = ReadFile(picture).value_or(""); !bytes.empty())
            outcome.pictures[picture] = std::move(bytes);
    }
    return outcome;
}

void Watcher::Report(const RoundResult &result, double seconds) {
    mStatus = result.status;
    if (!result.isComplete)
        return Say(EarlyEnd(result.status) + "; the next change starts it again in a new process", /*isFailure=*/true);
    RoundOutcome now = OutcomeOf(result);
    const std::vector<Difference> differences = mLast ? Compare(*mLast, now) : std::vector<Difference>();
    for (const Difference &difference : differences)
        std::printf("%s\n", difference.isFailure ? Emphasised(Emphasis::Failure, difference.line, STDOUT_FILENO).c_str()
                                                 : difference.line.c_str());
    for (const std::string &line : result.staying)
        Say(line + ". The next run is in a new process", /*isFailure=*/true);
    if (!result.staying.empty())
        mProcess.Stop();
    const auto failed = std::count_if(result.checks.begin(), result.checks.end(),
                                      [](const Check &check) { return !check.failure.empty(); });
    std::string summary = mLast && differences.empty() ? "no difference; " : "";
    if (!result.checks.empty())
        summary +=
            std::to_string(result.checks.size()) + " steps and expectations, " + std::to_string(failed) + " failed; ";
    std::array<char, 32> time{};
    std::snprintf(time.data(), time.size(), "%.2f s", seconds);
    Say(summary + time.data());
    mLast = std::move(now);
}

int Watcher::Run() {
    for (std::vector<std::string> changed; !mIsInterrupted; changed = AwaitChange()) {
        Prepare();
        if (mPlan.faults.empty()) {
            PrintHead(changed);
            RunRound();
        } else {
            mStatus = 2;
        }
        ReportFaults();
    }
    return mStatus;
}

} // namespace

int Watch(const WatchRequest &request) { return Watcher(request).Run(); }

} // namespace host
