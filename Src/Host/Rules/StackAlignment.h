// Reads machine code to tell whether a function relies on the alignment of its stack.
#ifndef AVSK_HOST_RULES_STACK_ALIGNMENT_H
#define AVSK_HOST_RULES_STACK_ALIGNMENT_H

#include <cstddef>
#include <cstdint>
#include <span>

namespace host {

// Whether the code moves 16 bytes to or from the stack with an instruction that needs
// an aligned address, and has not aligned the stack before. The code begins with the
// function's first instruction and ends with the function; if its end is unknown, it
// is read up to the first return or jump. False if an instruction is unknown.
bool ReliesOnAlignedStack(std::span<const std::uint8_t> code, bool isEndKnown);

// Likewise for a function of this process. Its size comes from its symbol.
bool ReliesOnAlignedStack(const void *function);

} // namespace host

#endif
