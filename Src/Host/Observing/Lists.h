// Lists for plugin authors: the datarefs and commands that exist now, and the
// keys. Used by `avsk datarefs`, `avsk commands` and `avsk keys`, and by sessions.
#ifndef AVSK_HOST_OBSERVING_LISTS_H
#define AVSK_HOST_OBSERVING_LISTS_H

#include <string>
#include <vector>

namespace host {

class CommandTable;
class Publications;

// One line for each dataref or command whose name matches a pattern: name, owner
// and properties in aligned columns, below a line of titles. In a pattern * is
// any text; without * the pattern may be any part of the name. Upper and lower
// case are equal. An empty pattern matches all. Throws UsageError, with the
// nearest names, if nothing matches.
std::vector<std::string> ListDatarefs(const Publications &published, const std::string &pattern = "");
std::vector<std::string> ListCommands(const CommandTable &commands, const Publications &published,
                                      const std::string &pattern = "");

// The virtual key codes and the flags as enumerations of C. The pattern selects
// keys by the library's names of them, as above.
std::vector<std::string> ListKeys(const std::string &pattern = "");

} // namespace host

#endif
