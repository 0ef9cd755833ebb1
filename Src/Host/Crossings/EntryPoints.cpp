// Wraps the entry points of plugins. The library finds them with dlsym(), so
// this program defines dlsym(). Lookups of other names go on to the dynamic
// linker's dlsym().
//
// Built without sanitizers, because they call dlsym() before they are
// initialised. That path must call no function that is instrumented elsewhere.
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
        std::abort(); // nothing works without dlsym()
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

// Null if the name is not that of an entry point.
void *EntryPoint(void *handle, const char *name) {
    for (const CallbackKind *kind : kEntryPoints) {
        if (std::strcmp(kind->what.name, name) != 0)
            continue;
        void *address = RealLookup()(handle, name);
        if (kind == &k_AVPluginStart)
            ForgetSymbolsNear(address);
        // The owner is known when it is called.
        const auto function = reinterpret_cast<Function>(address);
        return reinterpret_cast<void *>(Wrap(function, *kind, Side::Plugin, NO_PLUGIN_ID));
    }
    return nullptr;
}

} // namespace

// If the upper half is not zero, the lower half is the result of the lookup; else
// it is the dynamic linker's dlsym(), to be called.
extern "C" __attribute__((used, visibility("hidden"))) std::uint64_t AvskLookUp(void *handle, const char *name) {
    void *entry = MayBeEntryPoint(name) && IsObservedThread() ? EntryPoint(handle, name) : nullptr;
    constexpr std::uint64_t kFinal = std::uint64_t{1} << 32;
    return entry ? kFinal | reinterpret_cast<std::uintptr_t>(entry) : reinterpret_cast<std::uintptr_t>(RealLookup());
}

// RTLD_NEXT depends on the caller's address, so this jumps to the dynamic
// linker's dlsym() with the stack as the caller left it.
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
