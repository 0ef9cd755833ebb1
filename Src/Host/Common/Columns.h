// Lays out rows of text in columns.
#ifndef AVSK_HOST_COMMON_COLUMNS_H
#define AVSK_HOST_COMMON_COLUMNS_H

#include <string>
#include <vector>

namespace host {

// One line for each row. Columns are two blanks apart; the last one is not padded.
std::vector<std::string> AlignColumns(const std::vector<std::vector<std::string>> &rows);

} // namespace host

#endif
