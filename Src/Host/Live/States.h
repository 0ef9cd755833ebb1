// What the panels of a page show, as JSON. Docs/live.md describes the fields.
#ifndef AVSK_HOST_LIVE_STATES_H
#define AVSK_HOST_LIVE_STATES_H

#include <nlohmann/json_fwd.hpp>

#include <cstddef>
#include <string>
#include <vector>

namespace host {

class FrameCalls;
class SessionRunner;

struct DatarefQuery {
    std::string pattern;
    std::vector<std::string> pinned;
};

// The times may be null.
nlohmann::json PluginsState(SessionRunner &run, const FrameCalls *times);
nlohmann::json WindowsState(SessionRunner &run);
// Reads values, which calls plugins.
nlohmann::json DatarefsState(SessionRunner &run, const DatarefQuery &query);
nlohmann::json MenusState(SessionRunner &run);
nlohmann::json CommandsState(SessionRunner &run);
nlohmann::json FindingsState(SessionRunner &run);
// Paths of files with this extension in the root; the first ones of a large root.
std::vector<std::string> FilesInRoot(const std::string &root, const std::string &extension);

// The times of the frames after this one.
nlohmann::json TimesSince(const FrameCalls &calls, int frame);
// The calls of a frame; an empty list if it is not kept any more.
nlohmann::json CallsOf(const FrameCalls &calls, int frame);

} // namespace host

#endif
