// Collects the lines and writes them; see Recording.h. Called by LiveSimulator.cpp,
// LiveLines.cpp and reports of what ended the process. Owns the pointer to the recording.
#include "Recording.h"

#include "LivePaths.h"

#include "Common/Files.h"
#include "Common/UsageError.h"
#include "Crossings/Line.h"
#include "Observing/Blame.h"
#include "Observing/History.h"
#include "Session/SessionOptions.h"
#include "Session/TemporaryRoot.h"
#include "Session/Values.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <charconv>
#include <cstring>
#include <ctime>
#include <exception>
#include <filesystem>
#include <string_view>
#include <utility>

#include <fcntl.h>
#include <unistd.h>

namespace host {
namespace {

namespace fs = std::filesystem;

// As few digits as name the same number.
std::string Exactly(double number) {
    std::array<char, 32> text{};
    const auto [end, error] = std::to_chars(text.begin(), text.end(), number, std::chars_format::fixed);
    return error == std::errc() ? std::string(text.begin(), end) : std::to_string(number);
}

std::string Absolute(const fs::path &path) { return fs::absolute(path).lexically_normal().string(); }

const Recording *gRecording = nullptr; // of the process
void (*gAddedBefore)() = nullptr;      // to reports of what ended the process

void WriteLastRecording() {
    if (gAddedBefore)
        gAddedBefore();
    if (gRecording)
        gRecording->WriteLast();
}

} // namespace

std::string Recording::Line::Text(const std::string &folder) const {
    return path.empty() ? before : before + Written(PathFrom(folder, path)) + behind;
}

Recording::Recording(const SessionOptions &options, const std::string &aircraft,
                     const std::map<std::string, double> &budgets, std::string folder)
    : mFolder(std::move(folder)) {
    const SimulatorOptions &simulator = options.simulator;
    const SimulatorOptions defaults;
    const bool hasRoot = options.rootGiven || options.plugins.empty();
    if (hasRoot)
        AddPath("root ", simulator.root);
    const fs::path plugins = fs::path(simulator.root) / "Resources/plugins";
    for (const std::string &plugin : options.plugins) {
        const fs::path found = LocatePlugin(hasRoot ? simulator.root : "", plugin);
        if (hasRoot && plugin.find('/') == std::string::npos && found.parent_path() == plugins)
            AddLine("plugin " + Written(plugin));
        else
            AddPath("plugin ", found);
    }
    if (simulator.fps != defaults.fps)
        AddLine("fps " + Exactly(simulator.fps));
    if (simulator.screenWidth != defaults.screenWidth || simulator.screenHeight != defaults.screenHeight)
        AddLine("screen " + std::to_string(simulator.screenWidth) + "x" + std::to_string(simulator.screenHeight));
    if (!aircraft.empty())
        AddPath("aircraft ", aircraft);
    for (const std::string &scenery : simulator.scenery)
        AddPath("scenery ", scenery);
    for (const auto &[rule, reason] : options.observing.allowed)
        AddLine("allow " + rule + " " + Written(reason));
    for (const auto &[plugin, milliseconds] : budgets)
        AddLine("budget " + Exactly(milliseconds) + (plugin.empty() ? "" : " " + Written(plugin)));
    AddLine("");
    mLastFile = (fs::temp_directory_path() /
                 ("avsk-live-" + std::to_string(std::time(nullptr)) + "-" + std::to_string(getpid()) + ".avs"))
                    .string();
    gRecording = this;
    gAddedBefore = AddToBlame(WriteLastRecording);
}

Recording::~Recording() {
    if (std::uncaught_exceptions() > 0)
        WriteLast(); // a plugin's exception ends the process
    AddToBlame(gAddedBefore);
    gRecording = nullptr;
}

void Recording::AddFrame() {
    constexpr int kMost = 10'000'000; // that the word accepts
    if (mFrames == kMost)
        EndFrames();
    ++mFrames;
    mUnderWay.clear();
}

void Recording::AddLine(std::string before, const std::string &file, std::string behind) {
    AddPath(std::move(before), fs::path(mFolder) / file, std::move(behind));
}

void Recording::AddPath(std::string before, const std::string &path, std::string behind) {
    const std::string absolute = Absolute(path);
    Add({std::move(before), absolute, Written(absolute), std::move(behind)});
}

void Recording::Add(Line line) {
    EndFrames();
    mUnderWay.clear();
    mLines.push_back(std::move(line));
    mSavedAs.clear();
}

void Recording::EndFrames() {
    if (const int frames = std::exchange(mFrames, 0); frames > 0)
        mLines.push_back({"frames " + std::to_string(frames), "", "", ""});
}

std::string Recording::Save(const std::string &file, bool replaces) {
    std::string path = PathToWrite(mFolder, file, ".avs");
    const std::string folder = fs::path(path).parent_path().string();
    std::string text;
    for (const Line &line : mLines)
        text += line.Text(folder) + "\n";
    if (mFrames > 0)
        text += "frames " + std::to_string(mFrames) + "\n";
    const int exists = replaces ? O_TRUNC : O_EXCL;
    const int descriptor = open(path.c_str(), O_WRONLY | O_CREAT | O_NOFOLLOW | O_CLOEXEC | exists, 0666);
    if (descriptor < 0 && errno == EEXIST)
        throw UsageError("'" + file + "' exists: choose another name, or replace it");
    const bool isWritten = descriptor >= 0 && WriteAll(descriptor, text);
    const int fault = errno;
    if (descriptor < 0 || close(descriptor) != 0 || !isWritten)
        throw UsageError("cannot write '" + path + "' (" + std::strerror(fault) + ")");
    mSavedAs = file;
    return path;
}

void Recording::WriteLast() const {
    const int file = open(mLastFile.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0600);
    if (file < 0)
        return;
    bool isWritten = true;
    const auto write = [&](std::string_view text) { isWritten = isWritten && WriteAll(file, text); };
    for (const Line &line : mLines) {
        for (const std::string *part : {&line.before, &line.quoted, &line.behind})
            write(*part);
        write("\n");
    }
    crossings::Line frames;
    frames.Add(mUnderWay.empty() ? mFrames + 1 : mFrames); // one is under way
    if (frames.Text() != "0") {
        write("frames ");
        write(frames.Text());
        write("\n");
    }
    write(mUnderWay);
    write("\n");
    close(file);
    if (!isWritten)
        return;
    WriteError("The session until then, for 'avsk run': ");
    WriteError(mLastFile);
    WriteError("\n");
}

std::vector<std::string> Recording::Tail(std::size_t most) const {
    std::vector<std::string> tail;
    const std::size_t kept = std::min(mLines.size(), mFrames > 0 ? most - 1 : most);
    for (std::size_t i = mLines.size() - kept; i < mLines.size(); ++i)
        tail.push_back(mLines[i].Text(mFolder));
    if (mFrames > 0)
        tail.push_back("frames " + std::to_string(mFrames));
    return tail;
}

} // namespace host
