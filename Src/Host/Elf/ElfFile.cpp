// Reads the headers, sections and symbol tables of an ELF file; see ElfFile.h.
// Every offset and size comes from the file and is checked against its length.
#include "ElfFile.h"

#include "Common/Files.h"

#include <algorithm>
#include <cerrno>
#include <cstdint>
#include <cstring>
#include <map>
#include <string_view>
#include <utility>

#include <elf.h>
#include <sys/stat.h>

namespace host {
namespace {

constexpr const char *kBreaksOff = "breaks off: copy it again";

struct Elf32 {
    using Header = Elf32_Ehdr;
    using Part = Elf32_Phdr;
    using Section = Elf32_Shdr;
    using Symbol = Elf32_Sym;
    using Dynamic = Elf32_Dyn;
};

struct Elf64 {
    using Header = Elf64_Ehdr;
    using Part = Elf64_Phdr;
    using Section = Elf64_Shdr;
    using Symbol = Elf64_Sym;
    using Dynamic = Elf64_Dyn;
};

std::string MachineName(int machine) {
    constexpr std::pair<int, const char *> kNames[] = {{EM_386, "x86"},
                                                       {EM_X86_64, "x86-64"},
                                                       {EM_ARM, "ARM"},
                                                       {EM_AARCH64, "64-bit ARM"},
                                                       {EM_RISCV, "RISC-V"},
                                                       {EM_PPC, "PowerPC"},
                                                       {EM_PPC64, "64-bit PowerPC"},
                                                       {EM_MIPS, "MIPS"},
                                                       {EM_S390, "System z"},
                                                       {EM_SPARC, "SPARC"}};
    for (const auto &[number, name] : kNames) {
        if (number == machine)
            return name;
    }
    return "machine " + std::to_string(machine);
}

ElfFile::Type TypeOf(int type) {
    return type == ET_DYN    ? ElfFile::Type::SharedLibrary
           : type == ET_EXEC ? ElfFile::Type::Program
           : type == ET_REL  ? ElfFile::Type::Object
                             : ElfFile::Type::Other;
}

template <class Elf>
class Reader {
  public:
    Reader(const FileParts &parts, ElfSymbols symbols) : mParts(parts), mReadsSymbols(symbols == ElfSymbols::Read) {}

    // False if the file breaks off.
    bool Read(ElfFile &file) {
        const auto headers = mParts.Table<typename Elf::Header>(0, 1);
        if (headers.empty())
            return false;
        const auto &header = headers.front();
        file.machine = MachineName(header.e_machine);
        file.type = TypeOf(header.e_type);
        const auto parts = mParts.Table<typename Elf::Part>(header.e_phoff, header.e_phnum);
        if (parts.size() != header.e_phnum)
            return false;
        file.hasExecutableStack = true; // unless a part says otherwise
        for (const auto &part : parts) {
            if (part.p_type == PT_LOAD && !mParts.Contains(part.p_offset, part.p_filesz))
                return false;
            file.hasInterpreter = file.hasInterpreter || part.p_type == PT_INTERP;
            if (part.p_type == PT_GNU_STACK)
                file.hasExecutableStack = (part.p_flags & PF_X) != 0;
        }
        mSections = mParts.Table<typename Elf::Section>(header.e_shoff, header.e_shnum);
        for (const auto &section : mSections) {
            if (section.sh_type == SHT_DYNSYM && mReadsSymbols)
                ReadDynamicSymbols(section, file);
            else if (section.sh_type == SHT_DYNAMIC)
                ReadDynamic(section, file);
            if (header.e_shstrndx < mSections.size())
                file.hasDebugLines =
                    file.hasDebugLines || Text(mSections[header.e_shstrndx], section.sh_name) == ".debug_line";
        }
        for (const auto &section : mSections) {
            if (section.sh_type == SHT_SYMTAB && mReadsSymbols)
                ReadHidden(section, file);
        }
        return true;
    }

  private:
    using Section = typename Elf::Section;
    using Symbol = typename Elf::Symbol;

    // A text of a table of texts; empty if it does not lie in the table.
    std::string Text(const Section &texts, std::uint64_t offset) {
        const auto [table, isNew] = mTexts.try_emplace(texts.sh_offset);
        if (isNew)
            table->second = mParts.Bytes(texts.sh_offset, texts.sh_size);
        return offset < table->second.size() ? table->second.c_str() + offset : "";
    }

    // Calls use(symbol, name) for each symbol of a table.
    template <class Use>
    void ForEach(const Section &table, Use use) {
        if (table.sh_link >= mSections.size())
            return;
        for (const Symbol &symbol : mParts.Table<Symbol>(table.sh_offset, table.sh_size / sizeof(Symbol))) {
            std::string name = Text(mSections[table.sh_link], symbol.st_name);
            if (!name.empty())
                use(symbol, std::move(name));
        }
    }

