// The command line: parsing by CLI11, then the checks that need the file
// system. Called once by Main.cpp.
#include "Options.h"

#include "Session.h"

#include "NewProject.h"

#include <CLI/CLI.hpp>

#include <algorithm>
#include <cctype>
#include <cerrno>
#include <charconv>
#include <cmath>
#include <cstring>
#include <filesystem>
#include <system_error>

#include <unistd.h>

namespace host {
namespace {

namespace fs = std::filesystem;

constexpr const char *kRunExamples = R"(Examples:
  avsk run --root build/release/demo
      the plugins in build/release/demo/Resources/plugins, for 300 frames
  avsk run --root sim --aircraft sim/Aircraft/Trainer --frames 3600 --quiet --log flight.txt
      a minute with an aircraft's own plugins; the log goes to a file only
  avsk run --root sim --scenery sim/Scenery/Island --fps 20 --screenshot island.png@40
      plugins of a scenery folder, with a slow simulator, and a picture after two seconds
  avsk run --root sim --key F4@60 --key F5@120
      a change of view after one second, and after two a short climb
  avsk run Samples/Menu/Menu.avs --root build/release/demo
      a session: picks items of a sample's menu and checks what comes of it
  avsk run --interactive --root build/release/demo --plugin Menu
      the same by hand; 'help' lists the words, 'quit' ends. Where rlwrap is installed it gives history and completion
  avsk run --root sim --trace flight.json --trace-plugin Lights --profile --ps
      what the plugin Lights called and was called for, where the time went, and what it forgot to give back

Keys that no plugin takes: F4 shows the next view, F5 climbs, F6 descends and F7 flies straight on while held.

A picture shows what plugins draw through the interface: dark boxes, texts and numbers, windows made of these, and
the menus, all opened. What they draw with OpenGL calls of their own is not seen here and is missing in it, as are
scenery objects and aircraft.

Exit status: 0 when all frames were run and all of a session came true, 1 when a step or an expectation of it failed or
a budget was not kept, or an exception of a plugin ended the run early, 2 when the request cannot be met as it was made,
3 when a plugin ended the run, by a signal, by exit() or by a call that took longer than --timeout.)";

// Plugins receive paths in buffers of 256 bytes (aircraft) and 512 bytes (the host's folder).
constexpr std::size_t kLongestModel = 255;
constexpr std::size_t kLongestRoot = 400;

std::string OneLine(std::string text) {
    std::replace(text.begin(), text.end(), '\n', ' ');
    while (!text.empty() && (text.back() == ' ' || text.back() == '.'))
        text.pop_back();
    return text;
}

// The number behind the last '@'; nothing if it is no frame of the run.
std::optional<int> FrameOf(const std::string &text, int frames) {
    const char *end = text.data() + text.size();
    int frame = 0;
    const auto [stop, error] = std::from_chars(text.data() + text.rfind('@') + 1, end, frame);
    if (error != std::errc() || stop != end || frame < 1 || frame > frames)
        return std::nullopt;
    return frame;
}

// Of KEY@FRAME. The last '@' counts, so '@' itself is a key too.
KeyPress ParseKey(const std::string &text, int frames) {
    constexpr int kF1 = 112;
    constexpr int kLastFunctionKey = 24;
    const std::string wrong = "--key: '" + text + "' ";
    const std::string advice =
        ": write KEY@FRAME, with a letter, a digit or F1 to F24, and FRAME from 1 to " + std::to_string(frames);
    const std::size_t at = text.rfind('@');
    const auto frame = at == std::string::npos ? std::nullopt : FrameOf(text, frames);
    if (!frame)
        throw UsageError(wrong + "names no frame of this run" + advice);
    const std::string name = text.substr(0, at);
    if (name.size() == 1 && std::isalnum(static_cast<unsigned char>(name[0])) != 0)
        return {name[0], static_cast<char>(std::toupper(static_cast<unsigned char>(name[0]))), *frame};
    int number = 0;
    if (name.starts_with('F')) {
        const char *end = name.data() + name.size();
        if (std::from_chars(name.data() + 1, end, number).ptr != end)
            number = 0;
    }
    if (number < 1 || number > kLastFunctionKey)
        throw UsageError(wrong + "names no key" + advice);
    return {'\0', static_cast<char>(kF1 + number - 1), *frame};
}

// Of FILE.png or FILE.png@FRAME; the last frame is the default.
Screenshot ParseScreenshot(const std::string &text, int frames) {
    const std::string advice = ": write FILE.png or FILE.png@FRAME, with FRAME from 1 to " + std::to_string(frames);
    const std::string wrong = "--screenshot: '" + text + "' ";
    Screenshot shot{text, frames};
    if (!text.ends_with(".png")) {
        const std::size_t at = text.rfind('@');
        if (at == std::string::npos)
            throw UsageError(wrong + "does not end in .png" + advice);
        const auto frame = FrameOf(text, frames);
        if (!frame)
            throw UsageError(wrong + "names no frame of this run" + advice);
        shot = {text.substr(0, at), *frame};
        if (!shot.file.ends_with(".png"))
            throw UsageError(wrong + "names no .png file" + advice);
    }
    const std::string folder = fs::path(shot.file).parent_path().string();
    const bool exists = access(shot.file.c_str(), F_OK) == 0;
    const std::string target = exists ? shot.file : folder.empty() ? "." : folder;
    if (access(target.c_str(), W_OK) != 0)
        throw UsageError("--screenshot: cannot write '" + shot.file + "' (" + std::strerror(errno) +
                         "): name a file in a folder that exists and is writable");
    return shot;
}

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

// The aircraft's model: the first .acf file of its folder. A folder of plugins
// alone will do as well: the model is only a name here.
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

void CheckPlaces(Options &options, const std::string &aircraft) {
    const std::string advice = "name the simulator's folder, which holds Resources/plugins";
    const std::string given = options.root;
    options.root = CheckedFolder(given, "--root", advice);
    if (options.root.size() > kLongestRoot)
        throw UsageError("--root: the full path of '" + given + "' is longer than " + std::to_string(kLongestRoot) +
                         " bytes, more than plugins have room for: use a shorter path");
    std::error_code error;
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

std::optional<Options> ParseOptions(int argc, char **argv) {
    Options options;
    std::string aircraft;
    std::vector<std::string> screenshots;
    std::vector<std::string> keys;

    const CLI::Validator positive(
        [](const std::string &text) {
            double number = 0;
            return CLI::detail::lexical_cast(text, number) && std::isfinite(number) && number > 0
                       ? std::string()
                       : "'" + text + "' is not a positive number";
        },
        "");

    CLI::App app("avsk: runs plugins without the simulator, in a small one of its own.", "avsk");
    app.set_version_flag("--version", "avsk " AVSK_HOST_VERSION);
    app.require_subcommand(1);
    AddNewProjectCommand(app);

    CLI::App *run = app.add_subcommand("run", "Loads the plugins, flies a number of frames and reports.");
    run->add_option("--root", options.root, "the simulator's folder; must hold Resources/plugins")
        ->type_name("DIR")
        ->capture_default_str();
    CLI::Option *const session =
        run->add_option("session", options.session, "a session: a file of steps and expectations, see below")
            ->type_name("SESSION.avs");
    CLI::Option *const interactive =
        run->add_flag("--interactive", options.interactive, "read the session's lines from standard input");
    bool words = false;
    run->add_flag("--words", words, "list the words of sessions");
    run->add_option("--plugin", options.plugins, "of a session: load only this plugin; can be repeated")
        ->type_name("NAME|PATH")
        ->allow_extra_args(false);
    interactive->excludes(session);
    // A session says these itself.
    const auto unlessSession = [&](CLI::Option *option) {
        option->excludes(session)->excludes(interactive);
        return option;
    };
    unlessSession(run->add_option("--frames", options.frames, "how many frames to run"))
        ->check(positive)
        ->capture_default_str();
    unlessSession(run->add_option("--fps", options.fps, "frames per simulated second"))
        ->check(positive)
        ->capture_default_str();
    unlessSession(
        run->add_option("--aircraft", aircraft, "folder of the user's aircraft, whose plugins are loaded too"))
        ->type_name("DIR");
    unlessSession(
        run->add_option("--scenery", options.scenery, "a scenery folder whose plugins are loaded too; can be repeated"))
        ->type_name("DIR")
        ->allow_extra_args(false);
    run->add_option("--log", options.logFile, "also write the log to this file")->type_name("FILE");
    run->add_flag("--quiet", options.quiet, "keep the log off standard output");
    unlessSession(run->add_option("--screenshot", screenshots,
                                  "write a picture of the last frame or of frame FRAME, 1024 x 768; can be repeated"))
        ->type_name("FILE.png[@FRAME]")
        ->allow_extra_args(false);
    unlessSession(
        run->add_option("--key", keys, "press a key in frame FRAME and hold it for half a second; can be repeated"))
        ->type_name("KEY@FRAME")
        ->allow_extra_args(false);
    AddBenchOptions(*run, options.bench, positive);
    run->footer(kRunExamples);

    CLI::App *ps =
        app.add_subcommand("ps", "Runs a while, then lists what each plugin owns, and what it leaves behind.");
    ps->add_option("--root", options.root, "the simulator's folder; must hold Resources/plugins")
        ->type_name("DIR")
        ->capture_default_str();
    ps->add_option("--plugin", options.plugins, "load only this plugin; can be repeated")
        ->type_name("NAME|PATH")
        ->allow_extra_args(false);
    int psFrames = 60;
    ps->add_option("--frames", psFrames, "how many frames to run")->check(positive)->capture_default_str();

    try {
        app.parse(argc, argv);
    } catch (const CLI::Success &success) {
        app.exit(success);
        return std::nullopt;
    } catch (const CLI::RequiredError &) {
        throw UsageError(
            "say what to do: 'avsk run --root DIR' runs the plugins of a folder, 'avsk --help' tells more");
    } catch (const CLI::ParseError &error) {
        throw UsageError(OneLine(error.what()) +
                         ": 'avsk run --help', 'avsk ps --help' and 'avsk new --help' list the options");
    }
    if (app.got_subcommand("new"))
        return std::nullopt;
    if (ps->parsed()) {
        options.frames = psFrames;
        options.quiet = true;
        options.report = false;
        options.bench.owners = true;
        options.rootGiven = ps->count("--root") > 0;
        if (options.plugins.empty())
            CheckPlaces(options, aircraft);
        return options;
    }
    options.rootGiven = run->count("--root") > 0;
    if (words) {
        PrintSessionWords();
        return std::nullopt;
    }
    if (options.interactive || !options.session.empty())
        return options; // places may be named in the session
    if (!options.plugins.empty())
        throw UsageError("--plugin: belongs to a session: name one, or say --interactive");
    CheckPlaces(options, aircraft);
    for (const std::string &text : screenshots)
        options.screenshots.push_back(ParseScreenshot(text, options.frames));
    for (const std::string &text : keys)
        options.keys.push_back(ParseKey(text, options.frames));
    return options;
}

} // namespace host
