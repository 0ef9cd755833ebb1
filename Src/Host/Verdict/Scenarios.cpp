// Writes the sessions of the scenarios; see Scenarios.h. The table at the end
// lists the scenarios.
#include "Scenarios.h"

#include "Session/Values.h"

#include <algorithm>
#include <array>
#include <filesystem>
#include <fstream>

namespace host {
namespace {

namespace fs = std::filesystem;

using Lines = std::vector<std::string>;
using Rectangle = std::array<int, 4>; // left, top, right, bottom

constexpr std::size_t kMost = 100; // things of a kind that are tried

std::string Point(int x, int y) { return std::to_string(x) + "," + std::to_string(y); }
std::string Centre(const Rectangle &place) { return Point((place[0] + place[2]) / 2, (place[1] + place[3]) / 2); }

template <class Things, class Use>
void ForEach(const Things &things, Use use) {
    for (std::size_t i = 0; i < std::min(things.size(), kMost); ++i)
        use(things[i]);
}

void Add(Lines &lines, const Lines &more) { lines.insert(lines.end(), more.begin(), more.end()); }

Lines Start(const Stage & /*stage*/) { return {"frames 2"}; }

Lines Enable(const Stage &stage) {
    Lines lines;
    for (int i = 0; i < 3; ++i)
        Add(lines, {"frames 3", "disable " + stage.plugin, "frames 3", "enable " + stage.plugin});
    Add(lines, {"frames 3"});
    return lines;
}

Lines Frames(const Stage & /*stage*/) { return {"frames 300"}; }

Lines Time(const Stage & /*stage*/) {
    return {"frames 5",   "lag 0.25",   "lag 0.25", "lag 0.03", "lag 0.001", "lag 1.5",    "frames 5",
            "lag 0.0001", "lag 0.0001", "lag 60",   "frames 5", "lag 3600",  "frames 10",  "lag 0.2",
            "lag 0.004",  "lag 0.1",    "lag 0.05", "lag 5",    "frames 5",  "lag 100000", "frames 20"};
}

Lines Controls(const Stage &stage) {
    Lines lines;
    for (int turn = 0; turn < 2; ++turn) // most items and keys switch something
        ForEach(stage.made.items, [&](const std::string &item) { Add(lines, {"menu " + Written(item), "frames 2"}); });
    ForEach(stage.made.commands, [&](const std::string &name) {
        const std::string command = Written(name);
        Add(lines, {"command " + command, "frames 1", "begin " + command, "frames 3", "end " + command, "frames 1"});
    });
    for (int turn = 0; turn < 2; ++turn)
        ForEach(stage.made.keys, [&](const std::string &key) { Add(lines, {"key " + key, "frames 1"}); });
    return lines;
}

void UseWindow(const Rectangle &place, Lines &lines) {
    const auto &[left, top, right, bottom] = place;
    const std::string centre = Centre(place);
    const std::string title = Point((left + right) / 2, top - 5);
    Add(lines, {"move " + centre,
                "click " + centre,
                "click " + Point(left + 1, bottom + 1),
                "click " + Point(right - 1, top - 1),
                "click " + title,
                "wheel " + centre + " 1",
                "wheel " + centre + " -3",
                "wheel " + centre + " 1 1",
                "drag " + centre + " " + Point(right + 200, 5),
                "drag " + title + " " + Point(left + 40, bottom + 10),
                "drag " + Point(left - 20, bottom) + " " + centre,
                "click " + centre,
                "type \"aZ9 .\"",
                "key Escape",
                "key Return",
                "key Backspace",
                "key Left shift",
                "key Tab control",
                "frames 1",
                "click 3,3",
                "key A"});
}

Lines Windows(const Stage &stage) {
    Lines lines;
    if (stage.made.windows.empty())
        return lines;
    for (const bool isShown : {true, false}) {
        Add(lines, {(isShown ? "show " : "hide ") + stage.plugin, "frames 2"});
        ForEach(stage.made.windows, [&](const Rectangle &place) { UseWindow(place, lines); });
    }
    Add(lines, {"show " + stage.plugin, "frames 1"});
    ForEach(stage.made.windows, [&](const Rectangle &place) {
        Add(lines, {"move " + Centre(place), "press", "frames 1", "hide " + stage.plugin, "frames 1", "release",
                    "show " + stage.plugin, "frames 1"});
    });
    return lines;
}

Lines Datarefs(const Stage &stage) {
    Lines lines;
    ForEach(stage.made.datarefs, [&](const Inventory::Dataref &dataref) {
        const std::string name = Written(dataref.name);
        for (const std::string &accessor : dataref.accessors) {
            const std::string read = "read " + name + " " + accessor;
            lines.push_back(read);
            if (accessor == "ints" || accessor == "floats" || accessor == "data") {
                for (const char *range : {" 0 1", " 0 1000", " 1 2", " 3 500", " 100000 4", " 2147483640 4"})
                    lines.push_back(read + range);
            }
            if (!dataref.writable)
                continue;
            if (accessor == "data")
                lines.push_back("set " + name + " \"a text\"");
            for (const char *value : {" 0", " 1", " -1", " 1000000"})
                lines.push_back("set " + name + value);
        }
        lines.emplace_back("frames 1");
    });
    return lines;
}

Lines Messages(const Stage &stage) {
    Lines lines;
    for (const int message : {101, 102, 103, 104, 105, 106, 107, 108, 109, 0, -1, 1000000})
        Add(lines, {"message " + stage.plugin + " " + std::to_string(message), "frames 1"});
    return lines;
}

std::string ModelOf(const Stage &stage, const char *name) {
    return Written(stage.folder + "/aircraft/" + name + ".acf");
}

Lines World(const Stage &stage) {
    return {"aircraft " + Written(stage.folder + "/aircraft"),
            "scenery " + Written(stage.folder + "/scenery"),
            "frames 2",
            "load aircraft " + ModelOf(stage, "Other"),
            "frames 2",
            "load aircraft " + ModelOf(stage, "First") + " 3",
            "report scenery",
            "frames 2",
            "crash",
            "frames 2",
            "view chase",
            "frames 1",
            "view cockpit",
            "frames 1",
            "hold loads",
            "load aircraft " + ModelOf(stage, "First"),
            "report scenery",
            "frames 2",
            "view tower",
            "load aircraft " + ModelOf(stage, "Other") + " 1",
            "frames 10"};
}

Lines Reload(const Stage & /*stage*/) {
    Lines lines{"frames 2"};
    for (int i = 0; i < 20; ++i)
        Add(lines, {"reload", "frames 2"});
    return lines;
}

// Loads, frames and reloads of several plugins.
Lines Together(const Stage & /*stage*/) {
    return {"frames 60", "lag 0.5", "crash", "frames 10", "reload", "frames 10"};
}

} // namespace

std::span<const Scenario> Scenarios() {
    static constexpr Scenario kScenarios[] = {
        {kFileScenario, "the file, without running it", nullptr},
        {kStartScenario, "start and stop", Start},
        {"enable", "disable and enable, three times", Enable},
        {"frames", "300 frames", Frames},
        {"time", "slow and irregular frames, and jumps of time", Time},
        {"controls", "every menu item, command and hot key of the plugin", Controls},
        {"windows", "clicks, drags, wheel and keys at each window, shown and hidden", Windows},
        {"datarefs", "each dataref of the plugin by every accessor, and ranges beyond its end", Datarefs},
        {"messages", "every message of the simulator, and unknown ones", Messages},
        {"world", "aircraft and scenery that come and go, and a crash", World},
        {"reload", "twenty reloads, which may not cost memory", Reload},
        {kMonkeyScenario, "random steps; see --seed and --minutes", nullptr},
        {kTogetherScenario, "all plugins of the check in one simulator", Together},
    };
    return kScenarios;
}

std::vector<std::string> ScenarioNames() {
    std::vector<std::string> names;
    for (const Scenario &scenario : Scenarios())
        names.emplace_back(scenario.name);
    return names;
}

const Scenario *FindScenario(std::string_view name) {
    for (const Scenario &scenario : Scenarios()) {
        if (scenario.name == name)
            return &scenario;
    }
    return nullptr;
}

std::vector<std::string> HeadOf(std::span<const Target> targets) {
    Lines lines;
    for (const Target &target : targets) {
        const std::string root = "root " + Written(target.root);
        if (!target.root.empty() && std::find(lines.begin(), lines.end(), root) == lines.end())
            lines.push_back(root);
    }
    for (const Target &target : targets)
        lines.push_back("plugin " + Written(target.file));
    return lines;
}

void MakeWorld(const std::string &folder) {
    std::error_code ignored; // a step that finds no file fails, and says so
    fs::create_directories(fs::path(folder) / "aircraft", ignored);
    fs::create_directories(fs::path(folder) / "scenery", ignored);
    for (const char *name : {"First", "Other"})
        std::ofstream(fs::path(folder) / "aircraft" / (std::string(name) + ".acf"));
}

} // namespace host
