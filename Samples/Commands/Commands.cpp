// Commands: makes a command of its own and holds it for a second, watches one
// of the simulator's before and after it acts, and holds a joystick button.
#include <AVSK/AVSK.h>

#include <array>
#include <cstdio>

namespace {

constexpr int kBefore = 1;
constexpr int kAfter = 0;
constexpr int kButton = 1; // buttons are the simulator's; its reference host climbs with this one

// One registration each, told apart by the refcon.
struct Watch {
    const char *text;
    int phases[3]; // how often begin, continue and end were heard
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
    return 1; // 0 would keep the command from everybody behind us
}

// What we begin is continued by itself, once a frame, and so is a button that is down.
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
        AVSKCommandOnce(gWave); // begin and end, without a hold
        return 0.0F;
    }
}

} // namespace

int AVPluginStart(char *outName, char *outSignature, char *outDescription) {
    std::snprintf(outName, AVSK_TEXT_SIZE, "Commands");
    std::snprintf(outSignature, AVSK_TEXT_SIZE, "aerivo.samples.commands");
    std::snprintf(outDescription, AVSK_TEXT_SIZE, "Makes, holds and watches commands.");

    // Users bind keys and buttons to it by its name; names that begin with "sim/" are the simulator's.
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

// A command that we hold is ended for us, and our handlers go. A button stays down, so it is let go here.
void AVPluginStop(void) {
    constexpr int kButtonIsDown = 2;
    if (gStep == kButtonIsDown)
        AVSKCommandButtonRelease(kButton);
}

// Nothing to do, but the log mentions each entry point that a plugin does not have.
int AVPluginEnable(void) { return 1; }
void AVPluginDisable(void) {}
void AVPluginReceiveMessage(AVSKPluginID /*sender*/, int /*message*/, void * /*parameter*/) {}
