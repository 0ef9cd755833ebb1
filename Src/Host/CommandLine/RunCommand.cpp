// `avsk run`: runs plugins for a number of frames, or runs a session.
#include "Commands.h"
#include "SharedOptions.h"
#include "SimpleRun.h"

#include "Common/UsageError.h"
#include "Observing/Observers.h"
#include "Observing/Report.h"
#include "Services/Simulator.h"
#include "Session/Help.h"
#include "Session/Rlwrap.h"
#include "Session/RunSession.h"
#include "Watching/Watch.h"

#include <CLI/CLI.hpp>

#include <cctype>
#include <cerrno>
#include <charconv>
#include <cstring>
#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include <unistd.h>

namespace host {
namespace {

namespace fs = std::filesystem;

constexpr const char *kRunExamples = R"(Examples:
  avsk run --root build/release/demo
      the plugins in build/release/demo/Resources/plugins, for 300 frames
  avsk run build/sim/Resources/plugins/Counter/lin.avp --frames 60
      one plugin, without a simulator's folder
  avsk run --root sim --plugin Lights --plugin Menu
      two of the plugins in sim/Resources/plugins
  avsk run --root sim --aircraft sim/Aircraft/Trainer --frames 3600 --quiet --log flight.txt
      a minute with an aircraft's own plugins; the log goes to a file only
  avsk run --root sim --scenery sim/Scenery/Island --fps 20 --screenshot island.png@40
      plugins of a scenery folder, with a slow simulator, and a picture after two seconds
  avsk run --root sim --key F4@60 --key F5@120
      a change of view after one second, and after two a short climb
  avsk run Samples/Menu/Menu.avs --root build/release/demo
      a session: picks items of a sample's menu and checks what comes of it
  avsk run --interactive --root build/release/demo --plugin Menu
      the same, typed; 'help' lists the words, 'quit' ends. With rlwrap installed there is history and completion
  avsk run Menu.avs --root sim --watch
      the same after each build, until Ctrl-C, with what changed: expectations, pictures and the log
  avsk run Panel.avs --root sim --accept
      takes the pictures that the session expects anew; look at them before you keep them
  avsk run --root sim --trace flight.json --trace-plugin Lights --profile --ps
      the calls of and to the plugin Lights, where the time went, and what it did not release

Keys that no plugin consumes: F4 shows the next view, F5 climbs, F6 descends and F7 flies straight on while held.

A picture shows what plugins draw through the interface and with OpenGL, and all menus opened. It does not show scenery
objects or aircraft. OpenGL needs a 32-bit Mesa; without it the picture says which command installs it.

Exit status: 0 if all frames were run and every step and expectation of a session succeeded; 1 if one of them failed, a
plugin exceeded a budget, a filter or a budget named a plugin that was not there, a file could not be written completely,
or a plugin's exception ended the run; 2 if the request cannot be met as it was made; 3 if a plugin ended the run by a
signal, by exit(), or by a call that took longer than --timeout.)";

// The number after the last '@'; no value if it is not a frame of the run.
std::optional<int> FrameOf(const std::string &text, int frames) {
    const char *end = text.data() + text.size();
    int frame = 0;
    const auto [stop, error] = std::from_chars(text.data() + text.rfind('@') + 1, end, frame);
    if (error != std::errc() || stop != end || frame < 1 || frame > frames)
        return std::nullopt;
    return frame;
}

// Parses KEY@FRAME. The last '@' separates.
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

// Parses FILE.png or FILE.png@FRAME; the default is the last frame.
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

struct RunRequest {
    SessionOptions options;
    std::string aircraft; // its folder
    bool interactive = false;
    bool words = false;
    bool watch = false;
    std::vector<std::string> screenshots;
    std::vector<std::string> keys;
};

// A session contains these itself, so they are refused together with one. Returns them.
std::vector<CLI::Option *> AddRunOnlyOptions(CLI::App &run, RunRequest &request) {
    SimulatorOptions &simulator = request.options.simulator;
    std::vector<CLI::Option *> added{
        AddFrames(run, simulator.frames),
        run.add_option("--fps", simulator.fps, "frames per simulated second")
            ->check(PositiveNumber())
            ->capture_default_str(),
        run.add_option("--aircraft", request.aircraft, "folder of the user's aircraft, whose plugins are loaded too")
            ->type_name("DIR"),
        run.add_option("--scenery", simulator.scenery, "a scenery folder whose plugins are loaded too; can be repeated")
            ->type_name("DIR")
            ->allow_extra_args(false),
        run.add_option("--screenshot", request.screenshots,
                       "write a picture of the last frame or of frame FRAME, 1024 x 768; can be repeated")
            ->type_name("FILE.png[@FRAME]")
            ->allow_extra_args(false),
        run.add_option("--key", request.keys,
                       "press a key in frame FRAME and hold it for half a second; can be repeated")
            ->type_name("KEY@FRAME")
            ->allow_extra_args(false)};
    for (CLI::Option *option : added)
        option->group("Without a session");
    return added;
}

// Tells a plugin from a session. Throws UsageError for options that do not belong together.
void SortOut(RunRequest &request, const std::vector<CLI::Option *> &runOnly) {
    SessionOptions &options = request.options;
    if (!options.file.empty() && IsPlugin(options.file)) {
        options.plugins.push_back(fs::absolute(std::exchange(options.file, "")).string());
    } else if (request.interactive && !options.file.empty()) {
        throw UsageError("--interactive: the lines are read from standard input: leave out the session '" +
                         options.file + "'");
    }
    if (!request.interactive && options.file.empty())
        return;
    for (const CLI::Option *option : runOnly) {
        if (option->count() > 0)
            throw UsageError(option->get_name() + ": a session says this itself: leave out the option or the session" +
                             "; 'avsk run --words' lists the words of sessions");
    }
}

void ParsePlainOptions(RunRequest &request) {
    SimulatorOptions &simulator = request.options.simulator;
    if (!request.options.keptRoot.empty())
        throw UsageError("--keep-root: belongs to a session: name one, or use --interactive");
    if (request.options.acceptPictures)
        throw UsageError("--accept: belongs to a session with 'expect picture' lines: name one, or use --interactive");
    for (const std::string &text : request.screenshots)
        simulator.screenshots.push_back(ParseScreenshot(text, simulator.frames));
    for (const std::string &text : request.keys)
        simulator.keys.push_back(ParseKey(text, simulator.frames));
}

int RunPlainly(SessionOptions options, const std::string &aircraft) {
    const bool hasRealTime = !options.round; // rounds are compared
    SimpleRun run;
    run.options = std::move(options);
    run.aircraft = aircraft;
    run.namesRoot = true;
    run.report = [hasRealTime](Simulator &flown, Observers &observers) {
        PrintReport(flown, observers.Times(), hasRealTime);
    };
    return RunFrames(std::move(run));
}

int WatchRuns(RunRequest &request) {
    if (request.interactive)
        throw UsageError("--watch: nobody can type a session again for each run: write it to a file instead of using "
                         "--interactive");
    if (request.options.acceptPictures)
        throw UsageError("--watch: --accept belongs to a single run: each run would accept its own pictures");
    if (!request.options.keptRoot.empty())
        throw UsageError("--watch: each run has a root of its own: leave out --keep-root");
    const bool isSession = !request.options.file.empty();
    const std::string aircraft = request.aircraft;
    return Watch({request.options, aircraft, [isSession, aircraft](const SessionOptions &options) {
                      return isSession ? RunSession(options) : RunPlainly(options, aircraft);
                  }});
}

int Do(RunRequest &request, char **argv) {
    if (request.words) {
        PrintSessionWords();
        return 0;
    }
    const bool isSession = request.interactive || !request.options.file.empty();
    if (!isSession)
        ParsePlainOptions(request);
    if (request.watch)
        return WatchRuns(request);
    if (request.interactive)
        RestartUnderRlwrap(argv);
    if (isSession)
        return RunSession(std::move(request.options)); // its folders may be named in the session
    return RunPlainly(std::move(request.options), request.aircraft);
}

} // namespace

