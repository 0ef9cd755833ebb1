// The log and the progress line; see Console.h.
#include "Console.h"

#include "Terminal.h"
#include "UsageError.h"

#include <cerrno>
#include <cstring>

#include <unistd.h>

namespace host {

Console::Console(bool quiet, const std::string &logFile) : mQuiet(quiet), mFileName(logFile) {
    if (logFile.empty())
        return;
    mFile.reset(std::fopen(logFile.c_str(), "w"));
    if (!mFile)
        throw UsageError("--log: cannot write '" + logFile + "' (" + std::strerror(errno) +
                         "): name a file in a folder that exists and is writable");
}

Console::~Console() { ClearProgress(); }

void Console::Keep(const std::string &root) {
    mKeeps = true;
    mRoot = root == "/" ? "" : root;
}

std::string Console::WithoutRoot(std::string_view text) const {
    std::string shown(text);
    if (mRoot.empty())
        return shown;
    for (std::size_t at = 0; (at = shown.find(mRoot, at)) != std::string::npos;)
        shown.replace(at, mRoot.size(), "<root>/");
    return shown;
}

void Console::Log(std::string_view original) {
    const std::string shown = WithoutRoot(original);
    const std::string_view text = shown;
    if (mKeeps)
        mKept += text;
    if (mNotify)
        mNotify(text);
    // Flush at once: the last line before a plugin crashes matters most.
    if (mFile) {
        std::fwrite(text.data(), 1, text.size(), mFile.get());
        if (std::fflush(mFile.get()) != 0 && mFileError == 0)
            mFileError = errno;
    }
    if (!mQuiet) {
        ClearProgress();
        std::fwrite(text.data(), 1, text.size(), stdout);
        std::fflush(stdout);
    }
}

std::string Console::LogFault() const {
    if (mFileError == 0)
        return "";
    return "--log: '" + mFileName + "' is not complete: " + std::strerror(mFileError);
}

void Console::Show(const std::string &line) {
    if (mQuiet)
        return;
    ClearProgress();
    std::printf("avsk: %s\n", line.c_str());
    std::fflush(stdout);
}

void Console::ShowProgress(int frame, int frames) {
    constexpr double kPatience = 1.0;
    constexpr double kBetween = 0.1;
    if (!HasColours(STDERR_FILENO) || mKeeps)
        return;
    const double now = Seconds();
    if (now < kPatience || now - mLastShown < kBetween)
        return;
    mLastShown = now;
    mShown = true;
    std::fprintf(stderr, "\rframe %d of %d\033[K", frame, frames);
    std::fflush(stderr);
}

void Console::ClearProgress() {
    if (!mShown)
        return;
    mShown = false;
    std::fputs("\r\033[K", stderr);
    std::fflush(stderr);
}

double Console::Seconds() const {
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - mStarted).count();
}

} // namespace host
