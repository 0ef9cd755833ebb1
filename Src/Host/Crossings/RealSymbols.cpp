// Finds the library in the process; see RealSymbols.h. A program may link it, or
// load it at run time, also with a scope of its own. Owns a reference to a library
// that was loaded so: the layer keeps addresses in it.
//
// Built without sanitizers, because they call dlsym() before they are initialised.
#include "RealSymbols.h"

#include <cstdint>
#include <cstdlib>
#include <cstring>

#include <dlfcn.h>
#include <elf.h>
#include <link.h>
#include <sys/mman.h>
#include <unistd.h>

namespace crossings {
namespace {

constexpr const char *kFirstName = "AVSKInitializePlugins"; // every version of the library exports it

link_map *MapOf(const void *address) {
    Dl_info info{};
    link_map *map = nullptr;
    if (dladdr1(address, &info, reinterpret_cast<void **>(&map), RTLD_DL_LINKMAP) == 0)
        return nullptr;
    return map;
}

// The library calls dlsym() for entry points. If it was loaded with a scope of its
// own (RTLD_DEEPBIND), its call does not reach this layer: its slot is changed.
void RedirectLookups(const link_map &library) {
    std::uintptr_t symbols = 0;
    std::uintptr_t names = 0;
    struct {
        std::uintptr_t begin = 0;
        std::size_t size = 0;
    } relocations[2];
    for (const ElfW(Dyn) *entry = library.l_ld; entry->d_tag != DT_NULL; ++entry) {
        switch (entry->d_tag) {
        case DT_SYMTAB:
            symbols = entry->d_un.d_ptr;
            break;
        case DT_STRTAB:
            names = entry->d_un.d_ptr;
            break;
        case DT_JMPREL:
            relocations[0].begin = entry->d_un.d_ptr;
            break;
        case DT_PLTRELSZ:
            relocations[0].size = entry->d_un.d_val;
            break;
        case DT_REL:
            relocations[1].begin = entry->d_un.d_ptr;
            break;
        case DT_RELSZ:
            relocations[1].size = entry->d_un.d_val;
            break;
        default:
            break;
        }
    }
    if (!symbols || !names)
        return;
    for (const auto &[begin, size] : relocations) {
        const auto *entries = reinterpret_cast<const Elf32_Rel *>(begin);
        for (std::size_t i = 0; begin && i < size / sizeof *entries; ++i) {
            const auto &symbol = reinterpret_cast<const Elf32_Sym *>(symbols)[ELF32_R_SYM(entries[i].r_info)];
            const unsigned type = ELF32_R_TYPE(entries[i].r_info);
            if ((type != R_386_JMP_SLOT && type != R_386_GLOB_DAT) ||
                std::strcmp(reinterpret_cast<const char *>(names) + symbol.st_name, "dlsym") != 0)
                continue;
            auto *slot = reinterpret_cast<void **>(library.l_addr + entries[i].r_offset);
            if (*slot == reinterpret_cast<void *>(&dlsym))
                continue;
            const auto page = static_cast<std::uintptr_t>(sysconf(_SC_PAGESIZE));
            auto *const first = reinterpret_cast<void *>(reinterpret_cast<std::uintptr_t>(slot) & ~(page - 1));
            // A slot that is bound at once is read-only afterwards. One that is bound later stays writable.
            if (mprotect(first, page, PROT_READ | PROT_WRITE) == 0)
                *slot = reinterpret_cast<void *>(&dlsym);
        }
    }
}

// A handle of the library that the program loaded itself. Null if there is none.
void *OpenLibrary() {
    static const link_map *const ours = MapOf(reinterpret_cast<const void *>(&MapOf));
    const link_map *map = ours;
    while (map && map->l_prev)
        map = map->l_prev;
    for (; map; map = map->l_next) {
        if (map == ours || !map->l_name || !*map->l_name)
            continue;
        void *const handle = dlopen(map->l_name, RTLD_LAZY | RTLD_NOLOAD);
        if (!handle)
            continue;
        const void *const found = RealLookup()(handle, kFirstName);
        if (found && MapOf(found) == map)
            return handle;
        dlclose(handle);
    }
    return nullptr;
}

} // namespace

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

void *LayerSymbol(const char *name) {
    for (const Export *known = kExports; known->name; ++known) {
        if (std::strcmp(known->name, name) == 0)
            return known->address;
    }
    return nullptr;
}

void *NextSymbol(const char *name) {
    if (!LayerSymbol(name))
        return RealLookup()(RTLD_NEXT, name);
    static constinit void *library = nullptr;
    if (!library) {
        library = RealLookup()(RTLD_NEXT, kFirstName) ? RTLD_NEXT : OpenLibrary();
        if (!library)
            return nullptr;
        if (const link_map *const map = MapOf(RealLookup()(library, kFirstName)))
            RedirectLookups(*map);
    }
    return RealLookup()(library, name);
}

bool IsLibraryLoaded() { return NextSymbol(kFirstName) != nullptr; }

} // namespace crossings
