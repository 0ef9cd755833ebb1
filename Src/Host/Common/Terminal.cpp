// Decides which streams show colours; see Terminal.h. Owns that decision.
#include "Terminal.h"

#include <array>
#include <cstdlib>
#include <cstring>

#include <unistd.h>

namespace host {
namespace {

bool ShowsColours(int descriptor) {
    const char *off = std::getenv("NO_COLOR");
    const char *terminal = std::getenv("TERM");
    return isatty(descriptor) == 1 && (!off || *off == '\0') && terminal && std::strcmp(terminal, "dumb") != 0;
}

// Read before any plugin runs: one that overwrites the stack destroys the environment.
const std::array<bool, 3> gHasColours = {false, ShowsColours(STDOUT_FILENO), ShowsColours(STDERR_FILENO)};

} // namespace

bool HasColours(int descriptor) { return gHasColours[static_cast<std::size_t>(descriptor)]; }

std::string_view EmphasisBegin(Emphasis emphasis, int descriptor) {
    if (!HasColours(descriptor))
        return "";
    return emphasis == Emphasis::Failure ? "\033[31m" : "\033[1m";
}

std::string_view EmphasisEnd(int descriptor) { return HasColours(descriptor) ? "\033[0m" : ""; }

std::string Emphasised(Emphasis emphasis, std::string_view text, int descriptor) {
    std::string emphasised(EmphasisBegin(emphasis, descriptor));
    return emphasised.append(text).append(EmphasisEnd(descriptor));
}

} // namespace host
