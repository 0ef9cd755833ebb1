// Learns from the calls; see ForeignHost.h.
#include "ForeignHost.h"

#include "Crossings/ValueText.h"
#include "Crossings/Words.h"

#include "AVSK/AVSKHost.h"
#include "AVSK/AVSKPlugins.h"

#include <array>
#include <string_view>

namespace host {
namespace {

std::string TextIn(const crossings::Value &buffer) {
    std::array<char, AVSK_TEXT_SIZE> text{};
    const auto *const given = static_cast<const char *>(buffer.pointer);
    return given && crossings::ReadText(given, -1, text.data(), text.size()) ? text.data() : "";
}

} // namespace

ForeignHost::ForeignHost() { crossings::AddObserver(*this); }
ForeignHost::~ForeignHost() { crossings::RemoveObserver(*this); }

crossings::Interest ForeignHost::InterestIn(const crossings::Prototype &function) const {
    return crossings::IsOneOf(function.name,
                              {"AVSKEventHook", "AVSKInitializePlugins", "findCommand", "getAircraftModel"})
               ? crossings::Interest::Calls
               : crossings::Interest::None;
}

void ForeignHost::Begins(const crossings::Crossing &crossing) {
    if (crossing.depth != 0)
        return;
    const std::string_view name = crossing.what.name;
    if (name == "AVSKEventHook" && crossing.arguments.front().integer == AVSKHostEventFrame)
        ++mFrame;
    else if (name == "AVSKInitializePlugins")
        mRoot = WholeText(crossing["path"]);
}

void ForeignHost::Ends(const crossings::Crossing &crossing) {
    if (crossing.to != crossings::Side::Host || crossing.callback || !crossing.returned)
        return;
    const std::string_view name = crossing.what.name;
    if (name == "findCommand" && crossing.result.pointer)
        mCommands[crossing.result.pointer] = WholeText(crossing["name"]);
    else if (name == "getAircraftModel" && crossing["index"].integer == 0)
        mAircraftModel = TextIn(crossing["outPath"]);
}

std::string ForeignHost::CommandName(const void *command) const {
    const auto known = mCommands.find(command);
    return known == mCommands.end() ? "" : known->second;
}

bool ForeignHost::HasCommand(const std::string &name) const { return name.starts_with("sim/"); }

} // namespace host
