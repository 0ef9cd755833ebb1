// `avsk exec`: runs another program with the observers in it; see Preload/Preload.cpp
// for what happens there. Called by the parser of the command line.
#include "Commands.h"

#include "Common/NearestName.h"
#include "Common/UsageError.h"
#include "Crossings/Words.h"
#include "Elf/ElfFile.h"
#include "Observing/Trace.h"
#include "Preload/ObserveVariable.h"

#include <CLI/CLI.hpp>

#include <array>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <memory>
#include <string>
#include <string_view>
#include <system_error>
#include <utility>
#include <vector>

#include <sys/stat.h>
#include <sys/xattr.h>
#include <unistd.h>

namespace host {
namespace {

namespace fs = std::filesystem;

struct ExecRequest {
    ObservingOptions options;
    std::vector<std::string> program; // and its arguments
    std::vector<std::string> words;   // of it before "--"
    bool printsVariables = false;
};

constexpr const char *kPreloadVariable = "LD_PRELOAD";

std::string FindPreload() {
    const fs::path folder = fs::canonical("/proc/self/exe").parent_path();
    for (const fs::path &place : {folder, folder.parent_path() / AVSK_PRELOAD_FOLDER}) {
        std::string path = (place / AVSK_PRELOAD_NAME).string();
        std::error_code error;
        if (!fs::exists(path, error))
            continue;
        if (path.find_first_of(" :") != std::string::npos)
            throw UsageError("exec: '" + path + "' contains a space or a colon, which " + kPreloadVariable +
                             " cannot carry: put the SDK into another folder");
        return path;
    }
    throw UsageError("exec: " AVSK_PRELOAD_NAME " is missing beside avsk and in ../" AVSK_PRELOAD_FOLDER
                     ": install the SDK again");
}

std::vector<std::string> NamesIn(const fs::path &folder) {
    std::vector<std::string> names;
    std::error_code error;
    for (const fs::directory_entry &entry : fs::directory_iterator(folder, error))
        names.push_back(entry.path().filename().string());
    return names;
}

// The file of a program, which is searched for as a shell does.
std::string FindProgram(const std::string &name) {
    std::error_code error;
    if (name.find('/') != std::string::npos) {
        if (!fs::exists(name, error)) {
            const fs::path path = name;
            throw UsageError("exec: there is no program '" + name + "'" +
                             DidYouMean(path.filename().string(), NamesIn(path.parent_path())));
        }
        return name;
    }
    const char *const variable = std::getenv("PATH");
    std::string_view folders = variable ? variable : "/usr/bin:/bin";
    while (!folders.empty()) {
        const fs::path path = fs::path(crossings::TakeWord(folders, ":")) / name;
        if (access(path.c_str(), X_OK) == 0 && fs::is_regular_file(path, error))
            return path.string();
    }
    throw UsageError("exec: there is no program '" + name + "' in the folders of PATH" +
                     (fs::exists(name, error) ? ": say ./" + name : ": give its path"));
}

// Throws UsageError if the dynamic linker would not preload anything into the program, or it cannot load the library.
void CheckProgram(const std::string &path) {
    const auto refuse = [&path](const std::string &reason) { throw UsageError("exec: '" + path + "' " + reason); };
    struct stat info = {};
    if (stat(path.c_str(), &info) == 0 && S_ISDIR(info.st_mode))
        refuse("is a folder: name the program in it");
    if (access(path.c_str(), X_OK) != 0)
        refuse(std::string("cannot be run (") + std::strerror(errno) + ")");
    if ((info.st_mode & S_ISUID) != 0 || (info.st_mode & (S_ISGID | S_IXGRP)) == (S_ISGID | S_IXGRP))
        refuse("is set-uid or set-gid, so nothing can be preloaded into it: run a copy without that");
    if (getxattr(path.c_str(), "security.capability", nullptr, 0) > 0)
        refuse("has file capabilities, so nothing can be preloaded into it: run a copy without them");
    std::array<char, 2> begin{};
    std::ifstream(path, std::ios::binary).read(begin.data(), begin.size());
    if (std::string_view(begin.data(), begin.size()) == "#!")
        refuse("is a script: give the program that it starts, or let 'avsk exec --environment' print variables for it");
    const auto [file, fault] = ReadElf(path);
    if (!fault.empty())
        refuse(fault + ": give a 32-bit x86 program");
    if (file.bits == 64)
        refuse("is a 64-bit program: libAVSK.so is a 32-bit library, so only a 32-bit program can load it");
    if (!file.IsForX86())
        refuse("is built for " + file.machine + ": only an x86 program can load libAVSK.so");
    if (!file.hasInterpreter)
        refuse("is linked statically or no program, so nothing can be preloaded into it: link it dynamically");
    std::error_code error;
    if (fs::equivalent(path, "/proc/self/exe", error))
        refuse("observes plugins itself: give 'avsk run' the options");
}

// The program may change its folder before it calls the library.
void MakeAbsolute(std::string &path) {
    if (!path.empty())
        path = fs::absolute(path).string();
}

std::string ForShell(const std::string &text) {
    std::string quoted = "'";
    for (const char c : text)
        quoted += c == '\'' ? std::string("'\\''") : std::string(1, c);
    return quoted + "'";
}

void Set(const char *variable, const std::string &value) { setenv(variable, value.c_str(), /*overwrite=*/1); }

int Execute(ExecRequest &request) {
    request.program.insert(request.program.begin(), request.words.begin(), request.words.end());
    ObservingOptions &options = request.options;
    MakeAbsolute(options.trace.file);
    MakeAbsolute(options.report);
    std::string preload = FindPreload();
    if (const char *const others = std::getenv(kPreloadVariable); others && *others)
        preload.append(":").append(others);
    const std::string value = WriteObserveVariable(options);
    if (request.printsVariables) {
        if (!request.program.empty())
            throw UsageError("exec: --environment runs no program: leave '" + request.program.front() + "' out");
        std::printf("export %s=%s\nexport %s=%s\n", kObserveVariable, ForShell(value).c_str(), kPreloadVariable,
                    ForShell(preload).c_str());
        return 0;
    }
    if (request.program.empty())
        throw UsageError("exec: say which program to run: avsk exec [options] -- PROGRAM ARGUMENTS...");
    const std::string path = FindProgram(request.program.front());
    CheckProgram(path);
    // In the program a fault of these options would be told too late.
    if (!options.trace.file.empty())
        const Trace trial(options.trace);
    if (!options.report.empty() && !std::ofstream(options.report))
        throw UsageError("exec: '" + options.report + "' cannot be written (" + std::strerror(errno) + ")");
    Set(kObserveVariable, value);
    Set(kPreloadVariable, preload);
    std::vector<char *> arguments;
    for (std::string &argument : request.program)
        arguments.push_back(argument.data());
    arguments.push_back(nullptr);
    execv(path.c_str(), arguments.data());
    throw UsageError("exec: '" + path + "' cannot be run (" + std::strerror(errno) + ")");
}

constexpr const char *kFooter =
    R"text(The options go before --. Reports go to standard error, or to the file of --report: when the program ends, and whenever
it gets the signal SIGUSR1, at the next event that it reports. The program's own handlers of signals run after a report.
Programs that it starts are not observed.

A program that cannot be started so is observed with two variables: LD_PRELOAD names the object that observes, and
AVSK_OBSERVE has these options. 'avsk exec --environment' prints both for a shell. The dynamic linker then says of each
64-bit program that it does not preload the object.

Examples:
  avsk exec --check -- ./simulator --window
      what plugins and the simulator do wrong
  avsk exec --trace calls.txt --trace-plugin Counter -- ./simulator
      the calls of one plugin
  avsk exec --profile --report times.txt -- ./simulator
      where plugins spend their time, in a file
  (eval "$(avsk exec --environment --ps)"; ./start-simulator)
      for a program that a script starts

Exit status: that of the program; if it is 0, 1 if --check found errors, a budget was exceeded, or the program did not
call the library; 2 if the request cannot be met as it was made; 3 if a call took longer than --timeout.)text";

} // namespace

void AddExecCommand(CLI::App &app, Job &job, std::vector<std::string> program) {
    const auto request = std::make_shared<ExecRequest>();
    request->program = std::move(program);
    CLI::App *command =
        app.add_subcommand("exec", "Runs another program that loads libAVSK.so, and observes plugins and host in it.");
    command->add_option("PROGRAM", request->words, "the program and its arguments, after --")->type_name("");
    command->add_flag("--environment", request->printsVariables,
                      "print the variables that observe a program, instead of running one");
    AddExecOptions(*command, request->options);
    command->footer(kFooter);
    command->callback([request, &job] { job = [request] { return Execute(*request); }; });
}

} // namespace host
