// Reads a session's lines and runs them; see RunSession.h. Called by `avsk run`.
#include "RunSession.h"

#include "Forms.h"
#include "Parser.h"
#include "Runner.h"

#include "Common/UsageError.h"

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <string>
#include <utility>
#include <vector>

#include <unistd.h>

namespace host {
namespace {

namespace fs = std::filesystem;

// The whole file is checked before anything runs.
std::vector<Step> ReadSession(const std::string &file) {
    std::ifstream stream(file);
    std::error_code error;
    if (!stream || fs::is_directory(file, error))
        throw UsageError("cannot read the session '" + file + "' (" +
                         (stream ? "it is a folder" : std::strerror(errno)) +
                         "): name a readable file of steps, such as those in Samples");
    SessionParser parser(file);
    std::vector<Step> steps;
    for (std::string line; std::getline(stream, line);) {
        if (auto step = parser.Read(line))
            steps.push_back(std::move(*step));
    }
    if (steps.empty() || steps.back().form->IsSetUp())
        throw UsageError(file + ":1:1: this session has no step and no expectation: add some after the set-up");
    return steps;
}

int RunFile(SessionRunner &run, const std::string &file) {
    const std::vector<Step> steps = ReadSession(file);
    for (const Step &step : steps) {
        if (step.form->IsSetUp())
            run.Apply(step);
    }
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
        if (line == "quit")
            break;
        if (line == "help") {
            PrintSessionWords();
            line.clear(); // it counts
        }
        std::optional<Step> step;
        try {
            step = parser.Read(line);
            if (step && step->form->IsSetUp())
                run.Apply(*step);
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
    const std::string file = options.file;
    SessionRunner run(std::move(options));
    return file.empty() ? RunInput(run) : RunFile(run, file);
}

} // namespace host
