// Pads columns to equal width; see Columns.h.
#include "Columns.h"

#include "Utf8.h"

#include <algorithm>

namespace host {

std::vector<std::string> AlignColumns(const std::vector<std::vector<std::string>> &rows, const ColumnLayout &layout) {
    std::vector<std::size_t> widths;
    for (const std::vector<std::string> &row : rows) {
        widths.resize(std::max(widths.size(), row.size()));
        for (std::size_t i = 0; i < row.size(); ++i)
            widths[i] = std::max(widths[i], std::min(CountCharacters(row[i]), layout.widest));
    }
    std::vector<std::string> lines;
    for (const std::vector<std::string> &row : rows) {
        std::string line;
        for (std::size_t i = 0; i < row.size(); ++i) {
            const std::string blanks(widths[i] - std::min(CountCharacters(row[i]), widths[i]), ' ');
            const bool isNumber = std::count(layout.numbers.begin(), layout.numbers.end(), i) > 0;
            line += (isNumber ? blanks + row[i] : row[i] + blanks) + "  ";
        }
        lines.push_back(line.substr(0, line.find_last_not_of(' ') + 1));
    }
    return lines;
}

} // namespace host
