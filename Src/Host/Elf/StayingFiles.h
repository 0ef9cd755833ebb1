// Files of unloaded plugins that are still mapped into this process, and why.
#ifndef AVSK_HOST_ELF_STAYING_FILES_H
#define AVSK_HOST_ELF_STAYING_FILES_H

#include <string>
#include <vector>

namespace host {

// One line for each mapped file of a folder, whose path ends in a separator: its
// path from there, what keeps it, and what to do.
std::vector<std::string> DescribeStayingFiles(const std::string &folder);

// The number of a thread that runs in a mapped file, or was called from there; empty if there is none.
std::string ThreadInFile(const std::string &path);

} // namespace host

#endif
