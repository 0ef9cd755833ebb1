// Makes and removes the temporary folder; see ChosenRoot.h.
#include "ChosenRoot.h"

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

// What to link, and under which name, for a plugin named in a session.
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
    const bool packed = found.filename() == "lin.avp"; // stands for its folder
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

std::string ChosenRoot::Make(const std::string &root, const std::vector<std::string> &plugins) {
    std::set<fs::path> found; // one may be named on the command line and in the session
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
                             "): no two can have one file name");
    }
    return mFolder;
}

ChosenRoot::~ChosenRoot() {
    std::error_code ignored; // a folder of links that stays is no harm
    if (!mFolder.empty())
        std::filesystem::remove_all(mFolder, ignored);
}

} // namespace host
