// A table of the calls that a class checks: the function's name, and the member
// function that is called for it.
#ifndef AVSK_HOST_RULES_CALL_TABLE_H
#define AVSK_HOST_RULES_CALL_TABLE_H

#include "Crossings/Crossing.h"

#include <algorithm>
#include <span>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace host {

template <class Family>
struct CallRow {
    std::string_view function; // of the library, a callback type, an entry point or a service
    void (Family::*check)(const crossings::Crossing &crossing);
};

// Finds the rows of a call without comparing names, except for the first call of each function.
template <class Family>
class CallTable {
  public:
    explicit CallTable(std::span<const CallRow<Family>> rows) : mRows(rows) {}

    // Whether a function has a row.
    bool Has(const crossings::Prototype &function) const {
        return std::any_of(mRows.begin(), mRows.end(),
                           [&function](const CallRow<Family> &row) { return row.function == function.name; });
    }

    void Apply(Family &family, const crossings::Crossing &crossing) {
        const auto [known, isNew] = mChecks.try_emplace(&crossing.what);
        if (isNew) {
            for (const CallRow<Family> &row : mRows) {
                if (row.function == crossing.what.name)
                    known->second.push_back(row.check);
            }
        }
        for (const auto check : known->second)
            (family.*check)(crossing);
    }

  private:
    std::span<const CallRow<Family>> mRows;
    std::unordered_map<const crossings::Prototype *, std::vector<void (Family::*)(const crossings::Crossing &)>>
        mChecks;
};

} // namespace host

#endif
