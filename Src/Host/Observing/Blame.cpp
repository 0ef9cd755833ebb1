// Reports who ended the run; see Blame.h. Reports are written in signal handlers,
// so they use only prepared data, and write the most certain facts first. Owns
// the history of calls.
#include "Blame.h"

#include "Backtrace.h"
#include "Fault.h"
#include "History.h"
#include "Place.h"
#include "Thrown.h"
#include "TraceFile.h"

#include "Common/Terminal.h"
#include "Crossings/TextCopy.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <cerrno>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <string_view>
#include <utility>

#include <csignal>
#include <sys/mman.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

// Of the sanitizers' runtime, if there is one.
// NOLINTNEXTLINE(bugprone-reserved-identifier)
extern "C" __attribute__((weak)) void __sanitizer_set_death_callback(void (*callback)());

namespace host {

using crossings::Crossing;
using crossings::Line;
using crossings::Side;

namespace {

constexpr unsigned kReportPatience = 20; // seconds
constexpr std::size_t kHandlersStack = 256 * 1024;

const int kOverdue = SIGRTMAX - 3; // rarely used by others

History gHistory;
Blame *gBlame = nullptr;
const int *gFrame = nullptr;   // of the simulator; not read through the Blame, which may be overwritten
int gLastFrame = 0;            // when the Blame ended
void (*gAddition)() = nullptr; // to each report
bool (*gAddInnerCall)(Line &line, const void *stack) = nullptr;
const ForeignSignals *gForeign = nullptr;
std::atomic<bool> gReporting = false;

bool IsMainThread() { return crossings::IsObservedThread(); }

// The plugin or host that a call is made for.
void AddBehalf(Line &line, const History::Call &call) {
    if (call.IsForHost())
        return line.Add("the host");
    line.Add("plugin '");
    line.Add(call.Plugin());
    line.Add('\'');
}

void AddCulprit(Line &line, const History::Call *call) {
    if (!call || call->To() == Side::Host)
        return line.Add("the host itself");
    if (call->To() == Side::Library)
        return line.Add("the library");
    AddBehalf(line, *call);
}

void AddTitleAndCaller(Line &line, const History::Call *call) {
    if (!call)
        return;
    call->AddTitle(line);
    if (call->To() == Side::Plugin)
        return;
    line.Add(call->To() == Side::Library ? std::string_view(", called by ") : ", called for ");
    AddBehalf(line, *call);
}

// A call of a plugin that the library does not see, and the call that it made it in.
void AddInnerCall(Line &line, const void *stack) {
    if (gAddInnerCall && gAddInnerCall(line, stack))
        line.Add(", called in ");
}

const void *StackOf(const ucontext_t &context) {
    return reinterpret_cast<const void *>(context.uc_mcontext.gregs[REG_ESP]);
}

// A child flushes the output: corrupted streams can only stop or end the child.
void FlushOutput() {
    const pid_t child = _Fork();
    if (child <= 0)
        std::fflush(nullptr);
    if (child == 0)
        _exit(0);
    if (child > 0)
        waitpid(child, nullptr, 0);
}

[[noreturn]] void GiveUp(int signal) {
    WriteError(signal == SIGALRM ? std::string_view("avsk: this report took too long\n")
                                 : "avsk: this report ended in a fault of its own\n");
    _exit(kBlamedStatus);
}

void WritePlace(int frame) {
    Line line;
    if (frame > 0) {
        line.Add("In frame ");
        line.Add(frame);
    } else {
        line.Add("Before the first frame");
    }
    if (!Place().empty()) {
        line.Add(", at ");
        line.Add(Place());
    }
    line.Add('\n');
    WriteError(line.Text());
}

void WriteHead(std::string_view head) {
    if (HasColours(STDERR_FILENO))
        WriteError("\r\033[K"); // there may be a progress line
    WriteError(EmphasisBegin(Emphasis::Failure, STDERR_FILENO));
    WriteError(head);
    WriteError(EmphasisEnd(STDERR_FILENO));
    WriteError("\n");
}

void WriteCalls(const Line &head) {
    WriteHead(head.Text());
    WritePlace(gFrame ? *gFrame : gLastFrame);
    gHistory.WriteOpen();
    gHistory.WriteLast();
}

// If core files are wanted, a copy of this process leaves one: this process ends with a status.
void WriteCore() {
    rlimit limit = {};
    if (getrlimit(RLIMIT_CORE, &limit) != 0 || limit.rlim_cur == 0)
        return;
    const pid_t child = _Fork();
    if (child == 0) {
        std::signal(SIGABRT, SIG_DFL);
        sigset_t none;
        sigemptyset(&none);
        sigprocmask(SIG_SETMASK, &none, nullptr);
        kill(getpid(), SIGABRT);
        _exit(0);
    }
    if (child > 0)
        waitpid(child, nullptr, 0);
}

void Report(const Line &head, ucontext_t *context) {
    struct sigaction giveUp {};
    struct sigaction before {};
    giveUp.sa_handler = GiveUp;
    sigaction(SIGALRM, &giveUp, &before);
    sigset_t alarms;
    sigemptyset(&alarms);
    sigaddset(&alarms, SIGALRM);
    pthread_sigmask(SIG_UNBLOCK, &alarms, nullptr);
    const unsigned left = alarm(kReportPatience);
    FlushTrace();
    if (!gForeign)
        FlushOutput();
    WriteCalls(head);
    WriteBacktrace(context);
    if (gAddition)
        gAddition();
    alarm(left);
    sigaction(SIGALRM, &before, nullptr);
}

[[noreturn]] void ReportAndEnd(const Line &head, ucontext_t *context) {
    Report(head, context);
    if (context && !gForeign)
        WriteCore();
    _exit(kBlamedStatus);
}

// Whether a fault in a foreign program is one of its own, which it handles.
bool IsProgramsOwn(int signal, const void *instruction) {
    static const void *last = nullptr;
    const char *file = FileAt(instruction);
    const bool isPlugins = file && std::string_view(file).ends_with(".avp");
    const bool isOurs = isPlugins || (IsMainThread() && gHistory.Innermost());
    // A program that handles a fault may repeat the instruction without end.
    return gForeign->isHandled(signal) && (!isOurs || std::exchange(last, instruction) == instruction);
}

// Names the file of code that the library did not call: code that runs while its
// file is loaded, or in another thread. False if it is not such code.
bool AddStray(Line &line, const void *instruction) {
    const History::Call *call = gHistory.Innermost();
    const char *file = FileAt(instruction);
    const bool isPlugins = file && std::string_view(file).ends_with(".avp");
    if (IsMainThread() && (!isPlugins || (call && call->To() == Side::Plugin)))
        return false;
    line.Add(IsMainThread() ? std::string_view("code of '") : "a thread other than the main one, in '");
    line.Add(file ? std::string_view(file) : "no file");
    line.Add(IsMainThread() ? std::string_view("'") : "',");
    return true;
}

// The call that an exception ended which now ends the process; null if there is none.
const History::Call *UncaughtThrow() {
    const bool isEnding = std::uncaught_exceptions() > 0 || std::current_exception();
    return isEnding ? gHistory.Thrown() : nullptr;
}

void OnFault(int signal, siginfo_t *info, void *interrupted) {
    auto *context = static_cast<ucontext_t *>(interrupted);
    const auto *instruction = reinterpret_cast<const void *>(context->uc_mcontext.gregs[REG_EIP]);
    if (const void *resumed = crossings::ResumeAfter(instruction)) {
        context->uc_mcontext.gregs[REG_EIP] = static_cast<greg_t>(reinterpret_cast<std::uintptr_t>(resumed));
        return;
    }
    if (gForeign && IsProgramsOwn(signal, instruction))
        return gForeign->passOn(signal, info, interrupted);
    if (gReporting.exchange(true)) {
        if (gForeign)
            return gForeign->passOn(signal, info, interrupted);
        GiveUp(signal);
    }
    const History::Call *call = nullptr;
    const bool isObserversFault = IsMainThread() && !crossings::AreObserved();
    if (IsMainThread() && IsStackFull(*info))
        call = gHistory.InnermostOfPlugins();
    else if (IsMainThread() && !isObserversFault)
        call = gHistory.Innermost();
    Line head;
    head.Add("avsk: ");
    if (const History::Call *thrown = signal == SIGABRT && gForeign ? UncaughtThrow() : nullptr) {
        AddCulprit(head, thrown);
        head.Add(" threw an exception in ");
        AddTitleAndCaller(head, thrown);
        head.Add(", which nobody caught, and the host");
        call = nullptr;
    } else if (!AddStray(head, instruction)) {
        AddCulprit(head, call);
    }
    head.Add(" died of ");
    AddCause(head, *info, instruction);
    if (call) {
        head.Add(" in ");
        AddInnerCall(head, StackOf(*context));
        AddTitleAndCaller(head, call);
    } else if (isObserversFault && gHistory.Innermost()) {
        head.Add(" while it observed ");
        gHistory.Innermost()->AddTitle(head);
        head.Add(" of ");
        AddCulprit(head, gHistory.Innermost());
        head.Add(", which may have corrupted memory");
    }
    if (!gForeign)
        ReportAndEnd(head, context);
    Report(head, context);
    gReporting = false;
    gForeign->passOn(signal, info, interrupted);
}

// Whether a fault leads to OnFault(). Plugins may have changed that.
bool AreFaultsHandled() {
    sigset_t blocked;
    if (pthread_sigmask(SIG_SETMASK, nullptr, &blocked) != 0)
        return false;
    return std::ranges::all_of(std::array{SIGSEGV, SIGBUS}, [&blocked](int signal) {
        struct sigaction action {};
        const bool isOurs = gForeign || (sigaction(signal, nullptr, &action) == 0 && action.sa_sigaction == OnFault);
        return isOurs && sigismember(&blocked, signal) == 0;
    });
}

// The innermost call of a plugin that has taken almost the whole time: calls
// inside it may be short. Else the outermost of all calls.
const History::Call *OverdueCall(const Watchdog &timer) {
    for (int depth = gHistory.Depth() - 1; depth > 0; --depth) {
        const History::Call *call = gHistory.Open(depth);
        if (call && call->To() == Side::Plugin && timer.IsNearlyOverdue(call->tick))
            return call;
    }
    return gHistory.Open(0);
}

void OnOverdue(int /*signal*/, siginfo_t * /*info*/, void *interrupted) {
    const int error = errno;
    const Watchdog *timer = gBlame ? gBlame->Timer() : nullptr;
    if (!timer || !timer->IsOverdue() || gReporting.exchange(true)) {
        errno = error;
        return;
    }
    const History::Call *call = OverdueCall(*timer);
    Line head;
    head.Add("avsk: ");
    AddCulprit(head, call);
    head.Add(" did not return within ");
    head.Add(timer->Limit());
    head.Add(" s from ");
    AddInnerCall(head, StackOf(*static_cast<const ucontext_t *>(interrupted)));
    AddTitleAndCaller(head, call);
    ReportAndEnd(head, static_cast<ucontext_t *>(interrupted));
}

// A regular end of the program comes when no call is under way.
void OnExit(int status, void * /*unused*/) {
    if (!gBlame || !gHistory.Innermost() || gReporting.exchange(true))
        return;
    Line head;
    head.Add("avsk: ");
    if (IsMainThread())
        AddCulprit(head, gHistory.Innermost());
    else
        head.Add("a thread other than the main one");
    head.Add(" called exit(");
    head.Add(status);
    head.Add(")");
    if (IsMainThread()) {
        head.Add(" in ");
        AddTitleAndCaller(head, gHistory.Innermost());
    }
    if (!gForeign)
        ReportAndEnd(head, nullptr);
    Report(head, nullptr);
}

// Adds the calls to the report of a sanitizer, which also sets the exit status.
void OnSanitizersEnd() {
    if (!gBlame || !gHistory.Innermost() || gReporting.exchange(true))
        return;
    FlushTrace();
    Line head;
    head.Add("avsk: a sanitizer ended the run, in ");
    AddCulprit(head, gHistory.Innermost());
    head.Add(" in ");
    AddInnerCall(head, __builtin_frame_address(0));
    AddTitleAndCaller(head, gHistory.Innermost());
    WriteCalls(head);
    if (gAddition)
        gAddition();
}

} // namespace

struct Blame::Handlers {
    std::array<struct sigaction, kFatalSignals.size()> fatal{};
    struct sigaction overdue {};
    stack_t stack{};
    // Not from the heap, which may be corrupted.
    void *memory = mmap(nullptr, kHandlersStack, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);

