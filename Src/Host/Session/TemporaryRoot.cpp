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

// Copies a plugin, which is a file or a folder: its code, with links to its other
// files. Adds the paths of the copies.
void CopyPlugin(const fs::path &from, const fs::path &to, std::set<fs::path> &copies) {
    std::error_code error;
    if (!fs::is_directory(from, error)) {
        fs::copy_file(from, to, error);
        if (error)
            throw UsageError("cannot copy the plugin '" + from.string() + "' (" + error.message() +
                             "): build it again, and make room in the temporary folder");
        copies.insert(to);
        return;
    }
    fs::create_directory(to);
    for (fs::directory_iterator entry(from, error), end; !error && entry != end; entry.increment(error)) {
        const fs::path name = entry->path().filename();
        const bool isCode = name.extension() == ".avp" || name.string().find(".so") != std::string::npos;
        if (isCode || name == "32")
            CopyPlugin(entry->path(), to / name, copies);
        else
            fs::create_symlink(entry->path(), to / name);
    }
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
    if (fs::is_regular_file(found, error) && found.extension() != ".avp")
        throw UsageError("plugin '" + plugin + "': the library loads no file of this name: call it NAME.avp");
    const bool packed = found.filename() == "lin.avp"; // the whole folder is the plugin
    return packed ? found.parent_path() : found;
}

std::string TemporaryRoot::Make(const std::string &root, const std::vector<std::string> &plugins,
                                const std::string &keptAs) {
    std::set<fs::path> found; // a plugin may be named on the command line and in the session
    for (const std::string &plugin : plugins)
        found.insert(LocatePlugin(root, plugin));
    mIsKept = !keptAs.empty();
    Fill(mIsKept ? MakeFolder(keptAs) : MakeTemporaryFolder(), root);
    const fs::path loaded = fs::path(mFolder) / "Resources/plugins";
    for (const fs::path &path : found) {
        std::error_code error;
        fs::create_symlink(path, loaded / path.filename(), error);
        if (error)
            throw UsageError("cannot load the plugin '" + path.string() + "' (" + error.message() +
                             "): two plugins cannot have the same file name");
    }
    return mFolder;
}

std::string TemporaryRoot::MakeForCopies(const std::string &root, const std::vector<std::string> &plugins,
                                         const std::string &folder) {
    std::error_code error;
    for (const std::string &plugin : plugins)
        mFound.insert(LocatePlugin(root, plugin));
    fs::directory_iterator entry(fs::path(root) / "Resources/plugins", error);
    for (const fs::directory_iterator end; plugins.empty() && !error && entry != end; entry.increment(error))
        mFound.insert(fs::canonical(entry->path()));
    mIsForCopies = true; // until it is known whether they are still mapped
    Fill(folder, root);
    return mFolder;
}

std::string CopyPluginsOf(const std::string &folder, const std::string &target) {
    std::error_code error;
    const fs::path real = fs::canonical(folder, error);
    if (error || !fs::is_directory(real / "plugins", error))
        return folder;
    const fs::path copy = fs::path(target) / real.filename();
    fs::create_directories(copy / "plugins");
    LinkAll(real, copy, "plugins");
    std::set<fs::path> copies;
    for (fs::directory_iterator entry(real / "plugins", error), end; !error && entry != end; entry.increment(error))
        CopyPlugin(entry->path(), copy / "plugins" / entry->path().filename(), copies);
    return copy.string();
}

void TemporaryRoot::PlacePlugins() {
    for (const fs::path &path : mFound)
        CopyPlugin(path, fs::path(mFolder) / "Resources/plugins" / path.filename(), mCopies);
}

void TemporaryRoot::Fill(const std::string &folder, const std::string &root) {
    mFolder = folder;
    fs::create_directories(fs::path(folder) / "Resources/plugins");
    if (root.empty())
        return;
    const fs::path real = fs::canonical(root); // links must not depend on the working folder
    LinkAll(real, folder, "Resources");
    LinkAll(real / "Resources", fs::path(folder) / "Resources", "plugins");
}

std::vector<std::string> TemporaryRoot::WrittenFiles() const {
    std::vector<std::string> files;
    std::error_code error;
    for (fs::recursive_directory_iterator entry(mFolder, error), end; !error && entry != end; entry.increment(error)) {
        const fs::file_type type = entry->symlink_status(error).type();
        if (type != fs::file_type::symlink && type != fs::file_type::directory && !mCopies.contains(entry->path()))
            files.push_back(entry->path().lexically_relative(mFolder).string());
    }
    std::sort(files.begin(), files.end());
    return files;
}

TemporaryRoot::~TemporaryRoot() {
    std::error_code ignored; // a folder of links that stays does no harm
    if (!mFolder.empty() && !mIsKept && !mIsForCopies)
        fs::remove_all(mFolder, ignored);
}

} // namespace host
