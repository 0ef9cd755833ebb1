// The camera and the service that reads it; see Camera.h. Simulator.cpp places
// it once a frame; commands change the view.
#include "Camera.h"

#include "ServiceTable.h"
#include "Simulator.h"

#include <cmath>
#include <numbers>
#include <string>

namespace host {
namespace {

void ReadCameraPosition(float *f1, float *f2, float *f3, float *f4, float *f5, float *f6, float *f7) {
    const Camera::Position &used = Enter().camera.Used();
    Store(f1, used[0]);
    Store(f2, used[1]);
    Store(f3, used[2]);
    Store(f4, used[3]);
    Store(f5, used[4]);
    Store(f6, used[5]);
    Store(f7, used[6]);
}

// A position some metres behind and above the aeroplane, looking ahead.
Camera::Position Behind(const Aeroplane &plane, double behind, double above, float pitch) {
    const LocalPoint here = ToLocal({plane.latitude, plane.longitude, plane.altitude});
    const double heading = plane.heading * std::numbers::pi / 180;
    return {static_cast<float>(here.x - behind * std::sin(heading)),
            static_cast<float>(here.y + above),
            static_cast<float>(here.z + behind * std::cos(heading)),
            pitch,
            static_cast<float>(plane.heading),
            0,
            1};
}

Camera::Position PositionOf(View view, const Aeroplane &plane) {
    switch (view) {
    case View::Chase:
        return Behind(plane, 60, 15, -8);
    case View::Cockpit:
        return Behind(plane, 0, 1, 0);
    case View::Tower:
        break;
    }
    return {0, 3000, 2000, -45, 0, 0, 1};
}

} // namespace

const char *Camera::ViewName() const {
    switch (mView) {
    case View::Chase:
        return "chase";
    case View::Cockpit:
        return "cockpit";
    case View::Tower:
        break;
    }
    return "tower";
}

void Camera::ChangeView(Simulator &simulator, View view) {
    mView = view;
    simulator.console.Note(std::string("view: ") + ViewName());
    // A plugin that controls the camera may release it in this call.
    AVSKEventHook(AVSKHostEventViewChanged, simulator.Elapsed(), 0, 0);
}

void Camera::NextView(Simulator &simulator) {
    constexpr int kViews = 3;
    ChangeView(simulator, static_cast<View>((static_cast<int>(mView) + 1) % kViews));
}

void Camera::Place(const Aeroplane &aeroplane) {
    Position placed = PositionOf(mView, aeroplane);
    // The library changes the numbers only if a plugin places the camera. Plugins
    // that read the camera before that get the position of the last frame.
    AVSKCameraHook(&placed[0], &placed[1], &placed[2], &placed[3], &placed[4], &placed[5], &placed[6]);
    mUsed = placed;
}

void FillCameraSlots(AVSKHostCallbacks &table) { table.readCameraPosition = ReadCameraPosition; }

} // namespace host