    Handlers() {
        if (memory != MAP_FAILED) {
            const stack_t ours{.ss_sp = memory, .ss_flags = 0, .ss_size = kHandlersStack};
            sigaltstack(&ours, &stack);
        }
        struct sigaction action {};
        sigaddset(&action.sa_mask, kOverdue);
        action.sa_sigaction = OnFault;
        action.sa_flags = SA_SIGINFO | SA_ONSTACK | SA_NODEFER; // so that a second fault is noticed
        for (std::size_t i = 0; i < fatal.size(); ++i)
            sigaction(kFatalSignals[i], &action, &fatal[i]);
        action.sa_sigaction = OnOverdue;
        action.sa_flags = SA_SIGINFO | SA_ONSTACK | SA_RESTART;
        sigaction(kOverdue, &action, &overdue);
    }

    ~Handlers() {
        for (std::size_t i = 0; i < fatal.size(); ++i)
            sigaction(kFatalSignals[i], &fatal[i], nullptr);
        sigaction(kOverdue, &overdue, nullptr);
        if (memory != MAP_FAILED) {
            sigaltstack(&stack, nullptr);
            munmap(memory, kHandlersStack);
        }
    }
    Handlers(const Handlers &) = delete;
    Handlers &operator=(const Handlers &) = delete;
};

Blame::Blame(const int &frame, double timeout) {
    [[maybe_unused]] static const int once = on_exit(OnExit, nullptr);
    if (__sanitizer_set_death_callback)
        __sanitizer_set_death_callback(OnSanitizersEnd);
    gHistory.Clear(); // of an earlier run
    LearnStack();
    PrepareBacktrace();
    gBlame = this;
    gFrame = &frame;
    mBefore = std::make_unique<Handlers>();
    if (timeout > 0)
        mWatchdog.emplace(timeout, kOverdue);
    crossings::gMayFault = AreFaultsHandled();
    crossings::AddObserver(*this);
}

Blame::~Blame() {
    crossings::RemoveObserver(*this);
    crossings::gMayFault = false;
    mWatchdog.reset(); // before the handler of its signal
    mBefore.reset();
    gBlame = nullptr;
    gLastFrame = *gFrame;
    gFrame = nullptr;
}

void Blame::MoveToThisThread() {
    const double timeout = mWatchdog ? mWatchdog->Limit() : 0;
    mWatchdog.reset();
    mBefore.reset();
    LearnStack();
    mBefore = std::make_unique<Handlers>();
    if (timeout > 0)
        mWatchdog.emplace(timeout, kOverdue);
}

void Blame::Begins(const Crossing &crossing) {
    gHistory.Begins(crossing, mWatchdog ? mWatchdog->Now() : 0);
    const bool isPlugins = crossing.to == Side::Plugin && mPluginDepth < 0;
    if (isPlugins)
        mPluginDepth = crossing.depth;
    if (mWatchdog && (isPlugins || crossing.depth == 0))
        mWatchdog->Restart();
}

void Blame::Ends(const Crossing &crossing) {
    gHistory.Ends(crossing);
    if (crossing.depth == 0 && !crossing.returned)
        KeepThrownStacks();
    constexpr unsigned kOften = 64; // system calls take longer than the rest
    if (crossing.IsEntryPoint() || (crossing.depth == 0 && ++mCalls % kOften == 0))
        crossings::gMayFault = AreFaultsHandled();
    const bool isPlugins = crossing.depth == mPluginDepth;
    if (isPlugins)
        mPluginDepth = -1;
    if (mWatchdog && crossing.depth == 0)
        mWatchdog->Stop();
    else if (mWatchdog && isPlugins)
        mWatchdog->Restart();
}

void (*AddToBlame(void (*write)()))() { return std::exchange(gAddition, write); }
void NameInnerCalls(bool (*add)(Line &line, const void *stack)) { gAddInnerCall = add; }
bool IsReporting() { return gReporting; }
void SetForeignSignals(const ForeignSignals *signals) { gForeign = signals; }

void ReportException(std::string_view what) {
    std::string head = "avsk: the run was broken off by an exception";
    const History::Call *call = gHistory.Thrown();
    if (call) {
        Line thrower;
        AddCulprit(thrower, call);
        thrower.Add(" in ");
        AddTitleAndCaller(thrower, call);
        head.append(" of ").append(thrower.Text());
    }
    std::fflush(stdout);
    WriteHead(head.append(": ").append(what));
    if (!call)
        return;
    WritePlace(gLastFrame);
    gHistory.WriteLast();
    WriteThrownStack();
}

} // namespace host
