// Makes and removes the temporary root; see TemporaryRoot.h.
#include "TemporaryRoot.h"

#include "Common/UsageError.h"

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <set>
#include <system_error>

namespace host {
namespace {

namespace fs = std::filesystem;

// The folder or file of a plugin, to be linked under its own name.
fs::path Locate(const std::string &root, const std::string &plugin) {
    std::error_code error;
    const fs::path in = fs::path(root) / "Resources/plugins";
    fs::path found = plugin;
    if (plugin.find('/') == std::string::npos && !root.empty())
        found = fs::exists(in / plugin, error) ? in / plugin : in / (plugin + ".avp");
    found = fs::canonical(found, error);
    if (error)
        throw UsageError("no plugin '" + plugin + "': name a folder or a .avp file of Resources/plugins in the root, " +
                         "or write a path");
    const bool packed = found.filename() == "lin.avp"; // the whole folder is the plugin
    return packed ? found.parent_path() : found;
}

void LinkAll(const fs::path &from, const fs::path &to, const char *except) {
    std::error_code error;
    for (fs::directory_iterator entry(from, error), end; !error && entry != end; entry.increment(error)) {
        if (entry->path().filename() != except)
            fs::create_symlink(entry->path(), to / entry->path().filename());
    }
}

} // namespace

std::string TemporaryRoot::Make(const std::string &root, const std::vector<std::string> &plugins) {
    std::set<fs::path> found; // a plugin may be named on the command line and in the session
    for (const std::string &plugin : plugins)
        found.insert(Locate(root, plugin));

    std::string pattern = (fs::temp_directory_path() / "avsk-XXXXXX").string();
    if (!mkdtemp(pattern.data()))
        throw UsageError("cannot make the temporary folder '" + pattern + "' (" + std::strerror(errno) +
                         "): set TMPDIR to a folder that is writable");
    mFolder = pattern;
    const fs::path folder = mFolder;
    const fs::path loaded = folder / "Resources/plugins";
    fs::create_directories(loaded);
    if (!root.empty()) {
        LinkAll(root, folder, "Resources");
        LinkAll(fs::path(root) / "Resources", folder / "Resources", "plugins");
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

TemporaryRoot::~TemporaryRoot() {
    std::error_code ignored; // a folder of links that stays does no harm
    if (!mFolder.empty())
        std::filesystem::remove_all(mFolder, ignored);
}

} // namespace host
