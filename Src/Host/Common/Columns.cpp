// Pads the texts of a table; see Columns.h.
#include "Columns.h"

#include "Utf8.h"

#include <algorithm>
#include <cstddef>

namespace host {

std::vector<std::string> AlignColumns(const std::vector<TableRow> &rows) {
    std::vector<std::size_t> widths;
    for (const TableRow &row : rows) {
        widths.resize(row.size());
        for (std::size_t i = 0; i < row.size(); ++i)
            widths[i] = std::max(widths[i], CountCharacters(row[i]));
    }
    std::vector<std::string> lines;
    for (const TableRow &row : rows) {
        std::string line;
        for (std::size_t i = 0; i + 1 < row.size(); ++i)
            line += row[i] + std::string(widths[i] - CountCharacters(row[i]) + 2, ' ');
        lines.push_back(line + row.back());
    }
    return lines;
}

} // namespace host
