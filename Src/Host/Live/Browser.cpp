// Announces the page; see Browser.h. Called once the simulator runs.
#include "Browser.h"

#include <cstdio>

namespace host {

void Announce(const std::string &address, int /*port*/, bool /*opensBrowser*/) {
    std::printf("live: %s\n", address.c_str());
    std::fflush(stdout);
}

} // namespace host
