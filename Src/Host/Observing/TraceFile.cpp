// Writes the file of the trace; see TraceFile.h. Owns the pointer to the open one.
#include "TraceFile.h"

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <cstring>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace host {
namespace {

TraceFile *gOpen = nullptr;

// Of a signal that ends the process by default.
void OnEnd(int signal) {
    FlushTrace();
    std::signal(signal, SIG_DFL);
    raise(signal); // delivered when this handler returns
}

} // namespace

void FlushTrace() {
    if (gOpen)
        gOpen->Flush();
}

TraceFile::TraceFile(const std::string &path)
    : mFile(open(path.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0666)), mProcess(getpid()) {
    if (!IsOpen())
        return;
    [[maybe_unused]] static const int once = std::at_quick_exit(FlushTrace);
    struct stat status {};
    mIsRegular = fstat(mFile, &status) == 0 && S_ISREG(status.st_mode);
    gOpen = this;
    for (std::size_t i = 0; i < kEnds.size(); ++i) {
        struct sigaction action {};
        mHandles[i] = sigaction(kEnds[i], nullptr, &action) == 0 && action.sa_handler == SIG_DFL;
        if (mHandles[i])
            std::signal(kEnds[i], OnEnd);
    }
}

TraceFile::~TraceFile() {
    if (gOpen == this)
        Close();
}

void TraceFile::Add(std::string_view text) {
    while (!text.empty()) {
        if (mUsed == kSize)
            Flush();
        const std::size_t used = mUsed.load(std::memory_order_relaxed);
        const std::size_t length = std::min(text.size(), kSize - used);
        std::memcpy(mBuffer.data() + used, text.data(), length);
        std::atomic_signal_fence(std::memory_order_release);
        mUsed.store(used + length, std::memory_order_relaxed);
        text.remove_prefix(length);
    }
}

void TraceFile::EndLine() {
    Add("\n");
    if (!mIsRegular)
        Flush();
}

void TraceFile::Flush() {
    if (mUsed == 0 || getpid() != mProcess)
        return;
    while (mWritten < mUsed) {
        const ssize_t written = write(mFile, mBuffer.data() + mWritten, mUsed - mWritten);
        if (written < 0 && errno == EINTR)
            continue;
        if (written <= 0) {
            mIsWhole = false;
            break;
        }
        mWritten += static_cast<std::size_t>(written);
    }
    mWritten = 0;
    mUsed = 0;
}

bool TraceFile::Close() {
    Flush();
    gOpen = nullptr;
    for (std::size_t i = 0; i < kEnds.size(); ++i) {
        struct sigaction action {};
        if (mHandles[i] && sigaction(kEnds[i], nullptr, &action) == 0 && action.sa_handler == OnEnd)
            std::signal(kEnds[i], SIG_DFL);
    }
    return close(mFile) == 0 && mIsWhole;
}

} // namespace host
