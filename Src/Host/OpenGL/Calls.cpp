// Calls of plugins; see Calls.h. Each function of libGL.so.1 notes the call and jumps
// through its slot. Owns the slots, the addresses of Mesa's functions, the count of
// calls and the state between glBegin and glEnd.
#include "Calls.h"

#include "Context.h"
#include "Library.h"
#include "Prototypes.h"

#include "Crossings/ValueText.h"

#include <algorithm>
#include <array>
#include <span>
#include <utility>

// Where thunks lead: the function's number is in eax, the arguments begin behind the return address. Old plugins align
// the stack to 4 bytes only.
extern "C" __attribute__((visibility("hidden"))) void AvskEnterOpenGL();

asm(R"(
    .text
    .p2align 4
    .type AvskEnterOpenGL, @function
AvskEnterOpenGL:
    .cfi_startproc
    leal 4(%esp), %edx
    pushl %ebp
    .cfi_def_cfa_offset 8
    .cfi_offset %ebp, -8
    movl %esp, %ebp
    .cfi_def_cfa_register %ebp
    andl $-16, %esp
    subl $8, %esp
    pushl %edx
    pushl %eax
    call AvskCallOpenGL
    leave
    .cfi_def_cfa %esp, 4
    ret
    .cfi_endproc
    .size AvskEnterOpenGL, . - AvskEnterOpenGL
)");

