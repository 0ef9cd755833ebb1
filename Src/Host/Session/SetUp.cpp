// The set-up words of a session: what the plugins will find. The table at the
// end lists them.
#include "SetUp.h"

#include "Forms.h"
#include "Step.h"
#include "Values.h"

#include <filesystem>
#include <utility>
#include <vector>

namespace host {
namespace {

namespace fs = std::filesystem;

const std::string kFine;

std::string NotFound(const char *what, const std::string &path) {
    return std::string("no ") + what + " '" + path + "': paths begin at the session's file, or at the root";
}

} // namespace

SetUp::SetUp(SessionOptions requested)
    : options(std::move(requested)), mFolder(fs::path(options.file).parent_path().string()) {}

std::optional<std::string> SetUp::FindFile(const std::string &path) const {
    std::error_code error;
    for (const fs::path &start : {fs::path(mFolder), fs::path(options.simulator.root)}) {
        if (fs::exists(start / path, error))
            return (start / path).string();
    }
    return std::nullopt;
}

std::optional<std::string> SetUp::FindFolder(const std::string &path) const {
    std::error_code error;
    for (const fs::path &start : {fs::path(mFolder), fs::path(options.simulator.root)}) {
        if (fs::is_directory(start / path, error))
            return (start / path).string();
    }
    return std::nullopt;
}

void SetUp::Finish() {
    if (!options.plugins.empty())
        options.simulator.root = mRoot.Make(options.rootGiven ? options.simulator.root : "", options.plugins);
    CheckFolders(options.simulator, aircraft);
}

// ---- The words

namespace {

std::string Root(SetUp &setUp, const Step &step) {
    if (setUp.options.rootGiven)
        return kFine; // the command line's root takes precedence
    const auto folder = setUp.FindFolder(step[0]);
    if (!folder)
        return NotFound("folder", step[0]);
    setUp.options.simulator.root = *folder;
    setUp.options.rootGiven = true;
    return kFine;
}

std::string Plugin(SetUp &setUp, const Step &step) {
    const bool isPath = step[0].find('/') != std::string::npos;
    const auto found = isPath ? setUp.FindFile(step[0]) : step[0];
    if (!found)
        return NotFound("file", step[0]);
    setUp.options.plugins.push_back(*found);
    return kFine;
}

std::string FramesPerSecond(SetUp &setUp, const Step &step) {
    setUp.options.simulator.fps = Number(step[0]);
    return kFine;
}

std::string Screen(SetUp &setUp, const Step &step) {
    constexpr int kMost = 8192; // a picture of it must fit into 32 bits of memory
    const std::vector<int> size = Integers(step[0]);
    for (const int side : size) {
        if (side < 1 || side > kMost)
            return "no screen of " + step[0] + ": name a width and a height from 1 to 8192";
    }
    setUp.options.simulator.screenWidth = size[0];
    setUp.options.simulator.screenHeight = size[1];
    return kFine;
}

std::string Aircraft(SetUp &setUp, const Step &step) {
    const auto folder = setUp.FindFolder(step[0]);
    if (!folder)
        return NotFound("folder", step[0]);
    setUp.aircraft = *folder;
    return kFine;
}

std::string Scenery(SetUp &setUp, const Step &step) {
    const auto folder = setUp.FindFolder(step[0]);
    if (!folder)
        return NotFound("folder", step[0]);
    setUp.options.simulator.scenery.push_back(*folder);
    return kFine;
}

std::string Budget(SetUp &setUp, const Step &step) {
    setUp.budgets[step.Count() > 1 ? step[1] : ""] = Number(step[0]);
    return kFine;
}

} // namespace

std::span<const Form> SetUpForms() {
    static constexpr Form kForms[] = {
        {"root", "DIR", "the simulator's folder, which holds Resources/plugins", Root},
        {"plugin", "PATH", "loads only this plugin: its name in the root, or a path; can be repeated", Plugin},
        {"fps", "NUMBER", "frames per simulated second; the default is 60", FramesPerSecond},
        {"screen", "SIZE", "the screen's size in pixels; the default is 1024x768", Screen},
        {"aircraft", "DIR", "the folder of the user's aircraft", Aircraft},
        {"scenery", "DIR", "a scenery folder; can be repeated", Scenery},
        {"budget", "NUMBER [PLUGIN]",
         "milliseconds per frame for each plugin, or for this one; the session fails if one takes more", Budget},
    };
    return kForms;
}

} // namespace host
