// The object that `avsk exec` preloads into a program. Nothing happens until the
// program calls the library. Then the observers are made, and at the end of the
// process they report. Owns the observers, which are never destroyed: plugins and
// handlers of signals may need them until the process is gone.
#include "ForeignHost.h"
#include "ObserveVariable.h"
#include "Signals.h"

#include "Common/UsageError.h"
#include "Crossings/Crossing.h"
#include "Crossings/RealSymbols.h"
#include "Crossings/Words.h"
#include "Observing/Blame.h"
#include "Observing/EndAtOnce.h"
#include "Observing/Fault.h"
#include "Observing/Observers.h"
#include "Rules/Checker.h"

#include <atomic>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include <csignal>
#include <ctime>
#include <pthread.h>
#include <sys/wait.h>
#include <unistd.h>

namespace host {
namespace {

using crossings::Crossing;

std::atomic<bool> gIsReportWanted = false;

void OnReportWanted(int signal, siginfo_t *info, void *context) {
    gIsReportWanted = true;
    if (IsHandledByProgram(signal))
        PassOn(signal, info, context);
}

// The observers of a program, and when they report.
class Observation : public crossings::Observer {
  public:
    explicit Observation(ObservingOptions options)
        : mOptions(std::move(options)), mHost(new ForeignHost),
          mObservers(std::unique_ptr<const ObservedHost>(mHost), mOptions, Observers::Extent::AsAsked) {
        if (mOptions.check)
            mChecker.emplace(mHost->Frame(), mObservers.Owners(), mOptions.allowed);
        crossings::AddObserver(*this);
    }

    crossings::Interest InterestIn(const crossings::Prototype &function) const override {
        return crossings::IsOneOf(function.name, {"AVSKEventHook", "AVSKInitializePlugins", "AVSKShutdownPlugins"})
                   ? crossings::Interest::Work
                   : crossings::Interest::None;
    }

    void Begins(const Crossing &crossing) override {
        if (crossing.depth != 0)
            return;
        if (std::string_view(crossing.what.name) == "AVSKInitializePlugins")
            BeginRun();
        else if (std::string_view(crossing.what.name) == "AVSKShutdownPlugins")
            EndRun();
    }

    void Ends(const Crossing &crossing) override {
        if (crossing.depth == 0 && gIsReportWanted.exchange(false))
            Report(/*isLast=*/false);
    }

    void BeginRun() {
        mIsRunning = true;
        if (pthread_equal(pthread_self(), mThread) != 0)
            return;
        const OwnSignals own;
        mThread = pthread_self();
        mObservers.MoveToThisThread();
    }

    // Keeps what only a running library tells.
    void EndRun() {
        if (!mIsRunning)
            return;
        mIsRunning = false;
        mObservers.EndFrames();
        if (mOptions.owners)
            mOwned = mObservers.Owners().Owned();
    }

    // Tells whether the program should fail.
    bool Report(bool isLast) {
        const crossings::Unobserved calls;
        std::FILE *file =
            mOptions.report.empty() ? stderr : std::fopen(mOptions.report.c_str(), mHasReported ? "a" : "w");
        if (!file) {
            std::fprintf(stderr, "avsk: the report cannot be written to '%s': %s\n", mOptions.report.c_str(),
                         std::strerror(errno));
            file = stderr;
        }
        mHasReported = true;
        PrintListsTo(file);
        if (mOptions.owners)
            PrintList("\nOwned by plugins:", mIsRunning ? mObservers.Owners().Owned() : mOwned);
        mObservers.ReportUnloaded();
        bool failed = false;
        if (mChecker && isLast)
            failed = mChecker->PrintReport() != 0;
        else if (mChecker)
            PrintList("\nFindings:", mChecker->Found().Report(), "none");
        for (const std::string &failure : isLast ? mObservers.Failures() : std::vector<std::string>()) {
            std::fprintf(file, "%s\n", failure.c_str());
            failed = true;
        }
        PrintListsTo(stderr);
        if (file != stderr)
            std::fclose(file);
        return failed;
    }

