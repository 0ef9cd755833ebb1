/* A host without plugins that commits the fault of one rule: badhost RULE. Acts as
 * plugin 0 where a fault needs calls of a plugin. With "none" it commits no fault.
 * Without a rule it lists the faults; "host-overrun:2" is the second one of its rule. */
#define _GNU_SOURCE
#include "BadHost.h"

#include <math.h>
#include <pthread.h>
#include <signal.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

/* Services receive more arguments than this host uses. */
#pragma GCC diagnostic ignored "-Wunused-parameter"

enum {
    kFrames = 150,
    kFps = 50,
    kPage = 4096,
    kLastCode = 26
};

typedef AVSKWord W;

static const Fault *fault;
static int hasStopped;
int hostFrame;
const char kHostRoot[] = "/nowhere/";

/* ---- Services that answer neutrally */

float GoodElapsed(void) { return (float)hostFrame / kFps; }
static float Elapsed(void) { return fault->elapsed ? fault->elapsed() : GoodElapsed(); }
static void ScreenSize(int *width, int *height) { *width = 1024, *height = 768; }
static void Mouse(int *x, int *y, int fromPlugin) { *x = *y = 0; }
static void State(int a, int b, int c, int d, int e, int f, int g) {}
static void Bind(int texture, int unit) {}
static void Textures(int *textures, int count) {
    static int last;
    for (int i = 0; i < count; ++i)
        textures[i] = ++last;
}
static int Texture(int texture) { return 0; }
static void Convert(double a, double b, double c, double *x, double *y, double *z) { *x = a, *y = b, *z = c; }
static void Box(int left, int top, int right, int bottom) {}
static void Text(float *colour, int x, int y, char *text, int *wrap, int font) {}
static void Number(float *colour, int x, int y, double value, int digits, int decimals, int sign, int font) {}
static void FontSize(int font, int *width, int *height, int *digits) { *width = 8, *height = 16, *digits = 0; }
static float Measure(int font, const char *text, int count) { return 8.0F * (float)strnlen(text, (size_t)count); }
static void Camera(float *a, float *b, float *c, float *d, float *e, float *f, float *g) {
    *a = *b = *c = *d = *e = *f = *g = 0;
}
static int DrawAircraft(W a, W b, W c, W d, W e, W f, W g, W h, W i) { return 0; }
static void LoadModel(int index, const char *path, const char *name) {}
static void GetModel(int index, char *path, char *name) { *path = *name = '\0'; }
static int Nothing(void) { return 0; }
static void IgnoreText(const char *text) {}
static void Key(int type, int key) {}
static void IgnoreNumber(int number) {}
static void Buttons(const int *buttons, int release, int pass) {}
static void SystemPath(char *out) { strcpy(out, kHostRoot); }
static void PrefsPath(char *out) { strcpy(out, "/nowhere/preferences.txt"); }
static void Versions(int *version, int *value) { *version = 100, *value = 1; }
static void *CreateMenu(void *parent, int item, const char *name) {
    static W menus;
    return (void *)++menus;
}
static int AppendItem(void *menu, int index, const char *name, int english) {
    static int items;
    return ++items;
}
static void RenameItem(void *menu, int index, const char *name, int english) {}
static void DestroyMenu(void *menu) {}
static void RemoveItem(void *menu, int index) {}
static int Reinit(int a, int b) { return 0; }
static int FirstNavAid(void) { return -1; }
static int NoNavAid(int navAid) { return -1; }
static int FindNavAid(W a, W b, W c, W d, W e, W f) { return -1; }
static void NavAidInfo(int navAid, W a, W b, W c, W d, W e, W f, W g, W h, W i) {}
static void EntryInfo(int index, W a, W b, W c, W d, W e, W f) {}
static void SetEntry(int index, W a, W b) {}
static void SetEntryPlace(int index, float latitude, float longitude, W a) {}
static void Message(const char *a, const char *b, const char *c, const char *d) {}
static void *FindCommand(const char *name, const char *description, int create) {
    static char command;
    return create || command ? (command = 1, &command) : NULL;
}
static void RunCommand(void *command, int begin, int end) {
    if (AVSKCommandHook(command, begin, end, 1))
        AVSKCommandHook(command, begin, end, 0);
}
static void BeginCommand(void *command) { RunCommand(command, 1, 0); }
static void ContinueCommand(void *command) { RunCommand(command, 0, 0); }
static void EndCommand(void *command) { RunCommand(command, 0, 1); }
static void *CreateProbe(void) {
    static char probe;
    return &probe;
}
static int Probe(void *probe, const float *xyz, float *a, float *b, float *c, int *flag) { return 0; }
static void *NoSymbol(const char *name) { return NULL; }
static void *LoadObject(const char *path) { return NULL; }
static void DrawObject(void *object, float x, float y, float z, float b, float a, float c, int light, int earth) {}
static void UnloadObject(void *object) {}
static int Lookup(const char *p, float lat, float lon, void (*found)(const char *, void *), void *ref) { return 0; }
static int DataFile(int type, const char *path) { return 0; }
static void LoadAsync(const char *path, void (*done)(void *, void *), void *argument) { done(NULL, argument); }
static void Receive(AVSKPluginID from, int message, void *parameter) {}

