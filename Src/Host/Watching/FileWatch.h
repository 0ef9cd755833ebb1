// Tells when files have changed. A file counts as changed when its writer has
// closed it, or when it was moved into place.
#ifndef AVSK_HOST_WATCHING_FILE_WATCH_H
#define AVSK_HOST_WATCHING_FILE_WATCH_H

#include <cstdint>
#include <ctime>
#include <map>
#include <set>
#include <string>
#include <vector>

#include <sys/types.h>

namespace host {

class FileWatch {
  public:
    // Throws UsageError if the system does not allow it.
    FileWatch();
    ~FileWatch();
    FileWatch(const FileWatch &) = delete;
    FileWatch &operator=(const FileWatch &) = delete;

    // Files, and folders with everything in them. They need not exist yet.
    void Watch(std::vector<std::string> paths);
    // Readable if something happened; then call Read().
    int Descriptor() const { return mDescriptor; }
    // Whether a file may have changed since the last call.
    bool Read();
    // Whether a writer is at work on a file that was there at the last Take().
    bool IsBeingWritten() const;
    // The paths of the files that differ from those of the last call, or are new or gone.
    std::vector<std::string> Take();

  private:
    struct Stamp {
        dev_t device;
        ino_t inode;
        off_t size;
        std::int64_t changed; // nanoseconds

        bool operator==(const Stamp &) const = default;
    };
    using Stamps = std::map<std::string, Stamp>;

    void WatchFolders();
    void WatchFolderOf(const std::string &path);
    void Note(const std::string &path, Stamps &stamps) const;
    Stamps Scan() const;

    const int mDescriptor;
    std::vector<std::string> mPaths;
    std::map<int, std::string> mFolders; // by watch descriptor
    std::set<std::string> mWritten;      // files whose writers have not closed them
    Stamps mTaken;
};

// Whether a file is a plugin or a library, by its name.
bool IsCode(const std::string &path);
// The names of changed files, for a line; plugins with their folder, as "Menu/lin.avp".
std::string NamesOf(const std::vector<std::string> &changed);

} // namespace host

#endif
