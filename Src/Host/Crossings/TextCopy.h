// Copies texts from addresses that plugins name, which may be bad, without a
// system call: a bad address is a fault that a handler of signals repairs.
#ifndef AVSK_HOST_TEXT_COPY_H
#define AVSK_HOST_TEXT_COPY_H

#include <cstddef>

namespace crossings {

// Whether CopyText() may fault: such signals are not blocked, and their handler calls ResumeAfter().
inline bool gMayFault = false;

// Copies a text up to its end, but at most so many bytes, and ends it with a zero.
// False if a part of it is not mapped.
bool CopyText(const char *from, char *to, std::size_t most);

// For handlers of SIGSEGV and SIGBUS: where the code goes on if this instruction
// is one of CopyText() that read; else null.
const void *ResumeAfter(const void *instruction);

} // namespace crossings

#endif
