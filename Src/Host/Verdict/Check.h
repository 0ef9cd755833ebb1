// `avsk check`: judges plugin files, then runs the scenarios in processes of their own.
#ifndef AVSK_HOST_VERDICT_CHECK_H
#define AVSK_HOST_VERDICT_CHECK_H

#include "Verdict.h"

#include <set>
#include <string>
#include <vector>

namespace host {

struct CheckOptions {
    std::vector<std::string> paths;
    int level = 2;
    std::vector<std::string> only;      // rules; all if empty
    std::vector<std::string> except;    // rules
    std::vector<std::string> scenarios; // all if empty
    bool inProcess = false;
    unsigned seed = 1;
    double minutes = 0; // for the monkey; 0: one short session
    double timeout = 5; // seconds that a call may take
    unsigned jobs = 0;  // processes at once; 0: one for each processor
    std::string folder; // to keep the sessions in; empty: they are removed
};

// Checks the options and the plugins. Throws UsageError.
Verdict JudgePlugins(const CheckOptions &options);

// Runs the one scenario of the options in this process. Returns the exit status.
int CheckInProcess(const CheckOptions &options);

} // namespace host

#endif
