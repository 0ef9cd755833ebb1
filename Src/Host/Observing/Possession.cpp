// The kinds of possessions; see Possession.h.
#include "Possession.h"

#include "AVSK/AVSKCamera.h"
#include "AVSK/AVSKDataAccess.h"
#include "AVSK/AVSKDisplay.h"
#include "AVSK/AVSKPlanes.h"

#include <array>
#include <climits>

namespace host {
namespace {

bool DatarefExists(const Possession &dataref) {
    return AVSKIsDataRefGood(static_cast<AVSKDataRef>(const_cast<void *>(dataref.handle))) != 0;
}

// The library writes nothing if the window does not exist.
bool WindowExists(const Possession &window) {
    int left = INT_MIN;
    int top = INT_MIN;
    AVSKGetWindowGeometry(static_cast<AVSKWindowID>(const_cast<void *>(window.handle)), &left, &top, nullptr, nullptr);
    return left != INT_MIN || top != INT_MIN;
}

bool CameraExists(const Possession & /*camera*/) { return AVSKIsCameraBeingControlled(nullptr) != 0; }

bool PlanesExist(const Possession &planes) {
    AVSKPluginID controller = NO_PLUGIN_ID;
    AVSKCountAircraft(nullptr, nullptr, &controller);
    return controller == planes.owner;
}

// In the order of the enumeration.
constexpr std::array kTraits = {
    KindTraits{"dataref", Uniqueness::One, true, false, DatarefExists},
    KindTraits{"subscription", Uniqueness::Many, true, false, nullptr},
    KindTraits{"loop", Uniqueness::One, true, false, nullptr},
    KindTraits{"draw", Uniqueness::Many, true, false, nullptr},
    KindTraits{"sniffer", Uniqueness::Many, true, false, nullptr},
    KindTraits{"window", Uniqueness::One, true, false, WindowExists},
    KindTraits{"hotkey", Uniqueness::One, true, false, nullptr},
    KindTraits{"menu", Uniqueness::One, true, false, nullptr},
    KindTraits{"item", Uniqueness::Many, true, false, nullptr},
    KindTraits{"handler", Uniqueness::Many, true, false, nullptr},
    KindTraits{"command", Uniqueness::OnePerPlugin, false, false, nullptr}, // the host keeps it
    KindTraits{"hold", Uniqueness::OnePerPlugin, true, false, nullptr},
    KindTraits{"button", Uniqueness::Many, true, false, nullptr},
    KindTraits{"probe", Uniqueness::One, true, false, nullptr},
    KindTraits{"object", Uniqueness::Many, true, false, nullptr},
    KindTraits{"load", Uniqueness::Many, false, false, nullptr}, // cannot be cancelled
    KindTraits{"camera", Uniqueness::One, true, true, CameraExists},
    KindTraits{"planes", Uniqueness::One, true, true, PlanesExist},
};
static_assert(kTraits.size() == static_cast<std::size_t>(Kind::Planes) + 1);

} // namespace

const KindTraits &TraitsOf(Kind kind) { return kTraits[static_cast<std::size_t>(kind)]; }

bool Exists(const Possession &possession) {
    const auto exists = TraitsOf(possession.kind).exists;
    return !exists || exists(possession);
}

bool HasKey(const Possession &possession, const Key &key) {
    return !key.IsEmpty() && (possession.key == key || possession.otherKey == key);
}

std::optional<Kind> KindOf(std::string_view word) {
    for (std::size_t i = 0; i < kTraits.size(); ++i) {
        if (word == kTraits[i].word)
            return static_cast<Kind>(i);
    }
    return std::nullopt;
}

std::string KindWords() {
    std::string words;
    for (const KindTraits &traits : kTraits)
        words += (words.empty() ? "" : ", ") + std::string(traits.word);
    return words;
}

} // namespace host
