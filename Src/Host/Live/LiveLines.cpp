// Decides which words a page may send, and executes them; see LiveLines.h. Called by
// LiveSimulator.cpp.
#include "LiveLines.h"

#include "LivePaths.h"
#include "Recording.h"

#include "Common/UsageError.h"
#include "Observing/Place.h"
#include "Session/Parser.h"
#include "Session/Runner.h"
#include "Session/Values.h"

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <optional>
#include <string_view>

#include <sys/mman.h>
#include <unistd.h>

namespace host {
namespace {

struct Refusal {
    std::string_view word;
    const char *why;
};
constexpr Refusal kRefused[] = {
    {"frames", "frames run by themselves here: pause the simulator and run single frames"},
    {"seconds", "frames run by themselves here: pause the simulator and run single frames"},
    {"screenshot", "a recording has no place for it: expect the picture instead"},
    {"unload", "the plugins stay loaded until the simulator ends"},
};

// These print what a page shows anyway. They are executed but not recorded.
constexpr std::string_view kLooks[] = {"get", "read", "datarefs", "windows", "menus", "commands", "ps"};

// What is printed to standard output during its lifetime.
class Printed {
  public:
    Printed() : mFile(memfd_create("avsk-printed", MFD_CLOEXEC)) {
        std::fflush(stdout);
        mOutput = dup(STDOUT_FILENO);
        if (mFile >= 0)
            dup2(mFile, STDOUT_FILENO);
    }
    ~Printed() {
        Restore();
        close(mFile);
    }
    Printed(const Printed &) = delete;
    Printed &operator=(const Printed &) = delete;

    // Ends it.
    std::string Text() {
        Restore();
        constexpr std::size_t kMost = 256 * 1024;
        std::string text(kMost, '\0');
        const ssize_t length = pread(mFile, text.data(), text.size(), 0);
        text.resize(static_cast<std::size_t>(std::max<ssize_t>(length, 0)));
        return text;
    }

  private:
    void Restore() {
        if (mOutput < 0)
            return;
        std::fflush(stdout);
        dup2(mOutput, STDOUT_FILENO);
        close(mOutput);
        mOutput = -1;
    }

    int mFile;
    int mOutput = -1;
};

// Without "line:1:5: ", which the parser puts before its reasons.
std::string ReasonOf(const UsageError &error) {
    std::string_view text = error.what();
    for (int colons = 0; colons < 3; ++colons)
        text.remove_prefix(std::min(text.find(':') + 1, text.size()));
    text.remove_prefix(std::min(text.find_first_not_of(' '), text.size()));
    return std::string(text);
}

// The step of a line; none if the line is empty or a comment. Throws UsageError.
std::optional<Step> Read(const std::string &line) {
    const auto isControl = [](char c) { return static_cast<unsigned char>(c) < ' ' && c != '\t'; };
    if (std::any_of(line.begin(), line.end(), isControl))
        throw UsageError("a line contains no control characters: write \\n for a new line in a text");
    std::optional<Step> step;
    try {
        step = SessionParser("line").Read(line);
    } catch (const UsageError &error) {
        throw UsageError(ReasonOf(error));
    }
    if (!step)
        return step;
    const std::string word(step->form->word);
    if (step->form->IsSetUp())
        throw UsageError("'" + word + "' belongs before the first step: start again with it in the session");
    if (!step->form->IsExpectation()) {
        for (const Refusal &refusal : kRefused) {
            if (word == refusal.word)
                throw UsageError("'" + word + "': " + refusal.why);
        }
    }
    return step;
}

bool IsLook(const Step &step) {
    return !step.form->IsExpectation() &&
           std::find(std::begin(kLooks), std::end(kLooks), step.form->word) != std::end(kLooks);
}

bool IsPicture(const Step &step) { return step.form->IsExpectation() && step.form->word == "picture"; }

// Files that a line names stay inside of the root, or of the recording's folder. Throws UsageError.
void CheckFiles(const Step &step, const Simulator &simulator, const Recording &recording) {
    if (step.form->word == "load")
        CheckPathToRead(simulator.options.root, step[1]);
    else if (step.form->IsExpectation() && step.form->word == "file")
        CheckPathToRead(simulator.options.root, step[0]);
    else if (IsPicture(step))
        PathToWrite(recording.Folder(), step[0], ".png");
}

} // namespace

void LiveLines::Record(const Step &step, bool hasSucceeded, int framesBefore) {
    mRecording.Begin("");
    if (!hasSucceeded) {
        for (int frame = framesBefore; frame < mRun.Sim().frame; ++frame)
            mRecording.AddFrame(); // to compare a picture takes one
    } else if (IsPicture(step)) {
        const std::string tolerance = step.Count() > 1 ? " " + step[1] : "";
        mRecording.AddLine(step.negated ? "expect no picture " : "expect picture ", step[0], tolerance);
    } else if (!IsLook(step)) {
        mRecording.AddLine(step.text);
    }
}

void LiveLines::DoFirst(const Step &step) {
    const int frame = mRun.Sim().frame;
    mRecording.Begin(step.text);
    Record(step, mRun.Do(step), frame);
}

Answer LiveLines::Do(const std::string &line) {
    std::optional<Step> step;
    try {
        step = Read(line);
        if (step)
            CheckFiles(*step, mRun.Sim(), mRecording);
    } catch (const UsageError &error) {
        return {false, error.what()};
    }
    if (!step) {
        const std::size_t begin = line.find_first_not_of(" \t");
        if (begin != std::string::npos)
            mRecording.AddLine(line.substr(begin));
        return {true, ""};
    }
    SetPlace("live: " + step->text);
    mRecording.Begin(step->text);
    const int frame = mRun.Sim().frame;
    std::string text;
    Failure failure;
    if (IsLook(*step)) {
        Printed printed;
        failure = mRun.Try(*step);
        text = printed.Text();
    } else {
        failure = mRun.Try(*step);
    }
    Record(*step, failure.why.empty(), frame);
    return failure.why.empty() ? Answer{true, text} : Answer{false, mRun.Sim().console.WithoutRoot(failure.why)};
}

Answer LiveLines::Expect(const std::string &picture, bool replaces) {
    std::error_code error;
    std::string path = PathToWrite(mRecording.Folder(), picture, ".png");
    if (!replaces && std::filesystem::exists(path, error))
        return {false, "'" + picture + "' exists: choose another name, or replace it"};
    bool &accepts = mRun.ForSetUp().options.acceptPictures;
    accepts = true;
    const Answer answer = Do("expect picture " + Written(picture));
    accepts = false;
    return answer.isOk ? Answer{true, path} : answer;
}

} // namespace host
