// Checks paths; see LivePaths.h. Called by Recording.cpp and LiveLines.cpp.
#include "LivePaths.h"

#include "Common/UsageError.h"

#include <algorithm>
#include <filesystem>
#include <system_error>

namespace host {
namespace {

namespace fs = std::filesystem;

bool IsInside(const fs::path &path, const fs::path &folder) {
    const fs::path below = path.lexically_relative(folder);
    return !below.empty() && *below.begin() != "..";
}

} // namespace

std::string PathToWrite(const std::string &folder, const std::string &file, const std::string &extension) {
    const fs::path given = file;
    const std::string wrong = "cannot write '" + file + "': ";
    if (!file.ends_with(extension) || given.stem().empty() || given.extension() != extension)
        throw UsageError(wrong + "name a file that ends in " + extension);
    std::error_code error;
    const fs::path start = fs::canonical(folder, error);
    const fs::path parent = fs::canonical(start / given.parent_path(), error);
    if (error || !fs::is_directory(parent, error))
        throw UsageError(wrong + "there is no such folder in '" + start.string() + "'");
    const fs::path target = parent / given.filename();
    if (given.is_absolute() || !IsInside(target, start))
        throw UsageError(wrong + "name a file in '" + start.string() + "' or below it");
    if (fs::is_symlink(target, error) || (fs::exists(target, error) && !fs::is_regular_file(target, error)))
        throw UsageError(wrong + "it is not a plain file");
    return target.string();
}

void CheckPathToRead(const std::string &folder, const std::string &file) {
    const fs::path start = fs::path(folder).lexically_normal();
    if (!IsInside((start / file).lexically_normal(), start))
        throw UsageError("'" + file + "' is outside of '" + start.string() + "': name a file in that folder");
}

std::string PathFrom(const std::string &folder, const std::string &file) {
    std::error_code error;
    fs::path given = fs::absolute(file).lexically_normal();
    if (!given.has_filename())
        given = given.parent_path(); // it ended in a separator
    // A link keeps its own name. The folders above are those that ".." leads to.
    const fs::path to = fs::weakly_canonical(given.parent_path(), error) / given.filename();
    const fs::path from = fs::weakly_canonical(folder, error);
    const auto common = std::mismatch(from.begin(), from.end(), to.begin(), to.end()).first;
    if (error || std::distance(from.begin(), common) < 2)
        return given.string();
    const std::string relative = to.lexically_relative(from).string();
    return relative.find('/') == std::string::npos && relative != "." && relative != ".." ? "./" + relative : relative;
}

} // namespace host
