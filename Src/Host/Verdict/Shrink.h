// Removes the lines of a session that a failure does not need.
#ifndef AVSK_HOST_VERDICT_SHRINK_H
#define AVSK_HOST_VERDICT_SHRINK_H

#include <functional>
#include <string>
#include <vector>

namespace host {

// Delta debugging: removes ever smaller parts as long as the rest still fails. The
// lines must fail as they are given. Stops early when the time is over.
std::vector<std::string> Shrink(std::vector<std::string> lines,
                                const std::function<bool(const std::vector<std::string> &)> &fails,
                                const std::function<bool()> &isOver);

} // namespace host

#endif
