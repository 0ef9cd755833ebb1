// A table of rows that each concern one parameter of one function. A row has the
// members "function" and "parameter"; a parameter may be the field of a structure,
// "params.phase".
#ifndef AVSK_HOST_RULES_ROW_TABLE_H
#define AVSK_HOST_RULES_ROW_TABLE_H

#include "Crossings/Crossing.h"
#include "Crossings/Words.h"

#include <cstddef>
#include <span>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace host {

// Finds the rows of a call without comparing names, except for the first call of each function.
template <class Row>
class RowTable {
  public:
    struct Entry {
        const Row *row;
        std::size_t argument; // the index of the parameter, or of the structure with the field
    };

    explicit RowTable(std::span<const Row> rows) : mRows(rows) {}

    const std::vector<Entry> &Of(const crossings::Prototype &function) {
        const auto [known, isNew] = mEntries.try_emplace(&function);
        if (isNew) {
            for (const Row &row : mRows) {
                if (row.function == std::string_view(function.name))
                    known->second.push_back({&row, IndexOf(row.parameter, function)});
            }
        }
        return known->second;
    }

  private:
    static std::size_t IndexOf(std::string_view parameter, const crossings::Prototype &function) {
        const std::string_view wanted = crossings::TakeWord(parameter, ".");
        std::string_view names = function.parameters;
        std::size_t index = 0;
        while (!names.empty() && crossings::TakeWord(names) != wanted)
            ++index;
        return index;
    }

    std::span<const Row> mRows;
    std::unordered_map<const crossings::Prototype *, std::vector<Entry>> mEntries;
};

} // namespace host

#endif
