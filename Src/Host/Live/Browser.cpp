// Announces and opens the page; see Browser.h. Called once the simulator runs.
#include "Browser.h"

#include <array>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <sstream>

#include <fcntl.h>
#include <pwd.h>
#include <spawn.h>
#include <unistd.h>

namespace host {
namespace {

bool IsSet(const char *variable) {
    const char *const value = std::getenv(variable);
    return value && *value;
}

// "CLIENT PORT SERVER PORT", of the connection over which the user is logged in.
const char *SshConnection() { return std::getenv("SSH_CONNECTION"); }

} // namespace

void PrintAddress(const std::string &address, int port) {
    std::printf("live: %s\n", address.c_str());
    if (SshConnection()) {
        std::istringstream words(SshConnection());
        std::string computer;
        for (int word = 0; word < 3; ++word)
            words >> computer;
        const passwd *const user = getpwuid(getuid());
        std::printf("live: over ssh, run this where the browser is, and open the address there:\n"
                    "      ssh -N -L %d:127.0.0.1:%d %s@%s\n",
                    port, port, user ? user->pw_name : "USER", computer.c_str());
    }
    std::fflush(stdout);
}

// The address contains the token, and all users can see the arguments of programs.
// So the browser gets a file of this user's that leads to the address.
void OpenBrowser(const std::string &address, const std::string &folder) {
    if (isatty(STDOUT_FILENO) == 0 || SshConnection() || (!IsSet("DISPLAY") && !IsSet("WAYLAND_DISPLAY")))
        return;
    std::string file = folder + "/open.html";
    std::ofstream(file) << R"(<!DOCTYPE html><meta charset="utf-8"><title>avsk live</title>)"
                        << R"(<meta http-equiv="refresh" content="0; url=)" << address << R"(">)" << '\n';
    std::string program = "xdg-open";
    std::array<char *, 3> arguments{program.data(), file.data(), nullptr};
    posix_spawn_file_actions_t files;
    posix_spawn_file_actions_init(&files);
    posix_spawn_file_actions_addopen(&files, STDIN_FILENO, "/dev/null", O_RDONLY, 0);
    posix_spawn_file_actions_addopen(&files, STDOUT_FILENO, "/dev/null", O_WRONLY, 0);
    posix_spawn_file_actions_addopen(&files, STDERR_FILENO, "/dev/null", O_WRONLY, 0);
    posix_spawn_file_actions_addclosefrom_np(&files, STDERR_FILENO + 1);
    posix_spawnattr_t attributes;
    posix_spawnattr_init(&attributes);
    posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETSID); // Ctrl-C does not end the browser
    pid_t child = -1;
    if (posix_spawnp(&child, program.c_str(), &files, &attributes, arguments.data(), environ) != 0)
        std::puts("live: no browser could be opened (there is no xdg-open): open the address yourself");
    std::fflush(stdout);
    posix_spawnattr_destroy(&attributes);
    posix_spawn_file_actions_destroy(&files);
}

} // namespace host
