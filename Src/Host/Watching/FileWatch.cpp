// Watches folders with inotify; see FileWatch.h. An event only says when to look:
// what has changed is found by comparing the files with those of the last look. So
// lost events, files that are replaced, and folders that are made anew need no
// rules of their own. Called by the watch.
#include "FileWatch.h"

#include "Common/Text.h"
#include "Common/UsageError.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>
#include <filesystem>
#include <system_error>
#include <utility>

#include <sys/inotify.h>
#include <sys/stat.h>
#include <unistd.h>

namespace host {
namespace {

namespace fs = std::filesystem;

constexpr int kDeepest = 8;               // folders below a watched one
constexpr std::size_t kMostFiles = 10000; // of one folder

// Files that editors keep beside the real one.
bool IsOfEditor(const std::string &name) { return name.empty() || name.front() == '.' || name.back() == '~'; }

// Calls use(entry) for the entries of a folder and of those below it.
template <typename Use>
void ForEachEntry(const std::string &folder, Use use) {
    std::error_code error;
    std::size_t count = 0;
    for (fs::recursive_directory_iterator entry(folder, error), end; !error && entry != end && count < kMostFiles;
         entry.increment(error), ++count) {
        const bool isHidden = IsOfEditor(entry->path().filename().string());
        if (isHidden || entry.depth() >= kDeepest)
            entry.disable_recursion_pending();
        if (!isHidden)
            use(*entry);
    }
}

// "Menu/lin.avp" for a file, since all plugins have the same file name.
std::string ShortName(const std::string &path) {
    const fs::path whole = path;
    const fs::path name = whole.filename();
    return name == "lin.avp" ? (whole.parent_path().filename() / name).string() : name.string();
}

} // namespace

bool IsCode(const std::string &path) {
    const std::string name = fs::path(path).filename().string();
    return name.ends_with(".avp") || name.find(".so") != std::string::npos;
}

std::string NamesOf(const std::vector<std::string> &changed) {
    constexpr std::size_t kMost = 3;
    std::vector<std::string> names(changed.size());
    std::transform(changed.begin(), changed.end(), names.begin(), ShortName);
    std::sort(names.begin(), names.end());
    names.erase(std::unique(names.begin(), names.end()), names.end());
    return Shortened(names, kMost);
}

FileWatch::FileWatch() : mDescriptor(inotify_init1(IN_NONBLOCK | IN_CLOEXEC)) {
    if (mDescriptor < 0)
        throw UsageError(std::string("--watch: the system gives no notice of changed files (") + std::strerror(errno) +
                         "): end other programs that watch files");
}

FileWatch::~FileWatch() { close(mDescriptor); }

void FileWatch::Watch(std::vector<std::string> paths) {
    mPaths = std::move(paths);
    WatchFolders();
}

void FileWatch::WatchFolders() {
    for (const std::string &path : mPaths) {
        WatchFolderOf(path);
        std::error_code error;
        if (!fs::is_directory(path, error))
            continue;
        WatchFolderOf(path + "/.");
        ForEachEntry(path, [this](const fs::directory_entry &entry) {
            std::error_code ignored;
            if (entry.is_directory(ignored))
                WatchFolderOf(entry.path().string() + "/.");
            else if (entry.is_symlink(ignored))
                WatchFolderOf(entry.path().string());
        });
    }
}

// Watches the folder of a file, and of the file that a link stands for. If the
// folder is not there, it watches the one in which it will be made.
void FileWatch::WatchFolderOf(const std::string &path) {
    constexpr std::uint32_t kEvents =
        IN_CLOSE_WRITE | IN_MOVED_TO | IN_MODIFY | IN_CREATE | IN_DELETE | IN_MOVED_FROM | IN_ONLYDIR;
    std::error_code error;
    const fs::path real = fs::weakly_canonical(path, error);
    for (fs::path folder : {fs::absolute(path).parent_path(), real.parent_path()}) {
        while (!fs::is_directory(folder, error) && folder.has_relative_path())
            folder = folder.parent_path();
        const int watch = inotify_add_watch(mDescriptor, folder.c_str(), kEvents);
        if (watch >= 0)
            mFolders[watch] = folder.string();
    }
}

bool FileWatch::Read() {
    bool isChange = false;
    bool isFolder = false;
    alignas(inotify_event) std::array<char, 16 * 1024> buffer;
    for (ssize_t length = 0; (length = read(mDescriptor, buffer.data(), buffer.size())) > 0;) {
        for (const char *at = buffer.data(); at < buffer.data() + length;) {
            const auto &event = *reinterpret_cast<const inotify_event *>(at);
            at += sizeof event + event.len;
            const std::string name = event.len > 0 ? event.name : "";
            const std::string path = (fs::path(mFolders[event.wd]) / name).string();
            isFolder = isFolder || (event.mask & (IN_ISDIR | IN_IGNORED | IN_Q_OVERFLOW)) != 0;
            if ((event.mask & IN_MODIFY) != 0)
                mWritten.insert(path);
            else
                mWritten.erase(path);
            isChange = isChange || ((event.mask & (IN_CLOSE_WRITE | IN_MOVED_TO)) != 0 && !IsOfEditor(name));
        }
    }
    if (isFolder)
        WatchFolders();
    return isChange || isFolder;
}

bool FileWatch::IsBeingWritten() const {
    return std::any_of(mWritten.begin(), mWritten.end(),
                       [this](const std::string &path) { return IsCode(path) && mTaken.contains(path); });
}

void FileWatch::Note(const std::string &path, Stamps &stamps) const {
    constexpr std::int64_t kNanoseconds = 1'000'000'000;
    struct stat info = {};
    if (stat(path.c_str(), &info) == 0 && S_ISREG(info.st_mode))
        stamps[path] = {info.st_dev, info.st_ino, info.st_size,
                        info.st_mtim.tv_sec * kNanoseconds + info.st_mtim.tv_nsec};
}

FileWatch::Stamps FileWatch::Scan() const {
    Stamps stamps;
    for (const std::string &path : mPaths) {
        Note(path, stamps);
        ForEachEntry(path, [&](const fs::directory_entry &entry) { Note(entry.path().string(), stamps); });
    }
    return stamps;
}

std::vector<std::string> FileWatch::Take() {
    Stamps now = Scan();
    std::vector<std::string> changed;
    for (const auto &[path, stamp] : now) {
        const auto before = mTaken.find(path);
        if (before == mTaken.end() || before->second != stamp)
            changed.push_back(path);
    }
    for (const auto &[path, stamp] : mTaken) {
        if (!now.contains(path))
            changed.push_back(path);
    }
    mTaken = std::move(now);
    return changed;
}

} // namespace host
