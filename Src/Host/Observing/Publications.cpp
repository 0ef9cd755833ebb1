// Collects names from the calls that publish them; see Publications.h.
#include "Publications.h"

#include "AVSK/AVSKDataAccess.h"

#include <string_view>

namespace host {
namespace {

std::string OwnerName(AVSKPluginID owner) {
    return owner == AVSK_PLUGIN_AERIVO ? "simulator" : crossings::LabelOf(owner);
}

} // namespace

Publications::Publications() { crossings::AddObserver(*this); }
Publications::~Publications() { crossings::RemoveObserver(*this); }

void Publications::Begins(const crossings::Crossing &crossing) {
    const std::string_view function = crossing.what.name;
    const bool registers = function == "AVSKRegisterDataAccessor";
    const bool shares = function == "AVSKShareData";
    const bool creates = function == "AVSKCreateCommand";
    if (!registers && !shares && !creates)
        return;
    const char *name = crossing["name"].text;
    if (!name)
        return;
    if (creates)
        mCommands.try_emplace(name, crossing.dispatched);
    else if (!AVSKFindDataRef(name)) // a published name stays its owner's
        mDatarefs[name] = {crossing.dispatched, shares};
}

std::map<std::string, Publication> Publications::Datarefs() const {
    std::map<std::string, Publication> published;
    for (const auto &[name, entry] : mDatarefs) {
        if (AVSKFindDataRef(name.c_str()))
            published[name] = {OwnerName(entry.owner), entry.isShared};
    }
    return published;
}

std::string Publications::CreatorOf(const std::string &command) const {
    const auto found = mCommands.find(command);
    return OwnerName(found == mCommands.end() ? AVSK_PLUGIN_AERIVO : found->second);
}

} // namespace host
