// Keeps the file names that a page sends inside a folder.
#ifndef AVSK_HOST_LIVE_LIVE_PATHS_H
#define AVSK_HOST_LIVE_LIVE_PATHS_H

#include <string>

namespace host {

// The path of a file to write: relative to the folder, in it or in an existing
// folder below it, also if there are links. It has this extension. Throws UsageError.
std::string PathToWrite(const std::string &folder, const std::string &file, const std::string &extension);

// Throws UsageError unless a path to read, which begins at the folder, stays in it.
void CheckPathToRead(const std::string &folder, const std::string &file);

// The shortest path that names the file from a folder: relative, unless only the file system's root is common.
std::string PathFrom(const std::string &folder, const std::string &file);

} // namespace host

#endif
