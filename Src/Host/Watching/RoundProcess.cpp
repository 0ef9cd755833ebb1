// Forks the process, tells it when to run, and reads its output and results; see
// RoundProcess.h. The process is a copy of this one, which never loads a plugin.
// A result is a list of texts, each with a zero at its end, after its length in bytes.
#include "RoundProcess.h"

#include "Watch.h"

#include "Common/Files.h"
#include "Common/UsageError.h"
#include "Elf/StayingFiles.h"
#include "Observing/Blame.h"

#include <array>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <exception>
#include <filesystem>
#include <sstream>
#include <stdexcept>
#include <utility>

#include <fcntl.h>
#include <poll.h>
#include <sys/prctl.h>
#include <sys/socket.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

namespace host {
namespace {

namespace fs = std::filesystem;

struct Pipe {
    int from;
    int to;

    explicit Pipe() {
        std::array<int, 2> ends{};
        if (pipe2(ends.data(), O_CLOEXEC) != 0)
            throw std::runtime_error(std::string("cannot make a pipe: ") + std::strerror(errno));
        from = ends[0];
        to = ends[1];
    }
};

// The next line; empty at the end of the input.
std::string ReadLine(int descriptor) {
    std::string line;
    for (char c = 0; read(descriptor, &c, 1) == 1 && c != '\n';)
        line += c;
    return line;
}

void AddText(std::string &message, const std::string &text) { message.append(text).push_back('\0'); }

std::string TakeText(std::string_view &message) {
    std::string text(message.substr(0, message.find('\0')));
    message.remove_prefix(text.size() + 1);
    return text;
}

// The status, the files that stay, and the checks. Each list has its length before it.
std::string Packed(int status, const std::vector<std::string> &staying, const std::vector<Check> &checks) {
    std::string message;
    AddText(message, std::to_string(status));
    AddText(message, std::to_string(staying.size()));
    for (const std::string &line : staying)
        AddText(message, line);
    AddText(message, std::to_string(checks.size()));
    for (const Check &check : checks) {
        AddText(message, check.text);
        AddText(message, check.failure);
    }
    return message;
}

void PrintFaults(const char *text) {
    std::istringstream lines(text);
    for (std::string line; std::getline(lines, line);)
        std::fprintf(stderr, "avsk: %s\n", line.c_str());
}

} // namespace

void RoundProcess::Begin(const std::string &folder) {
    mResult = {};
    mReceived.clear();
    if (!IsRunning())
        Start();
    const std::string command = folder + "\n";
    send(mCommands, command.data(), command.size(), MSG_NOSIGNAL); // it may have ended; Continue() sees it
}

void RoundProcess::Start() {
    std::array<int, 2> commands{};
    if (socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, commands.data()) != 0)
        throw std::runtime_error(std::string("cannot make a socket: ") + std::strerror(errno));
    const Pipe output;
    const Pipe results;
    std::fflush(nullptr);
    const pid_t parent = getpid();
    mChild = fork();
    if (mChild < 0)
        throw std::runtime_error(std::string("cannot start a process: ") + std::strerror(errno));
    if (mChild == 0) {
        prctl(PR_SET_PDEATHSIG, SIGKILL);
        if (getppid() != parent)
            _exit(1);  // it has ended before this process could know
        setpgid(0, 0); // a terminal's Ctrl-C goes to the watch only, which ends this process
        sigprocmask(SIG_SETMASK, &mSignals, nullptr);
        dup2(output.to, STDOUT_FILENO);
        for (const int end : {commands[0], output.from, output.to, results.from})
            close(end);
        Serve(commands[1], results.to);
    }
    for (const int end : {commands[1], output.to, results.to})
        close(end);
    fcntl(output.from, F_SETFL, O_NONBLOCK);
    fcntl(results.from, F_SETFL, O_NONBLOCK);
    mCommands = commands[0];
    mOutput = output.from;
    mResults = results.from;
    mProcess = static_cast<int>(syscall(SYS_pidfd_open, mChild, 0)); // the declaration of pidfd_open() is not for C++
}

// The child's part. It does not return into the code of the watch, whose files it shares.
void RoundProcess::Serve(int commands, int results) {
    int status = 0;
    try {
        for (std::string folder; !(folder = ReadLine(commands)).empty();) {
            Round round{folder, {}};
            SessionOptions options = mRequest.options;
            options.round = &round;
            status = mRequest.run(options);
            std::fflush(stdout);
            const std::string message = Packed(status, DescribeStayingFiles(folder), round.checks);
            WriteAll(results, std::to_string(message.size()) + "\n" + message);
        }
    } catch (const UsageError &error) {
        PrintFaults(error.what());
        status = 2;
    } catch (const std::exception &error) { // of a plugin
        ReportException(error.what());
        status = 1;
    } catch (...) {
        ReportException("its type is not derived from std::exception");
        status = 1;
    }
    std::exit(status);
}

void RoundProcess::ReadOutput() {
    std::array<char, 16 * 1024> part{};
    for (ssize_t length = 0; (length = read(mOutput, part.data(), part.size())) > 0;)
        mResult.output.append(part.data(), static_cast<std::size_t>(length));
}

bool RoundProcess::Continue() {
    pollfd process{mProcess, POLLIN, 0};
    const bool hasEnded = poll(&process, 1, 0) == 1;
    std::array<char, 16 * 1024> part{};
    for (ssize_t length = 0; (length = read(mResults, part.data(), part.size())) > 0;)
        mReceived.append(part.data(), static_cast<std::size_t>(length));
    ReadOutput(); // what was written before the results
    const std::size_t head = mReceived.find('\n');
    if (head != std::string::npos && mReceived.size() - head - 1 == std::stoul(mReceived))
        TakeResults();
    if (hasEnded) {
        int status = 0;
        waitpid(mChild, &status, 0);
        CloseAll();
        mResult.status = WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
        return true;
    }
    return mResult.isComplete;
}

void RoundProcess::TakeResults() {
    std::string_view message = std::string_view(mReceived).substr(mReceived.find('\n') + 1);
    mResult.status = std::stoi(TakeText(message));
    mResult.staying.resize(std::stoul(TakeText(message)));
    for (std::string &line : mResult.staying)
        line = TakeText(message);
    mResult.checks.resize(std::stoul(TakeText(message)));
    for (Check &check : mResult.checks) {
        check.text = TakeText(message);
        check.failure = TakeText(message);
    }
    mResult.isComplete = true;
    mReceived.clear();
}

void RoundProcess::Stop() {
    constexpr int kPatience = 2000; // milliseconds, for static destructors and the leak check
    if (!IsRunning())
        return;
    close(std::exchange(mCommands, -1));
    pollfd process{mProcess, POLLIN, 0};
    if (!mResult.isComplete || poll(&process, 1, kPatience) == 0)
        kill(mChild, SIGKILL);
    waitpid(mChild, nullptr, 0);
    CloseAll();
}

void RoundProcess::CloseAll() {
    for (int *descriptor : {&mProcess, &mCommands, &mOutput, &mResults}) {
        if (*descriptor >= 0)
            close(std::exchange(*descriptor, -1));
    }
    mChild = -1;
}

} // namespace host
