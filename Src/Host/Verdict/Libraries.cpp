// Searches libraries by the dynamic linker's rules; see Libraries.h.
#include "Libraries.h"

#include "Reference/Reference.h"

#include <cstdlib>
#include <filesystem>
#include <string_view>
#include <system_error>

#include <link.h>

namespace host {
namespace {

namespace fs = std::filesystem;

std::vector<std::string> SplitFolders(std::string_view list) {
    std::vector<std::string> folders;
    while (!list.empty()) {
        const std::size_t end = std::min(list.find(':'), list.size());
        folders.emplace_back(list.substr(0, end));
        list.remove_prefix(std::min(end + 1, list.size()));
    }
    return folders;
}

int NoteLoaded(dl_phdr_info *info, std::size_t /*size*/, void *paths) {
    if (info->dlpi_name && *info->dlpi_name)
        static_cast<std::vector<std::string> *>(paths)->emplace_back(info->dlpi_name);
    return 0;
}

std::vector<std::string> FoldersFor(const std::string &neededBy, const ElfFile &file) {
    std::vector<std::string> folders;
    for (std::string folder : file.folders) {
        for (const std::string_view origin : {"$ORIGIN", "${ORIGIN}"}) {
            if (const std::size_t at = folder.find(origin); at != std::string::npos)
                folder.replace(at, origin.size(), fs::path(neededBy).parent_path().string());
        }
        folders.push_back(folder);
    }
    if (const char *path = std::getenv("LD_LIBRARY_PATH")) {
        for (std::string &folder : SplitFolders(path))
            folders.push_back(std::move(folder));
    }
    for (const char *folder : {"/lib/i386-linux-gnu", "/usr/lib/i386-linux-gnu", "/lib32", "/usr/lib32",
                               "/usr/local/lib/i386-linux-gnu", "/usr/local/lib", "/lib", "/usr/lib"})
        folders.emplace_back(folder);
    return folders;
}

} // namespace

Libraries::Libraries() {
    std::vector<std::string> paths;
    dl_iterate_phdr(NoteLoaded, &paths);
    for (const std::string &path : paths) {
        mLoaded.emplace(fs::path(path).filename().string(), path);
        Add(ReadElf(path).file);
    }
    for (std::string &name : ReferenceNames())
        mDefined.insert(std::move(name)); // also if this program contains the library
}

const Libraries::Library &Libraries::Find(const std::string &name, const std::string &neededBy, const ElfFile &file) {
    const std::vector<std::string> folders = FoldersFor(neededBy, file);
    std::string key = name;
    for (const std::string &folder : folders)
        key += ':' + folder;
    const auto [place, isNew] = mFound.try_emplace(key);
    Library &library = place->second;
    if (!isNew)
        return library;
    std::vector<std::string> paths;
    if (const auto loaded = mLoaded.find(name); loaded != mLoaded.end())
        paths.push_back(loaded->second);
    for (const std::string &folder : folders)
        paths.push_back((fs::path(folder) / name).string());
    for (const std::string &path : paths) {
        std::error_code error;
        if (!fs::exists(path, error))
            continue;
        ElfReading reading = ReadElf(path);
        if (!reading.fault.empty() || !reading.file.IsForX86())
            continue;
        library = {path, std::move(reading.file)};
        break;
    }
    return library;
}

void Libraries::Collect(const std::string &name, const std::string &neededBy, const ElfFile &file,
                        std::set<std::string> &seen, std::set<std::string> &symbols, Lack &lack) {
    if (!seen.insert(name).second)
        return;
    const Library &library = Find(name, neededBy, file);
    if (library.path.empty()) {
        lack.libraries.push_back(name);
        return;
    }
    symbols.insert(library.file.exported.begin(), library.file.exported.end());
    for (const std::string &next : library.file.needed)
        Collect(next, library.path, library.file, seen, symbols, lack);
}

Libraries::Lack Libraries::LackOf(const std::string &path, const ElfFile &file) {
    Lack lack;
    std::set<std::string> seen;
    std::set<std::string> symbols;
    for (const std::string &name : file.needed)
        Collect(name, path, file, seen, symbols, lack);
    for (const std::string &symbol : file.undefined) {
        if (lack.libraries.empty() && !symbols.contains(symbol) && !mDefined.contains(symbol))
            lack.symbols.push_back(symbol);
    }
    return lack;
}

} // namespace host
