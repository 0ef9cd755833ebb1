// Searches files and folders; see Targets.h.
#include "Targets.h"

#include "Common/NearestName.h"
#include "Common/UsageError.h"
#include "Elf/PluginFiles.h"

#include <algorithm>
#include <filesystem>
#include <system_error>

namespace host {
namespace {

namespace fs = std::filesystem;

// "Lights" of Lights.avp, Lights/lin.avp and Lights/32/lin.avp.
std::string NameOf(const fs::path &file) {
    if (file.filename() != "lin.avp")
        return file.stem().string();
    const fs::path folder = file.parent_path();
    return (folder.filename() == "32" ? folder.parent_path() : folder).filename().string();
}

void Add(const fs::path &path, const std::string &root, std::string advice, std::vector<Target> &targets) {
    std::error_code error;
    const fs::path file = fs::canonical(path, error);
    const std::string name = NameOf(fs::absolute(path));
    const auto isKnown = [&file](const Target &known) { return known.file == file; };
    if (std::any_of(targets.begin(), targets.end(), isKnown))
        return;
    const auto same = std::count_if(targets.begin(), targets.end(), [&name](const Target &known) {
        return known.name == name || known.name.starts_with(name + "#");
    });
    targets.push_back({path.string(), file.string(), same == 0 ? name : name + "#" + std::to_string(same + 1), root,
                       std::move(advice)});
}

void AddFolder(const fs::path &folder, std::vector<Target> &targets) {
    std::error_code error;
    const bool isPlugin = fs::exists(folder / "lin.avp", error) || fs::exists(folder / "32/lin.avp", error);
    if (isPlugin)
        return Add(folder / (fs::exists(folder / "lin.avp", error) ? "lin.avp" : "32/lin.avp"), "", "", targets);
    const bool isRoot = fs::is_directory(folder / "Resources/plugins", error);
    const fs::path plugins = isRoot ? folder / "Resources/plugins" : folder;
    const std::string root = isRoot ? fs::canonical(folder).string() : "";
    std::vector<PluginFile> files = FindPluginFiles(plugins.string(), PluginFolder::Simulators);
    if (!isRoot) // an arbitrary folder may hold anything
        std::erase_if(files, [](const PluginFile &file) { return !file.advice.empty(); });
    if (files.empty())
        throw UsageError("check: no plugin in '" + plugins.string() +
                         "': name a plugin, a plugin's folder, a folder of plugins, or a simulator's folder");
    for (const PluginFile &file : files)
        Add(file.path, root, file.advice, targets);
}

[[noreturn]] void RefusePath(const fs::path &path) {
    std::vector<std::string> names;
    std::error_code error;
    const fs::path folder = path.has_parent_path() ? path.parent_path() : fs::path(".");
    for (fs::directory_iterator entry(folder, error), end; !error && entry != end; entry.increment(error))
        names.push_back(entry->path().filename().string());
    const std::string nearest = DidYouMean(path.filename().string(), names);
    throw UsageError("check: no file or folder '" + path.string() + "'" +
                     (nearest.empty() ? ": name a plugin, a folder of plugins, or a simulator's folder" : nearest));
}

} // namespace

std::vector<Target> FindTargets(const std::vector<std::string> &paths) {
    std::vector<Target> targets;
    for (const std::string &text : paths) {
        const fs::path path = text;
        std::error_code error;
        if (!fs::exists(path, error))
            RefusePath(path);
        if (fs::is_directory(path, error))
            AddFolder(path, targets);
        else
            Add(path, "", PlaceAdvice(text), targets);
    }
    return targets;
}

} // namespace host
