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

// Runs it with arguments in shell syntax. Captures standard output and standard error.
inline AvskRun RunAvsk(const std::string &arguments, const std::string &environment = "") {
    AvskRun run;
    std::FILE *output = popen((environment + " " AVSK_TEST_HOST " " + arguments + " 2>&1").c_str(), "r");
    if (!output)
        return run;
    std::array<char, 4096> part{};
    while (const std::size_t length = std::fread(part.data(), 1, part.size(), output))
        run.said.append(part.data(), length);
    const int status = pclose(output);
    run.status = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    return run;
}

#endif
