// Makes and removes the folders of rounds; see RoundFolders.h. Called by watches.
#include "RoundFolders.h"

#include "Common/UsageError.h"

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <system_error>

namespace host {
namespace {

namespace fs = std::filesystem;

void Remove(const std::string &folder) {
    std::error_code ignored;
    if (!folder.empty())
        fs::remove_all(folder, ignored);
}

} // namespace

RoundFolders::RoundFolders() {
    std::string pattern = (fs::canonical(fs::temp_directory_path()) / "avsk-watch-XXXXXX").string();
    if (!mkdtemp(pattern.data()))
        throw UsageError("cannot make the temporary folder '" + pattern + "' (" + std::strerror(errno) +
                         "): set TMPDIR to a folder that is writable");
    mFolder = pattern;
}

RoundFolders::~RoundFolders() { Remove(mFolder); }

std::string RoundFolders::Next() {
    Remove(mLast);
    mLast = mFolder + "/" + std::to_string(++mCount) + "/";
    fs::create_directory(mLast);
    return mLast;
}

} // namespace host
