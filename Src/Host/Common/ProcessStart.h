// What a new process is started with, as exec and posix_spawn take it.
#ifndef AVSK_HOST_COMMON_PROCESS_START_H
#define AVSK_HOST_COMMON_PROCESS_START_H

#include <string>
#include <string_view>
#include <vector>

#include <unistd.h>

namespace host {

// This process's environment with another folder for temporary files.
inline std::vector<std::string> EnvironmentWithTemporary(const std::string &folder) {
    std::vector<std::string> variables;
    for (char **variable = environ; *variable; ++variable) {
        if (!std::string_view(*variable).starts_with("TMPDIR="))
            variables.emplace_back(*variable);
    }
    variables.push_back("TMPDIR=" + folder);
    return variables;
}

// The texts' addresses, and null behind them. Valid while the texts stay as they are.
inline std::vector<char *> PointersTo(std::vector<std::string> &texts) {
    std::vector<char *> pointers;
    pointers.reserve(texts.size() + 1);
    for (std::string &text : texts)
        pointers.push_back(text.data());
    pointers.push_back(nullptr);
    return pointers;
}

} // namespace host

#endif
