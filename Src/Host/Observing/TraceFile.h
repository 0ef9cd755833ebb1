// The file of a trace. It is buffered, and complete when a plugin ends the run:
// what is buffered is written when the outermost call ends, and by the handlers
// of signals, exit() and _exit(). Only SIGKILL in a call loses the last lines.
#ifndef AVSK_HOST_OBSERVING_TRACE_FILE_H
#define AVSK_HOST_OBSERVING_TRACE_FILE_H

#include <array>
#include <atomic>
#include <csignal>
#include <cstddef>
#include <string>
#include <string_view>

#include <sys/types.h>

namespace host {

// What a format of the trace writes to.
class TraceSink {
  public:
    virtual ~TraceSink() = default;
    virtual void Add(std::string_view text) = 0;
    virtual void EndLine() = 0;
};

class TraceFile final : public TraceSink {
  public:
    // Errno tells why it is not open.
    explicit TraceFile(const std::string &path);
    ~TraceFile() override;
    TraceFile(const TraceFile &) = delete;
    TraceFile &operator=(const TraceFile &) = delete;

    bool IsOpen() const { return mFile >= 0; }
    void Add(std::string_view text) override;
    // Ends a line. A terminal, a pipe or a device gets it at once.
    void EndLine() override;
    // Safe in a signal handler.
    void Flush();
    // False if a part could not be written.
    bool Close();

  private:
    static constexpr std::size_t kSize = 64 * 1024;
    static constexpr std::array kEnds{SIGHUP, SIGINT, SIGTERM};

    const int mFile;
    const pid_t mProcess; // forked ones must not write
    bool mIsRegular = false;
    bool mIsWhole = true;
    std::atomic<std::size_t> mUsed = 0;
    std::size_t mWritten = 0; // of it
    std::array<bool, kEnds.size()> mHandles{};
    std::array<char, kSize> mBuffer;
};

// Flushes the file that is open, if there is one. Safe in a signal handler.
void FlushTrace();

} // namespace host

#endif
