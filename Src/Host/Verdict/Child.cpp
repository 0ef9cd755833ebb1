// Starts `avsk run` on a session and waits for it; see Child.h.
#include "Child.h"

#include "Common/ProcessStart.h"
#include "Common/UsageError.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <optional>
#include <sstream>
#include <string_view>
#include <system_error>
#include <thread>

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

namespace host {
namespace {

namespace fs = std::filesystem;
using Clock = std::chrono::steady_clock;

constexpr const char *kScratch = ".scratch";
constexpr std::size_t kMostReport = 64 * 1024; // bytes

std::string ReadBeginning(const std::string &path) {
    std::ifstream stream(path, std::ios::binary);
    std::string text(kMostReport, '\0');
    stream.read(text.data(), static_cast<std::streamsize>(text.size()));
    text.resize(static_cast<std::size_t>(stream.gcount()));
    return text;
}

pid_t Start(std::vector<std::string> arguments, const std::string &errors, const std::string &temporary) {
    std::vector<std::string> variables = EnvironmentWithTemporary(temporary);
    posix_spawn_file_actions_t files;
    posix_spawn_file_actions_init(&files);
    posix_spawn_file_actions_addopen(&files, STDIN_FILENO, "/dev/null", O_RDONLY, 0);
    posix_spawn_file_actions_addopen(&files, STDOUT_FILENO, "/dev/null", O_WRONLY, 0);
    posix_spawn_file_actions_addopen(&files, STDERR_FILENO, errors.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0666);
    pid_t child = -1;
    const int error = posix_spawn(&child, "/proc/self/exe", &files, nullptr, PointersTo(arguments).data(),
                                  PointersTo(variables).data());
    posix_spawn_file_actions_destroy(&files);
    if (error != 0)
        throw UsageError(std::string("check: cannot start a process (") + std::strerror(error) + ")");
    return child;
}

// The status of waitpid(); nothing if the time passed and the process had to be killed.
std::optional<int> Wait(pid_t child, Clock::time_point end) {
    for (auto pause = std::chrono::microseconds(500);; pause = std::min(pause * 2, std::chrono::microseconds(8000))) {
        int status = 0;
        const pid_t ended = waitpid(child, &status, WNOHANG);
        if (ended == child || (ended < 0 && errno != EINTR))
            return status;
        if (Clock::now() > end) {
            kill(child, SIGKILL);
            waitpid(child, &status, 0);
            return std::nullopt;
        }
        std::this_thread::sleep_for(pause);
    }
}

// The first line of a report, without "avsk: ".
std::string HeadOfReport(const std::string &report) {
    constexpr std::string_view kBegin = "avsk: ";
    std::istringstream lines(report);
    std::string first;
    for (std::string line; std::getline(lines, line);) {
        if (line.starts_with(kBegin) && !line.starts_with("avsk: this report "))
            first = line.substr(kBegin.size()); // later lines are nearer to the end
    }
    return first;
}

// The folder says nothing to a reader.
std::string Without(const std::string &folder, std::string text) {
    for (std::size_t at = text.find(folder); at != std::string::npos; at = text.find(folder, at))
        text.erase(at, folder.size());
    return text;
}

// The part of the stack that is the same for each step.
std::string WithoutRunner(const std::string &report) {
    const std::size_t runner = report.find("host::SessionRunner::Do(");
    return runner == std::string::npos ? report : report.substr(0, report.rfind('\n', runner));
}

std::string WithoutLastBlanks(std::string text) {
    text.resize(text.find_last_not_of(" \n") + 1);
    return text;
}

} // namespace

WorkFolder::WorkFolder(const std::string &kept) : mIsKept(!kept.empty()) {
    std::error_code error;
    if (mIsKept) {
        fs::create_directories(kept, error);
        mPath = fs::canonical(kept, error).string();
        if (error || access(mPath.c_str(), W_OK) != 0)
            throw UsageError("--sessions: cannot write into '" + kept + "': name a folder that is writable");
    } else {
        mPath = (fs::temp_directory_path(error) / "avsk-check-XXXXXX").string();
        if (!mkdtemp(mPath.data()))
            throw UsageError("cannot make the temporary folder '" + mPath + "' (" + std::strerror(errno) +
                             "): set TMPDIR to a folder that is writable");
    }
    mScratch = mPath + "/" + kScratch;
    fs::create_directories(mScratch, error);
}

WorkFolder::~WorkFolder() {
    std::error_code ignored;
    fs::remove_all(mIsKept ? mScratch : mPath, ignored);
}

ChildRun RunInChild(const WorkFolder &folder, const std::string &name, const std::vector<std::string> &lines,
                    double timeout) {
    constexpr double kCallsInARun = 10; // that may each take almost the whole time
    const std::string session = folder.Path() + "/" + name + ".avs";
    const std::string scratch = folder.Path() + "/" + kScratch;
    const std::string record = scratch + "/" + name + ".record";
    const std::string errors = scratch + "/" + name + ".errors";
    {
        std::ofstream file(session);
        for (const std::string &line : lines)
            file << line << '\n';
    }
    std::ostringstream seconds;
    seconds << timeout;
    ChildRun run;
    const Clock::time_point begin = Clock::now();
    const pid_t child =
        Start({"avsk", "run", session, "--check", "--quiet", "--record", record, "--timeout", seconds.str()}, errors,
              scratch);
    const auto status = Wait(child, begin + std::chrono::duration_cast<Clock::duration>(
                                                std::chrono::duration<double>(kCallsInARun * timeout)));
    run.seconds = std::chrono::duration<double>(Clock::now() - begin).count();
    run.record = ReadRecord(record);
    run.report = WithoutLastBlanks(WithoutRunner(Without(folder.Path() + "/", ReadBeginning(errors))));
    std::error_code ignored;
    fs::remove(record, ignored);
    fs::remove(errors, ignored);
    const bool isStatusFine = status && WIFEXITED(*status) && WEXITSTATUS(*status) <= 1;
    if (run.record.isWhole && isStatusFine)
        return run;
    run.cause = HeadOfReport(run.report);
    if (!status) {
        run.ending = Ending::Hang;
        run.cause = "it took longer than " + std::to_string(static_cast<int>(kCallsInARun * timeout)) + " s";
    } else {
        run.ending = run.cause.find(" did not return within ") != std::string::npos ? Ending::Hang : Ending::Crash;
    }
    if (run.cause.empty())
        run.cause = status && WIFSIGNALED(*status)
                        ? "signal " + std::to_string(WTERMSIG(*status)) + ", and no report could be written"
                        : "no report was written";
    return run;
}

} // namespace host