namespace opengl {
namespace {

using Real = void (*)();

std::array<Real, kFunctionCount> gReal{};    // null if Mesa lacks it
std::span<crossings::Prototype> gPrototypes; // empty before the first call
unsigned long gCalls = 0;                    // that a thunk has seen
bool gIsUsed = false;
bool gIsBetween = false;

// ---- Calls with any number of arguments, all of which are on the stack

template <std::size_t>
using Word = std::uint32_t;

template <std::size_t... I>
std::uint64_t CallWith(Real function, [[maybe_unused]] const std::uint32_t *words, std::index_sequence<I...>) {
    return reinterpret_cast<std::uint64_t (*)(Word<I>...)>(function)(words[I]...);
}

template <std::size_t kWords>
std::uint64_t Call(Real function, const std::uint32_t *words) {
    return CallWith(function, words, std::make_index_sequence<kWords>());
}

using Caller = std::uint64_t (*)(Real function, const std::uint32_t *words);

template <std::size_t... I>
constexpr std::array<Caller, sizeof...(I)> MakeCallers(std::index_sequence<I...>) {
    return {&Call<I>...};
}

constexpr std::size_t kMostWords = Values::kMost;
constexpr auto kCallers = MakeCallers(std::make_index_sequence<kMostWords + 1>());

constexpr int kWords[] = {
#define AVSK_OPENGL(name, text, types, words, flags, groups) words,
#include "Functions.inc"
#undef AVSK_OPENGL
};
static_assert(std::ranges::max(kWords) <= int{kMostWords});

// ---- Slots

// The state between glBegin and glEnd cannot be asked without an error, so these calls are always seen.
bool IsFollowed(unsigned number) { return number == kNumber_glBegin || number == kNumber_glEnd; }

bool NeedsThunk(unsigned number) {
    const Function &function = kFunctions[number];
    return !gReal[number] || IsFollowed(number) || (!gPrototypes.empty() && gPrototypes[number].observers != 0) ||
           (gHandlers.drawing && (function.flags & (kDraws | kReads)) != 0) ||
           (gHandlers.reading && (function.flags & kReads) != 0);
}

std::uint64_t NeutralResult(const Function &function) {
    return function.Types()[0] == 's' ? reinterpret_cast<std::uintptr_t>("") : 0;
}

void NoteBeginAndEnd(unsigned number, const std::uint32_t *words) {
    constexpr std::uint32_t kLastMode = 0xE;
    if (number == kNumber_glBegin)
        gIsBetween = gIsBetween || words[0] <= kLastMode;
    else if (number == kNumber_glEnd)
        gIsBetween = false;
}

// The time of what it does is the host's.
void BeginUse() {
    const crossings::Clock::time_point start = crossings::Clock::now();
    gIsUsed = true;
    gPrototypes = Prototypes();
    crossings::SetOpenGL(gPrototypes, UpdateSlots);
    if (gHandlers.first)
        std::exchange(gHandlers.first, nullptr)();
    crossings::LeaveOutTime(start);
}

std::uint64_t CallReal(unsigned number, const std::uint32_t *words) {
    const Function &function = kFunctions[number];
    if (!gReal[number])
        return NeutralResult(function);
    NoteBeginAndEnd(number, words);
    const std::uint64_t result = kCallers[function.words](gReal[number], words);
    return number == kNumber_glGetError && gHandlers.error ? gHandlers.error(static_cast<std::uint32_t>(result))
                                                           : result;
}

std::uint64_t CallObserved(unsigned number, const std::uint32_t *words) {
    const Function &function = kFunctions[number];
    Values values;
    crossings::Crossing crossing(gPrototypes[number], crossings::Side::OpenGL, ReadArguments(values, function, words));
    const std::uint64_t result = CallReal(number, words);
    crossing.Return(ReadResult(function, result));
    return result;
}

std::uint64_t Enter(unsigned number, const std::uint32_t *words) {
    const Function &function = kFunctions[number];
    // Mesa's context belongs to one thread.
    if (!crossings::IsObservedThread()) {
        if (!gPrototypes.empty())
            crossings::NoteUnobserved(gPrototypes[number], crossings::Side::OpenGL);
        return NeutralResult(function);
    }
    ++gCalls;
    if (!gIsUsed)
        BeginUse();
    if (gHandlers.reading && (function.flags & kReads) != 0)
        std::exchange(gHandlers.reading, nullptr)();
    if (gHandlers.drawing && !gIsBetween && (function.flags & (kDraws | kReads)) != 0)
        gHandlers.drawing();
    const bool isObserved = gPrototypes[number].observers != 0 && crossings::AreObserved();
    return isObserved ? CallObserved(number, words) : CallReal(number, words);
}

} // namespace

void TakeCalls() {
    AvskOpenGL &library = *avskOpenGL();
    library.call = &AvskEnterOpenGL;
    gCalls = 0;
    gIsUsed = false;
    UpdateSlots();
}

void SetFunctions(Real (*find)(const char *name)) {
    for (std::size_t i = 0; i < kFunctionCount; ++i)
        gReal[i] = find ? find(kFunctions[i].Name()) : nullptr;
    gIsBetween = false;
    UpdateSlots();
}

void UpdateSlots() {
    AvskOpenGL &library = *avskOpenGL();
    for (unsigned i = 0; i < kFunctionCount; ++i) {
        // A thunk does not return in st(0). Mesa lacks the only function that does, and its slot is neutral.
        if (kFunctions[i].Types()[0] == 'f')
            continue;
        const unsigned char *const thunk = library.thunks + i * kAvskOpenGLThunkSize;
        library.slots[i] = NeedsThunk(i) ? const_cast<unsigned char *>(thunk) : reinterpret_cast<void *>(gReal[i]);
    }
}

bool IsUsed() { return gIsUsed; }
unsigned long CountedCalls() { return gCalls; }
bool IsBetweenBeginAndEnd() { return gIsBetween; }

bool AddCallUnderWay(crossings::Line &line, const void *stack) {
    const AvskOpenGL &library = *avskOpenGL();
    if (!library.stack || stack > library.stack || *library.stack != library.returnAddress)
        return false;
    const Function &function = kFunctions[library.last];
    Values values;
    const auto arguments = ReadArguments(values, function, library.stack + 1);
    for (crossings::Value &value : arguments) {
        if (value.kind == crossings::Value::Kind::Function) // whose name cannot be looked up now
            value.kind = crossings::Value::Kind::Pointer;
    }
    line.Add(function.Name());
    line.Add('(');
    crossings::AddValues(line, function.Parameters(), arguments);
    line.Add(')');
    return true;
}

} // namespace opengl

extern "C" __attribute__((visibility("hidden"), used)) std::uint64_t AvskCallOpenGL(unsigned number,
                                                                                    const std::uint32_t *words) {
    return opengl::Enter(number, words);
}
