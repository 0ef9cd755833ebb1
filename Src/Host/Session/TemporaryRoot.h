// A root that holds only chosen plugins, as links. The library loads every
// plugin that it finds in a root, so a choice needs a root of its own. A watch
// has a new root for each round, with copies: a build may replace a file while it
// is mapped, and the dynamic linker does not load a file again that is still mapped.
#ifndef AVSK_HOST_SESSION_TEMPORARY_ROOT_H
#define AVSK_HOST_SESSION_TEMPORARY_ROOT_H

#include <filesystem>
#include <set>
#include <string>
#include <vector>

namespace host {

// The file or folder of a plugin: an entry of the root's Resources/plugins by
// its name, or a path. An empty root is none. Throws UsageError.
std::string LocatePlugin(const std::string &root, const std::string &plugin);

// A new folder with links to the entries of another, and copies of the plugins in
// its folder "plugins". Returns the other folder if it has none.
std::string CopyPluginsOf(const std::string &folder, const std::string &target);

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
    // Makes the root in a new folder, which stays, and returns its path. It holds no plugin
    // until PlacePlugins() copies the given ones into it, or all of the root. Throws UsageError.
    std::string MakeForCopies(const std::string &root, const std::vector<std::string> &plugins,
                              const std::string &folder);
    void PlacePlugins();

    bool Exists() const { return !mFolder.empty(); }
    bool IsKept() const { return mIsKept; }
    // Paths, from the root, of the files that were written into it. What was
    // written through a link is in the given root.
    std::vector<std::string> WrittenFiles() const;

  private:
    // Makes the folder with links to everything in a root except its plugins.
    void Fill(const std::string &folder, const std::string &root);

    std::string mFolder;
    std::set<std::filesystem::path> mFound;  // plugins to copy
    std::set<std::filesystem::path> mCopies; // of their files
    bool mIsKept = false;
    bool mIsForCopies = false;
};

} // namespace host

#endif
