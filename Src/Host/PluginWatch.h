// Which windows and datarefs plugins made. The library tells the host neither,
// so the program itself defines the functions that make them: plugins find
// these first, and each hands on to the library's own.
#ifndef AVSK_HOST_PLUGIN_WATCH_H
#define AVSK_HOST_PLUGIN_WATCH_H

#include "AVSK/AVSKDisplay.h"

#include <optional>
#include <set>
#include <string>
#include <vector>

namespace host {

struct Rectangle {
    int left, top, right, bottom;
};

struct WatchedWindow {
    AVSKWindowID handle;
    AVSKPluginID owner;
};

// The windows there are, in the order they were made.
std::vector<WatchedWindow> WatchedWindows();
// Where a window is; nothing if there is none of that handle.
std::optional<Rectangle> PlaceOf(AVSKWindowID window);
// The names of all datarefs that plugins ever published.
const std::set<std::string> &WatchedDatarefs();

} // namespace host

#endif
