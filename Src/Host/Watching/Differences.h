// What differs between two runs.
#ifndef AVSK_HOST_WATCHING_DIFFERENCES_H
#define AVSK_HOST_WATCHING_DIFFERENCES_H

#include "Session/Round.h"

#include <map>
#include <string>
#include <vector>

namespace host {

struct RoundOutcome {
    std::vector<Check> checks;
    std::map<std::string, std::string> pictures; // their bytes, by file
    std::vector<std::string> output;             // lines, without those of failures
};

struct Difference {
    std::string line;
    bool isFailure = false;
};

// Failures that are new or different, checks that succeed again, a line per
// picture that differs, and the lines of the output that are gone or new.
std::vector<Difference> Compare(const RoundOutcome &before, const RoundOutcome &now);

} // namespace host

#endif
