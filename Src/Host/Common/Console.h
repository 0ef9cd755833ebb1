// Output of a run: the log, on standard output and in a file, and a progress
// line on standard error. Used by the services and by the frame loop.
#ifndef AVSK_HOST_COMMON_CONSOLE_H
#define AVSK_HOST_COMMON_CONSOLE_H

#include <chrono>
#include <cstdio>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <utility>

namespace host {

class Console {
  public:
    // With an empty name there is no log file. Throws UsageError if the file cannot be written.
    Console(bool quiet, const std::string &logFile);
    ~Console();
    Console(const Console &) = delete;
    Console &operator=(const Console &) = delete;

    // Writes a text to the log unchanged.
    void Log(std::string_view text);
    // Starts to keep what is logged, for Kept(), and to write the given path as
    // <root>/, so that the log does not depend on where the run takes place.
    void Keep(const std::string &root);
    // The text logged since the last Forget().
    const std::string &Kept() const { return mKept; }
    void Forget() { mKept.clear(); }
    std::string WithoutRoot(std::string_view text) const;
    // Called with each text that is logged.
    void OnLog(std::function<void(std::string_view)> notify) { mNotify = std::move(notify); }
    // Writes a line of the host to the log.
    void Note(const std::string &line) { Log("avsk: " + line + "\n"); }
    // Shows the user a line that is no part of the log.
    void Show(const std::string &line);

    // Why the log file is not complete; empty if it is complete or there is none.
    std::string LogFault() const;

    // Shows the progress of a longer run on a terminal with colours.
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
    std::function<void(std::string_view)> mNotify;
};

} // namespace host

#endif