/* clang-format off */
static AVSKHostCallbacks table = {
    .version = 4, .sizeInBytes = sizeof table, .getScreenSize = ScreenSize, .getMouseLocation = Mouse,
    .setGraphicsState = State, .bindTexture2d = Bind, .generateTextureNumbers = Textures, .getTexture = Texture,
    .worldToLocal = Convert, .localToWorld = Convert, .drawTranslucentDarkBox = Box, .drawString = Text,
    .drawNumber = Number, .getFontDimensions = FontSize, .getElapsedTime = Elapsed, .readCameraPosition = Camera,
    .drawAircraft = DrawAircraft, .loadAircraftModel = LoadModel, .getAircraftModel = GetModel,
    .countAircraft = Nothing, .placeUserAtAirport = IgnoreText, .simulateKeyPress = Key,
    .speakString = IgnoreText, .commandKeyStroke = IgnoreNumber, .commandButton = Buttons,
    .getSystemPath = SystemPath, .getPrefsPath = PrefsPath, .getVersions = Versions, .getLanguage = Nothing,
    .debugString = IgnoreText, .createMenu = CreateMenu, .appendMenuItem = AppendItem, .setMenuItemName = RenameItem,
    .destroyMenu = DestroyMenu, .reinitUsersPlane = Reinit, .reloadScenery = Nothing,
    .getFirstNavAid = FirstNavAid, .getNextNavAid = NoNavAid, .findFirstNavAidOfType = NoNavAid,
    .findLastNavAidOfType = NoNavAid, .findNavAid = FindNavAid, .getNavAidInfo = NavAidInfo,
    .countFMSEntries = Nothing, .getDisplayedFMSEntry = Nothing, .getDestinationFMSEntry = Nothing,
    .setDisplayedFMSEntry = IgnoreNumber, .setDestinationFMSEntry = IgnoreNumber, .getFMSEntryInfo = EntryInfo,
    .setFMSEntryInfo = SetEntry, .setFMSEntryLatLon = SetEntryPlace, .clearFMSEntry = IgnoreNumber,
    .getGPSDestinationType = Nothing, .getGPSDestination = FirstNavAid, .showMessage = Message,
    .showProgress = IgnoreText, .findCommand = FindCommand, .beginCommand = BeginCommand,
    .continueCommand = ContinueCommand, .endCommand = EndCommand, .createProbe = CreateProbe, .probeTerrain = Probe,
    .findSymbol = NoSymbol, .measureString = Measure, .removeMenuItem = RemoveItem, .loadObject = LoadObject,
    .drawObject = DrawObject, .unloadObject = UnloadObject, .lookupObjects = Lookup, .loadDataFile = DataFile,
    .saveDataFile = DataFile, .loadObjectAsync = LoadAsync, .receiveMessage = Receive,
};
/* clang-format on */
AVSKHostCallbacks *hostTable = &table;

