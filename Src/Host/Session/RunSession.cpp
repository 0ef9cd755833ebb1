// Reads a session's lines and runs them; see RunSession.h. Called by `avsk run`.
#include "RunSession.h"

#include "Forms.h"
#include "Help.h"
#include "Parser.h"
#include "Runner.h"

#include "Common/Files.h"
#include "Common/Text.h"
#include "Common/UsageError.h"

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <iostream>
#include <optional>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

#include <unistd.h>

namespace host {
namespace {

namespace fs = std::filesystem;

// Runs an action and adds the fault that it throws to the list.
template <typename Action>
void Collect(std::vector<std::string> &faults, Action action) {
    try {
        action();
    } catch (const UsageError &fault) {
        faults.emplace_back(fault.what());
    }
}

void Shorten(std::vector<std::string> &faults) {
    constexpr std::size_t kMost = 20;
    if (faults.size() <= kMost)
        return;
    const std::string more = std::to_string(faults.size() - kMost);
    faults.resize(kMost);
    faults.push_back(more + " more lines are wrong");
}

} // namespace

std::vector<Step> ReadSession(SetUp &setUp, std::vector<std::string> &faults, bool needsSteps) {
    const std::string &file = setUp.options.file;
    std::error_code error;
    if (fs::is_directory(fs::path(file) / "Resources/plugins", error))
        throw UsageError("'" + file + "' is a simulator's folder and no session: 'avsk run --root " + file +
                         "' runs its plugins");
    const std::optional<std::string> text = ReadFile(file);
    const std::string fault = std::strerror(errno);
    if (!text)
        throw UsageError("cannot read the session '" + file + "' (" +
                         (fs::is_directory(file, error) ? "it is a folder" : fault) +
                         "): name a readable file of steps, such as those in Samples");
    if (text->find('\0') != std::string::npos)
        throw UsageError("'" + file +
                         "' is no session, because it is no text: name a file of steps, such as those in Samples");
    SessionParser parser(file);
    std::vector<Step> steps;
    std::istringstream stream(*text);
    for (std::string line; std::getline(stream, line);) {
        Collect(faults, [&] {
            if (auto step = parser.Read(line))
                steps.push_back(std::move(*step));
        });
    }
    if (needsSteps && faults.empty() && (steps.empty() || steps.back().form->IsSetUp()))
        throw UsageError(file + ":1:1: this session has no step and no expectation: add some after the set-up");
    for (const Step &step : steps) {
        if (step.form->IsSetUp())
            Collect(faults, [&] { setUp.Apply(step); });
    }
    Shorten(faults);
    return steps;
}

namespace {

// Nothing runs if a line is wrong.
int RunFile(SessionRunner &run) {
    std::vector<std::string> faults;
    const std::vector<Step> steps = ReadSession(run.ForSetUp(), faults);
    if (!faults.empty())
        throw UsageError(Join(faults, "\n"));
    run.Start();
    for (const Step &step : steps) {
        if (!step.form->IsSetUp())
            run.Do(step);
    }
    return run.Finish();
}

// Reads lines until the input ends. A line that is refused does nothing.
int RunInput(SessionRunner &run) {
    const bool prompt = isatty(STDIN_FILENO) == 1;
    SessionParser parser("input");
    const auto ask = [prompt] {
        if (prompt)
            std::fputs("avsk> ", stdout);
        std::fflush(stdout);
    };
    ask();
    for (std::string line; std::getline(std::cin, line); ask()) {
        std::istringstream words(line);
        std::string first;
        std::string second;
        words >> first >> second;
        if (first == "quit")
            break;
        if (first == "help") {
            for (std::string more; second == "expect" && words >> more;) {
                if (more != "no")
                    second = more; // "help expect no log" explains "log"
            }
            second.empty() ? PrintSessionWords() : PrintWord(second);
            line.clear(); // for the parser, which counts the lines
        }
        std::optional<Step> step;
        try {
            step = parser.Read(line);
            if (step && step->form->IsSetUp())
                run.ForSetUp().Apply(*step);
        } catch (const UsageError &error) {
            std::printf("%s\n", error.what());
            continue;
        }
        if (step && !step->form->IsSetUp()) {
            run.Start();
            run.Do(*step);
        }
    }
    return run.Finish();
}

} // namespace

int RunSession(SessionOptions options) {
    const bool isTyped = options.file.empty();
    SessionRunner run(std::move(options));
    return isTyped ? RunInput(run) : RunFile(run);
}

} // namespace host
