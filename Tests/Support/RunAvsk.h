// Runs the reference host as a user does.
#ifndef AVSK_TESTS_RUN_AVSK_H
#define AVSK_TESTS_RUN_AVSK_H

#include <array>
#include <cstdio>
#include <string>

#include <sys/wait.h>

struct AvskRun {
    int status = -1; // -1: it did not exit by itself
    std::string said;
};

// Runs a command of the shell. Captures standard output and standard error.
inline AvskRun RunShell(const std::string &command) {
    AvskRun run;
    std::FILE *output = popen((command + " 2>&1").c_str(), "r");
    if (!output)
        return run;
    std::array<char, 4096> part{};
    while (const std::size_t length = std::fread(part.data(), 1, part.size(), output))
        run.said.append(part.data(), length);
    const int status = pclose(output);
    run.status = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    return run;
}

// Runs it with arguments in shell syntax.
inline AvskRun RunAvsk(const std::string &arguments, const std::string &environment = "") {
    return RunShell(environment + " " AVSK_TEST_HOST " " + arguments);
}

// Runs a program that `avsk exec` observes. With the sanitizers the program contains
// the observers; see avsk_add_observed_host() in Tests/CMakeLists.txt.
inline AvskRun RunObserved(const std::string &options, const std::string &program,
                           const std::string &environment = "") {
#ifdef __SANITIZE_ADDRESS__
    return RunShell(environment + " AVSK_OBSERVE='" + options + "' " + program);
#else
    return RunAvsk("exec " + options + " -- " + program, environment);
#endif
}

#endif