/* ---- Frames */

static void Event(int event) { AVSKEventHook(event, Elapsed(), 0, 0); }
static void Draw(int first, int last) {
    for (int code = first; code <= last; ++code)
        AVSKDoDrawingHook(code, 0);
}
void RunFrame(void) {
    Event(AVSKHostEventFrame);
    Draw(1, kLastCode);
    Event(AVSKHostEventCommands);
    Event(AVSKHostEventFrameEnd);
}
static int IsFifth(void) { return hostFrame == 5; }
static int IsLate(void) { return hostFrame >= 5; }
static float Loop(float sinceCall, float sinceLoop, int counter, void *refcon) {
    AVSKGetElapsedTime();
    return -1;
}

/* ---- Faults of the table */

/* Two pages that both can be read. */
static char *Pages(void) { return mmap(NULL, 2 * kPage, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0); }
static void Move(void *place, size_t size) { hostTable = memcpy(place, &table, size); }
static void Touch(void) { AVSKCursorHook(0, 0); }

static void Show(int signal) { mprotect(hostTable, kPage, PROT_READ); }
static void HideTable(void) {
    Move(Pages(), sizeof table);
    mprotect(hostTable, kPage, PROT_NONE);
    signal(SIGSEGV, Show);
}
static void MoveTable(void) { Move(Pages(), sizeof table); }
static void LoseTable(void) {
    mprotect(hostTable, kPage, PROT_NONE);
    Touch();
    mprotect(hostTable, kPage, PROT_READ);
}
static void Shorten(void) {
    char *pages = Pages();
    mprotect(pages + kPage, kPage, PROT_NONE);
    Move(pages + kPage - 280, 280);
}
static void TellSmallSize(void) {
    table.sizeInBytes = 276;
    table.destroyMenu = NULL;
    table.reinitUsersPlane = NULL;
}
static void TellLargeSize(void) { table.sizeInBytes = 300; }
static void TellOldVersion(void) { table.version = 2; }
static void LeaveSlotNull(void) { table.saveDataFile = NULL; }
static void FillSlotWithData(void) { memcpy(&table.saveDataFile, &hostTable, sizeof hostTable); }
static void Speak(const char *text) {}
static void ChangeSlot(const char *text) { table.speakString = Speak; }
static void ChangeInLog(void) { table.debugString = ChangeSlot; }
static void WriteLog(void) { AVSKDebugString("x"); }
static void ReceiveOther(AVSKPluginID from, int message, void *parameter) {}
static void ChangeReceiver(void) {
    table.receiveMessage = ReceiveOther;
    Touch();
}
static void Overwrite(void) {
    table.version = 12345;
    Touch();
    table.version = 4;
}
int MoveAligned(int a, int b);
__asm__(".pushsection .text\n.type MoveAligned,@function\nMoveAligned:\n"
        "sub $28,%esp\nmovaps %xmm0,(%esp)\nxor %eax,%eax\nadd $28,%esp\nret\n"
        ".size MoveAligned,.-MoveAligned\n.popsection");
static void RelyOnAlignment(void) { table.reinitUsersPlane = MoveAligned; }

/* ---- Faults of hooks */