  private:
    const ObservingOptions mOptions;
    ForeignHost *const mHost; // owned by the observers
    Observers mObservers;
    std::optional<Checker> mChecker;
    std::vector<std::string> mOwned;
    pthread_t mThread = pthread_self(); // that calls the library
    bool mIsRunning = false;
    bool mHasReported = false;
};

Observation *gObservation = nullptr;
const char *gOptions = nullptr; // the value of the variable; null without it
pid_t gProcess = 0;             // children that are forked do not report

// The library may be shut down by functions that were registered earlier, so they run after this one.
void BeforeExit() {
    if (gObservation && getpid() == gProcess) {
        const crossings::Unobserved calls;
        gObservation->EndRun();
    }
}

void Attach() {
    const crossings::Unobserved calls;
    static constexpr ForeignSignals kSignals{IsHandledByProgram, PassOn};
    SetForeignSignals(&kSignals);
    PrintListsTo(stderr);
    try {
        const OwnSignals own;
        gObservation = new Observation(ReadObserveVariable(gOptions ? gOptions : ""));
        struct sigaction action {};
        action.sa_sigaction = OnReportWanted;
        action.sa_flags = SA_SIGINFO | SA_RESTART;
        sigaction(SIGUSR1, &action, nullptr);
    } catch (const UsageError &error) {
        std::fprintf(stderr, "avsk: %s\navsk: the program runs unobserved\n", error.what());
        return;
    }
    std::atexit(BeforeExit);
}

bool gHasEnded = false; // the last report was written

// Tells whether the program should fail.
bool WriteLastReport() {
    gHasEnded = true;
    if (gObservation)
        return gObservation->Report(/*isLast=*/true);
    if (gOptions)
        std::fprintf(stderr, "avsk: %s %s, so nothing was observed\n", program_invocation_name,
                     crossings::IsLibraryLoaded() ? "loaded libAVSK.so and did not call it"
                                                  : "did not load libAVSK.so");
    return gOptions != nullptr;
}

// The last function at the end of the process.
void AtExit(int status, void * /*unused*/) {
    if (getpid() != gProcess || gHasEnded || !WriteLastReport() || status != 0)
        return;
    std::fflush(nullptr);
    EndProcess(1);
}

// The program ends without running the functions of its end, possibly in a handler
// of a signal. A child reports: it may stop or crash if this process was interrupted.
int ReportInChild(int status) {
    constexpr int kPatience = 500; // hundredths of a second
    constexpr timespec kPause{.tv_sec = 0, .tv_nsec = 10'000'000};
    const bool isEnd = getpid() == gProcess && !IsReporting() && !gHasEnded;
    const pid_t child = isEnd ? _Fork() : -1;
    if (child == 0) {
        const OwnSignals own;
        for (const int signal : kFatalSignals)
            std::signal(signal, SIG_DFL);
        gProcess = getpid();
        BeforeExit();
        EndProcess(WriteLastReport() ? 1 : 0);
    }
    int result = 0;
    for (int waited = 0; child > 0 && waitpid(child, &result, WNOHANG) == 0; ++waited) {
        nanosleep(&kPause, nullptr);
        if (waited == kPatience)
            kill(child, SIGKILL);
    }
    return status == 0 && WIFEXITED(result) ? WEXITSTATUS(result) : status;
}

// Programs that this one starts are not observed, and may be programs that cannot load this object.
void RemoveFromEnvironment() {
    unsetenv(kObserveVariable);
    const char *const list = std::getenv("LD_PRELOAD");
    std::string others;
    for (std::string_view rest = list ? list : ""; !rest.empty();) {
        const std::string_view path = crossings::TakeWord(rest, ": ");
        if (!path.empty() && !path.ends_with("/" AVSK_PRELOAD_NAME))
            others.append(others.empty() ? "" : ":").append(path);
    }
    if (others.empty())
        unsetenv("LD_PRELOAD");
    else
        setenv("LD_PRELOAD", others.c_str(), 1);
}

// Runs before or after the constructors of this object, so it uses no object that they make.
__attribute__((constructor)) void Begin() {
    gProcess = getpid();
    if (const char *const options = std::getenv(kObserveVariable))
        gOptions = strdup(options);
    RemoveFromEnvironment();
    crossings::OnFirstCall(Attach);
    on_exit(AtExit, nullptr);
    OnEndAtOnce(ReportInChild);
}

} // namespace
} // namespace host
