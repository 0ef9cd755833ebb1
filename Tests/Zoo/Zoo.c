/* The plugin of the zoo. The environment variable AVSK_ZOO names the rule that
 * it breaks; without it, it breaks none. */
#include "Zoo.h"

#include <stdlib.h>
#include <string.h>

char *zooDescription;
static Inhabitant chosen;
enum {
    kDrawPhase = 50
};

static void Call(void (*function)(void)) {
    if (function)
        function();
}

static void Choose(void) {
    const Inhabitant *const families[] = {kArguments, kDatarefs, kLife, kOpenGL, kPlace, kState};
    const char *rule = getenv("AVSK_ZOO");
    for (size_t i = 0; rule && i < sizeof families / sizeof *families; ++i) {
        for (const Inhabitant *one = families[i]; one->rule; ++one) {
            if (strcmp(one->rule, rule) == 0)
                chosen = *one;
        }
    }
}

static float Frame(float sinceCall, float sinceLoop, int counter, void *refcon) {
    (void)sinceCall, (void)sinceLoop, (void)counter, (void)refcon;
    Call(chosen.frame);
    return -1;
}

static int Draw(int phase, int isBefore, void *refcon) {
    (void)phase, (void)isBefore, (void)refcon;
    Call(chosen.draw);
    return 1;
}

int AVPluginStart(char *outName, char *outSignature, char *outDescription) {
    strcpy(outName, "Zoo");
    strcpy(outSignature, "test.zoo");
    strcpy(outDescription, "Breaks one rule.");
    zooDescription = outDescription;
    Choose();
    if (chosen.frame)
        AVSKRegisterFlightLoopCallback(Frame, -1, NULL);
    if (chosen.draw)
        AVSKRegisterDrawCallback(Draw, kDrawPhase, 0, NULL);
    Call(chosen.start);
    if (chosen.answer)
        chosen.answer(outName, outSignature);
    return 1;
}

void AVPluginStop(void) {
    Call(chosen.stop);
    if (chosen.frame)
        AVSKUnregisterFlightLoopCallback(Frame, NULL);
    if (chosen.draw)
        AVSKUnregisterDrawCallback(Draw, kDrawPhase, 0, NULL);
}

int AVPluginEnable(void) {
    Call(chosen.enable);
    return 1;
}

void AVPluginDisable(void) { Call(chosen.disable); }

void AVPluginReceiveMessage(AVSKPluginID sender, int message, void *parameter) {
    (void)sender, (void)message, (void)parameter;
}