static void Start(void) { AVSKInitializePlugins(kHostRoot, hostTable, 0); }
static void Shutdown(void) {
    hasStopped = 1;
    AVSKShutdownPlugins();
}
static void Forget(void) { hasStopped = 1; }
static void ShutdownInService(const char *text) {
    if (!hasStopped)
        Shutdown();
}
static void ShutdownByLog(void) {
    RunFrame();
    if (hostFrame == kFrames) {
        table.debugString = ShutdownInService;
        WriteLog();
    }
}
static void Handle(int signal) { Touch(); }
static void TouchInHandler(void) {
    signal(SIGUSR2, Handle);
    raise(SIGUSR2);
}
static void *Run(void *unused) {
    Touch();
    return NULL;
}
static void TouchOnThread(void) {
    pthread_t thread;
    pthread_create(&thread, NULL, Run, NULL);
    pthread_join(thread, NULL);
}
static char model[AVSK_TEXT_SIZE];
static void PassNull(void) {
    AVSKGetNumberPlanesToHandle(2, 0);
    AVSKUpdatePlaneNameAndPath(1, NULL, NULL);
}
static void Scenery(const char *folder) { AVSKEventHook(AVSKHostEventSceneryFolder, 0, 0, (W)folder); }
static void PassBareFolder(void) { Scenery("/nowhere"); }
static void ReportSceneryTwice(void) {
    char folder[] = "/tmp/badhost-XXXXXX";
    char scenery[64];
    char plugins[64];
    if (!mkdtemp(folder))
        abort();
    snprintf(scenery, sizeof scenery, "%s/", folder);
    snprintf(plugins, sizeof plugins, "%s/plugins", folder);
    mkdir(plugins, 0700);
    Scenery(scenery), Scenery(scenery);
    rmdir(plugins), rmdir(folder);
}
static void ReportUnknownEvent(void) { AVSKEventHook(14, 0, 0, 0); }
static void DrawUnknownCode(void) { Draw(27, 27); }
static void PassNan(void) {
    float f[7] = {[3] = NAN};
    AVSKCameraHook(f, f + 1, f + 2, f + 3, f + 4, f + 5, f + 6);
}
static void PressNothing(void) { AVSKKeyPressHook(0, 0, 0); }
static void LoadPlaneTwice(void) {
    AVSKEventHook(AVSKHostEventPlaneLoaded, 0, 0, 1);
    AVSKEventHook(AVSKHostEventPlaneLoaded, 0, 0, 1);
}
static void AskForUsersModel(void) {
    AVSKGetNumberPlanesToHandle(2, 0);
    AVSKUpdatePlaneNameAndPath(0, NULL, model);
}

/* ---- Faults of frames and of the clock */

static void DrawOddReflection(void) {
    Event(AVSKHostEventFrame);
    AVSKDoDrawingHook(1, 2);
    Draw(1, kLastCode);
    Event(AVSKHostEventCommands);
    Event(AVSKHostEventFrameEnd);
}
static void LeaveOutCommands(void) {
    Event(AVSKHostEventFrame);
    Draw(1, kLastCode);
    if (!IsFifth())
        Event(AVSKHostEventCommands);
    Event(AVSKHostEventFrameEnd);
}
static void DrawFirst(void) {
    Draw(1, kLastCode);
    Event(AVSKHostEventFrame);
    Event(AVSKHostEventCommands);
    Event(AVSKHostEventFrameEnd);
}
static void DrawParts(int first, int second, int third) {
    Event(AVSKHostEventFrame);
    Draw(1, first);
    Draw(second, third);
    Draw(22, kLastCode);
    Event(AVSKHostEventCommands);
    Event(AVSKHostEventFrameEnd);
}
static void LeaveOutWindows(void) { DrawParts(19, 21, 21); }
static void DrawBackwards(void) { DrawParts(21, 20, 21); }
static void DrawNothing(void) {
    Event(AVSKHostEventFrame);
    Event(AVSKHostEventCommands);
    Event(AVSKHostEventFrameEnd);
}
static float BeNan(void) { return IsFifth() ? NAN : GoodElapsed(); }
static float GoBack(void) { return IsFifth() ? 0 : GoodElapsed(); }
static float Stand(void) { return IsLate() ? 1 : 0; }
static float Jump(void) { return GoodElapsed() + (hostFrame < kFrames / 2 ? 0 : 10); }
static float Differ(void) { return GoodElapsed() + 10; }
static void ChangeClock(void) { table.getElapsedTime = Differ; }
static void KeepClock(void) { table.getElapsedTime = GoodElapsed; }

