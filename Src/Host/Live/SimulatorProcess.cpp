// Starts the simulator's process, passes its output on, and notices its end; see
// SimulatorProcess.h. Called by the hub.
#include "SimulatorProcess.h"

#include "Common/Files.h"
#include "Common/ProcessStart.h"
#include "Common/UsageError.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <csignal>
#include <cstring>
#include <stdexcept>
#include <utility>

#include <fcntl.h>
#include <poll.h>
#include <spawn.h>
#include <sys/socket.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

namespace host {
namespace {

constexpr int kChannel = 3;                          // in the process
constexpr std::size_t kMostReport = 64 * 1024;       // bytes
constexpr std::size_t kMostUnsent = 1 * 1024 * 1024; // bytes

using Ends = std::array<int, 2>;

[[noreturn]] void Refuse(const char *what, int error) {
    throw UsageError(std::string("live: cannot make ") + what + " (" + std::strerror(error) + "): end other programs");
}

Ends MakePipe() {
    Ends ends{};
    if (pipe2(ends.data(), O_CLOEXEC) != 0)
        Refuse("a pipe", errno);
    return ends;
}

// The process gets no descriptor of the server but these. It is in a group of its
// own, so that a terminal's Ctrl-C goes to the server only.
pid_t Spawn(std::vector<std::string> arguments, const std::string &temporary, int channel, int output, int errors) {
    arguments.insert(arguments.end(), {"--simulator", std::to_string(kChannel)});
    std::vector<std::string> variables = EnvironmentWithTemporary(temporary);
    posix_spawn_file_actions_t files;
    posix_spawn_file_actions_init(&files);
    posix_spawn_file_actions_addopen(&files, STDIN_FILENO, "/dev/null", O_RDONLY, 0);
    posix_spawn_file_actions_adddup2(&files, output, STDOUT_FILENO);
    posix_spawn_file_actions_adddup2(&files, errors, STDERR_FILENO);
    posix_spawn_file_actions_adddup2(&files, channel, kChannel);
    posix_spawn_file_actions_addclosefrom_np(&files, kChannel + 1);
    posix_spawnattr_t attributes;
    posix_spawnattr_init(&attributes);
    sigset_t defaults;
    sigemptyset(&defaults);
    sigaddset(&defaults, SIGPIPE);
    posix_spawnattr_setsigdefault(&attributes, &defaults);
    posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETPGROUP | POSIX_SPAWN_SETSIGDEF);
    pid_t child = -1;
    const int error = posix_spawn(&child, "/proc/self/exe", &files, &attributes, PointersTo(arguments).data(),
                                  PointersTo(variables).data());
    posix_spawnattr_destroy(&attributes);
    posix_spawn_file_actions_destroy(&files);
    if (error != 0)
        Refuse("a process", error);
    return child;
}

} // namespace

SimulatorProcess::SimulatorProcess(Events &events, Calls calls)
    : mEvents(events), mCalls(std::move(calls)), mPatience(events) {}

SimulatorProcess::~SimulatorProcess() {
    Kill();
    if (IsRunning())
        waitpid(mChild, nullptr, 0);
}

void SimulatorProcess::Start(const std::vector<std::string> &arguments, const std::string &temporary) {
    Ends channel{};
    if (socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, channel.data()) != 0)
        Refuse("a socket", errno);
    const Ends output = MakePipe();
    const Ends errors = MakePipe();
    mChannel = std::make_unique<Descriptor>(mEvents, channel[0]);
    mOutput = std::make_unique<Descriptor>(mEvents, output[0]);
    mErrors = std::make_unique<Descriptor>(mEvents, errors[0]);
    mChild = Spawn(arguments, temporary, channel[1], output[1], errors[1]);
    for (const int end : {channel[1], output[1], errors[1]})
        close(end);
    // The declaration of pidfd_open() is not for C++.
    mProcess = std::make_unique<Descriptor>(mEvents, static_cast<int>(syscall(SYS_pidfd_open, mChild, 0)));
    mReader = {};
    mUnsent.clear();
    mIsWriting = false;
    mReport.clear();
    mProcess->AwaitReadable([this] { OnExit(); });
    AwaitMessages();
    AwaitText(*mOutput, STDOUT_FILENO);
    AwaitText(*mErrors, STDERR_FILENO);
}

