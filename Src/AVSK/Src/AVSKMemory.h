// Exhausted memory. Floor 0; Docs/architecture.md, section "Errors", has the rule.
//
// If the library cannot get memory for what it has to remember, it ends the
// process with a message. No caller handles a failure, and none sees an
// exception. The exception from this is MemorySuffices.
#ifndef AVSK_MEMORY_H
#define AVSK_MEMORY_H

#include <new>

// Hidden symbols are reached without the global offset table.
#pragma GCC visibility push(hidden)

extern bool gMayRefuseMemory; // inside MemorySuffices

// Sets the function that writes the message; until then there is a general one.
void SetMemoryReport(void (*report)());

// The library's answer to a failed allocation: ends the process, or throws std::bad_alloc inside MemorySuffices.
[[noreturn]] void MemoryExhausted();

// Runs work whose need of memory a plugin's arguments decide and whose result
// the library does not keep; false if memory does not suffice. The work calls
// neither the host nor a plugin.
template <class Work>
[[nodiscard]] bool MemorySuffices(Work work) {
    bool suffices = true;
    gMayRefuseMemory = true;
    try {
        work();
    } catch (const std::bad_alloc &) { // unreachable: the work throws nothing else
        suffices = false;
    }
    gMayRefuseMemory = false;
    return suffices;
}

#pragma GCC visibility pop

#endif
