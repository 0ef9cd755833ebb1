// The state of the simulator, and its frame. The services reach it through Enter().
#ifndef AVSK_HOST_SERVICES_SIMULATOR_H
#define AVSK_HOST_SERVICES_SIMULATOR_H

#include "Aircraft.h"
#include "Camera.h"
#include "Commands.h"
#include "Common/Console.h"
#include "DataFiles.h"
#include "Datarefs.h"
#include "Input.h"
#include "Menus.h"
#include "Objects.h"
#include "Probes.h"
#include "Screen/Display.h"
#include "SimulatorOptions.h"
#include "World/Aeroplane.h"
#include "World/FlightPlan.h"
#include "World/NavData.h"

#include "AVSK/AVSKHost.h"

#include <functional>
#include <string>

namespace host {

struct Simulator {
    explicit Simulator(SimulatorOptions requested);

    SimulatorOptions options;
    Console console;
    int frame = 0;
    Aeroplane aeroplane;
    Track track;
    Camera camera;
    Display display;
    MenuTree menus;
    CommandTable commands;
    Input input;
    Fleet fleet;
    Objects objects;
    Probes probes;
    NavData navData;
    FlightPlan flightPlan;
    Datarefs datarefs;
    bool sceneryDue = false; // report the scenery folders in the next frame
    // Puts the plugins into the root, called once while none is loaded. Empty if they are there.
    std::function<void()> placePlugins;

    // Simulated seconds since the start, counted in frames, so that every run is the same.
    // Frames that took longer or shorter than usual are added.
    float Elapsed() const;

    // Runs the library's hooks for one frame, which takes the usual time or so many seconds.
    void RunFrame() { RunFrame(1 / options.fps); }
    void RunFrame(double seconds);
    // Reports each scenery folder to the library.
    void ReportScenery();
    // What the screen shows, with the menu bar. The picture of the last frame must have been wanted. Valid until the
    // next frame.
    const Image &Picture();

  private:
    void FinishRequests();
    void PressKeys();
    void Draw();
    void DrawPasses();
    // The line at the foot of a picture.
    std::string Status() const;

    double mExtra = 0; // seconds by which frames took longer than usual
};

// The services are plain C functions without a context argument, so they find
// the one simulator of the process here. Set by Prepare() of Lifetime.h.
extern Simulator *gSimulator;

// Every service calls this first.
inline Simulator &Enter() { return *gSimulator; }

// Writes through a pointer of a plugin, which may be null.
template <typename T>
void Store(T *out, T value) {
    if (out)
        *out = value;
}

} // namespace host

#endif
