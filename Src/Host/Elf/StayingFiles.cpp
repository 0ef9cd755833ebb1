// Reads the mappings of this process and searches for what keeps a file mapped;
// see StayingFiles.h. The dynamic linker does not tell why, so the file, the other
// libraries and the stacks of the threads are examined. Called by the watch
// between two rounds, when no plugin is loaded.
#include "StayingFiles.h"

#include "ElfFile.h"

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <map>
#include <memory>
#include <sstream>

#include <cxxabi.h>
#include <link.h>
#include <unistd.h>

namespace host {
namespace {

namespace fs = std::filesystem;

struct Range {
    std::uintptr_t begin = 0;
    std::uintptr_t end = 0;

    bool Contains(std::uintptr_t address) const { return address >= begin && address < end; }
};

struct Mapping {
    Range range;
    std::string file; // empty without one
};

std::vector<Mapping> ReadMappings() {
    std::vector<Mapping> mappings;
    std::ifstream stream("/proc/self/maps");
    for (std::string line; std::getline(stream, line);) {
        Mapping mapping;
        char *rest = nullptr;
        mapping.range.begin = std::strtoul(line.c_str(), &rest, 16);
        mapping.range.end = std::strtoul(rest + 1, nullptr, 16);
        const std::size_t path = line.find('/');
        if (path != std::string::npos)
            mapping.file = line.substr(path);
        mappings.push_back(std::move(mapping));
    }
    return mappings;
}

// The addresses that each file of a folder occupies, from its first mapping to its last.
std::map<std::string, Range> MappedFiles(const std::string &folder, const std::vector<Mapping> &mappings) {
    std::map<std::string, Range> files;
    for (const Mapping &mapping : mappings) {
        if (!mapping.file.starts_with(folder))
            continue;
        Range &range = files.try_emplace(mapping.file, mapping.range).first->second;
        range.end = std::max(range.end, mapping.range.end);
    }
    return files;
}

std::string Demangled(const std::string &symbol) {
    const std::unique_ptr<char, decltype(&std::free)> text(
        abi::__cxa_demangle(symbol.c_str(), nullptr, nullptr, nullptr), std::free);
    return text ? text.get() : symbol;
}

// ---- Threads

// The stack pointer of a blocked thread, the last number but one of its line; 0 if it runs.
std::uintptr_t StackPointer(const fs::path &task) {
    std::ifstream stream(task / "syscall");
    std::vector<std::string> words;
    for (std::string word; stream >> word;)
        words.push_back(word);
    return words.size() < 3 ? 0 : std::strtoul(words[words.size() - 2].c_str(), nullptr, 16);
}

// Whether a stack contains an address of a range, as a thread that was started there does.
bool StackLeadsInto(std::uintptr_t stack, const Range &code, const std::vector<Mapping> &mappings) {
    constexpr std::size_t kMost = 256 * 1024;
    const auto mapping = std::find_if(mappings.begin(), mappings.end(),
                                      [stack](const Mapping &other) { return other.range.Contains(stack); });
    if (mapping == mappings.end())
        return false;
    std::vector<std::uintptr_t> words(std::min<std::size_t>(kMost, mapping->range.end - stack) /
                                      sizeof(std::uintptr_t));
    // Not through a pointer: the thread may end, and its stack with it.
    std::ifstream("/proc/self/mem", std::ios::binary)
        .seekg(static_cast<std::streamoff>(stack))
        .read(reinterpret_cast<char *>(words.data()), static_cast<std::streamsize>(words.size() * sizeof words[0]));
    return std::any_of(words.begin(), words.end(), [&code](std::uintptr_t word) { return code.Contains(word); });
}

// The number of a thread that runs in a range, or was called from there; empty if there is none.
std::string ThreadIn(const Range &code, const std::vector<Mapping> &mappings) {
    std::error_code error;
    for (fs::directory_iterator task("/proc/self/task", error), end; !error && task != end; task.increment(error)) {
        std::string number = task->path().filename().string();
        if (number != std::to_string(getpid()) && StackLeadsInto(StackPointer(task->path()), code, mappings))
            return number;
    }
    return "";
}

// ---- Other libraries

struct Need {
    std::string name; // of the file that is needed
    std::string path;
    std::string by;
};

int NoteNeed(dl_phdr_info *info, std::size_t /*size*/, void *argument) {
    Need &need = *static_cast<Need *>(argument);
    if (need.by.empty() && info->dlpi_name != need.path) {
        const std::vector<std::string> names = ReadElf(info->dlpi_name, ElfSymbols::Skip).file.needed;
        if (std::find(names.begin(), names.end(), need.name) != names.end())
            need.by = info->dlpi_name;
    }
    return 0;
}

std::string LibraryThatNeeds(const std::string &path) {
    Need need{fs::path(path).filename().string(), path, ""};
    dl_iterate_phdr(NoteNeed, &need);
    return need.by;
}

// ---- Reasons

bool Imports(const ElfFile &file, const char *begin) {
    return std::any_of(file.undefined.begin(), file.undefined.end(),
                       [begin](const std::string &name) { return name.starts_with(begin); });
}

std::string ReasonOf(const std::string &path, const Range &code, const std::vector<Mapping> &mappings) {
    const ElfFile file = ReadElf(path).file;
    if (file.isNeverUnloaded)
        return "it is linked with -z nodelete: leave this option out";
    if (!file.unique.empty())
        return "its unique symbol '" + Demangled(file.unique.front()) +
               "', an inline variable or a static of an inline function, keeps it: compile it with -fno-gnu-unique";
    if (const std::string thread = ThreadIn(code, mappings); !thread.empty())
        return "thread " + thread + " runs in it: end and join it in AVPluginStop";
    if (Imports(file, "__cxa_thread_atexit"))
        return "a thread_local or static object whose destructor runs when its thread ends keeps it: use a plain "
               "static that AVPluginStop clears";
    if (const std::string library = LibraryThatNeeds(path); !library.empty())
        return "'" + library + "' needs it and is still loaded: close it in AVPluginStop";
    return "something holds it: close in AVPluginStop what it opened with dlopen(), and keep no exceptions";
}

} // namespace

std::vector<std::string> DescribeStayingFiles(const std::string &folder) {
    const std::vector<Mapping> mappings = ReadMappings();
    std::vector<std::string> lines;
    for (const auto &[path, range] : MappedFiles(folder, mappings))
        lines.push_back(path.substr(folder.size()) +
                        " is still mapped after it was unloaded: " + ReasonOf(path, range, mappings));
    return lines;
}

std::string ThreadInFile(const std::string &path) {
    const std::vector<Mapping> mappings = ReadMappings();
    const auto files = MappedFiles((fs::path(path).parent_path() / "").string(), mappings);
    const auto file = files.find(path);
    return file == files.end() ? "" : ThreadIn(file->second, mappings);
}

} // namespace host
