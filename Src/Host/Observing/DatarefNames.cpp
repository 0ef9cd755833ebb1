// Records registrations of datarefs; see DatarefNames.h.
#include "DatarefNames.h"

#include "DatarefValues.h"

#include <algorithm>
#include <iterator>
#include <string_view>

namespace host {

DatarefNames::DatarefNames() { crossings::AddObserver(*this); }
DatarefNames::~DatarefNames() { crossings::RemoveObserver(*this); }

void DatarefNames::Begins(const crossings::Crossing &crossing) {
    const std::string_view function = crossing.what.name;
    const bool isShared = function == "AVSKShareData";
    if (!isShared && function != "AVSKRegisterDataAccessor")
        return;
    const char *name = crossing["name"].text;
    if (name)
        mNames.emplace(name);
    if (name && isShared)
        mShared.emplace(name);
}

std::vector<std::string> DatarefNames::Published() const {
    std::vector<std::string> published;
    std::copy_if(mNames.begin(), mNames.end(), std::back_inserter(published),
                 [](const std::string &name) { return FindPublished(name) != nullptr; });
    return published;
}

} // namespace host
