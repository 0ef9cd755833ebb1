// Shows a long text a screen at a time.
#ifndef AVSK_HOST_COMMAND_LINE_PAGER_H
#define AVSK_HOST_COMMAND_LINE_PAGER_H

#include <string>

namespace host {

// Through the pager of the environment variable PAGER, or less, if standard
// output is a terminal; else, and without a pager, straight to standard output.
void ShowInPager(const std::string &text);

} // namespace host

#endif
