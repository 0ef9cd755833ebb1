/* Shared by the benchmarks and the copies of their plugin. */
#ifndef AVSK_BENCH_PLUGIN_H
#define AVSK_BENCH_PLUGIN_H

/* Messages. Any other message is only counted. */
enum {
    /* Calls a function on the plugin's account; the parameter is a BenchTask. */
    kBenchRun = 1000,
    /* Adds the number of messages counted to the unsigned that the parameter points to. */
    kBenchTell = 1001
};

typedef struct BenchTask {
    void (*run)(void *argument);
    void *argument;
} BenchTask;

#endif
