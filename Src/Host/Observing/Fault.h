// The signals that end a process, and their causes in words.
#ifndef AVSK_HOST_OBSERVING_FAULT_H
#define AVSK_HOST_OBSERVING_FAULT_H

#include "Crossings/Line.h"

#include <array>
#include <csignal>

namespace host {

inline constexpr std::array kFatalSignals{SIGSEGV, SIGBUS, SIGFPE, SIGILL, SIGABRT, SIGTRAP, SIGSYS};

// Notes where the stack of the calling thread, the main one, ends.
void LearnStack();
// Whether the stack overflowed.
bool IsStackFull(const siginfo_t &signal);

// "SIGSEGV (address 0x0 is not mapped)". The address is that of the instruction.
void AddCause(crossings::Line &line, const siginfo_t &signal, const void *instruction);

void AddAddress(crossings::Line &line, const void *address);

} // namespace host

#endif
