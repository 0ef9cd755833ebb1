// One run of a watch: where it takes place, and what it tells the watch.
#ifndef AVSK_HOST_SESSION_ROUND_H
#define AVSK_HOST_SESSION_ROUND_H

#include "SessionOptions.h"

#include <string>
#include <vector>

namespace host {

class TemporaryRoot;

// A step or an expectation of a session that was executed.
struct Check {
    std::string text;    // as written
    std::string failure; // the line that was printed; empty if it succeeded
};

struct Round {
    std::string folder; // new, for the root and the copies of plugins; ends in a separator
    std::vector<Check> checks;
};

// Makes the root of a round, and replaces the folders of the aircraft and of the
// scenery by ones with copies of their plugins. Throws UsageError.
void MakeRoundsRoot(SessionOptions &options, std::string &aircraft, TemporaryRoot &root);

} // namespace host

#endif