    void ReadDynamicSymbols(const Section &table, ElfFile &file) {
        file.hasSymbols = true;
        ForEach(table, [&file](const Symbol &symbol, std::string name) {
            const int binding = symbol.st_info >> 4;
            if (binding == STB_GNU_UNIQUE && symbol.st_shndx != SHN_UNDEF)
                file.unique.push_back(name);
            if (symbol.st_shndx != SHN_UNDEF)
                file.exported.push_back(std::move(name));
            else if (binding == STB_GLOBAL)
                file.undefined.push_back(std::move(name));
        });
        std::sort(file.exported.begin(), file.exported.end());
    }

    void ReadHidden(const Section &table, ElfFile &file) {
        file.hasFunctionNames = true;
        ForEach(table, [&file](const Symbol &symbol, std::string name) {
            const int type = symbol.st_info & 0xF;
            if (type == STT_FUNC && symbol.st_shndx != SHN_UNDEF &&
                !std::binary_search(file.exported.begin(), file.exported.end(), name))
                file.hidden.push_back(std::move(name));
        });
    }

    void ReadDynamic(const Section &table, ElfFile &file) {
        using Dynamic = typename Elf::Dynamic;
        if (table.sh_link >= mSections.size())
            return;
        for (const Dynamic &entry : mParts.Table<Dynamic>(table.sh_offset, table.sh_size / sizeof(Dynamic))) {
            if (entry.d_tag == DT_NULL)
                return;
            const auto text = [&] { return Text(mSections[table.sh_link], entry.d_un.d_val); };
            if (entry.d_tag == DT_NEEDED)
                file.needed.push_back(text());
            else if (entry.d_tag == DT_RPATH || entry.d_tag == DT_RUNPATH)
                AddFolders(text(), file);
            else if (entry.d_tag == DT_TEXTREL || (entry.d_tag == DT_FLAGS && (entry.d_un.d_val & DF_TEXTREL) != 0))
                file.hasTextRelocations = true;
            else if (entry.d_tag == DT_FLAGS_1 && (entry.d_un.d_val & DF_1_NODELETE) != 0)
                file.isNeverUnloaded = true;
        }
    }

    static void AddFolders(std::string_view list, ElfFile &file) {
        while (!list.empty()) {
            const std::size_t end = std::min(list.find(':'), list.size());
            file.folders.emplace_back(list.substr(0, end));
            list.remove_prefix(std::min(end + 1, list.size()));
        }
    }

    const FileParts &mParts;
    const bool mReadsSymbols;
    std::vector<Section> mSections;
    std::map<std::uint64_t, std::string> mTexts; // by offset in the file
};

// Why a file is not read; empty if it can be.
std::string FaultOf(const std::string &path) {
    constexpr off_t kMost = off_t{1} << 28; // its tables would not fit into a 32-bit process
    struct stat info = {};
    if (stat(path.c_str(), &info) != 0)
        return std::string("cannot be read (") + std::strerror(errno) + ")";
    if (!S_ISREG(info.st_mode))
        return "is no file"; // opening a pipe would wait for a writer
    return info.st_size > kMost ? "is larger than 256 MiB" : "";
}

} // namespace

ElfReading ReadElf(const std::string &path, ElfSymbols symbols) {
    ElfReading reading;
    reading.fault = FaultOf(path);
    if (!reading.fault.empty())
        return reading;
    const FileParts file(path);
    if (!file.IsOpen()) {
        reading.fault = std::string("cannot be read (") + std::strerror(errno) + ")";
        return reading;
    }
    const std::string begin = file.Bytes(0, std::min<std::uint64_t>(file.Size(), EI_NIDENT));
    if (begin.starts_with("!<arch>")) {
        reading.fault = "is a static library: link it with -shared";
    } else if (!begin.starts_with(ELFMAG)) {
        reading.fault = "is no ELF file";
    } else if (begin.size() <= EI_DATA) {
        reading.fault = kBreaksOff;
    } else if (begin[EI_DATA] != ELFDATA2LSB) {
        reading.fault = "is built for a big-endian machine";
    } else {
        const bool is64 = begin[EI_CLASS] == ELFCLASS64;
        reading.file.bits = is64 ? 64 : 32;
        const bool isWhole =
            is64 ? Reader<Elf64>(file, symbols).Read(reading.file) : Reader<Elf32>(file, symbols).Read(reading.file);
        if (!isWhole)
            reading.fault = kBreaksOff;
    }
    return reading;
}

} // namespace host
