// What is done to a live simulator, as a session that repeats it.
#ifndef AVSK_HOST_LIVE_RECORDING_H
#define AVSK_HOST_LIVE_RECORDING_H

#include <cstddef>
#include <map>
#include <string>
#include <utility>
#include <vector>

namespace host {

struct SessionOptions;

class Recording {
  public:
    // Begins with the set-up. The options are those before the simulator was made. The
    // folder, an absolute path, is that of the session, or the working folder: files
    // that lines name are relative to it.
    Recording(const SessionOptions &options, const std::string &aircraft, const std::map<std::string, double> &budgets,
              std::string folder);

    ~Recording();
    Recording(const Recording &) = delete;
    Recording &operator=(const Recording &) = delete;

    const std::string &Folder() const { return mFolder; }

    // The line that is about to be executed, in case that it ends the process. Adding a line or frames ends it.
    void Begin(std::string line) { mUnderWay = std::move(line); }

    // A frame that no line ran.
    void AddFrame();
    void AddLine(std::string line) { Add({std::move(line), "", "", ""}); }
    // A line that names a file of the folder: the words before it, its path, the words behind it.
    void AddLine(std::string before, const std::string &file, std::string behind = "");

    // Writes the session into the folder. Returns its path. Throws UsageError.
    std::string Save(const std::string &file, bool replaces);

    // For a reader: the last lines, and how many are before them.
    std::vector<std::string> Tail(std::size_t most) const;
    // Writes the session, with what is under way, where no file is replaced, and reports where. Safe in a signal
    // handler.
    void WriteLast() const;
    std::size_t Count() const { return mLines.size() + (mFrames > 0 ? 1 : 0); }
    // The name of the file that has all lines; empty if there is none.
    const std::string &SavedAs() const { return mSavedAs; }

  private:
    struct Line {
        std::string before;
        std::string path;   // absolute; may be empty
        std::string quoted; // that path, as a word of a session
        std::string behind;

        // In a file of this folder.
        std::string Text(const std::string &folder) const;
    };

    void Add(Line line);
    void AddPath(std::string before, const std::string &path, std::string behind = "");
    void EndFrames();

    const std::string mFolder;
    std::vector<Line> mLines;
    int mFrames = 0; // since the last line
    std::string mUnderWay;
    std::string mLastFile; // of WriteLast()
    std::string mSavedAs;
};

} // namespace host

#endif
