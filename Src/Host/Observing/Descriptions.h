// Tables for plugin authors with all that is known of datarefs, commands and
// keys. Used by `avsk datarefs`, `avsk commands` and `avsk keys`.
#ifndef AVSK_HOST_OBSERVING_DESCRIPTIONS_H
#define AVSK_HOST_OBSERVING_DESCRIPTIONS_H

#include <string>
#include <vector>

namespace host {

class CommandTable;
class DatarefNames;
class Ledger;

// A line of titles, then one line for each dataref or command whose name matches
// a pattern. In a pattern * is any text; without * the pattern may be any part of
// the name; an empty one matches all. Upper and lower case are equal. Throws
// UsageError, with the nearest names, if nothing matches.
//
// Reads the values of the datarefs, which calls plugins.
std::vector<std::string> DescribeDatarefs(const DatarefNames &datarefs, const Ledger &owners,
                                          const std::string &pattern);
std::vector<std::string> DescribeCommands(const CommandTable &commands, const Ledger &owners,
                                          const std::string &pattern);

// The virtual key codes and the flags as enumerations of C. The pattern selects
// keys by the library's names of them, as above.
std::vector<std::string> DescribeKeys(const std::string &pattern);

} // namespace host

#endif
