// Finds and reads the files of the page; see Pages.h. Installed, they lie in one
// folder beside the program's. In the build tree they are links to the sources.
// Called by the server.
#include "Pages.h"

#include "Common/Files.h"
#include "Common/UsageError.h"

#include <algorithm>
#include <filesystem>
#include <system_error>
#include <utility>

namespace host {
namespace {

namespace fs = std::filesystem;

constexpr std::pair<std::string_view, std::string_view> kTypes[] = {
    {".html", "text/html; charset=utf-8"},
    {".js", "text/javascript; charset=utf-8"},
    {".css", "text/css; charset=utf-8"},
    {".svg", "image/svg+xml"},
    {".png", "image/png"},
};

// A name without a separator and without a dot at its beginning stays in its folder.
bool IsFileName(std::string_view name) {
    constexpr std::string_view kLetters = "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789-_.";
    return !name.empty() && name.front() != '.' && name.find_first_not_of(kLetters) == std::string_view::npos;
}

} // namespace

Pages::Pages() {
    const fs::path program = fs::canonical("/proc/self/exe").parent_path();
    for (const fs::path &folder :
         {program / "live/page", program / "live/chart", program.parent_path() / AVSK_LIVE_FOLDER}) {
        std::error_code error;
        if (fs::is_directory(folder, error))
            mFolders.push_back(folder.string() + "/");
    }
    if (!Find("/"))
        throw UsageError("live: the page is missing in ../" AVSK_LIVE_FOLDER
                         " beside the folder of avsk: install the SDK again");
}

std::optional<PageFile> Pages::Find(std::string_view target) const {
    if (!target.starts_with('/'))
        return std::nullopt;
    const std::string_view name = target == "/" ? "index.html" : target.substr(1);
    const auto type = std::find_if(std::begin(kTypes), std::end(kTypes),
                                   [name](const auto &known) { return name.ends_with(known.first); });
    if (!IsFileName(name) || type == std::end(kTypes))
        return std::nullopt;
    for (const std::string &folder : mFolders) {
        const std::string path = folder + std::string(name);
        std::error_code error;
        if (!fs::is_regular_file(path, error))
            continue;
        if (std::optional<std::string> bytes = ReadFile(path))
            return PageFile{std::move(*bytes), type->second};
    }
    return std::nullopt;
}

} // namespace host
