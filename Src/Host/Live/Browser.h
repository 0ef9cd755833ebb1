// Tells the user where the page is, and opens it.
#ifndef AVSK_HOST_LIVE_BROWSER_H
#define AVSK_HOST_LIVE_BROWSER_H

#include <string>

namespace host {

// Prints the address and, over ssh, the command that forwards the port. Opens the
// browser if that is wanted and the terminal is on a desktop.
void Announce(const std::string &address, int port, bool opensBrowser);

} // namespace host

#endif
