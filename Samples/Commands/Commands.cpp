// Commands: creates a command and holds it for a second, handles a command of
// the simulator before and after the simulator acts, and holds a joystick button.
#include <AVSK/AVSK.h>

#include <array>
#include <cstdio>

namespace {

constexpr int kBefore = 1;
constexpr int kAfter = 0;
constexpr int kButton = 1; // the simulator defines the buttons; the reference host climbs with this one

// One per registration; the refcon tells them apart.
struct Watch {
    const char *text;
    int phases[3]; // how often each of begin, continue and end was received
};
Watch gOwn{"wave, handled", {}};
Watch gClimbBefore{"climb, before the simulator", {}};
Watch gClimbAfter{"climb, after the simulator", {}};

AVSKCommandRef gWave = nullptr;
AVSKCommandRef gClimb = nullptr;
int gStep = 0;

int Heard(AVSKCommandRef /*command*/, int phase, void *refcon) {
    auto &watch = *static_cast<Watch *>(refcon);
    ++watch.phases[phase];
    if (phase == AVSKCommandPhaseEnd) {
        std::array<char, AVSK_TEXT_SIZE> line{};
        std::snprintf(line.data(), line.size(), "Commands: %s: begun %d, continued %d, ended %d times\n", watch.text,
                      watch.phases[AVSKCommandPhaseBegin], watch.phases[AVSKCommandPhaseContinue],
                      watch.phases[AVSKCommandPhaseEnd]);
        AVSKDebugString(line.data());
    }
    return 1; // 0 would stop the command for later handlers
}

// The library continues a command that we began once a frame, and a button that is down.
float Act(float /*sinceLastCall*/, float /*elapsed*/, int /*pass*/, void * /*refcon*/) {
    switch (++gStep) {
    case 1:
        AVSKCommandBegin(gWave);
        return 1.0F;
    case 2:
        AVSKCommandEnd(gWave);
        AVSKCommandButtonPress(kButton);
        return 1.0F;
    case 3:
        AVSKCommandButtonRelease(kButton);
        return 1.0F;
    default:
        AVSKCommandOnce(gWave); // begins and ends it at once
        return 0.0F;
    }
}

} // namespace

int AVPluginStart(char *outName, char *outSignature, char *outDescription) {
    std::snprintf(outName, AVSK_TEXT_SIZE, "Commands");
    std::snprintf(outSignature, AVSK_TEXT_SIZE, "aerivo.samples.commands");
    std::snprintf(outDescription, AVSK_TEXT_SIZE, "Makes, holds and watches commands.");

    // Users bind keys and buttons to the name. Names that begin with "sim/" belong to the simulator.
    gWave = AVSKCreateCommand("aerivo/samples/wave", "Wave with the wings");
    AVSKRegisterCommandHandler(gWave, Heard, kBefore, &gOwn);

    gClimb = AVSKFindCommand("sim/flight/climb");
    if (gClimb != nullptr) {
        AVSKRegisterCommandHandler(gClimb, Heard, kBefore, &gClimbBefore);
        AVSKRegisterCommandHandler(gClimb, Heard, kAfter, &gClimbAfter);
    }
    AVSKRegisterFlightLoopCallback(Act, 1.0F, nullptr);
    return 1;
}

// Ends what we hold. The library removes our handlers.
void AVPluginStop(void) {
    constexpr int kCommandIsHeld = 1;
    constexpr int kButtonIsDown = 2;
    if (gStep == kCommandIsHeld)
        AVSKCommandEnd(gWave);
    else if (gStep == kButtonIsDown)
        AVSKCommandButtonRelease(kButton);
}

// These are empty: the log reports every entry point that a plugin lacks.
int AVPluginEnable(void) { return 1; }
void AVPluginDisable(void) {}
void AVPluginReceiveMessage(AVSKPluginID /*sender*/, int /*message*/, void * /*parameter*/) {}
