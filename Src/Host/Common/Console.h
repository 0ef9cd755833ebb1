// Where the run is heard: the log, on standard output and in a file, and a
// progress line on standard error. Used by the slots and by the frame loop.
#ifndef AVSK_HOST_COMMON_CONSOLE_H
#define AVSK_HOST_COMMON_CONSOLE_H

#include <chrono>
#include <cstdio>
#include <memory>
#include <string>
#include <string_view>

namespace host {

class Console {
  public:
    // An empty file name keeps no file. Throws UsageError if the file cannot be written.
    Console(bool quiet, const std::string &logFile);
    ~Console();
    Console(const Console &) = delete;
    Console &operator=(const Console &) = delete;

    // Writes a text to the log as it is.
    void Log(std::string_view text);
    // From now on keeps what is logged, and shows a path, the run's own, as <root>/
    // so that the log is the same wherever the run takes place.
    void Keep(const std::string &root);
    // What was logged since the last Forget().
    const std::string &Kept() const { return mKept; }
    void Forget() { mKept.clear(); }
    std::string WithoutRoot(std::string_view text) const;
    // Writes a line of the host's own to the log.
    void Note(const std::string &line) { Log("avsk: " + line + "\n"); }

    // Why the file of the log is not complete; empty if it is or there is none.
    std::string LogFault() const;

    // Shows the progress of a run that takes longer, on a terminal with colours.
    void ShowProgress(int frame, int frames);
    void ClearProgress();

    // Seconds of real time since the start.
    double Seconds() const;

  private:
    struct Close {
        void operator()(std::FILE *file) const { std::fclose(file); }
    };

    bool mQuiet;
    std::string mFileName;
    int mFileError = 0;
    bool mShown = false;
    double mLastShown = 0;
    std::chrono::steady_clock::time_point mStarted = std::chrono::steady_clock::now();
    std::unique_ptr<std::FILE, Close> mFile;
    bool mKeeps = false;
    std::string mRoot;
    std::string mKept;
};

} // namespace host

#endif
