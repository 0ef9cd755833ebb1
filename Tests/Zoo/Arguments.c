/* Breaks the rules about arguments and results. */
#include "Zoo.h"

#include <math.h>
#include <string.h>

static int KeyUnused(char key, int flags, char virtualKey, void *refcon) {
    (void)key, (void)flags, (void)virtualKey, (void)refcon;
    return 1;
}

static float ReturnNaN(float sinceCall, float sinceLoop, int counter, void *refcon) {
    (void)sinceCall, (void)sinceLoop, (void)counter, (void)refcon;
    return NAN;
}

static int Suppress(int phase, int isBefore, void *refcon) {
    (void)phase, (void)isBefore, (void)refcon;
    return 3;
}

static void Ignore(void *refcon) { (void)refcon; }

static AVSKWindowID window;

static AVSKMenuID MakeMenu(void) {
    AVSKMenuID menu = AVSKCreateMenu("Zoo", NULL, 0, NULL, NULL);
    AVSKAppendMenuItem(menu, "One", NULL, 1);
    return menu;
}

static void RegisterNothing(void) { AVSKRegisterKeySniffer(NULL, 1, NULL); }
static void LogNothing(void) { AVSKDebugString(NULL); }

static void AskWidth(void) {
    int width = 0;
    AVSKGetScreenSize(&width, NULL);
}

static void ProbeWithoutSize(void) {
    AVSKProbeInfo info = {0};
    AVSKProbeRef probe = AVSKCreateProbe(AVSK_PROBE_Y);
    AVSKProbeTerrainXYZ(probe, 0, 0, 0, &info);
    AVSKDestroyProbe(probe);
}

static void LogLatin(void) { AVSKDebugString("H\xF6he\n"); }

static void ChooseLongModel(void) {
    char path[400];
    memset(path, 'a', sizeof path);
    path[sizeof path - 1] = '\0';
    char *paths[] = {path, path, NULL};
    AVSKAcquirePlanes(paths, NULL, NULL);
}

static void DescribeAtLength(void) {
    char text[600];
    memset(text, 'a', sizeof text);
    text[sizeof text - 1] = '\0';
    AVSKUnregisterHotKey(AVSKRegisterHotKey('A', 0, text, Ignore, NULL));
}

static void ScheduleNaN(void) { AVSKSetFlightLoopCallbackInterval(ReturnNaN, NAN, 0, NULL); }

static void WriteInfinity(void) {
    AVSKShareData("zoo/arguments/shared", AVSKDataTypeFloat, NULL, NULL);
    AVSKSetDataf(AVSKFindDataRef("zoo/arguments/shared"), INFINITY);
}

static void CheckMissingItem(void) {
    AVSKMenuID menu = MakeMenu();
    AVSKCheckMenuItem(menu, 0, AVSKMenuChecked);
    AVSKCheckMenuItem(menu, 1, AVSKMenuChecked);
}

static void AskBeyond(void) {
    AVSKGetNthPlugin(AVSKCountPlugins() - 1);
    AVSKGetNthPlugin(AVSKCountPlugins());
}

static void DrawNever(void) { AVSKRegisterDrawCallback(Suppress, 56, 1, NULL); }
static void SendToNobody(void) { AVSKSendMessageToPlugin(77, 1000, NULL); }
static void EnableMisspelt(void) { AVSKEnableFeature("AVSK_WANT_REFLECTIONS", 1); }
static void CreateForeignCommand(void) { AVSKCreateCommand("sim/zoo", "Nothing"); }
static void CreateInverted(void) { AVSKCreateWindow(10, 10, 200, 100, 0, NULL, NULL, NULL, NULL); }
static void HideNull(void) { AVSKSetWindowIsVisible(NULL, 0); }
static void HideNothing(void) { AVSKSetWindowIsVisible((AVSKWindowID)&window, 0); }
static void HideMenu(void) { AVSKSetWindowIsVisible((AVSKWindowID)MakeMenu(), 0); }

/* This is allowed: a destroyed window can be used until the pass over the windows ends. */
static void DrawAndDestroy(AVSKWindowID own, void *refcon) {
    (void)refcon;
    AVSKDestroyWindow(own);
    AVSKGetWindowRefCon(own);
}

static void UseDestroyed(void) {
    if (!window)
        window = AVSKCreateWindow(10, 100, 200, 10, 1, DrawAndDestroy, NULL, NULL, NULL);
    else
        AVSKGetWindowRefCon(window);
}

static void ClearForeign(void) { AVSKClearAllMenuItems(AVSKFindPluginsMenu()); }
static void RunNaN(void) { AVSKRegisterFlightLoopCallback(ReturnNaN, -1, NULL); }
static void DrawOddly(void) { AVSKRegisterDrawCallback(Suppress, 0, 1, NULL); }
static void DescribeWithoutEnd(void) { memset(zooDescription, 'x', AVSK_TEXT_SIZE); }

static void UseWell(void) {
    AVSKCreateWindow(10, 100, 200, 10, 1, DrawAndDestroy, NULL, NULL, NULL);
    AVSKRegisterKeySniffer(KeyUnused, 1, NULL);
    AVSKUnregisterKeySniffer(KeyUnused, 1, NULL);
    AVSKDebugString("H\xC3\xB6he\n");
    AVSKGetWindowIsVisible(NULL);
    AVSKDestroyWindow(NULL);
}

const Inhabitant kArguments[] = {
    {.rule = "callback-null", .enable = RegisterNothing},
    {.rule = "argument-null", .enable = LogNothing},
    {.rule = "argument-null-host", .enable = AskWidth},
    {.rule = "struct-size", .enable = ProbeWithoutSize},
    {.rule = "text-utf8", .enable = LogLatin},
    {.rule = "text-long", .enable = ChooseLongModel},
    {.rule = "text-cut", .enable = DescribeAtLength},
    {.rule = "text-unterminated", .start = DescribeWithoutEnd},
    {.rule = "number-finite", .enable = ScheduleNaN},
    {.rule = "dataref-finite", .enable = WriteInfinity},
    {.rule = "index-item", .enable = CheckMissingItem},
    {.rule = "index-range", .enable = AskBeyond},
    {.rule = "value-unknown", .enable = DrawNever},
    {.rule = "plugin-unknown", .enable = SendToNobody},
    {.rule = "feature-unknown", .enable = EnableMisspelt},
    {.rule = "command-prefix", .enable = CreateForeignCommand},
    {.rule = "window-inverted", .enable = CreateInverted},
    {.rule = "handle-null", .enable = HideNull},
    {.rule = "handle-unknown", .enable = HideNothing},
    {.rule = "handle-kind", .enable = HideMenu},
    {.rule = "handle-gone", .frame = UseDestroyed},
    {.rule = "handle-foreign", .enable = ClearForeign},
    {.rule = "result-number", .enable = RunNaN},
    {.rule = "result-unknown", .enable = DrawOddly},
    {.rule = "none", .enable = UseWell},
    {0},
};
