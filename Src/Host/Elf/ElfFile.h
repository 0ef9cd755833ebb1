// Reads what an ELF file says about itself: its machine, its symbols and the
// libraries that it needs. The file is not loaded and can be of any machine.
#ifndef AVSK_HOST_ELF_ELF_FILE_H
#define AVSK_HOST_ELF_ELF_FILE_H

#include <string>
#include <vector>

namespace host {

struct ElfFile {
    enum class Type {
        SharedLibrary,
        Program, // one that cannot be loaded as a library
        Object,
        Other,
    };

    int bits = 0;        // 32 or 64
    std::string machine; // "x86", "x86-64", "ARM" or the like
    Type type = Type::Other;
    bool hasSymbols = false; // false: the tables of symbols were removed or not read, and the lists are empty

    std::vector<std::string> exported;  // dynamic symbols that it defines
    std::vector<std::string> undefined; // dynamic symbols that it needs and does not define, without weak ones
    std::vector<std::string> needed;    // names of libraries
    std::vector<std::string> hidden;    // functions that it defines and does not export; empty in a stripped file
    std::vector<std::string> unique;    // dynamic symbols of which a process has only one; they keep the file mapped
    std::vector<std::string> folders;   // that it names for the search of libraries, "$ORIGIN/lib" or the like

    bool hasInterpreter = false;     // a program that the dynamic linker starts
    bool isNeverUnloaded = false;    // linked with -z nodelete
    bool hasTextRelocations = false; // its code is changed while it is loaded
    bool hasExecutableStack = false;
    bool hasFunctionNames = false; // of functions that it does not export
    bool hasDebugLines = false;

    // Whether a 32-bit x86 process can load it.
    bool IsForX86() const { return bits == 32 && machine == "x86"; }
};

// The file, or why it cannot be used: "is no ELF file". Exactly one of the two is empty.
struct ElfReading {
    ElfFile file;
    std::string fault;
};

// Without symbols only headers and needs are read, which is quick also for a large library.
enum class ElfSymbols {
    Read,
    Skip
};

ElfReading ReadElf(const std::string &path, ElfSymbols symbols = ElfSymbols::Read);

} // namespace host

#endif
