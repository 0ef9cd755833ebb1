// The POSIX calls of the library. No globals; called by the loader, by the
// modules that copy texts to plugins, and by plugins for thread-local slots.
#include "AVSKPlatform.h"

#include "AVSK/AVSKThreadLocal.h"

#include <cctype>
#include <cerrno>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <memory>

#include <dirent.h>
#include <dlfcn.h>
#include <elf.h>
#include <fcntl.h>
#include <pthread.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

void LogLinkerError(const char *reason) {
    AVSKDebugString("dlerror:");
    if (reason)
        AVSKDebugString(reason);
    AVSKDebugString("\n");
}

void LogUnreadableFile(const char *path, int error) {
    const char *reason = std::strerror(error);
    for (const char *piece : {"dlerror:", path, ": ", reason, "\n"})
        AVSKDebugString(piece);
}

// A link that leads to itself names nothing.
bool IsAbsence(int error) { return error == ENOENT || error == ENOTDIR || error == ELOOP; }

// Says why the dynamic linker must not open a file. Returns null if it may, or,
// with errno set, if the file cannot be read. The linker maps the segments that
// the headers name and does not check the file's length: access to a page that a
// truncated copy lacks ends the process. On a pipe the linker would wait for a
// writer.
const char *FaultOf(int file) {
    errno = 0;
    struct stat info = {};
    if (fstat(file, &info) != 0)
        return nullptr;
    if (S_ISFIFO(info.st_mode))
        return "a pipe, not a library";
    constexpr const char *kBreaksOff = "the file breaks off: copy it again";
    Elf32_Ehdr header = {};
    const ssize_t length = pread(file, &header, sizeof header, 0);
    if (length < 0)
        return nullptr;
    if (length != sizeof header || std::memcmp(header.e_ident, ELFMAG, SELFMAG) != 0 ||
        header.e_ident[EI_CLASS] != ELFCLASS32)
        return nullptr; // the linker reports the fault
    for (int i = 0; i < header.e_phnum; ++i) {
        Elf32_Phdr part = {};
        const ssize_t read = pread(file, &part, sizeof part, off_t{header.e_phoff} + i * off_t{sizeof part});
        if (read < 0)
            return nullptr;
        if (read != sizeof part)
            return kBreaksOff;
        if (part.p_type == PT_LOAD &&
            std::uint64_t{part.p_offset} + part.p_filesz > static_cast<std::uint64_t>(info.st_size))
            return kBreaksOff;
    }
    return nullptr;
}

struct FolderClosing {
    void operator()(DIR *folder) const { closedir(folder); }
};

} // namespace

void *AVSKLoadDLL(const char *path) {
    const int file = open(path, O_RDONLY | O_NONBLOCK | O_CLOEXEC);
    if (file < 0) {
        if (!IsAbsence(errno))
            LogUnreadableFile(path, errno);
        return nullptr;
    }
    const char *fault = FaultOf(file);
    const int error = errno;
    close(file);
    if (fault || error != 0) {
        fault ? LogLinkerError(fault) : LogUnreadableFile(path, error);
        return nullptr;
    }

    void *handle = dlopen(path, RTLD_NOW | RTLD_GLOBAL);
    if (!handle)
        LogLinkerError(dlerror());
    return handle;
}

void AVSKUnloadDLL(void *handle) { dlclose(handle); }

void *AVSKFindSymbol(void *handle, const char *name, int logFailure) {
    if (!handle)
        return nullptr;
    void *symbol = dlsym(handle, name);
    if (!symbol && logFailure)
        LogLinkerError(dlerror());
    return symbol;
}

int AVSKFetchDirectoryContents(const char *path, const char *pattern, std::vector<std::string> &out) {
    const std::unique_ptr<DIR, FolderClosing> folder(opendir(path));
    if (!folder)
        return IsAbsence(errno) ? 0 : errno;
    const bool wantFolders = std::strcmp(pattern, "DIR") == 0;
    for (;;) {
        errno = 0;
        const dirent *entry = readdir(folder.get());
        if (!entry)
            return errno;
        const char *name = entry->d_name;
        if (std::strcmp(name, ".") == 0 || std::strcmp(name, "..") == 0)
            continue;
        if (suffix_matches(name, pattern))
            out.emplace_back(name);
        if (wantFolders) {
            struct stat info = {};
            if (stat((std::string(path) + "/" + name).c_str(), &info) != 0)
                std::printf("name %s, errno %d\n", name, errno);
            else if (S_ISDIR(info.st_mode))
                out.emplace_back(name);
        }
    }
}

int suffix_matches(const char *name, const char *pattern) {
    if (std::strcmp(pattern, "*.*") == 0)
        return 1;
    if (*pattern == '*')
        ++pattern;
    const std::size_t nameLength = std::strlen(name);
    const std::size_t suffixLength = std::strlen(pattern);
    if (nameLength < suffixLength)
        return 0;
    for (const char *tail = name + (nameLength - suffixLength); *tail; ++tail, ++pattern)
        if (std::toupper(static_cast<unsigned char>(*tail)) != std::toupper(static_cast<unsigned char>(*pattern)))
            return 0;
    return 1;
}

void strcpytrunc(char *dst, const std::string &src, int size) {
    if (size <= 0)
        return;
    std::size_t length = static_cast<std::size_t>(size) - 1;
    if (src.size() < length)
        length = src.size();
    std::memcpy(dst, src.data(), length);
    dst[length] = '\0';
}

unsigned int AVSKAllocTLS() {
    // Stays an invalid key if the system has none left.
    auto key = static_cast<pthread_key_t>(-1);
    pthread_key_create(&key, nullptr);
    return key;
}

void *AVSKGetTLS(unsigned int key) { return pthread_getspecific(key); }

int AVSKSetTLS(unsigned int key, void *value) { return pthread_setspecific(key, value); }
