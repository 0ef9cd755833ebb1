// Defines _exit() and _Exit(); see EndAtOnce.h. Owns the function that they call.
#include "EndAtOnce.h"

#include "TraceFile.h"

#include <atomic>

#include <sys/syscall.h>
#include <unistd.h>

namespace host {
namespace {

std::atomic<int (*)(int)> gPrepare = nullptr;

[[noreturn]] void EndAtOnce(int status) {
    FlushTrace();
    if (const auto prepare = gPrepare.load())
        status = prepare(status);
    EndProcess(status);
}

} // namespace

void OnEndAtOnce(int (*prepare)(int status)) { gPrepare = prepare; }

void EndProcess(int status) {
    for (;;)
        syscall(SYS_exit_group, status);
}

} // namespace host

// Plugins bind to these definitions, like to all exported names of this program.
// NOLINTBEGIN(bugprone-reserved-identifier,readability-identifier-naming): the names of the C library
extern "C" {
__attribute__((visibility("default"), noreturn)) void _exit(int status) { host::EndAtOnce(status); }
__attribute__((visibility("default"), noreturn)) void _Exit(int status) noexcept { host::EndAtOnce(status); }
}
// NOLINTEND(bugprone-reserved-identifier,readability-identifier-naming)
