// Reads symbol tables from files; see Symbols.h. The dynamic linker knows only
// exported names, and plugins export little else than their entry points. Owns
// the symbols of the files that were read, and the names of addresses.
#include "Symbols.h"

#include "Interned.h"

#include "Common/Files.h"

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <list>
#include <map>
#include <memory>
#include <string_view>
#include <unordered_map>
#include <vector>

#include <cxxabi.h>
#include <dlfcn.h>
#include <elf.h>
#include <link.h>
#include <unistd.h>

namespace crossings {
namespace {

struct Symbol {
    std::uint32_t begin;
    std::uint32_t size;
    const char *name; // in the texts of its file
};

struct FileSymbols {
    std::vector<Symbol> functions; // by ascending address
    std::list<std::string> texts;
};

std::vector<Elf32_Shdr> Sections(const host::FileParts &file) {
    const auto header = file.Table<Elf32_Ehdr>(0, 1);
    if (header.empty() || std::memcmp(header[0].e_ident, ELFMAG, SELFMAG) != 0 ||
        header[0].e_ident[EI_CLASS] != ELFCLASS32)
        return {};
    return file.Table<Elf32_Shdr>(header[0].e_shoff, header[0].e_shnum);
}

// The functions of all symbol tables. Reads nothing else of the file, which may be large.
FileSymbols ReadSymbols(const std::string &path) {
    const host::FileParts file(path);
    const std::vector<Elf32_Shdr> sections = Sections(file);
    FileSymbols symbols;
    for (const Elf32_Shdr &table : sections) {
        if ((table.sh_type != SHT_SYMTAB && table.sh_type != SHT_DYNSYM) || table.sh_link >= sections.size())
            continue;
        const Elf32_Shdr &texts = sections[table.sh_link];
        const std::string &names = symbols.texts.emplace_back(file.Bytes(texts.sh_offset, texts.sh_size));
        for (const auto &symbol : file.Table<Elf32_Sym>(table.sh_offset, table.sh_size / sizeof(Elf32_Sym))) {
            if (ELF32_ST_TYPE(symbol.st_info) == STT_FUNC && symbol.st_shndx != SHN_UNDEF &&
                symbol.st_name < names.size())
                symbols.functions.push_back({symbol.st_value, symbol.st_size, names.c_str() + symbol.st_name});
        }
    }
    std::sort(symbols.functions.begin(), symbols.functions.end(),
              [](const Symbol &a, const Symbol &b) { return a.begin < b.begin; });
    return symbols;
}

std::unordered_map<const void *, std::string_view> &gNames = *new std::unordered_map<const void *, std::string_view>;
std::map<std::string, FileSymbols> &gFiles = *new std::map<std::string, FileSymbols>;

const std::vector<Symbol> &SymbolsOf(const std::string &path) {
    const auto [file, isNew] = gFiles.try_emplace(path);
    if (isNew)
        file->second = ReadSymbols(path);
    return file->second.functions;
}

// Where an address lies; without a file if none is loaded there.
struct Location {
    explicit Location(const void *address) {
        Dl_info info{};
        link_map *map = nullptr;
        if (dladdr1(address, &info, reinterpret_cast<void **>(&map), RTLD_DL_LINKMAP) == 0 || !info.dli_fname)
            return;
        file = info.dli_fname;
        offset = static_cast<std::uint32_t>(reinterpret_cast<std::uintptr_t>(address) - (map ? map->l_addr : 0));
    }
    const char *file = nullptr;
    std::uint32_t offset = 0; // in the file
};

// The function at a place of a file; null if the file has no symbol for it.
const Symbol *SymbolOf(const Location &location) {
    const std::vector<Symbol> &symbols = SymbolsOf(location.file);
    auto found = std::upper_bound(symbols.begin(), symbols.end(), location.offset,
                                  [](std::uint32_t wanted, const Symbol &symbol) { return wanted < symbol.begin; });
    if (found == symbols.begin())
        return nullptr;
    --found;
    const std::uint32_t into = location.offset - found->begin;
    return into == 0 || into < found->size ? &*found : nullptr;
}

// Demangles a name and leaves out parameters and unnamed namespaces.
std::string Readable(const char *symbol) {
    int status = 0;
    const std::unique_ptr<char, decltype(&std::free)> demangled(abi::__cxa_demangle(symbol, nullptr, nullptr, &status),
                                                                std::free);
    if (status != 0)
        return symbol;
    std::string name = demangled.get();
    constexpr std::string_view kUnnamed = "(anonymous namespace)::";
    for (std::size_t at = 0; (at = name.find(kUnnamed, at)) != std::string::npos;)
        name.erase(at, kUnnamed.size());
    constexpr std::string_view kLambda = "{lambda(";
    return name.find(kLambda) == std::string::npos ? name.substr(0, name.find('(')) : name;
}

} // namespace

std::string SymbolAt(const void *address) {
    const Location location(address);
    if (!location.file)
        return "unknown code";
    if (const Symbol *symbol = SymbolOf(location))
        return Readable(symbol->name);
    const std::string file = location.file;
    char text[16];
    std::snprintf(text, sizeof text, "+0x%x", location.offset);
    return file.substr(file.rfind('/') + 1) + text;
}

std::size_t SizeAt(const void *function) {
    const Location location(function);
    const Symbol *symbol = location.file ? SymbolOf(location) : nullptr;
    return symbol && symbol->begin == location.offset ? symbol->size : 0;
}

std::string_view KeptNameAt(const void *address) {
    const auto [known, isNew] = gNames.try_emplace(address);
    if (isNew)
        known->second = Interned(SymbolAt(address)).kept;
    return known->second;
}

void ForgetSymbolsNear(const void *address) {
    gNames.clear();
    Dl_info info{};
    if (dladdr(address, &info) != 0 && info.dli_fname)
        gFiles.erase(info.dli_fname);
    std::erase_if(gFiles, [](const auto &file) { return access(file.first.c_str(), F_OK) != 0; });
}

} // namespace crossings
