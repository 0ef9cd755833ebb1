// Signals in words; see Fault.h. Owns the address at which the main thread's
// stack ends. Everything except LearnStack() is safe in a signal handler.
#include "Fault.h"

#include <cstdint>

#include <pthread.h>
#include <unistd.h>

namespace host {

using crossings::Line;

namespace {

std::uintptr_t gStackEnd = 0; // its lowest address

std::string_view NameOf(int signal) {
    switch (signal) {
    case SIGSEGV:
        return "SIGSEGV";
    case SIGBUS:
        return "SIGBUS";
    case SIGFPE:
        return "SIGFPE";
    case SIGILL:
        return "SIGILL";
    case SIGABRT:
        return "SIGABRT";
    case SIGTRAP:
        return "SIGTRAP";
    default:
        return "SIGSYS";
    }
}

void AddAccess(Line &line, const siginfo_t &signal, const void *instruction) {
    if (signal.si_code == SI_KERNEL)
        return line.Add("a vector access that is not aligned, or a privileged instruction");
    if (IsStackFull(signal))
        return line.Add("the stack is full: an endless recursion, or arrays that are too large");
    if (signal.si_addr == instruction) {
        line.Add("there is no code at ");
        return AddAddress(line, signal.si_addr);
    }
    line.Add("address ");
    AddAddress(line, signal.si_addr);
    if (signal.si_signo == SIGBUS)
        line.Add(" is beyond the end of its file, or not aligned");
    else if (signal.si_code == SEGV_MAPERR)
        line.Add(" is not mapped");
    else
        line.Add(" may not be accessed like that");
}

void AddReason(Line &line, const siginfo_t &signal, const void *instruction) {
    // A process sent it, possibly this one.
    if (signal.si_code <= 0) {
        if (signal.si_pid != getpid()) {
            line.Add("sent by process ");
            return line.Add(static_cast<int>(signal.si_pid));
        }
        return line.Add(signal.si_signo == SIGABRT ? std::string_view("abort() was called") : "raised by itself");
    }
    switch (signal.si_signo) {
    case SIGSEGV:
    case SIGBUS:
        return AddAccess(line, signal, instruction);
    case SIGFPE:
        return line.Add(signal.si_code == FPE_INTDIV ? std::string_view("an integer division by zero or with overflow")
                                                     : "a floating-point exception");
    case SIGILL:
        line.Add("no valid instruction at ");
        return AddAddress(line, instruction);
    case SIGTRAP:
        return line.Add("a breakpoint");
    default:
        return line.Add("a system call that is not allowed");
    }
}

} // namespace

void LearnStack() {
    pthread_attr_t attributes;
    if (pthread_getattr_np(pthread_self(), &attributes) != 0)
        return;
    void *end = nullptr;
    std::size_t size = 0;
    if (pthread_attr_getstack(&attributes, &end, &size) == 0)
        gStackEnd = reinterpret_cast<std::uintptr_t>(end);
    pthread_attr_destroy(&attributes);
}

bool IsStackFull(const siginfo_t &signal) {
    constexpr std::uintptr_t kGap = 1024 * 1024; // that the kernel keeps free below the stack
    constexpr std::uintptr_t kLastPages = 64 * 1024;
    const auto place = reinterpret_cast<std::uintptr_t>(signal.si_addr);
    return signal.si_signo == SIGSEGV && signal.si_code > 0 && signal.si_code != SI_KERNEL && gStackEnd != 0 &&
           place >= gStackEnd - kGap && place < gStackEnd + kLastPages;
}

void AddAddress(Line &line, const void *address) { line.AddHex(reinterpret_cast<std::uintptr_t>(address)); }

void AddCause(Line &line, const siginfo_t &signal, const void *instruction) {
    line.Add(NameOf(signal.si_signo));
    line.Add(" (");
    AddReason(line, signal, instruction);
    line.Add(')');
}

} // namespace host
