// `avsk new`: writes a plugin project, the files of NewProjectFiles.h, into a new folder.
#include "Commands.h"

#include "NewProjectFiles.h"

#include "Common/UsageError.h"

#include <CLI/CLI.hpp>

#include <algorithm>
#include <array>
#include <cctype>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <memory>
#include <string>
#include <string_view>
#include <system_error>
#include <utility>
#include <vector>

namespace host {
namespace {

namespace fs = std::filesystem;

struct NewRequest {
    std::string name;
    std::string folder = ".";
    bool plainC = false;
    bool cpp = false;
};

constexpr std::size_t kLongestName = 60;

bool IsLetter(char c) { return std::isalpha(static_cast<unsigned char>(c)) != 0; }
bool IsWordCharacter(char c) { return c == '_' || std::isalnum(static_cast<unsigned char>(c)) != 0; }

// The name is used for a folder, a source file and a CMake target.
void CheckName(const std::string &name) {
    constexpr std::array<std::string_view, 11> kCMakesOwn{
        "ALL_BUILD", "AVSK", "RUN_TESTS", "ZERO_CHECK", "all", "clean", "depend", "help", "install", "package", "test"};
    if (name.empty())
        throw UsageError("new: name the plugin: 'avsk new NAME' makes the folder NAME");
    if (name.size() > kLongestName || !IsLetter(name.front()) ||
        !std::all_of(name.begin(), name.end(), IsWordCharacter))
        throw UsageError("new: '" + name + "' is no name for a plugin: begin with a letter and use at most " +
                         std::to_string(kLongestName) + " letters, digits and underscores");
    if (std::find(kCMakesOwn.begin(), kCMakesOwn.end(), name) != kCMakesOwn.end())
        throw UsageError("new: the name '" + name + "' has a meaning of its own in CMake: choose another");
}

// Quotes a word for a shell; also the placeholder, whose brackets a shell would interpret.
std::string Quoted(const std::string &path) {
    const bool isPlain = std::all_of(path.begin(), path.end(),
                                     [](char c) { return IsWordCharacter(c) || c == '/' || c == '.' || c == '-'; });
    if (isPlain)
        return path;
    std::string quoted = "'";
    for (const char c : path)
        quoted += c == '\'' ? std::string("'\\''") : std::string(1, c);
    return quoted + "'";
}

// The SDK's folder if this program is installed in one; otherwise a placeholder.
std::string SdkPrefix() {
    std::error_code error;
    const fs::path program = fs::read_symlink("/proc/self/exe", error);
    const fs::path prefix = program.parent_path().parent_path();
    return !error && fs::exists(prefix / "lib/cmake/AVSK/AVSKConfig.cmake", error) ? prefix.string() : "<the SDK>";
}

std::string Fill(std::string text, const std::vector<std::pair<std::string, std::string>> &words) {
    for (const auto &[word, value] : words) {
        for (std::size_t at = text.find(word); at != std::string::npos; at = text.find(word, at + value.size()))
            text.replace(at, word.size(), value);
    }
    return text;
}

void WriteFile(const fs::path &file, const std::string &text) {
    std::ofstream stream(file, std::ios::binary);
    stream << text;
    stream.close();
    if (!stream)
        throw UsageError("new: cannot write '" + file.string() + "': look at the disk's space and permissions");
}

void MakeProject(const NewRequest &request) {
    CheckName(request.name);
    std::error_code error;
    if (!fs::is_directory(request.folder, error))
        throw UsageError("new: no folder '" + request.folder + "' to make '" + request.name +
                         "' in: make it first, or name another after --dir");
    const fs::path project = (fs::path(request.folder) / request.name).lexically_normal();
    if (fs::exists(fs::symlink_status(project, error)))
        throw UsageError("new: '" + project.string() + "' exists: choose another name or, after --dir, another folder");
    if (!fs::create_directory(project, error))
        throw UsageError("new: cannot make the folder '" + project.string() + "' (" + error.message() +
                         "): name a writable folder after --dir");

    const std::string prefix = SdkPrefix();
    const bool isSystems = prefix == "/usr" || prefix == "/usr/local"; // CMake and the shell look there
    const std::string configure = "cmake -B build" + (isSystems ? "" : " -DCMAKE_PREFIX_PATH=" + Quoted(prefix));
    const std::string extension = request.plainC ? "c" : "cpp";
    const std::vector<std::pair<std::string, std::string>> words{
        {"@NAME@", request.name},
        {"@LANGUAGE@", request.plainC ? "C" : "CXX"},
        {"@EXTENSION@", extension},
        {"@CONFIGURE@", configure},
        {"@AVSK@", isSystems ? "avsk" : Quoted(prefix + "/bin/avsk")},
        {"@PREFIX@", prefix}};
    try {
        WriteFile(project / "CMakeLists.txt", Fill(kNewCMakeLists, words));
        WriteFile(project / (request.name + "." + extension),
                  Fill(request.plainC ? kNewSourceC : kNewSourceCpp, words));
        WriteFile(project / (request.name + ".avs"), Fill(kNewSession, words));
        WriteFile(project / "README.md", Fill(kNewReadme, words));
        WriteFile(project / ".gitignore", kNewGitignore);
    } catch (...) {
        fs::remove_all(project, error); // an incomplete project would block the next try
        throw;
    }
    const std::string folder = Quoted(project.string());
    std::printf("Made %s. Next:\n\n"
                "    cd %s\n"
                "    %s\n"
                "    cmake --build build\n"
                "    ctest --test-dir build --output-on-failure\n",
                project.c_str(), folder.c_str(), configure.c_str());
    if (prefix.front() == '<')
        std::puts(
            "\nThis avsk is not installed: replace <the SDK> by the folder of an SDK or, if the package avsk-sdk is "
            "installed, leave the option out.");
}

} // namespace

void AddNewCommand(CLI::App &app, Job &job) {
    const auto request = std::make_shared<NewRequest>();
    CLI::App *command = app.add_subcommand("new", "Writes a plugin project to begin with.");
    command->add_option("NAME", request->name, "the plugin's name: letters, digits and underscores");
    CLI::Option *plainC = command->add_flag("--c", request->plainC, "in C");
    command->add_flag("--cpp", request->cpp, "in C++, as without either of the two")->excludes(plainC);
    command->add_option("--dir", request->folder, "the folder in which to make the project's")
        ->type_name("DIR")
        ->capture_default_str();
    command->footer("Examples:\n  avsk new Counter --c\n  avsk new Lights --dir ~/plugins\n\n"
                    "Exit status: 0 when the project was written, 2 when the name is not possible, the folder exists "
                    "already or\ncannot be written.");
    command->callback([request, &job] {
        job = [request] {
            MakeProject(*request);
            return 0;
        };
    });
}

} // namespace host
