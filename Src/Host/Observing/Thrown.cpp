// Notes the stacks of exceptions; see Thrown.h. Owns the stacks of the last few:
// destructors may throw and catch others while one unwinds the stack.
#include "Thrown.h"

#include "Backtrace.h"
#include "History.h"

#include "Crossings/Crossing.h"
#include "Crossings/RealSymbols.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <exception>
#include <span>
#include <typeinfo>

#include <execinfo.h>

namespace host {
namespace {

struct Throw {
    const void *exception = nullptr;
    int depth = 0;
    std::array<void *, 32> addresses{};
    Stack stack; // empty until the files are looked up
};

std::array<Throw, 4> gThrows;
unsigned gCount = 0;

void Note(const void *exception) {
    Throw &last = gThrows[gCount++ % gThrows.size()];
    last.exception = exception;
    last.depth = backtrace(last.addresses.data(), static_cast<int>(last.addresses.size()));
    last.stack.count = 0;
}

// The object that was passed to __cxa_throw.
const void *HandledException() {
    const std::exception_ptr handled = std::current_exception();
    const void *object = nullptr;
    static_assert(sizeof handled == sizeof object, "an exception_ptr holds the address of the object and nothing else");
    std::memcpy(&object, &handled, sizeof object);
    return object;
}

} // namespace

void KeepThrownStacks() {
    for (Throw &thrown : gThrows)
        thrown.stack = StackOf({thrown.addresses.data(), static_cast<std::size_t>(thrown.depth)});
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
    if (crossings::AreObserved() && crossings::Innermost())
        host::Note(exception);
    next(exception, type, destructor);
    __builtin_unreachable();
}
} // namespace __cxxabiv1
// NOLINTEND(bugprone-reserved-identifier)
