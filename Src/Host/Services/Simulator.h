// The simulator's whole state, and one frame of it. The slots reach it
// through Enter().
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
    bool sceneryDue = false; // scenery folders are to be reported at the next frame

    // Seconds since the start: a clock of frames, so that every run is the same.
    float Elapsed() const;

    // Runs the library's hooks for one frame.
    void RunFrame();
    // Reports each scenery folder to the library.
    void ReportScenery();

  private:
    void FinishRequests();
    void PressKeys();
    void Draw();
    void DrawPasses();
    // The line at the foot of a picture.
    std::string Status() const;
};

// The table of services is plain C and its functions get no context word, so
// they find the one simulator of the process here. Set by Prepare() of Lifetime.h.
extern Simulator *gSimulator;

// What each slot does first.
inline Simulator &Enter() { return *gSimulator; }

// Writes through a plugin's pointer, which may be null.
template <typename T>
void Store(T *out, T value) {
    if (out)
        *out = value;
}

} // namespace host

#endif
