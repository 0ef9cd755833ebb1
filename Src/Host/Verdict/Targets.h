// The plugins that `avsk check` judges, found by the paths that the user names.
#ifndef AVSK_HOST_VERDICT_TARGETS_H
#define AVSK_HOST_VERDICT_TARGETS_H

#include <string>
#include <vector>

namespace host {

struct Target {
    std::string path;   // as the user wrote it, or below the folder that the user wrote
    std::string file;   // the same, absolute and without links
    std::string name;   // of the plugin's file or folder: "Lights"; distinct in one check
    std::string root;   // the simulator's folder, if the user named one; else empty
    std::string advice; // where the file belongs, if the simulator does not look for it there
};

// The plugins of files and folders: a plugin's folder, a folder of plugins, or a
// simulator's folder. Throws UsageError.
std::vector<Target> FindTargets(const std::vector<std::string> &paths);

} // namespace host

#endif
