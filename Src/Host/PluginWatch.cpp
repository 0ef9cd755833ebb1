// The functions in front of the library's; see PluginWatch.h.
#include "PluginWatch.h"

#include "AVSK/AVSKDataAccess.h"
#include "AVSK/AVSKPlugins.h"

#include <climits>

#include <dlfcn.h>

namespace host {
namespace {

std::vector<WatchedWindow> gWindows;
std::set<std::string> gDatarefs;

// The library's function behind one of ours.
template <typename F>
F *Next(F *, const char *name) {
    return reinterpret_cast<F *>(dlsym(RTLD_NEXT, name));
}

AVSKWindowID Watch(AVSKWindowID window) {
    std::erase_if(gWindows,
                  [window](const WatchedWindow &old) { return old.handle == window; }); // an address used again
    if (window)
        gWindows.push_back({window, AVSKGetMyID()});
    return window;
}

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

AVSKWindowID AVSKCreateWindow(int left, int top, int right, int bottom, int visible, AVSKDrawWindow_f drawFunc,
                              AVSKHandleKey_f keyFunc, AVSKHandleMouseClick_f mouseClickFunc, void *refcon) {
    static const auto next = host::Next(AVSKCreateWindow, "AVSKCreateWindow");
    return host::Watch(next(left, top, right, bottom, visible, drawFunc, keyFunc, mouseClickFunc, refcon));
}

AVSKWindowID AVSKCreateWindowEx(const AVSKCreateWindowParams *params) {
    static const auto next = host::Next(AVSKCreateWindowEx, "AVSKCreateWindowEx");
    return host::Watch(next(params));
}

AVSKDataRef AVSKRegisterDataAccessor(const char *name, int types, int writable, AVSKGetDatai_f readInt,
                                     AVSKSetDatai_f writeInt, AVSKGetDataf_f readFloat, AVSKSetDataf_f writeFloat,
                                     AVSKGetDatad_f readDouble, AVSKSetDatad_f writeDouble, AVSKGetDatavi_f readInts,
                                     AVSKSetDatavi_f writeInts, AVSKGetDatavf_f readFloats, AVSKSetDatavf_f writeFloats,
                                     AVSKGetDatab_f readData, AVSKSetDatab_f writeData, void *readRefcon,
                                     void *writeRefcon) {
    static const auto next = host::Next(AVSKRegisterDataAccessor, "AVSKRegisterDataAccessor");
    if (name && AVSKGetMyID() > 0) // the host's own are its own affair
        host::gDatarefs.insert(name);
    return next(name, types, writable, readInt, writeInt, readFloat, writeFloat, readDouble, writeDouble, readInts,
                writeInts, readFloats, writeFloats, readData, writeData, readRefcon, writeRefcon);
}
