// Checks the folders of a simulator; see SimulatorOptions.h.
#include "SimulatorOptions.h"

#include "Common/UsageError.h"

#include <algorithm>
#include <cstddef>
#include <filesystem>
#include <string_view>
#include <system_error>

namespace host {
namespace {

namespace fs = std::filesystem;

// Plugins receive paths in buffers of 256 bytes (aircraft) and 512 bytes (the host's folder).
constexpr std::size_t kLongestModel = 255;
constexpr std::size_t kLongestRoot = 400;

// The folder as an absolute path that ends in a separator.
std::string CheckedFolder(const std::string &folder, const std::string &option, const std::string &advice) {
    std::error_code error;
    const fs::path path = fs::canonical(folder, error);
    if (error)
        throw UsageError(option + ": no folder '" + folder + "' (" + error.message() + "): " + advice);
    if (!fs::is_directory(path, error))
        throw UsageError(option + ": '" + folder + "' is not a folder: " + advice);
    std::string text = path.string();
    if (text.back() != '/')
        text += '/';
    return text;
}

// The model of an aircraft: the first .acf file of its folder. The folder needs
// none, since this host never reads the model.
std::string FindModel(const std::string &folder) {
    std::vector<std::string> names;
    std::error_code error;
    for (fs::directory_iterator entry(folder, error), end; !error && entry != end; entry.increment(error)) {
        if (entry->path().extension() == ".acf")
            names.push_back(entry->path().filename().string());
    }
    if (error)
        throw UsageError("--aircraft: cannot read '" + folder + "' (" + error.message() +
                         "): make the folder readable");
    const auto first = std::min_element(names.begin(), names.end());
    return folder + (first == names.end() ? "model.acf" : *first);
}

} // namespace

void CheckFolders(SimulatorOptions &options, const std::string &aircraft) {
    const std::string advice = "name the simulator's folder, which holds Resources/plugins";
    const std::string given = options.root;
    options.root = CheckedFolder(given, "--root", advice);
    if (options.root.size() > kLongestRoot)
        throw UsageError("--root: the full path of '" + given + "' is longer than " + std::to_string(kLongestRoot) +
                         " bytes, more than plugins have room for: use a shorter path");
    std::error_code error;
    constexpr std::string_view kPlugins = "Resources/plugins/";
    if (options.root.ends_with(kPlugins))
        throw UsageError("--root: '" + given + "' is the folder of the plugins: name the simulator's folder, '" +
                         options.root.substr(0, options.root.size() - kPlugins.size()) + "'");
    if (!fs::is_directory(options.root + "Resources/plugins", error))
        throw UsageError("--root: no folder Resources/plugins in '" + given + "': " + advice);

    if (!aircraft.empty()) {
        options.aircraftModel = FindModel(CheckedFolder(aircraft, "--aircraft", "name the folder of an aircraft"));
        if (options.aircraftModel.size() > kLongestModel)
            throw UsageError("--aircraft: the path '" + options.aircraftModel + "' is longer than " +
                             std::to_string(kLongestModel) +
                             " bytes, more than plugins have room for: use a shorter path");
    }
    for (std::string &folder : options.scenery)
        folder = CheckedFolder(folder, "--scenery", "name a scenery folder, which holds plugins");
}

} // namespace host
