// The folders in which plugins are copied, one per run, so that a rebuilt plugin is
// loaded from a new path.
#ifndef AVSK_HOST_WATCHING_ROUND_FOLDERS_H
#define AVSK_HOST_WATCHING_ROUND_FOLDERS_H

#include <string>

namespace host {

// A new folder for the rounds, each in a folder of its own. Removes it at its end.
class RoundFolders {
  public:
    // Throws UsageError.
    RoundFolders();
    ~RoundFolders();
    RoundFolders(const RoundFolders &) = delete;
    RoundFolders &operator=(const RoundFolders &) = delete;

    // Removes the last one. The new path was never used, nor was any file below it.
    std::string Next();
    int Count() const { return mCount; }
    const std::string &Path() const { return mFolder; }

  private:
    std::string mFolder;
    std::string mLast;
    int mCount = 0;
};

} // namespace host

#endif
