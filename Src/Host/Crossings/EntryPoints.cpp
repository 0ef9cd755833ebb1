// Plugins' entry points. The library looks them up by name, so this program
// defines the function it does that with; whatever else is looked up goes
// straight on to the dynamic linker's own.
//
// Built without sanitizers, which look up names of their own before they work:
// that path calls nothing that other files might hold an instrumented copy of.
#include "Kinds.h"
#include "RealSymbols.h"
#include "Symbols.h"

#include <cstdlib>
#include <cstring>

#include <dlfcn.h>

namespace crossings {
namespace {

using Lookup = void *(*)(void *handle, const char *name);

constexpr const CallbackKind *kEntryPoints[] = {&k_AVPluginStart, &k_AVPluginStop, &k_AVPluginEnable,
                                                &k_AVPluginDisable, &k_AVPluginReceiveMessage};

Lookup RealLookup() {
    static constinit Lookup real = nullptr;
    constexpr const char *kVersions[] = {"GLIBC_2.34", "GLIBC_2.0"};
    for (const char *version : kVersions) {
        if (!real)
            real = reinterpret_cast<Lookup>(dlvsym(RTLD_NEXT, "dlsym", version));
    }
    if (!real)
        std::abort(); // nothing works without it
    return real;
}

bool MayBeEntryPoint(const char *name) {
    constexpr const char kPrefix[] = "AVPlugin";
    for (std::size_t i = 0; i + 1 < sizeof kPrefix; ++i) {
        if (name[i] != kPrefix[i])
            return false;
    }
    return true;
}

// Null for all names but those of entry points.
void *EntryPoint(void *handle, const char *name) {
    for (const CallbackKind *kind : kEntryPoints) {
        if (std::strcmp(kind->what.name, name) != 0)
            continue;
        void *address = RealLookup()(handle, name);
        if (kind == &k_AVPluginStart)
            ForgetSymbolsNear(address);
        // Whose it is shows when it is called.
        const auto function = reinterpret_cast<Function>(address);
        return reinterpret_cast<void *>(Wrap(function, *kind, Side::Plugin, NO_PLUGIN_ID));
    }
    return nullptr;
}

} // namespace

// The answer in the lower half if the upper one is not zero; else the function to ask.
extern "C" __attribute__((used, visibility("hidden"))) std::uint64_t AvskLookUp(void *handle, const char *name) {
    void *entry = MayBeEntryPoint(name) ? EntryPoint(handle, name) : nullptr;
    constexpr std::uint64_t kFinal = std::uint64_t{1} << 32;
    return entry ? kFinal | reinterpret_cast<std::uintptr_t>(entry) : reinterpret_cast<std::uintptr_t>(RealLookup());
}

// What RTLD_NEXT means depends on the caller, so the dynamic linker must be
// reached with nothing of ours on the stack.
asm(R"(
    .text
    .globl dlsym
    .type dlsym, @function
dlsym:
    .cfi_startproc
    pushl 8(%esp)
    .cfi_adjust_cfa_offset 4
    pushl 8(%esp)
    .cfi_adjust_cfa_offset 4
    call AvskLookUp
    addl $8, %esp
    .cfi_adjust_cfa_offset -8
    testl %edx, %edx
    jnz 1f
    jmp *%eax
1:  ret
    .cfi_endproc
    .size dlsym, . - dlsym
    .section .note.GNU-stack, "", @progbits
    .text
)");

void *NextSymbol(const char *name) { return RealLookup()(RTLD_NEXT, name); }

} // namespace crossings
