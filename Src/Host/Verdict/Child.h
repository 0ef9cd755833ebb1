// Runs a session in a process of its own, as `avsk run` does, so that a plugin
// can end that process only.
#ifndef AVSK_HOST_VERDICT_CHILD_H
#define AVSK_HOST_VERDICT_CHILD_H

#include "Session/Record.h"

#include <string>
#include <vector>

namespace host {

// The folder of the check's files. Removed at the end, unless the user named it.
class WorkFolder {
  public:
    // An empty path makes a temporary folder. Throws UsageError.
    explicit WorkFolder(const std::string &kept);
    ~WorkFolder();
    WorkFolder(const WorkFolder &) = delete;
    WorkFolder &operator=(const WorkFolder &) = delete;

    const std::string &Path() const { return mPath; }

  private:
    std::string mPath;
    std::string mScratch; // records and temporary roots
    bool mIsKept;
};

enum class Ending {
    Whole,
    Crash,
    Hang,
};

struct ChildRun {
    Ending ending = Ending::Whole;
    Recorded record;
    std::string cause;  // of a crash or a hang: the first line of the report
    std::string report; // what it said on standard error
    double seconds = 0;
};

// Runs the lines as the session NAME.avs in the folder. A call that takes longer
// than the timeout in seconds ends it. Safe in several threads with different names.
ChildRun RunInChild(const WorkFolder &folder, const std::string &name, const std::vector<std::string> &lines,
                    double timeout);

} // namespace host

#endif
