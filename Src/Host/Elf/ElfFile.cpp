// Reads the headers, sections and symbol tables of an ELF file; see ElfFile.h.
// Every offset and size comes from the file and is checked against its length.
#include "ElfFile.h"

#include <algorithm>
#include <cerrno>
#include <cstdint>
#include <cstring>
#include <fstream>
#include <iterator>
#include <optional>
#include <string_view>
#include <utility>

#include <elf.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

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

// The bytes of a file. What does not lie within them is not there.
class Bytes {
  public:
    explicit Bytes(std::string_view bytes) : mBytes(bytes) {}

    bool Contains(std::uint64_t offset, std::uint64_t size) const {
        return offset <= mBytes.size() && size <= mBytes.size() - offset;
    }

    template <class T>
    std::vector<T> Table(std::uint64_t offset, std::uint64_t count) const {
        if (count > mBytes.size() / sizeof(T) || !Contains(offset, count * sizeof(T)))
            return {};
        std::vector<T> table(static_cast<std::size_t>(count));
        if (!table.empty())
            std::memcpy(table.data(), mBytes.data() + offset, table.size() * sizeof(T));
        return table;
    }

    // A text of a table of texts.
    template <class Section>
    std::string Text(const Section &texts, std::uint64_t offset) const {
        if (offset >= texts.sh_size || !Contains(texts.sh_offset, texts.sh_size))
            return "";
        const std::string_view rest = mBytes.substr(static_cast<std::size_t>(texts.sh_offset + offset),
                                                    static_cast<std::size_t>(texts.sh_size - offset));
        return std::string(rest.substr(0, rest.find('\0')));
    }

  private:
    std::string_view mBytes;
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
    explicit Reader(std::string_view bytes) : mBytes(bytes) {}

    // False if the file breaks off.
    bool Read(ElfFile &file) {
        const auto headers = mBytes.Table<typename Elf::Header>(0, 1);
        if (headers.empty())
            return false;
        const auto &header = headers.front();
        file.machine = MachineName(header.e_machine);
        file.type = TypeOf(header.e_type);
        const auto parts = mBytes.Table<typename Elf::Part>(header.e_phoff, header.e_phnum);
        if (parts.size() != header.e_phnum)
            return false;
        file.hasExecutableStack = true; // unless a part says otherwise
        for (const auto &part : parts) {
            if (part.p_type == PT_LOAD && !mBytes.Contains(part.p_offset, part.p_filesz))
                return false;
            file.hasInterpreter = file.hasInterpreter || part.p_type == PT_INTERP;
            if (part.p_type == PT_GNU_STACK)
                file.hasExecutableStack = (part.p_flags & PF_X) != 0;
        }
        mSections = mBytes.Table<typename Elf::Section>(header.e_shoff, header.e_shnum);
        for (const auto &section : mSections) {
            if (section.sh_type == SHT_DYNSYM)
                ReadDynamicSymbols(section, file);
            else if (section.sh_type == SHT_DYNAMIC)
                ReadDynamic(section, file);
            if (header.e_shstrndx < mSections.size())
                file.hasDebugLines =
                    file.hasDebugLines || mBytes.Text(mSections[header.e_shstrndx], section.sh_name) == ".debug_line";
        }
        for (const auto &section : mSections) {
            if (section.sh_type == SHT_SYMTAB)
                ReadHidden(section, file);
        }
        return true;
    }

  private:
    using Section = typename Elf::Section;
    using Symbol = typename Elf::Symbol;

    // Calls use(symbol, name) for each symbol of a table.
    template <class Use>
    void ForEach(const Section &table, Use use) const {
        if (table.sh_link >= mSections.size())
            return;
        for (const Symbol &symbol : mBytes.Table<Symbol>(table.sh_offset, table.sh_size / sizeof(Symbol))) {
            std::string name = mBytes.Text(mSections[table.sh_link], symbol.st_name);
            if (!name.empty())
                use(symbol, std::move(name));
        }
    }

    void ReadDynamicSymbols(const Section &table, ElfFile &file) const {
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

    void ReadHidden(const Section &table, ElfFile &file) const {
        file.hasFunctionNames = true;
        ForEach(table, [&file](const Symbol &symbol, std::string name) {
            const int type = symbol.st_info & 0xF;
            if (type == STT_FUNC && symbol.st_shndx != SHN_UNDEF &&
                !std::binary_search(file.exported.begin(), file.exported.end(), name))
                file.hidden.push_back(std::move(name));
        });
    }

    void ReadDynamic(const Section &table, ElfFile &file) const {
        using Dynamic = typename Elf::Dynamic;
        if (table.sh_link >= mSections.size())
            return;
        for (const Dynamic &entry : mBytes.Table<Dynamic>(table.sh_offset, table.sh_size / sizeof(Dynamic))) {
            if (entry.d_tag == DT_NULL)
                return;
            const auto text = [&] { return mBytes.Text(mSections[table.sh_link], entry.d_un.d_val); };
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

    Bytes mBytes;
    std::vector<Section> mSections;
};

// The whole file; nothing and a fault if it cannot be read.
std::optional<std::string> ReadBytes(const std::string &path, std::string &fault) {
    constexpr off_t kMost = off_t{1} << 28; // more would not fit into a 32-bit process
    struct stat info = {};
    if (stat(path.c_str(), &info) == 0 && !S_ISREG(info.st_mode)) {
        fault = "is no file"; // opening a pipe would wait for a writer
        return std::nullopt;
    }
    std::ifstream stream(path, std::ios::binary);
    if (!stream) {
        fault = std::string("cannot be read (") + std::strerror(errno) + ")";
        return std::nullopt;
    }
    if (info.st_size > kMost) {
        fault = "is larger than 256 MiB";
        return std::nullopt;
    }
    std::string bytes(static_cast<std::size_t>(info.st_size), '\0');
    stream.read(bytes.data(), static_cast<std::streamsize>(bytes.size()));
    bytes.resize(static_cast<std::size_t>(stream.gcount()));
    return bytes;
}

} // namespace

ElfReading ReadElf(const std::string &path) {
    ElfReading reading;
    const auto bytes = ReadBytes(path, reading.fault);
    if (!bytes)
        return reading;
    const std::string_view text = *bytes;
    if (text.starts_with("!<arch>")) {
        reading.fault = "is a static library: link it with -shared";
    } else if (!text.starts_with(ELFMAG)) {
        reading.fault = "is no ELF file";
    } else if (text.size() <= EI_DATA) {
        reading.fault = kBreaksOff;
    } else if (text[EI_DATA] != ELFDATA2LSB) {
        reading.fault = "is built for a big-endian machine";
    } else {
        const bool is64 = text[EI_CLASS] == ELFCLASS64;
        reading.file.bits = is64 ? 64 : 32;
        const bool isWhole = is64 ? Reader<Elf64>(text).Read(reading.file) : Reader<Elf32>(text).Read(reading.file);
        if (!isWhole)
            reading.fault = kBreaksOff;
    }
    return reading;
}

} // namespace host
