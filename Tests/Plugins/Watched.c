/* One plugin in several builds, chosen by a macro. Used by Watch_test.cpp. */
#include "AVSK/AVSK.h"
#include "AVSK/AVSKGraphics.h"

#ifdef SECOND
#define TEXT "second"
#define WIDTH 200
#else
#define TEXT "first"
#define WIDTH 100
#endif

#ifdef UNIQUE
int kept;
__asm__(".type kept, @gnu_unique_object");
#endif

static void Copy(char *to, const char *from) {
    while ((*to++ = *from++) != '\0') {
    }
}

static float Tick(float sinceCall, float sinceLoop, int counter, void *refcon) {
    (void)sinceCall, (void)sinceLoop, (void)counter, (void)refcon;
#ifdef CRASHES
    *(volatile int *)0 = 1;
#endif
    return -1;
}

static int Draw(int phase, int isBefore, void *refcon) {
    (void)phase, (void)isBefore, (void)refcon;
    AVSKDrawTranslucentDarkBox(100, 300, 100 + WIDTH, 250);
    return 1;
}

int AVPluginStart(char *name, char *signature, char *description) {
    Copy(name, "Watched");
    Copy(signature, "test.watched");
    Copy(description, TEXT);
    AVSKDebugString("Watched: " TEXT "\n");
#ifdef UNIQUE
    ++kept;
#endif
    AVSKRegisterFlightLoopCallback(Tick, -1, 0);
    AVSKRegisterDrawCallback(Draw, 50, 1, 0);
    return 1;
}