// ---- What it says

void SimulatorProcess::AwaitMessages() {
    mChannel->AwaitReadable([this] {
        if (ReadMessages() && mChannel)
            AwaitMessages();
    });
}

// False if there will be none any more.
bool SimulatorProcess::ReadMessages() {
    std::array<char, 64 * 1024> part{};
    const ssize_t count = read(mChannel->Get(), part.data(), part.size());
    if (count <= 0)
        return count < 0 && (errno == EAGAIN || errno == EINTR);
    mReader.Add({part.data(), static_cast<std::size_t>(count)});
    try {
        while (const auto message = mReader.Take())
            mCalls.message(*message);
    } catch (const std::runtime_error &error) {
        // A plugin has written to the channel, or has corrupted memory.
        mReport += std::string("avsk: the simulator's messages are not valid (") + error.what() + "): it was killed\n";
        Kill();
        return false;
    }
    return true;
}

void SimulatorProcess::AwaitText(Descriptor &from, int to) {
    from.AwaitReadable([this, &from, to] {
        if (PassOn(from, to) != 0)
            AwaitText(from, to);
    });
}

// Returns what read() returns.
ssize_t SimulatorProcess::PassOn(Descriptor &from, int to) {
    std::array<char, 64 * 1024> part{};
    const ssize_t count = read(from.Get(), part.data(), part.size());
    if (count <= 0)
        return count;
    const std::string_view text(part.data(), static_cast<std::size_t>(count));
    WriteAll(to, text);
    if (to == STDERR_FILENO)
        mReport.append(text);
    if (mReport.size() > kMostReport)
        mReport.erase(0, mReport.size() - kMostReport);
    return count;
}

// ---- What it is told

bool SimulatorProcess::Send(std::string_view json) {
    if (!mChannel || mUnsent.size() > kMostUnsent)
        return false;
    mUnsent += PackMessage(MessageKind::Json, json);
    if (!mIsWriting)
        Write();
    return true;
}

void SimulatorProcess::Write() {
    mIsWriting = false;
    const ssize_t count = send(mChannel->Get(), mUnsent.data(), mUnsent.size(), MSG_NOSIGNAL);
    if (count < 0 && errno != EAGAIN && errno != EINTR)
        return mUnsent.clear(); // closed; the end of the process follows
    mUnsent.erase(0, static_cast<std::size_t>(std::max<ssize_t>(count, 0)));
    if (mUnsent.empty())
        return;
    mIsWriting = true;
    mChannel->AwaitWritable([this] { Write(); });
}

// ---- Its end

// A program that the simulator has started may keep the channel open.
void SimulatorProcess::ReadRest() {
    constexpr int kMostParts = 256;
    pollfd rest{mChannel->Get(), POLLIN, 0};
    for (int part = 0; part < kMostParts && poll(&rest, 1, 0) == 1 && ReadMessages(); ++part) {
    }
}

void SimulatorProcess::Stop() {
    constexpr std::chrono::seconds kPatience(3); // for the plugins' stop functions
    mChannel.reset();
    mPatience.Start(kPatience, [this] { Kill(); });
}

void SimulatorProcess::Kill() {
    if (IsRunning())
        kill(mChild, SIGKILL);
}

void SimulatorProcess::OnExit() {
    int status = 0;
    waitpid(mChild, &status, 0);
    mChild = -1;
    mPatience.Stop();
    if (mChannel)
        ReadRest();
    PassOn(*mOutput, STDOUT_FILENO);
    PassOn(*mErrors, STDERR_FILENO);
    for (auto *descriptor : {&mProcess, &mChannel, &mOutput, &mErrors})
        descriptor->reset();
    SimulatorEnd end;
    end.report = std::exchange(mReport, "");
    if (WIFSIGNALED(status))
        end.signal = std::string("SIG") + sigabbrev_np(WTERMSIG(status));
    else
        end.status = WEXITSTATUS(status);
    mCalls.end(end);
}

} // namespace host
