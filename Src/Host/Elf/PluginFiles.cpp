// Searches plugin folders and examines plugin files; see PluginFiles.h. Used by
// the observer that explains why a plugin was not loaded.
#include "PluginFiles.h"

#include "ElfFile.h"

#include "Common/NearestName.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <filesystem>
#include <iterator>
#include <optional>
#include <string_view>
#include <system_error>
#include <utility>

namespace host {
namespace {

namespace fs = std::filesystem;

constexpr std::array<std::string_view, 5> kEntryPoints{"AVPluginStart", "AVPluginStop", "AVPluginEnable",
                                                       "AVPluginDisable", "AVPluginReceiveMessage"};

std::string InLowerCase(std::string text) {
    std::transform(text.begin(), text.end(), text.begin(),
                   [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    return text;
}

template <class Names>
bool Contains(const Names &names, std::string_view name) {
    return std::find(names.begin(), names.end(), name) != names.end();
}

// ---- Folders

bool HasExtension(const fs::path &path, const char *extension) {
    return InLowerCase(path.extension().string()) == extension;
}

// Whether a file in the wrong place is a plugin. Plugins may have libraries of their own beside them.
bool IsMeantAsPlugin(const fs::path &path) {
    std::error_code error;
    if (!fs::is_regular_file(path, error))
        return false;
    if (HasExtension(path, ".avp"))
        return true;
    if (!HasExtension(path, ".so"))
        return false;
    const ElfFile file = ReadElf(path.string()).file;
    const auto starts = [](const std::string &name) {
        return InLowerCase(name).find("avpluginstart") != std::string::npos;
    };
    return std::any_of(file.exported.begin(), file.exported.end(), starts) ||
           std::any_of(file.hidden.begin(), file.hidden.end(), starts);
}

std::string WrongName(const fs::path &file) {
    return "is not loaded under this name: rename it to '" + file.stem().string() + ".avp'";
}

std::string NotLoaded(const fs::path &folder, const fs::path &target) {
    return "is not loaded from this place: move it to '" + (folder / target).string() + "'";
}

// Where a misplaced file of the folder NAME belongs: NAME/Mine/lin.avp to
// Mine/lin.avp, but NAME/64/lin.avp and all others to NAME/lin.avp.
fs::path Target(const fs::path &name, const fs::path &inside) {
    constexpr std::size_t kShortestName = 4; // "64", "bin" and the like are no plugins' names
    const fs::path parent = inside.parent_path().filename();
    const bool isPlugin = inside.filename() == "lin.avp" && parent.string().size() >= kShortestName;
    return (isPlugin ? parent : name) / "lin.avp";
}

// What a link stands for: in a temporary root the plugins are links.
fs::path RealPath(const fs::path &path) {
    std::error_code error;
    const fs::path real = fs::canonical(path, error);
    return error ? path : real;
}

// The misplaced plugins in a plugin's folder.
void FindMisplaced(const fs::path &start, std::vector<PluginFile> &files) {
    constexpr int kDeepest = 4;
    std::error_code error;
    const fs::path real = RealPath(start);
    const fs::path folder = real.parent_path();
    const fs::path name = real.filename();
    for (fs::recursive_directory_iterator entry(start, fs::directory_options::follow_directory_symlink, error), end;
         !error && entry != end; entry.increment(error)) {
        if (entry.depth() >= kDeepest)
            entry.disable_recursion_pending();
        const fs::path &path = entry->path();
        if (IsMeantAsPlugin(path))
            files.push_back({path.string(), NotLoaded(folder, Target(name, path.lexically_relative(start)))});
    }
}

// ---- Files

std::string MachineFault(const ElfFile &file) {
    if (file.type == ElfFile::Type::Object)
        return "is an object file: link it with -shared";
    if (file.type == ElfFile::Type::Program)
        return "is a program: compile it with -fPIC and link it with -shared";
    if (file.IsForX86())
        return "";
    return "is built for " + file.machine +
           (file.bits == 32 && file.machine == "x86-64" ? " with 32-bit pointers" : "") + ": compile it with -m32";
}

// What a file has instead of an entry point; nothing if it has nothing like it.
std::optional<PluginFault> EntryPointFault(const ElfFile &file, const std::string &entry) {
    const std::string header = "include AVSK/AVSK.h, which declares it";
    for (const auto *names : {&file.exported, &file.hidden}) {
        const auto mangled = std::find_if(names->begin(), names->end(), [&entry](const std::string &name) {
            return name.starts_with("_Z") && name.find(std::to_string(entry.size()) + entry) != std::string::npos;
        });
        if (mangled != names->end())
            return PluginFault{PluginFault::Kind::Mangled, (names == &file.exported ? "exports " : "defines ") +
                                                               *mangled + " instead of " + entry +
                                                               ": declare it extern \"C\", or " + header};
    }
    if (Contains(file.hidden, entry))
        return PluginFault{PluginFault::Kind::Hidden,
                           "does not export " + entry + ", which is static or has hidden visibility: " + header};
    return std::nullopt;
}

// Exported names that are like an entry point which the file lacks.
void FindMisspelt(const ElfFile &file, const std::vector<std::string> &missing, std::vector<PluginFault> &faults) {
    constexpr std::size_t kFarthest = 2;
    for (const std::string &name : file.exported) {
        if (IsEntryPoint(name) || name.starts_with("_Z"))
            continue;
        const auto nearest = NearestNames(name, missing, 1);
        if (!nearest.empty() &&
            (InLowerCase(name).starts_with("avplugin") || EditDistance(name, nearest.front()) <= kFarthest))
            faults.push_back(
                {PluginFault::Kind::Misspelt, "exports " + name + "; did you mean " + nearest.front() + "?"});
    }
}

} // namespace

std::vector<PluginFile> FindPluginFiles(const std::string &folder, PluginFolder kind) {
    std::vector<PluginFile> files;
    std::error_code error;
    for (fs::directory_iterator entry(folder, error), end; !error && entry != end; entry.increment(error)) {
        const fs::path &path = entry->path();
        std::error_code ignored;
        if (fs::is_directory(path, ignored)) {
            bool isFound = false;
            for (const char *file : {"32/lin.avp", "lin.avp"}) {
                if (fs::exists(path / file, ignored)) {
                    files.push_back({(path / file).string(), ""});
                    isFound = true;
                }
            }
            if (!isFound)
                FindMisplaced(path, files);
        } else if (HasExtension(path, ".avp") && kind == PluginFolder::Simulators) {
            files.push_back({path.string(), ""});
        } else if (IsMeantAsPlugin(path)) {
            const fs::path real = RealPath(path);
            files.push_back({path.string(), kind == PluginFolder::Simulators
                                                ? WrongName(real)
                                                : NotLoaded(folder, real.stem() / "lin.avp")});
        }
    }
    std::sort(files.begin(), files.end(), [](const PluginFile &a, const PluginFile &b) { return a.path < b.path; });
    return files;
}

bool IsEntryPoint(std::string_view name) {
    return std::find(kEntryPoints.begin(), kEntryPoints.end(), name) != kEntryPoints.end();
}

std::string PlaceAdvice(const std::string &path) {
    const fs::path file = fs::absolute(path).lexically_normal();
    const fs::path folder = file.parent_path();
    if (!HasExtension(file, ".avp"))
        return WrongName(file);
    // The folder of all plugins, if one of the path's folders has its usual name.
    fs::path plugins = folder;
    while (plugins.has_relative_path() && plugins.filename() != "plugins")
        plugins = plugins.parent_path();
    if (!plugins.has_relative_path()) {
        constexpr std::array<std::string_view, 4> kOther{"64", "lin64", "mac_x64", "win_x64"};
        const bool isOther = file.filename() == "lin.avp" && Contains(kOther, folder.filename().string());
        return isOther ? NotLoaded(folder.parent_path(), "lin.avp") : "";
    }
    const fs::path inside = file.lexically_relative(plugins);
    const auto depth = std::distance(inside.begin(), inside.end());
    const bool isPacked = inside.filename() == "lin.avp";
    if (depth == 1 || (depth == 2 && isPacked) || (depth == 3 && isPacked && inside.parent_path().filename() == "32"))
        return "";
    return NotLoaded(plugins, Target(*inside.begin(), inside.lexically_relative(*inside.begin())));
}

std::vector<PluginFault> FaultsOfPluginFile(const std::string &path) {
    const auto [file, fault] = ReadElf(path);
    if (!fault.empty())
        return {{PluginFault::Kind::Unreadable, fault}};
    std::vector<PluginFault> faults;
    if (std::string machine = MachineFault(file); !machine.empty())
        faults.push_back({PluginFault::Kind::Machine, std::move(machine)});
    if (!file.hasSymbols || file.type == ElfFile::Type::Object)
        return faults;
    const std::size_t before = faults.size();
    std::vector<std::string> missing;
    for (const std::string_view entry : kEntryPoints) {
        if (Contains(file.exported, entry))
            continue;
        if (auto found = EntryPointFault(file, std::string(entry)))
            faults.push_back(std::move(*found));
        else
            missing.emplace_back(entry);
    }
    FindMisspelt(file, missing, faults);
    if (faults.size() == before && Contains(missing, kEntryPoints.front()))
        faults.push_back({PluginFault::Kind::Missing, "exports no AVPluginStart, which every plugin needs"});
    return faults;
}

bool IsHalfWritten(const std::string &path) {
    std::error_code error;
    return fs::file_size(path, error) == 0 || ReadElf(path).fault.starts_with("breaks off");
}

} // namespace host
