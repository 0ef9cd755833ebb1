// The functions in front of the library's; see PluginWatch.h.
#include "PluginWatch.h"

#include "AVSK/AVSKDataAccess.h"
#include "AVSK/AVSKPlugins.h"

#include "Crossing.h"

#include <climits>
#include <string_view>

namespace host {
namespace {

std::vector<WatchedWindow> gWindows;
std::set<std::string> gDatarefs;

struct Watch : crossings::Observer {
    Watch() { crossings::AddObserver(*this); }
    void Begins(const crossings::Crossing & /*crossing*/) override {}
    void Ends(const crossings::Crossing &crossing) override {
        const std::string_view name = crossing.what.name;
        if (name == "AVSKRegisterDataAccessor" && crossing["name"].text && crossing.dispatched > 0)
            gDatarefs.insert(crossing["name"].text);
        if (!name.starts_with("AVSKCreateWindow"))
            return;
        auto *window = static_cast<AVSKWindowID>(const_cast<void *>(crossing.result.pointer));
        std::erase_if(gWindows, [window](const WatchedWindow &old) { return old.handle == window; });
        if (window)
            gWindows.push_back({window, crossing.dispatched});
    }
};
Watch &gWatch = *new Watch;

} // namespace

std::optional<Rectangle> PlaceOf(AVSKWindowID window) {
    // Of a window that is gone the library writes nothing.
    Rectangle place{INT_MIN, INT_MIN, INT_MIN, INT_MIN};
    AVSKGetWindowGeometry(window, &place.left, &place.top, &place.right, &place.bottom);
    const bool gone = place.left == INT_MIN && place.top == INT_MIN && place.right == INT_MIN;
    return gone ? std::nullopt : std::optional(place);
}

std::vector<WatchedWindow> WatchedWindows() {
    std::erase_if(gWindows, [](const WatchedWindow &window) { return !PlaceOf(window.handle); });
    return gWindows;
}

const std::set<std::string> &WatchedDatarefs() { return gDatarefs; }

} // namespace host
