// What happens when memory is exhausted. Owns gMayRefuseMemory and gReport;
// called by the library's operator new and where it uses malloc's family itself.
#include "AVSKMemory.h"

#include <cstdio>
#include <cstdlib>
#include <utility>

bool gMayRefuseMemory = false;

namespace {

void ReportBeforeStart() { std::fputs("AVSK: out of memory; the simulator cannot continue\n", stderr); }

void (*gReport)() = ReportBeforeStart;

// The host's log may need memory itself: the second failure is not reported.
[[noreturn]] void End() noexcept {
    if (void (*const report)() = std::exchange(gReport, nullptr))
        report();
    std::abort();
}

} // namespace

void SetMemoryReport(void (*report)()) { gReport = report; }

void MemoryExhausted() {
    if (gMayRefuseMemory)
        throw std::bad_alloc();
    End();
}