static const Fault kFaults[] = {
    {.rule = "none"},
    {.rule = "host-table-unreadable", .before = HideTable},
    {.rule = "host-table-size", .before = TellSmallSize},
    {.rule = "host-table-beyond", .before = TellLargeSize},
    {.rule = "host-table-ends", .before = Shorten},
    {.rule = "host-table-version", .before = TellOldVersion},
    {.rule = "host-table-slot-null", .before = LeaveSlotNull},
    {.rule = "host-table-slot-code", .before = FillSlotWithData},
    {.rule = "host-table-slot-changed", .before = ChangeInLog, .started = WriteLog},
    {.rule = "host-table-receiver", .started = ChangeReceiver},
    {.rule = "host-table-gone", .before = MoveTable, .started = LoseTable},
    {.rule = "host-table-overwritten", .started = Overwrite},
    {.rule = "host-table-alignment", .before = RelyOnAlignment},
    {.rule = "host-hook-before-start", .before = Touch},
    {.rule = "host-hook-after-end", .stopped = Touch},
    {.rule = "host-start-twice", .started = Start},
    {.rule = "host-end-unstarted", .stopped = Shutdown},
    {.rule = "host-end-missing", .started = Forget},
    {.rule = "host-hook-in-service", .frame = ShutdownByLog},
    {.rule = "host-hook-signal", .started = TouchInHandler},
    {.rule = "host-hook-thread", .started = TouchOnThread},
    {.rule = "host-hook-null", .started = PassNull},
    {.rule = "host-hook-folder", .started = PassBareFolder},
    {.rule = "host-event-unknown", .started = ReportUnknownEvent},
    {.rule = "host-draw-unknown", .started = DrawUnknownCode},
    {.rule = "host-draw-reflection", .frame = DrawOddReflection},
    {.rule = "host-camera-invalid", .started = PassNan},
    {.rule = "host-key-empty", .started = PressNothing},
    {.rule = "host-plane-events", .started = LoadPlaneTwice},
    {.rule = "host-plane-index", .started = AskForUsersModel},
    {.rule = "host-scenery-twice", .started = ReportSceneryTwice},
    {.rule = "host-frame-event", .frame = LeaveOutCommands},
    {.rule = "host-frame-order", .frame = DrawFirst},
    {.rule = "host-draw-missing", .frame = LeaveOutWindows},
    {.rule = "host-draw-order", .frame = DrawBackwards},
    {.rule = "host-draw-never", .frame = DrawNothing},
    {.rule = "host-time-invalid", .before = KeepClock, .elapsed = BeNan},
    {.rule = "host-time-backwards", .before = KeepClock, .elapsed = GoBack},
    {.rule = "host-time-stands", .elapsed = Stand},
    {.rule = "host-time-jumps", .elapsed = Jump},
    {.rule = "host-time-differs", .before = ChangeClock},
    {0},
};

/* ---- The life of the host */

static const Fault *Find(const Fault *faults, const char *rule) {
    for (; faults->rule; ++faults) {
        if (strcmp(faults->rule, rule) == 0)
            return faults;
    }
    return NULL;
}

static void Do(void (*step)(void)) {
    if (step)
        step();
}

static void List(const Fault *faults) {
    for (; faults->rule; ++faults)
        printf("\n%s;", faults->rule);
}

int main(int argc, char **argv) {
    if (argc == 1) {
        List(kFaults);
        List(kServiceFaults);
        return 0;
    }
    fault = argc == 2 ? Find(kFaults, argv[1]) : NULL;
    if (argc == 2 && !fault)
        fault = Find(kServiceFaults, argv[1]);
    if (!fault) {
        fprintf(stderr, "badhost: no fault for this rule: add it to BadHost.c\n");
        return 3;
    }
    Do(fault->before);
    Start();
    AVSKRegisterFlightLoopCallback(Loop, -1, NULL);
    Do(fault->started);
    while (hostFrame < kFrames) {
        ++hostFrame;
        Do(fault->frame ? fault->frame : RunFrame);
    }
    AVSKUnregisterFlightLoopCallback(Loop, NULL);
    if (!hasStopped)
        Shutdown();
    Do(fault->stopped);
    return 0;
}
