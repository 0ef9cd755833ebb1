// avsk, the reference host: starts the library as the simulator does, so that
// plugins run, and can be tested and measured, without the simulator.
#include "Commands.h"

#include "Common/UsageError.h"
#include "Observing/Blame.h"

#include <cstdio>
#include <exception>

namespace {

using namespace host;

// Tells whether all output was written; if not, says so.
bool OutputIsWhole() {
    if (std::fflush(stdout) == 0 && std::ferror(stdout) == 0)
        return true;
    std::fputs("avsk: standard output could not be written: what it shows is not complete\n", stderr);
    return false;
}

} // namespace

int main(int argc, char **argv) {
    try {
        const Job job = ParseCommandLine(argc, argv);
        const int status = job ? job() : 0;
        return OutputIsWhole() ? status : 1;
    } catch (const UsageError &error) {
        std::fprintf(stderr, "avsk: %s\n", error.what());
        return 2;
    } catch (const std::exception &error) { // of a plugin: they pass through the library
        ReportException(error.what());
    } catch (...) {
        ReportException("its type is not derived from std::exception");
    }
    return 1;
}
