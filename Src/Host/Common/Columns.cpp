// Pads columns to equal width; see Columns.h.
#include "Columns.h"

#include "Utf8.h"

#include <algorithm>

namespace host {

std::vector<std::string> AlignColumns(const std::vector<std::vector<std::string>> &rows) {
    std::vector<std::size_t> widths;
    for (const std::vector<std::string> &row : rows) {
        widths.resize(std::max(widths.size(), row.size()));
        for (std::size_t i = 0; i < row.size(); ++i)
            widths[i] = std::max(widths[i], CountCharacters(row[i]));
    }
    std::vector<std::string> lines;
    for (const std::vector<std::string> &row : rows) {
        std::string line;
        for (std::size_t i = 0; i < row.size(); ++i)
            line += row[i] + std::string(widths[i] - CountCharacters(row[i]) + 2, ' ');
        lines.push_back(line.substr(0, line.find_last_not_of(' ') + 1));
    }
    return lines;
}

} // namespace host
