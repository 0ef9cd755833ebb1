// Tells the user where the page is, and opens it.
#ifndef AVSK_HOST_LIVE_BROWSER_H
#define AVSK_HOST_LIVE_BROWSER_H

#include <string>

namespace host {

// Prints the address and, over ssh, the command that forwards the port.
void PrintAddress(const std::string &address, int port);

// Opens the browser if output goes to a terminal of this computer's desktop. The
// folder must be readable by this user only, and last as long as the page.
void OpenBrowser(const std::string &address, const std::string &folder);

} // namespace host

#endif
