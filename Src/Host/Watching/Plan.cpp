// Reads the session and looks at the plugin files; see Plan.h. Called by the watch
// before each round.
#include "Plan.h"

#include "Watch.h"

#include "Common/UsageError.h"
#include "Elf/PluginFiles.h"
#include "Session/Forms.h"
#include "Session/RunSession.h"
#include "Session/SetUp.h"
#include "Session/TemporaryRoot.h"

#include <algorithm>
#include <filesystem>
#include <set>
#include <system_error>

namespace host {
namespace {

namespace fs = std::filesystem;

std::string RootOf(const SessionOptions &options) {
    return options.rootGiven || options.plugins.empty() ? options.simulator.root : "";
}

// Where a plugin is or will be.
std::vector<std::string> PlacesOf(const std::string &root, const std::string &plugin) {
    if (plugin.find('/') != std::string::npos) {
        const fs::path path = plugin;
        return {path.filename() == "lin.avp" ? path.parent_path().string() : plugin};
    }
    const std::string path = (fs::path(root) / "Resources/plugins" / plugin).string();
    return {path, path + ".avp"};
}

void AddPlugins(const SessionOptions &options, Plan &plan) {
    const std::string root = RootOf(options);
    if (options.plugins.empty())
        plan.paths.push_back((fs::path(root) / "Resources/plugins").string());
    for (const std::string &plugin : options.plugins) {
        const auto places = PlacesOf(root, plugin);
        plan.paths.insert(plan.paths.end(), places.begin(), places.end());
        try {
            plan.paths.push_back(LocatePlugin(root, plugin));
        } catch (const UsageError &fault) {
            plan.faults.emplace_back(fault.what());
        }
    }
}

// A build that is under way may have written a part of a file only.
void AddHalfWritten(Plan &plan) {
    std::error_code error;
    std::set<fs::path> files; // a plugin may have been named twice
    for (const fs::path path : plan.paths) {
        for (const fs::path &file : {path, path / "lin.avp", path / "32/lin.avp"}) {
            if (file.extension() == ".avp" && fs::is_regular_file(file, error))
                files.insert(fs::canonical(file, error));
        }
    }
    for (const fs::path &file : files) {
        if (IsHalfWritten(file.string()))
            plan.faults.push_back("'" + file.string() +
                                  "' is not complete: it is loaded when the build has written it");
    }
}

// The plugins and pictures of lines that are right, and the places of plugins that are not there yet.
void AddSession(const SessionOptions &options, Plan &plan) {
    SetUp setUp(options);
    std::vector<Step> steps;
    plan.paths.push_back(options.file);
    try {
        steps = ReadSession(setUp, plan.faults);
    } catch (const UsageError &fault) {
        plan.faults.emplace_back(fault.what());
    }
    for (const Step &step : steps) {
        if (step.form->word == "screenshot")
            plan.pictures.push_back(step[0]);
        if (step.form->word == "picture")
            plan.paths.push_back(setUp.Beside(step[0]));
        if (step.form->IsSetUp() && step.form->word == "plugin" && step[0].find('/') != std::string::npos)
            plan.paths.push_back((fs::path(options.file).parent_path() / step[0]).string());
    }
    AddPlugins(setUp.options, plan);
    if (!setUp.aircraft.empty())
        plan.paths.push_back(setUp.aircraft);
    plan.paths.insert(plan.paths.end(), setUp.options.simulator.scenery.begin(), setUp.options.simulator.scenery.end());
}

} // namespace

Plan MakePlan(const WatchRequest &request) {
    Plan plan;
    const SessionOptions &options = request.options;
    if (!options.file.empty()) {
        AddSession(options, plan);
    } else {
        AddPlugins(options, plan);
        if (!request.aircraft.empty())
            plan.paths.push_back(request.aircraft);
        plan.paths.insert(plan.paths.end(), options.simulator.scenery.begin(), options.simulator.scenery.end());
        for (const Screenshot &shot : options.simulator.screenshots)
            plan.pictures.push_back(shot.file);
    }
    if (plan.faults.empty())
        AddHalfWritten(plan);
    std::sort(plan.paths.begin(), plan.paths.end());
    plan.paths.erase(std::unique(plan.paths.begin(), plan.paths.end()), plan.paths.end());
    return plan;
}

} // namespace host
