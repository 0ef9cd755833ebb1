// The options that watch a run.
#ifndef AVSK_HOST_BENCH_OPTIONS_H
#define AVSK_HOST_BENCH_OPTIONS_H

#include <string>
#include <vector>

namespace CLI {
class App;
class Validator;
} // namespace CLI

namespace host {

struct TraceOptions {
    std::string file;                   // empty: no trace
    std::vector<std::string> plugins;   // patterns of names; all if empty
    std::vector<std::string> functions; // likewise
};

struct BenchOptions {
    TraceOptions trace;
    bool owners = false;
    bool profile = false;
    double budget = 0;  // milliseconds that a plugin may take in a frame; 0: any
    double timeout = 0; // seconds that a call may take; 0: any
};

// The validator accepts numbers above 0.
void AddBenchOptions(CLI::App &run, BenchOptions &options, const CLI::Validator &positive);

} // namespace host

#endif
