// The signals that end a process, and what each one means.
#ifndef AVSK_HOST_OBSERVING_FAULT_H
#define AVSK_HOST_OBSERVING_FAULT_H

#include "Crossings/Format.h"

#include <array>
#include <csignal>

namespace host {

inline constexpr std::array kFatalSignals{SIGSEGV, SIGBUS, SIGFPE, SIGILL, SIGABRT, SIGTRAP, SIGSYS};

// Where the main thread's stack ends, to know an overflow when it comes.
void LearnStack();
bool IsStackFull(const siginfo_t &signal);

// "SIGSEGV (address 0x0 is not mapped)". The address is the instruction's.
void AddCause(crossings::Line &line, const siginfo_t &signal, const void *instruction);

void AddAddress(crossings::Line &line, const void *address);

} // namespace host

#endif
