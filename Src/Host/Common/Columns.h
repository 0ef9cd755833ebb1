// Lays out rows of text in columns.
#ifndef AVSK_HOST_COMMON_COLUMNS_H
#define AVSK_HOST_COMMON_COLUMNS_H

#include <cstddef>
#include <string>
#include <vector>

namespace host {

struct ColumnLayout {
    std::size_t widest = std::string::npos; // a longer text shifts only its own line
    std::vector<std::size_t> numbers;       // the columns that are aligned to the right
};

// One line for each row. Columns are two blanks apart; lines do not end in blanks.
std::vector<std::string> AlignColumns(const std::vector<std::vector<std::string>> &rows,
                                      const ColumnLayout &layout = {});

} // namespace host

#endif
