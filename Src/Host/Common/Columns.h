// Aligns the texts of a table.
#ifndef AVSK_HOST_COMMON_COLUMNS_H
#define AVSK_HOST_COMMON_COLUMNS_H

#include <string>
#include <vector>

namespace host {

using TableRow = std::vector<std::string>;

// One line for each row. A column is as wide as its widest text, except the last
// one, which is not padded. All rows have the same number of texts.
std::vector<std::string> AlignColumns(const std::vector<TableRow> &rows);

} // namespace host

#endif
