// The camera: the user's choice of three views, unless a plugin places it.
#ifndef AVSK_HOST_SERVICES_CAMERA_H
#define AVSK_HOST_SERVICES_CAMERA_H

#include <array>

namespace host {

class Aeroplane;
struct Simulator;

enum class View {
    Tower,   // high above the start, looking down northward
    Chase,   // behind the aeroplane and a little above
    Cockpit, // where the pilot sits
};

class Camera {
  public:
    // x, y, z in local metres; pitch (up), heading and roll in degrees; zoom, 1 for none.
    using Position = std::array<float, 7>;

    // The camera position of this frame.
    const Position &Used() const { return mUsed; }
    View CurrentView() const { return mView; }
    const char *ViewName() const;

    // Changes the view and reports it, also if it is the same one.
    void ChangeView(Simulator &simulator, View view);
    // Changes to the next view, after the last one to the first.
    void NextView(Simulator &simulator);
    // Places the camera for a frame: first by the view, then a plugin may move it.
    void Place(const Aeroplane &aeroplane);

  private:
    View mView = View::Tower;
    Position mUsed{};
};

} // namespace host

#endif
