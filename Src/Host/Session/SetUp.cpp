// The set-up words of a session: what the plugins will find. The table at the
// end lists them.
#include "SetUp.h"

#include "Forms.h"
#include "Round.h"
#include "Step.h"
#include "Values.h"

#include "Common/Text.h"
#include "Common/UsageError.h"

#include <filesystem>
#include <utility>
#include <vector>

namespace host {
namespace {

namespace fs = std::filesystem;

std::string NotFound(const char *what, const std::string &path) {
    return std::string("no ") + what + " '" + path + "': paths begin at the session's file, or at the root";
}

} // namespace

SetUp::SetUp(SessionOptions requested)
    : options(std::move(requested)), name(options.file.empty() ? "input" : options.file),
      mFolder(fs::path(options.file).parent_path().string()) {}

std::string SetUp::PlaceOf(const Step &step) const {
    return name + ":" + std::to_string(step.line) + ":" + std::to_string(step.words[0].column);
}

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

std::string SetUp::Beside(const std::string &path) const { return (fs::path(mFolder) / path).string(); }

void SetUp::Choose(const std::string &plugin, const std::string &place) {
    options.plugins.push_back(plugin);
    mPlaces.emplace(plugin, place);
}

void SetUp::Apply(const Step &step) {
    const Failure failure = std::get<SetUpFunction *>(step.form->function)(*this, step);
    if (!failure.why.empty())
        throw UsageError(PlaceOf(step) + ": " + failure.why);
}

void SetUp::Finish() {
    const std::string root = options.rootGiven ? options.simulator.root : "";
    std::vector<std::string> faults;
    for (const std::string &plugin : options.plugins) {
        try {
            LocatePlugin(root, plugin);
        } catch (const UsageError &fault) {
            const auto place = mPlaces.find(plugin);
            faults.push_back((place == mPlaces.end() ? "--plugin: " : place->second + ": ") + fault.what());
        }
    }
    if (!faults.empty())
        throw UsageError(Join(faults, "\n"));
    if (options.round)
        return MakeRoundsRoot(options, aircraft, mRoot);
    if (!options.plugins.empty())
        options.simulator.root = mRoot.Make(root, options.plugins, options.keptRoot);
    else if (!options.keptRoot.empty())
        throw UsageError("--keep-root: the session uses the real root, because it chooses no plugins: leave the "
                         "option out, or choose plugins with 'plugin' or --plugin");
    CheckFolders(options.simulator, aircraft);
}

std::string SetUp::FilesNote() const {
    const std::vector<std::string> files = mRoot.Exists() ? mRoot.WrittenFiles() : std::vector<std::string>();
    if (mRoot.IsKept())
        return "the root is kept in '" + options.keptRoot +
               "'; files written there: " + (files.empty() ? "none" : Shortened(files));
    if (files.empty())
        return "";
    return "files written into the temporary root were removed: " + Shortened(files) +
           "; --keep-root DIR keeps such files";
}

// ---- The words

namespace {

Failure Root(SetUp &setUp, const Step &step) {
    if (setUp.options.rootGiven)
        return {}; // the command line's root takes precedence
    const auto folder = setUp.FindFolder(step[0]);
    if (!folder)
        return NotFound("folder", step[0]);
    setUp.options.simulator.root = *folder;
    setUp.options.rootGiven = true;
    return {};
}

Failure Plugin(SetUp &setUp, const Step &step) {
    const bool isPath = step[0].find('/') != std::string::npos;
    const auto found = isPath ? setUp.FindFile(step[0]) : step[0];
    if (!found)
        return NotFound("file", step[0]);
    try {
        if (setUp.options.rootGiven) // else a later line may name it
            LocatePlugin(setUp.options.simulator.root, *found);
    } catch (const UsageError &fault) {
        return fault.what();
    }
    setUp.Choose(*found, setUp.PlaceOf(step));
    return {};
}

Failure FramesPerSecond(SetUp &setUp, const Step &step) {
    setUp.options.simulator.fps = Number(step[0]);
    return {};
}

Failure Screen(SetUp &setUp, const Step &step) {
    constexpr int kMost = 8192; // a picture of it must fit into 32 bits of memory
    const std::vector<int> size = Integers(step[0]);
    for (const int side : size) {
        if (side < 1 || side > kMost)
            return "no screen of " + step[0] + ": name a width and a height from 1 to 8192";
    }
    setUp.options.simulator.screenWidth = size[0];
    setUp.options.simulator.screenHeight = size[1];
    return {};
}

Failure Aircraft(SetUp &setUp, const Step &step) {
    const auto folder = setUp.FindFolder(step[0]);
    if (!folder)
        return NotFound("folder", step[0]);
    setUp.aircraft = *folder;
    return {};
}

Failure Scenery(SetUp &setUp, const Step &step) {
    const auto folder = setUp.FindFolder(step[0]);
    if (!folder)
        return NotFound("folder", step[0]);
    setUp.options.simulator.scenery.push_back(*folder);
    return {};
}

Failure Allow(SetUp &setUp, const Step &step) {
    setUp.options.observing.allowed[step[0]] = step[1];
    return {};
}

Failure Budget(SetUp &setUp, const Step &step) {
    setUp.budgets[step.Count() > 1 ? step[1] : ""] = Number(step[0]);
    return {};
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
        {"allow", "RULE TEXT", "excuses what breaks this rule, for the given reason; for --check", Allow},
        {"budget", "NUMBER [PLUGIN]",
         "milliseconds per frame for each plugin, or for this one; the session fails if one takes more", Budget},
    };
    return kForms;
}

} // namespace host