void AddRunCommand(CLI::App &app, Job &job, char **argv) {
    const auto request = std::make_shared<RunRequest>();
    SessionOptions &options = request->options;
    CLI::App *run = app.add_subcommand("run", "Loads the plugins, flies a number of frames and reports.");
    CLI::Option *const root = AddRoot(*run, options.simulator.root);
    run->add_option("FILE", options.file,
                    "a session, which is a file of steps and expectations; or a plugin to run: lin.avp or its folder")
        ->type_name("");
    run->add_flag("--interactive", request->interactive, "read the session's lines from standard input");
    run->add_flag("--words", request->words, "list the words of sessions");
    run->add_flag(
        "--watch", request->watch,
        "run again whenever a plugin's files, the session or its data change, and print what differs from the "
        "last run; Ctrl-C ends the watch");
    run->add_flag("--accept", options.acceptPictures,
                  "of a session with 'expect picture': write each picture anew instead of comparing it");
    AddPlugins(*run, options.plugins, "load only this plugin; can be repeated");
    run->add_option("--keep-root", options.keptRoot,
                    "of a session that chooses plugins: make its root in this folder and keep it, with the files that "
                    "plugins write there")
        ->type_name("DIR");
    const std::vector<CLI::Option *> runOnly = AddRunOnlyOptions(*run, *request);
    run->add_option("--log", options.simulator.logFile, "also write the log to this file")->type_name("FILE");
    run->add_flag("--quiet", options.simulator.quiet, "keep the log off standard output");
    AddObservingOptions(*run, options.observing);
    AddOpenGLCount(*run, options.observing);
    // For `avsk check`, which runs sessions in processes of their own.
    run->add_option("--record", options.observing.record)->group("");
    run->footer(kRunExamples);
    run->callback([request, root, runOnly, &job, argv] {
        request->options.rootGiven = root->count() > 0;
        SortOut(*request, runOnly);
        job = [request, argv] { return Do(*request, argv); };
    });
}

} // namespace host
