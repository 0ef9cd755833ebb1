// Records registrations of datarefs; see DatarefNames.h.
#include "DatarefNames.h"

#include "DatarefValues.h"

#include <algorithm>
#include <iterator>
#include <string_view>

namespace host {

DatarefNames::DatarefNames() { crossings::AddObserver(*this); }
DatarefNames::~DatarefNames() { crossings::RemoveObserver(*this); }

crossings::Interest DatarefNames::InterestIn(const crossings::Prototype &function) const {
    const std::string_view name = function.name;
    return name == "AVSKShareData" || name == "AVSKRegisterDataAccessor" ? crossings::Interest::Work
                                                                         : crossings::Interest::None;
}

void DatarefNames::Begins(const crossings::Crossing &crossing) {
    const bool isShared = crossing.what.name == std::string_view("AVSKShareData");
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
