// A session from its first line to its summary; see Runner.h.
#include "Runner.h"

#include "Common/Terminal.h"
#include "Common/UsageError.h"
#include "Observing/Place.h"
#include "Services/Lifetime.h"

#include "AVSK/AVSKPlugins.h"

#include <array>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <iterator>

#include <unistd.h>

namespace host {
namespace {

namespace fs = std::filesystem;

// The whole file is read before anything runs, so a fault in its last line is found first.
std::vector<Step> ReadSession(const std::string &file) {
    std::ifstream stream(file);
    std::error_code error;
    if (!stream || fs::is_directory(file, error))
        throw UsageError("cannot read the session '" + file + "' (" +
                         (stream ? "it is a folder" : std::strerror(errno)) +
                         "): name a readable file of steps, such as those in Samples");
    SessionParser parser(file);
    std::vector<Step> steps;
    for (std::string line; std::getline(stream, line);)
        parser.Read(line, steps);
    if (steps.empty() || steps.back().form->kind == StepKind::SetUp)
        throw UsageError(file + ":1:1: no step and no expectation in this session: write some behind the set-up");
    return steps;
}

// Reads lines until the input or the plugins end. A line that is refused does nothing.
int Interact(SessionRunner &run) {
    const bool prompt = isatty(STDIN_FILENO) == 1;
    SessionParser parser("input");
    const auto ask = [prompt] {
        if (prompt)
            std::fputs("avsk> ", stdout);
        std::fflush(stdout);
    };
    ask();
    for (std::string line; std::getline(std::cin, line); ask()) {
        std::vector<Step> steps;
        if (line == "quit")
            break;
        if (line == "help") {
            PrintSessionWords();
            line.clear(); // it counts
        }
        try {
            parser.Read(line, steps);
            if (!steps.empty() && steps[0].form->kind == StepKind::SetUp)
                run.SetUp(steps[0]);
        } catch (const UsageError &error) {
            std::printf("%s\n", error.what());
            continue;
        }
        if (!steps.empty() && steps[0].form->kind != StepKind::SetUp) {
            run.Start();
            run.Do(steps[0]);
        }
    }
    return run.Finish();
}

} // namespace

int RunSession(SessionOptions options) {
    const std::string file = options.file;
    SessionRunner run(std::move(options));
    if (file.empty())
        return Interact(run);
    const std::vector<Step> steps = ReadSession(file);
    for (const Step &step : steps) {
        if (step.form->kind == StepKind::SetUp)
            run.SetUp(step);
    }
    run.Start();
    for (const Step &step : steps) {
        if (step.form->kind != StepKind::SetUp)
            run.Do(step);
    }
    return run.Finish();
}

SessionRunner::SessionRunner(SessionOptions options)
    : mOptions(std::move(options)), mName(mOptions.file.empty() ? "input" : mOptions.file),
      mFolder(fs::path(mOptions.file).parent_path().string()) {}

SessionRunner::~SessionRunner() = default;

// A path of a session begins at its file, else at the root.
std::string SessionRunner::Resolve(const Step &step, bool folder) const {
    std::error_code error;
    for (const fs::path &start : {fs::path(mFolder), fs::path(mOptions.simulator.root)}) {
        const fs::path path = start / step[0];
        if (folder ? fs::is_directory(path, error) : fs::exists(path, error))
            return path.string();
    }
    throw UsageError(mName + ":" + std::to_string(step.line) + ":" + std::to_string(step.words[0].column) + ": no " +
                     (folder ? "folder" : "file") + " '" + step[0] +
                     "': paths begin at the session's file, or at the root");
}

void SessionRunner::SetUp(const Step &step) {
    const std::string_view name = step.form->name;
    if (name == "root" && !mOptions.rootGiven) {
        mOptions.simulator.root = Resolve(step, /*folder=*/true);
        mOptions.rootGiven = true;
    } else if (name == "plugin") {
        const bool path = step[0].find('/') != std::string::npos;
        mOptions.plugins.push_back(path ? Resolve(step, /*folder=*/false) : step[0]);
    } else if (name == "fps") {
        mOptions.simulator.fps = NumberOf(step[0]);
    } else if (name == "screen") {
        const std::vector<int> size = IntegersOf(step[0]);
        constexpr int kMost = 8192; // a picture of it must fit into 32 bits of memory
        if (size[0] < 1 || size[1] < 1 || size[0] > kMost || size[1] > kMost)
            throw UsageError(mName + ":" + std::to_string(step.line) + ":" + std::to_string(step.words[0].column) +
                             ": no screen of " + step[0] + ": name a width and a height from 1 to 8192");
        mOptions.simulator.screenWidth = size[0];
        mOptions.simulator.screenHeight = size[1];
    } else if (name == "aircraft") {
        mAircraft = Resolve(step, /*folder=*/true);
    } else if (name == "scenery") {
        mOptions.simulator.scenery.push_back(Resolve(step, /*folder=*/true));
    } else if (name == "budget") {
        mBudgets[step.Count() > 1 ? step[1] : ""] = NumberOf(step[0]);
    }
}

void SessionRunner::Start() {
    if (mSimulator)
        return;
    if (!mOptions.plugins.empty()) {
        try {
            mOptions.simulator.root = mRoot.Make(mOptions.rootGiven ? mOptions.simulator.root : "", mOptions.plugins);
        } catch (const UsageError &error) {
            throw UsageError(mName + ": " + error.what());
        }
    }
    CheckFolders(mOptions.simulator, mAircraft);
    mOptions.simulator.frames = 0; // the steps say how many
    mSimulator = std::make_unique<Simulator>(mOptions.simulator);
    mSimulator->console.Keep(mOptions.simulator.root);
    mCalls = std::make_unique<CallLog>(*mSimulator);
    mObservers = std::make_unique<Observers>(*mSimulator, mOptions.observing);
    for (const auto &[plugin, milliseconds] : mBudgets)
        mObservers->Times().SetBudget(plugin, milliseconds);
    Prepare(*mSimulator);
    SetPlace(mName + ": loading the plugins");
    StartPlugins(*mSimulator);
    mLoaded = true;
}

void SessionRunner::Do(const Step &step) {
    ++(step.form->kind == StepKind::Expect ? mExpectations : mSteps);
    const std::string place = mName + ":" + std::to_string(step.line) + ": " + step.text;
    SetPlace(place);
    std::string wrong = step.form->action(*this, step);
    if (wrong.empty())
        return;
    ++mFailed;
    wrong = mSimulator->console.WithoutRoot(wrong);
    std::printf("%s\n", Emphasised(Emphasis::Failure, place + ": " + wrong, STDOUT_FILENO).c_str());
    std::fflush(stdout);
}

int SessionRunner::Finish() {
    SetPlace(mName + ": the end of the session");
    if (mLoaded)
        Unload();
    if (mObservers) {
        mObservers->ReportUnloaded();
        for (const std::string &failure : mObservers->Failures()) {
            ++mFailed;
            std::printf("%s\n", Emphasised(Emphasis::Failure, mName + ": " + failure, STDOUT_FILENO).c_str());
        }
    }
    std::printf("%s: %d frames, %d steps, %d expectations, %d failed\n", mName.c_str(),
                mSimulator ? mSimulator->frame : 0, mSteps, mExpectations, mFailed);
    std::fflush(stdout);
    return mFailed == 0 ? 0 : 1;
}

void SessionRunner::RunFrames(int count) {
    for (int i = 0; i < count; ++i)
        mSimulator->RunFrame();
}

void SessionRunner::Unload() {
    mLoaded = false;
    mObservers->ReportLoaded();
    StopPlugins(*mSimulator);
}

AVSKPluginID SessionRunner::FindPlugin(const std::string &wanted) {
    const AVSKPluginID signed_ = AVSKFindPluginBySignature(wanted.c_str());
    if (signed_ != NO_PLUGIN_ID)
        return signed_;
    for (int i = 1; i < AVSKCountPlugins(); ++i) {
        std::array<char, AVSK_TEXT_SIZE> name{};
        AVSKGetPluginInfo(AVSKGetNthPlugin(i), name.data(), nullptr, nullptr, nullptr);
        if (wanted == name.data())
            return AVSKGetNthPlugin(i);
    }
    return NO_PLUGIN_ID;
}

} // namespace host
