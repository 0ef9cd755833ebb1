// Options that several commands have; see SharedOptions.h.
#include "SharedOptions.h"

#include <cstdio>
#include <fstream>
#include <string_view>
#include <system_error>

namespace host {

namespace fs = std::filesystem;

SessionOptions QuietOptions() {
    SessionOptions options;
    options.simulator.frames = 60;
    options.simulator.quiet = true;
    return options;
}

CLI::Option *AddRoot(CLI::App &command, std::string &root) {
    return command.add_option("--root", root, "the simulator's folder; must hold Resources/plugins")
        ->type_name("DIR")
        ->capture_default_str();
}

CLI::Option *AddFrames(CLI::App &command, int &frames) {
    static const CLI::Validator isCount(
        [](const std::string &text) {
            int count = 0;
            return CLI::detail::lexical_cast(text, count) && count > 0
                       ? std::string()
                       : "'" + text + "' is not a positive whole number";
        },
        "");
    return command.add_option("--frames", frames, "how many frames to run")->check(isCount)->capture_default_str();
}

CLI::Option *AddPlugins(CLI::App &command, std::vector<std::string> &plugins, const std::string &help) {
    return command.add_option("--plugin", plugins, help)->type_name("NAME|PATH")->allow_extra_args(false);
}

void AddPattern(CLI::App &command, std::string &pattern) {
    command
        .add_option("PATTERN", pattern,
                    "list only these names: a part of a name, or with * for any text a whole name, such as 'sim*x'; "
                    "upper and lower case are equal")
        ->type_name("");
}

bool IsPlugin(const fs::path &path) {
    std::error_code error;
    if (fs::is_directory(path, error))
        return fs::exists(path / "lin.avp", error) || fs::exists(path / "32/lin.avp", error);
    if (!fs::is_regular_file(path, error)) // a pipe can be read only once
        return path.extension() == ".avp";
    constexpr std::string_view kMagic = "\x7f"
                                        "ELF";
    std::string begin(kMagic.size(), '\0');
    std::ifstream(path, std::ios::binary).read(begin.data(), static_cast<std::streamsize>(begin.size()));
    return begin == kMagic || path.extension() == ".avp";
}

void PrintLines(const std::vector<std::string> &lines) {
    for (const std::string &line : lines)
        std::puts(line.c_str());
}

} // namespace host
