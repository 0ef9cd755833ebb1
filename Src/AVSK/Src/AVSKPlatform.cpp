// POSIX underneath the library. No globals; called by the loader and by the
// modules that hand texts to plugins.
#include "AVSKPlatform.h"

#include "AVSK/AVSKThreadLocal.h"

#include <cctype>
#include <cerrno>
#include <cstdio>
#include <cstring>

#include <dirent.h>
#include <dlfcn.h>
#include <pthread.h>
#include <sys/stat.h>

namespace {

void LogLinkerError() {
    AVSKDebugString("dlerror:");
    if (const char *reason = dlerror())
        AVSKDebugString(reason);
    AVSKDebugString("\n");
}

} // namespace

void *AVSKLoadDLL(const char *path) {
    std::FILE *probe = std::fopen(path, "rb");
    if (!probe)
        return nullptr;
    std::fclose(probe);

    void *handle = dlopen(path, RTLD_NOW | RTLD_GLOBAL);
    if (!handle)
        LogLinkerError();
    return handle;
}

void AVSKUnloadDLL(void *handle) { dlclose(handle); }

void *AVSKFindSymbol(void *handle, const char *name, int logFailure) {
    if (!handle)
        return nullptr;
    void *symbol = dlsym(handle, name);
    if (!symbol && logFailure)
        LogLinkerError();
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
