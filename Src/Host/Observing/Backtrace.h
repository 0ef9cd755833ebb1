// The stack of functions, with names and source lines where the files have them.
#ifndef AVSK_HOST_OBSERVING_BACKTRACE_H
#define AVSK_HOST_OBSERVING_BACKTRACE_H

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include <ucontext.h>

namespace host {

struct Frame {
    const char *file; // null: no file
    std::uintptr_t offset;
    bool isNamed;  // by its own symbol: in a stripped file addr2line names any symbol nearby
    int times = 1; // how often it follows itself
};

struct Stack {
    std::array<Frame, 32> frames{};
    std::size_t count = 0;
    bool isCut = false;
};

// Loads and looks up everything that writing a stack needs.
void PrepareBacktrace();

// Writes the stack to standard error, from the place at which a signal came in;
// the context may be changed. With a null context from the caller on, without
// this program's own functions at the beginning. Safe in a signal handler. A
// stack that cannot be followed is no fault.
void WriteBacktrace(ucontext_t *context);

// Looks up return addresses, without this program's own functions at the
// beginning. The result stays valid when the files are unloaded or renamed.
Stack StackOf(std::span<void *const> addresses);
void WriteStack(const Stack &stack);

// "Pilot.cpp:58" for a return address; empty if the file has no such information.
// Runs addr2line; the file must be loaded.
std::string SourceLineOf(const void *address);

// The file that an address belongs to; null if there is none.
const char *FileAt(const void *address);

// The return addresses of the calling thread's stack that lie in a file, the
// innermost first.
std::vector<void *> ReturnAddressesIn(std::string_view file);

// The code outside of this program that called it, on the calling thread: a
// return address in the innermost plugin, or else in the innermost file.
struct Caller {
    const void *address;
    const char *file; // null: none
};
Caller CallerOfProgram();

} // namespace host

#endif
