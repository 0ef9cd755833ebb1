// The wrappers of the system calls that tests can make fail.
#include "Faults.h"

#include <cerrno>
#include <cstddef>

#include <dirent.h>
#include <pthread.h>
#include <sys/stat.h>
#include <sys/types.h>

namespace {

Faults gFaults = {};

bool Fails(SystemCall call) {
    if (!gFaults.counting)
        return false;
    const int number = ++gFaults.count[call];
    return call == gFaults.fails && (gFaults.lasting ? number >= gFaults.failsAt : number == gFaults.failsAt);
}

} // namespace

extern "C" {

Faults *AVSKTestFaults() { return &gFaults; }

[[gnu::weak]] void __gcov_dump(); // null in other builds
void AVSKTestSaveCounts() {
    gFaults.counting = false;
    if (__gcov_dump)
        __gcov_dump();
}

#define AVSK_TEST_WRAPPER(name, Result, parameters, arguments, failed, error)                                          \
    Result __real_##name parameters;                                                                                   \
    Result __wrap_##name parameters {                                                                                  \
        if (Fails(kCall_##name)) {                                                                                     \
            errno = error;                                                                                             \
            return failed;                                                                                             \
        }                                                                                                              \
        Result result = __real_##name arguments;                                                                       \
        if (kCall_##name <= kCall_aligned_alloc && kCall_##name != kCall_realloc)                                      \
            ++gFaults.blocks; /* realloc does not change the count: the library calls it only for existing blocks */   \
        return result;                                                                                                 \
    }
AVSK_TEST_SYSTEM_CALLS(AVSK_TEST_WRAPPER)

void __real_free(void *block);
void __wrap_free(void *block) {
    gFaults.blocks -= block != nullptr;
    __real_free(block);
}
}
