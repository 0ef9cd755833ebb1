// Learns from the calls; see ForeignHost.h.
#include "ForeignHost.h"

#include "Crossings/ValueText.h"

#include "AVSK/AVSKHost.h"
#include "AVSK/AVSKPlanes.h"
#include "AVSK/AVSKUtilities.h"

#include <array>
#include <string_view>

namespace host {
namespace {

constexpr std::size_t kPathSize = 4096; // more than the interface promises: the host is being tested

} // namespace

ForeignHost::ForeignHost() { crossings::AddObserver(*this); }
ForeignHost::~ForeignHost() { crossings::RemoveObserver(*this); }

void ForeignHost::Begins(const crossings::Crossing &crossing) {
    if (crossing.depth == 0 && std::string_view(crossing.what.name) == "AVSKEventHook" &&
        crossing.arguments.front().integer == AVSKHostEventFrame)
        ++mFrame;
}

void ForeignHost::Ends(const crossings::Crossing &crossing) {
    if (crossing.to == crossings::Side::Host && crossing.result.pointer &&
        std::string_view(crossing.what.name) == "findCommand")
        mCommands[crossing.result.pointer] = WholeText(crossing["name"]);
}

std::string ForeignHost::CommandName(const void *command) const {
    const auto known = mCommands.find(command);
    return known == mCommands.end() ? "" : known->second;
}

bool ForeignHost::HasCommand(const std::string &name) const { return name.starts_with("sim/"); }

std::string ForeignHost::Root() const {
    std::array<char, kPathSize> path{};
    AVSKGetSystemPath(path.data());
    return path.data();
}

std::string ForeignHost::AircraftModel() const {
    std::array<char, kPathSize> path{};
    AVSKGetNthAircraftModel(0, nullptr, path.data());
    return path.data();
}

} // namespace host
