// POSIX underneath the library. No globals; called by the loader and by the
// modules that hand texts to plugins.
#include "AVSKPlatform.h"

#include "AVSK/AVSKThreadLocal.h"

#include <cctype>
#include <cerrno>
#include <cstdint>
#include <cstdio>
#include <cstring>

#include <dirent.h>
#include <dlfcn.h>
#include <elf.h>
#include <pthread.h>
#include <sys/stat.h>

namespace {

void LogLinkerError(const char *reason) {
    AVSKDebugString("dlerror:");
    if (reason)
        AVSKDebugString(reason);
    AVSKDebugString("\n");
}

// The linker maps what a library's headers promise and does not look at the
// file's length: touching what a broken-off copy lacks would end the process.
bool BreaksOff(std::FILE *file) {
    Elf32_Ehdr header = {};
    if (std::fread(&header, sizeof header, 1, file) != 1 || std::memcmp(header.e_ident, ELFMAG, SELFMAG) != 0 ||
        header.e_ident[EI_CLASS] != ELFCLASS32)
        return false; // the linker says what is wrong
    struct stat info = {};
    if (fstat(fileno(file), &info) != 0) // unreachable: an open file has a length
        return false;                    // unreachable: likewise
    for (unsigned i = 0; i < header.e_phnum; ++i) {
        Elf32_Phdr part = {};
        std::fseek(file, static_cast<long>(header.e_phoff + i * header.e_phentsize), SEEK_SET);
        if (std::fread(&part, sizeof part, 1, file) != 1)
            return true;
        if (part.p_type == PT_LOAD && part.p_filesz != 0 &&
            std::uint64_t{part.p_offset} + part.p_filesz > static_cast<std::uint64_t>(info.st_size))
            return true;
    }
    return false;
}

} // namespace

void *AVSKLoadDLL(const char *path) {
    // A pipe is not opened: that would wait for a writer.
    struct stat info = {};
    if (stat(path, &info) == 0 && S_ISFIFO(info.st_mode)) {
        LogLinkerError("a pipe, not a library");
        return nullptr;
    }
    std::FILE *probe = std::fopen(path, "rb");
    if (!probe)
        return nullptr;
    const bool breaksOff = BreaksOff(probe);
    std::fclose(probe);
    if (breaksOff) {
        LogLinkerError("the file breaks off: copy it again");
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

void AVSKFetchDirectoryContents(const char *path, const char *pattern, std::vector<std::string> &out) {
    DIR *folder = opendir(path);
    if (!folder)
        return;
    const bool wantFolders = std::strcmp(pattern, "DIR") == 0;
    while (const dirent *entry = readdir(folder)) {
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
    closedir(folder);
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
    // A number that is no key, should the system have none left.
    auto key = static_cast<pthread_key_t>(-1);
    pthread_key_create(&key, nullptr);
    return key;
}

void *AVSKGetTLS(unsigned int key) { return pthread_getspecific(key); }

int AVSKSetTLS(unsigned int key, void *value) { return pthread_setspecific(key, value); }
