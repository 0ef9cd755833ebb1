// The simulator's whole state, and one frame of it. The slots reach it
// through Enter(); Main.cpp makes it and drives it.
#ifndef AVSK_HOST_SIMULATOR_H
#define AVSK_HOST_SIMULATOR_H

#include "Aeroplane.h"
#include "Console.h"
#include "Datarefs.h"
#include "FlightPlan.h"
#include "HostAircraft.h"
#include "HostCamera.h"
#include "HostCommands.h"
#include "HostDisplay.h"
#include "HostFiles.h"
#include "HostInput.h"
#include "HostMenus.h"
#include "HostObjects.h"
#include "HostProbes.h"
#include "NavData.h"
#include "Options.h"

#include "AVSK/AVSKHost.h"

namespace host {

struct Simulator {
    explicit Simulator(Options requested);

    Options options;
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
};

// The table of services is plain C and its functions get no context word, so
// they find the one simulator of the process here. Set by Main.cpp.
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
