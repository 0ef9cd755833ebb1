/* Breaks the rules about place and time. */
#include "Zoo.h"

#include <time.h>

static AVSKWindowID window;
static int frames;

static float NeverCalled(float sinceCall, float sinceLoop, int counter, void *refcon) {
    (void)sinceCall, (void)sinceLoop, (void)counter, (void)refcon;
    return 0;
}

static int PassOn(AVSKCommandRef command, int phase, void *refcon) {
    (void)command, (void)phase, (void)refcon;
    return 1;
}

static void Box(void) { AVSKDrawTranslucentDarkBox(0, 10, 10, 0); }
static void SetState(void) { AVSKSetGraphicsState(0, 0, 0, 0, 0, 0, 0); }

static void TakeFocus(void) {
    window = AVSKCreateWindow(0, 10, 10, 0, 1, NULL, NULL, NULL, NULL);
    AVSKTakeKeyboardFocus(window);
}

static void RegisterTwice(void) {
    AVSKCommandRef command = AVSKFindCommand("sim/view/next");
    for (int i = 0; i < 2; ++i) { /* with the pairs that a plugin has which is enabled twice */
        AVSKRegisterCommandHandler(command, PassOn, 1, NULL);
        AVSKUnregisterCommandHandler(command, PassOn, 2, NULL);
    }
    AVSKRegisterCommandHandler(command, PassOn, 1, NULL);
    AVSKRegisterCommandHandler(command, PassOn, 1, NULL);
}

static void Hold(void) {
    AVSKCommandRef command = AVSKFindCommand("sim/view/next");
    AVSKCommandBegin(command);
    AVSKCommandEnd(command);
    AVSKCommandBegin(command);
}

static void CreateLoop(void) {
    const AVSKCreateFlightLoopParams params = {sizeof params, AVSKFlightLoopPhaseBefore, NeverCalled, NULL};
    AVSKCreateFlightLoop(&params);
    AVSKScheduleFlightLoop(AVSKCreateFlightLoop(&params), 5, 0);
}

static void DrawAndCreate(AVSKWindowID own, void *refcon) {
    (void)own, (void)refcon;
    if (++frames == 2)
        AVSKCreateWindow(0, 10, 10, 0, 0, NULL, NULL, NULL, NULL);
}

static void CreateDrawing(void) { AVSKCreateWindow(0, 10, 10, 0, 1, DrawAndCreate, NULL, NULL, NULL); }
static void LimitAircraft(void) { AVSKSetActiveAircraftCount(2); }

static void Sleep(void) {
    const struct timespec time = {0, 150000000};
    if (++frames == 1)
        nanosleep(&time, NULL);
}

const Inhabitant kPlace[] = {
    {.rule = "draw-outside", .frame = Box},
    {.rule = "draw-state-outside", .frame = SetState},
    {.rule = "focus-disabled", .enable = TakeFocus},
    {.rule = "registered-twice", .enable = RegisterTwice},
    {.rule = "command-held", .enable = Hold},
    {.rule = "loop-unscheduled", .enable = CreateLoop},
    {.rule = "window-in-drawing", .enable = CreateDrawing},
    {.rule = "aircraft-uncontrolled", .frame = LimitAircraft},
    {.rule = "callback-slow", .frame = Sleep},
    {0},
};
