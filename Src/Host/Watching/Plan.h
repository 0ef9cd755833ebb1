// What a run needs, found without loading plugins: the files to watch, the
// pictures that it writes, and why it cannot run yet.
#ifndef AVSK_HOST_WATCHING_PLAN_H
#define AVSK_HOST_WATCHING_PLAN_H

#include <string>
#include <vector>

namespace host {

struct WatchRequest;

struct Plan {
    std::vector<std::string> paths; // files and folders to watch
    std::vector<std::string> pictures;
    std::vector<std::string> faults; // lines; empty if the run can begin
};

Plan MakePlan(const WatchRequest &request);

} // namespace host

#endif
