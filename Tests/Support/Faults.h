// Makes system calls of the library fail. A copy of the shared library is linked
// with --wrap, so that its system calls go through Faults.cpp.
#ifndef AVSK_TESTS_FAULTS_H
#define AVSK_TESTS_FAULTS_H

// Name, result type, parameters, arguments, result of a failure, errno.
#define AVSK_TEST_SYSTEM_CALLS(X)                                                                                      \
    X(malloc, void *, (std::size_t size), (size), nullptr, ENOMEM)                                                     \
    X(calloc, void *, (std::size_t count, std::size_t size), (count, size), nullptr, ENOMEM)                           \
    X(realloc, void *, (void *block, std::size_t size), (block, size), nullptr, ENOMEM)                                \
    X(aligned_alloc, void *, (std::size_t unit, std::size_t size), (unit, size), nullptr, ENOMEM)                      \
    X(dlopen, void *, (const char *path, int mode), (path, mode), nullptr, 0)                                          \
    X(dlsym, void *, (void *handle, const char *name), (handle, name), nullptr, 0)                                     \
    X(opendir, DIR *, (const char *path), (path), nullptr, EMFILE)                                                     \
    X(readdir64, dirent64 *, (DIR * folder), (folder), nullptr, EIO)                                                   \
    X(stat64, int, (const char *path, struct stat64 *info), (path, info), -1, EACCES)                                  \
    X(fstat64, int, (int file, struct stat64 *info), (file, info), -1, EIO)                                            \
    X(open64, int, (const char *path, int flags, unsigned mode), (path, flags, mode), -1, EMFILE)                      \
    X(pread64, ssize_t, (int file, void *to, std::size_t size, off64_t at), (file, to, size, at), -1, EIO)             \
    X(pthread_key_create, int, (pthread_key_t * key, void (*end)(void *)), (key, end), EAGAIN, 0)

#define AVSK_TEST_ENUMERATOR(name, ...) kCall_##name,
enum SystemCall {
    AVSK_TEST_SYSTEM_CALLS(AVSK_TEST_ENUMERATOR) kSystemCalls
};
#undef AVSK_TEST_ENUMERATOR

struct Faults {
    bool counting;
    int count[kSystemCalls];
    SystemCall fails; // which call fails: its failsAt-th use, from 1, and all later ones if lasting
    int failsAt;
    bool lasting;
    int blocks; // allocated and not freed
};

extern "C" __attribute__((visibility("default"))) Faults *AVSKTestFaults();
// Writes the counts of a coverage build, which a process that does not reach exit() would lose.
extern "C" __attribute__((visibility("default"))) void AVSKTestSaveCounts();

#endif
