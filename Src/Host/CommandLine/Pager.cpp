// Runs a pager; see Pager.h.
#include "Pager.h"

#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <string_view>

#include <sys/wait.h>
#include <unistd.h>

namespace host {
namespace {

// False if there is no such pager.
bool Page(const char *pager, const std::string &text) {
    constexpr int kNoSuchCommand = 127;
    std::fflush(stdout);
    // The user may leave the pager before it has read everything.
    const auto before = std::signal(SIGPIPE, SIG_IGN);
    std::FILE *pipe = popen(pager, "w");
    if (pipe)
        std::fwrite(text.data(), 1, text.size(), pipe);
    const int status = pipe ? pclose(pipe) : -1;
    std::signal(SIGPIPE, before);
    return status != -1 && !(WIFEXITED(status) && WEXITSTATUS(status) == kNoSuchCommand);
}

} // namespace

void ShowInPager(const std::string &text) {
    const char *chosen = std::getenv("PAGER");
    // Without the screen's clearing, and not at all for a text of one screen.
    const std::string_view pager = chosen && *chosen ? chosen : "less -FRX";
    if (isatty(STDOUT_FILENO) != 1 || !Page(pager.data(), text))
        std::fwrite(text.data(), 1, text.size(), stdout);
}

} // namespace host
