// Notes the stacks of exceptions; see Thrown.h. Owns the stacks of the last few:
// destructors may throw and catch others while one unwinds the stack.
#include "Thrown.h"

#include "Backtrace.h"
#include "History.h"

#include "Crossings/Crossing.h"
#include "Crossings/RealSymbols.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <exception>
#include <span>
#include <typeinfo>

#include <unwind.h>

// Of the linker: the code of this program, or of the object that is preloaded into another one.
// NOLINTNEXTLINE(bugprone-reserved-identifier)
extern "C" __attribute__((visibility("hidden"))) const char __ehdr_start;
extern "C" __attribute__((visibility("hidden"))) const char etext;

namespace host {
namespace {

struct Throw {
    const void *exception = nullptr;
    std::size_t count = 0;
    std::array<void *, 32> addresses{};
    Stack stack; // empty until the files are looked up
};

std::array<Throw, 4> gThrows;
unsigned gCount = 0;

bool IsOfProgram(std::uintptr_t address) {
    return address >= reinterpret_cast<std::uintptr_t>(&__ehdr_start) &&
           address < reinterpret_cast<std::uintptr_t>(&etext);
}

struct Walk {
    Throw &noted;
    int bordersLeft; // this program's code lies at each border, and behind the outermost
    bool wasProgram = true;
};

_Unwind_Reason_Code NoteFrame(_Unwind_Context *context, void *argument) {
    auto &walk = *static_cast<Walk *>(argument);
    const std::uintptr_t address = _Unwind_GetIP(context);
    const bool isProgram = IsOfProgram(address);
    if ((isProgram && !walk.wasProgram && walk.bordersLeft-- == 0) || walk.noted.count == walk.noted.addresses.size())
        return _URC_END_OF_STACK;
    walk.wasProgram = isProgram;
    walk.noted.addresses[walk.noted.count++] = reinterpret_cast<void *>(address);
    return _URC_NO_REASON;
}

// Follows the stack up to the host's own code only: plugins that throw and catch pay for each frame.
void NoteDepth(const void *exception, int depth) {
    Throw &noted = gThrows[gCount++ % gThrows.size()];
    noted.exception = exception;
    noted.count = 0;
    noted.stack.count = 0;
    Walk walk{noted, depth};
    _Unwind_Backtrace(NoteFrame, &walk);
}

// The object that was passed to __cxa_throw.
const void *HandledException() {
    const std::exception_ptr handled = std::current_exception();
    static_assert(sizeof handled == sizeof(void *),
                  "an exception_ptr holds the address of the object and nothing else");
    return *reinterpret_cast<const void *const *>(&handled);
}

} // namespace

void KeepThrownStacks() {
    for (Throw &thrown : gThrows)
        thrown.stack = StackOf({thrown.addresses.data(), thrown.count});
}

const void *ThrowingAddress(const void *exception, const char *file) {
    // The latest: the runtime reuses addresses.
    const Throw *latest = nullptr;
    for (unsigned age = 0; age < gThrows.size() && !latest; ++age) {
        const Throw &noted = gThrows[(gCount - 1 - age) % gThrows.size()];
        if (exception && noted.exception == exception)
            latest = &noted;
    }
    if (!latest)
        return nullptr;
    for (void *address : std::span(latest->addresses).first(latest->count)) {
        if (FileAt(address) == file)
            return address;
    }
    return nullptr;
}

void WriteThrownStack() {
    const void *handled = HandledException();
    const auto found = std::find_if(gThrows.begin(), gThrows.end(), [handled](const Throw &thrown) {
        return thrown.exception == handled && thrown.stack.count > 0;
    });
    if (!handled || found == gThrows.end())
        return;
    WriteError("It was thrown here, the innermost function first:\n");
    WriteStack(found->stack);
}

} // namespace host

// Plugins and the library bind to this definition, like to all exported names of this program.
// NOLINTBEGIN(bugprone-reserved-identifier): the name is given by the ABI
namespace __cxxabiv1 {
extern "C" __attribute__((visibility("default"), noreturn)) void __cxa_throw(void *exception, std::type_info *type,
                                                                             void (*destructor)(void *)) {
    using Function = void (*)(void *, std::type_info *, void (*)(void *));
    static const auto next = reinterpret_cast<Function>(crossings::NextSymbol("__cxa_throw"));
    const crossings::Crossing *call = crossings::AreObserved() ? crossings::Innermost() : nullptr;
    if (call)
        host::NoteDepth(exception, call->depth);
    next(exception, type, destructor);
    __builtin_unreachable();
}
} // namespace __cxxabiv1
// NOLINTEND(bugprone-reserved-identifier)
