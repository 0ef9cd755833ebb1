// Reads and restores the state of processor and thread; see CallState.h. Built
// without sanitizers: their code uses string instructions, and End()
// may be entered with the direction flag set.
#include "CallState.h"

#include "Crossing.h"

#include <csignal>
#include <sys/syscall.h>
#include <unistd.h>

namespace crossings {
namespace {

constexpr std::uint32_t kControlBits = 0xFFC0; // of the MXCSR; the others are set by every operation

} // namespace

CallState CurrentState() noexcept {
    std::uint32_t flags = 0;
    asm volatile("pushfl\n\tpopl %0\n\tcld" : "=r"(flags) : : "cc", "memory");
    CallState state;
    asm volatile("fnstcw %0" : "=m"(state.x87));
    asm volatile("stmxcsr %0" : "=m"(state.mxcsr));
    constexpr std::uint32_t kDirection = 1 << 10;
    state.isBackward = (flags & kDirection) != 0;
    state.mxcsr &= kControlBits;
    // Not by a function of the C library, which hides some signals.
    syscall(SYS_rt_sigprocmask, SIG_BLOCK, nullptr, &state.blocked, sizeof state.blocked);
    return state;
}

void KeepStates(bool keep) { gKeepsStates = keep; }

bool StateKeeper::IsKept(const Crossing &crossing) noexcept { return crossing.to != Side::Library; }

void StateKeeper::Begin() noexcept { mCrossing->stateBefore = CurrentState(); }

void StateKeeper::End() noexcept {
    const CallState &before = mCrossing->stateBefore;
    CallState &after = mCrossing->stateAfter;
    after = CurrentState();
    // Without fnclex, a pending exception that was unmasked would be raised by fldcw.
    if (after.x87 != before.x87)
        asm volatile("fnclex\n\tfldcw %0" : : "m"(before.x87));
    if (after.mxcsr != before.mxcsr)
        asm volatile("ldmxcsr %0" : : "m"(before.mxcsr));
    if (after.blocked != before.blocked)
        syscall(SYS_rt_sigprocmask, SIG_SETMASK, &before.blocked, nullptr, sizeof before.blocked);
}

} // namespace crossings
