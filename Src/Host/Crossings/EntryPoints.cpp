// Defines dlsym(). The library finds the entry points of plugins with it, which are
// wrapped here. A host may find the library's names with it, for which it gets
// those of this layer. Lookups of other names go on to the dynamic linker's dlsym().
//
// Built without sanitizers, because they call dlsym() before they are
// initialised. That path must call no function that is instrumented elsewhere.
#include "Kinds.h"
#include "RealSymbols.h"
#include "Symbols.h"

#include <cstring>

#include <dlfcn.h>

namespace crossings {
namespace {

constexpr const CallbackKind *kEntryPoints[] = {&k_AVPluginStart, &k_AVPluginStop, &k_AVPluginEnable,
                                                &k_AVPluginDisable, &k_AVPluginReceiveMessage};

bool StartsWith(const char *name, const char *prefix) {
    while (*prefix) {
        if (*name++ != *prefix++)
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

// This layer's definition of an exported name, if the lookup finds the library's or this one.
void *LookUpExport(void *handle, const char *name) {
    void *const ours = LayerSymbol(name);
    if (!ours)
        return nullptr;
    const bool isGlobal = handle == RTLD_DEFAULT || handle == RTLD_NEXT;
    void *const found = isGlobal ? NextSymbol(name) : RealLookup()(handle, name);
    // The handle of the whole program finds this layer also if there is no library.
    return found == ours && !NextSymbol(name) ? nullptr : found ? ours : nullptr;
}

} // namespace

// If the upper half is not zero, the lower half is the result of the lookup; else
// it is the dynamic linker's dlsym(), to be called.
extern "C" __attribute__((used, visibility("hidden"))) std::uint64_t AvskLookUp(void *handle, const char *name) {
    void *const found = StartsWith(name, "AVPlugin") && IsObservedThread() ? EntryPoint(handle, name)
                        : StartsWith(name, "AVSK")                         ? LookUpExport(handle, name)
                                                                           : nullptr;
    constexpr std::uint64_t kFinal = std::uint64_t{1} << 32;
    return found ? kFinal | reinterpret_cast<std::uintptr_t>(found) : reinterpret_cast<std::uintptr_t>(RealLookup());
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

} // namespace crossings
