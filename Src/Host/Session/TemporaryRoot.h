// A root that holds only chosen plugins, as links. The library loads every
// plugin that it finds in a root, so a choice needs a root of its own.
#ifndef AVSK_HOST_SESSION_TEMPORARY_ROOT_H
#define AVSK_HOST_SESSION_TEMPORARY_ROOT_H

#include <string>
#include <vector>

namespace host {

// The file or folder of a plugin: an entry of the root's Resources/plugins by
// its name, or a path. An empty root is none. Throws UsageError.
std::string LocatePlugin(const std::string &root, const std::string &plugin);

class TemporaryRoot {
  public:
    TemporaryRoot() = default;
    // Removes the folder, unless it is to be kept.
    ~TemporaryRoot();
    TemporaryRoot(const TemporaryRoot &) = delete;
    TemporaryRoot &operator=(const TemporaryRoot &) = delete;

    // Makes the root and returns its folder, which is kept if it is named here.
    // Other entries of the given root are linked. Throws UsageError.
    std::string Make(const std::string &root, const std::vector<std::string> &plugins, const std::string &keptAs = "");

    bool Exists() const { return !mFolder.empty(); }
    bool IsKept() const { return mIsKept; }
    // Paths, from the root, of the files that were written into it. What was
    // written through a link is in the given root.
    std::vector<std::string> WrittenFiles() const;

  private:
    std::string mFolder;
    bool mIsKept = false;
};

} // namespace host

#endif
