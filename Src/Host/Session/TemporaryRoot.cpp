// Makes and removes the temporary root; see TemporaryRoot.h.
#include "TemporaryRoot.h"

#include "Common/NearestName.h"
#include "Common/Text.h"
#include "Common/UsageError.h"

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <set>
#include <system_error>

namespace host {
namespace {

namespace fs = std::filesystem;

// The names that a session can choose in a folder of plugins.
std::vector<std::string> NamesIn(const fs::path &plugins) {
    std::vector<std::string> names;
    std::error_code error;
    for (fs::directory_iterator entry(plugins, error), end; !error && entry != end; entry.increment(error)) {
        const fs::path name = entry->path().filename();
        if (fs::is_directory(entry->path(), error) || name.extension() == ".avp")
            names.push_back(name.stem().string());
    }
    std::sort(names.begin(), names.end());
    return names;
}

[[noreturn]] void RefusePlugin(const std::string &root, const fs::path &plugins, const std::string &name) {
    const std::string wrong = "no plugin '" + name + "'";
    std::error_code error;
    if (name.find('/') != std::string::npos)
        throw UsageError(wrong + ": no such file or folder");
    if (root.empty())
        throw UsageError(wrong + ": no root was named, and no file or folder has this path: name a root with '--root " +
                         "DIR' (in a session: 'root DIR'), or write the path of the plugin");
    if (!fs::is_directory(plugins, error))
        throw UsageError(wrong + ": no folder Resources/plugins in the root '" + root + "'");
    const std::vector<std::string> names = NamesIn(plugins);
    const std::string nearest = DidYouMean(name, names);
    throw UsageError(wrong + " in '" + plugins.string() + "'" +
                     (!nearest.empty() ? nearest
                      : names.empty()  ? ": the folder has no plugin"
                                       : ": there are " + Shortened(names, 30)));
}

void LinkAll(const fs::path &from, const fs::path &to, const char *except) {
    std::error_code error;
    for (fs::directory_iterator entry(from, error), end; !error && entry != end; entry.increment(error)) {
        if (entry->path().filename() != except)
            fs::create_symlink(entry->path(), to / entry->path().filename());
    }
}

std::string MakeTemporaryFolder() {
    std::string pattern = (fs::temp_directory_path() / "avsk-XXXXXX").string();
    if (!mkdtemp(pattern.data()))
        throw UsageError("cannot make the temporary folder '" + pattern + "' (" + std::strerror(errno) +
                         "): set TMPDIR to a folder that is writable");
    return pattern;
}

// A new or empty folder: files of an earlier run would look like those of this one.
std::string MakeFolder(const std::string &path) {
    std::error_code error;
    if (fs::exists(path, error) && (!fs::is_directory(path, error) || !fs::is_empty(path, error)))
        throw UsageError("--keep-root: '" + path + "' exists: name a new or an empty folder");
    fs::create_directories(path, error);
    if (error)
        throw UsageError("--keep-root: cannot make the folder '" + path + "' (" + error.message() +
                         "): name one in a folder that is writable");
    return path;
}

} // namespace

std::string LocatePlugin(const std::string &root, const std::string &plugin) {
    std::error_code error;
    const fs::path plugins = fs::path(root) / "Resources/plugins";
    fs::path found = plugin;
    if (plugin.find('/') == std::string::npos && !root.empty())
        found = fs::exists(plugins / plugin, error) ? plugins / plugin : plugins / (plugin + ".avp");
    found = fs::canonical(found, error);
    if (error)
        RefusePlugin(root, plugins, plugin);
    const bool packed = found.filename() == "lin.avp"; // the whole folder is the plugin
    return packed ? found.parent_path() : found;
}

std::string TemporaryRoot::Make(const std::string &root, const std::vector<std::string> &plugins,
                                const std::string &keptAs) {
    std::set<fs::path> found; // a plugin may be named on the command line and in the session
    for (const std::string &plugin : plugins)
        found.insert(LocatePlugin(root, plugin));
    mIsKept = !keptAs.empty();
    mFolder = mIsKept ? MakeFolder(keptAs) : MakeTemporaryFolder();
    const fs::path folder = mFolder;
    const fs::path loaded = folder / "Resources/plugins";
    fs::create_directories(loaded);
    if (!root.empty()) {
        const fs::path real = fs::canonical(root); // links must not depend on the working folder
        LinkAll(real, folder, "Resources");
        LinkAll(real / "Resources", folder / "Resources", "plugins");
    }
    for (const fs::path &path : found) {
        std::error_code error;
        fs::create_symlink(path, loaded / path.filename(), error);
        if (error)
            throw UsageError("cannot load the plugin '" + path.string() + "' (" + error.message() +
                             "): two plugins cannot have the same file name");
    }
    return mFolder;
}

std::vector<std::string> TemporaryRoot::WrittenFiles() const {
    std::vector<std::string> files;
    std::error_code error;
    for (fs::recursive_directory_iterator entry(mFolder, error), end; !error && entry != end; entry.increment(error)) {
        const fs::file_type type = entry->symlink_status(error).type();
        if (type != fs::file_type::symlink && type != fs::file_type::directory)
            files.push_back(entry->path().lexically_relative(mFolder).string());
    }
    std::sort(files.begin(), files.end());
    return files;
}

TemporaryRoot::~TemporaryRoot() {
    std::error_code ignored; // a folder of links that stays does no harm
    if (!mFolder.empty() && !mIsKept)
        fs::remove_all(mFolder, ignored);
}

} // namespace host
