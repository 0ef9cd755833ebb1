/* The plugin of the benchmarks. Each copy uses its own path as its name, and
 * runs functions of the benchmark on its account. Loaded by the library, and
 * by the bare loops that the library is compared with. */
#define _GNU_SOURCE /* dladdr */
#include "BenchPlugin.h"

#include <AVSK/AVSKPlugins.h>

#include <dlfcn.h>
#include <stdio.h>

static unsigned received;

int AVPluginStart(char *outName, char *outSignature, char *outDescription) {
    Dl_info self;
    if (!dladdr(&received, &self))
        return 0;
    snprintf(outName, AVSK_TEXT_SIZE, "Benchmark");
    snprintf(outSignature, AVSK_TEXT_SIZE, "%s", self.dli_fname);
    snprintf(outDescription, AVSK_TEXT_SIZE, "Does what the benchmarks ask for.");
    return 1;
}

void AVPluginStop(void) {}

int AVPluginEnable(void) { return 1; }

void AVPluginDisable(void) {}

void AVPluginReceiveMessage(AVSKPluginID sender, int message, void *parameter) {
    (void)sender;
    if (message == kBenchRun) {
        const BenchTask *task = parameter;
        task->run(task->argument);
    } else if (message == kBenchTell) {
        *(unsigned *)parameter += received;
    } else {
        ++received;
    }
}
