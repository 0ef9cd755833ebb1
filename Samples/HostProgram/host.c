/*
 * HostProgram: a whole host in one file. It loads the plugins of
 * ROOT/Resources/plugins, runs a number of frames and prints what plugins log,
 * and what they draw in the last frame. Explained in Docs/host-guide.md.
 *
 * The library passes most arguments of a plugin unchecked. The services check
 * them: outputs, texts and commands may be null, counts negative, and a command
 * may be a pointer that this host has never handed out. Docs/host-slots.md says
 * for each slot what arrives unchecked.
 */
#include <AVSK/AVSKDataAccess.h>
#include <AVSK/AVSKHost.h>
#include <AVSK/AVSKPlugins.h>

#include <stdio.h>
#include <stdlib.h>
#include <string.h>

/* Services receive more arguments than this host uses. */
#pragma GCC diagnostic ignored "-Wunused-parameter"

enum {
    kFps = 60,
    kFirstCode = 1,
    kLastCode = 26,
    kMaxCommands = 64,
    kMaxRoot = 400
};
typedef AVSKWord W; /* an argument whose meaning the host defines */

/* Writes an output of a plugin, which may be null. */
static void PutInt(int *out, int value) {
    if (out)
        *out = value;
}
static void PutDouble(double *out, double value) {
    if (out)
        *out = value;
}

static char gRoot[kMaxRoot];
static int gFrame, gFrames;

/* ---- The clock, the screen and the log */

static float Elapsed(void) { return (float)gFrame / kFps; }
static void ScreenSize(int *width, int *height) { PutInt(width, 1024), PutInt(height, 768); }
static void Mouse(int *x, int *y, int fromPlugin) { PutInt(x, 0), PutInt(y, 0); }
static void Log(const char *text) {
    if (text)
        fputs(text, stdout);
}
static void Message(const char *a, const char *b, const char *c, const char *d) { printf("%s%s%s%s\n", a, b, c, d); }
static void SystemPath(char *out) { strcpy(out, gRoot); }
static void PrefsPath(char *out) { sprintf(out, "%spreferences.txt", gRoot); }
static void Versions(int *version, int *value) { *version = 100, *value = 1; }
static int Nothing(void) { return 0; }
static void *NoSymbol(const char *name) { return NULL; }
static void Receive(AVSKPluginID from, int message, void *p) { printf("Host: message %d from %d\n", message, from); }

/* ---- Drawing: all characters are 8 by 16 pixels; drawn texts are printed */

static void State(int a, int b, int c, int d, int e, int f, int g) {}
static void Bind(int texture, int unit) {}
static void Textures(int *textures, int count) {
    static int last;
    for (int i = 0; textures && i < count; ++i) /* not at all for a negative count */
        textures[i] = ++last;
}
static int Texture(int texture) { return 0; }
static void Convert(double a, double b, double c, double *x, double *y, double *z) {
    PutDouble(x, a), PutDouble(y, b), PutDouble(z, c);
}
static void Box(int left, int top, int right, int bottom) {}
static void Text(float *colour, int x, int y, char *text, int *wrap, int font) {
    if (text && gFrame == gFrames)
        printf("Host: text at %d,%d: %s\n", x, y, text);
}
static void Number(float *colour, int x, int y, double value, int digits, int decimals, int sign, int font) {}
static void FontSize(int font, int *width, int *height, int *digitsOnly) {
    PutInt(width, 8), PutInt(height, 16), PutInt(digitsOnly, 0);
}
static float Measure(int font, const char *text, int count) {
    int length = 0;
    while (text && length < count && text[length])
        ++length;
    return 8.0f * (float)length;
}
static void Camera(float *a, float *b, float *c, float *d, float *e, float *f, float *g) {
    *a = *b = *c = *d = *e = *f = *g = 0;
}

/* ---- Menus: nothing is shown. Handles and IDs are numbers that count up, so that each is unique. A host that
        shows menus ignores index -1 in RenameItem, and creates a menu below item -1 without an item that opens it. */

static void *CreateMenu(void *parent, int item, const char *name) {
    static uintptr_t menus;
    return (void *)++menus; /* the library does not dereference handles */
}
static int AppendItem(void *menu, int index, const char *name, int english) {
    static int items;
    return ++items;
}
static void RenameItem(void *menu, int index, const char *name, int english) {}
static void DestroyMenu(void *menu) {}
static void RemoveItem(void *menu, int index) {}

/* ---- Commands: each is a name; the library is called before and after the host acts */

static char gCommands[kMaxCommands][AVSK_TEXT_SIZE]; /* the first empty name ends the list */

static void *FindCommand(const char *name, const char *description, int create) {
    if (!name || !*name || strlen(name) >= sizeof gCommands[0])
        return NULL;
    for (int i = 0; i < kMaxCommands; ++i) {
        if (!gCommands[i][0] && create)
            strcpy(gCommands[i], name);
        if (!gCommands[i][0] || strcmp(gCommands[i], name) == 0)
            return gCommands[i][0] ? gCommands[i] : NULL;
    }
    return NULL;
}
static int IsCommand(const void *command) {
    for (int i = 0; i < kMaxCommands && gCommands[i][0]; ++i)
        if (command == gCommands[i])
            return 1;
    return 0;
}
static void RunCommand(void *command, int begin, int end) {
    if (!IsCommand(command)) /* null, or a foreign pointer */
        return;
    if (AVSKCommandHook(command, begin, end, /*before=*/1)) /* 0: a plugin stopped it */
        AVSKCommandHook(command, begin, end, /*before=*/0);
}
static void BeginCommand(void *command) { RunCommand(command, 1, 0); }
static void ContinueCommand(void *command) { RunCommand(command, 0, 0); }
static void EndCommand(void *command) { RunCommand(command, 0, 1); }

/* ---- Aircraft, scenery, navigation: this host has none and gives neutral results. A host that has objects looks
        each pointer up among its objects before it draws one, as RunCommand does with commands. */

static void LoadModel(int index, const char *path, const char *name) {}
static void GetModel(int index, char *path, char *name) { *path = *name = '\0'; }
static int DrawAircraft(W a, W b, W c, W d, W e, W f, W g, W h, W i) { return 0; }
static void IgnoreText(const char *text) {}
static void SimulateKey(int type, int key) {}
static void IgnoreNumber(int number) {}
static void Buttons(const int *buttons, int release, int pass) {}
static int ReinitPlane(int a, int b) { return 0; }
static int NoNavAid(int navAid) { return -1; }
static int FirstNavAid(void) { return -1; }
static int FindNavAid(W a, W b, W c, W d, W e, W f) { return -1; }
static void NavAidInfo(int navAid, W a, W b, W c, W d, W e, W f, W g, W h, W i) {}
static void EntryInfo(int index, W a, W b, W c, W d, W e, W f) {}
static void SetEntry(int index, W a, W b) {}
static void SetEntryPlace(int index, float latitude, float longitude, W a) {}
static void *CreateProbe(void) { return gRoot; } /* any non-null pointer; the library passes it to slot 60 */
static int Probe(void *probe, const float *xyz, float *a, float *b, float *c, int *flag) { return 0; }
static void *LoadObject(const char *path) { return NULL; }
static void DrawObject(void *object, float x, float y, float z, float b, float a, float c, int light, int earth) {}
static void UnloadObject(void *object) {}
static int Lookup(const char *p, float lat, float lon, void (*found)(const char *, void *), void *ref) { return 0; }
static int DataFile(int type, const char *path) { return 0; }
static void LoadAsync(const char *path, void (*done)(void *, void *), void *argument) { done(NULL, argument); }

/* All 72 words, listed in Docs/host-slots.md. The library keeps the pointer, so the table must live as long as the
 * process. */
/* clang-format off */
static const AVSKHostCallbacks kTable = {
    .version = 4, .sizeInBytes = sizeof kTable, .getScreenSize = ScreenSize, .getMouseLocation = Mouse,
    .setGraphicsState = State, .bindTexture2d = Bind, .generateTextureNumbers = Textures, .getTexture = Texture,
    .worldToLocal = Convert, .localToWorld = Convert, .drawTranslucentDarkBox = Box, .drawString = Text,
    .drawNumber = Number, .getFontDimensions = FontSize, .getElapsedTime = Elapsed, .readCameraPosition = Camera,
    .drawAircraft = DrawAircraft, .loadAircraftModel = LoadModel, .getAircraftModel = GetModel,
    .countAircraft = Nothing, .placeUserAtAirport = IgnoreText, .simulateKeyPress = SimulateKey,
    .speakString = IgnoreText, .commandKeyStroke = IgnoreNumber, .commandButton = Buttons,
    .getSystemPath = SystemPath, .getPrefsPath = PrefsPath, .getVersions = Versions, .getLanguage = Nothing,
    .debugString = Log, .createMenu = CreateMenu, .appendMenuItem = AppendItem, .setMenuItemName = RenameItem,
    .destroyMenu = DestroyMenu, .reinitUsersPlane = ReinitPlane, .reloadScenery = Nothing,
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

static float ReadElapsed(void *refcon) { return Elapsed(); }

static void RunFrame(void) {
    ++gFrame;
    AVSKEventHook(AVSKHostEventFrame, Elapsed(), 0, 0);
    /* a real host steps its world here and reports keys and clicks */
    for (int code = kFirstCode; code <= kLastCode; ++code)
        AVSKDoDrawingHook(code, /*reflection=*/0); /* 1: the host draws its own part */
    AVSKEventHook(AVSKHostEventCommands, Elapsed(), 0, 0);
    AVSKEventHook(AVSKHostEventFrameEnd, Elapsed(), 0, 0);
}

int main(int argc, char **argv) {
    gFrames = argc == 3 ? atoi(argv[2]) : 0;
    if (gFrames < 1 || strlen(argv[1]) + 2 > sizeof gRoot) {
        fprintf(stderr, "usage: %s ROOT FRAMES, with a short path and at least one frame\n", argv[0]);
        return 2;
    }
    sprintf(gRoot, "%s/", argv[1]); /* the folder ends in a separator */

    AVSKRegisterDataAccessor("host/elapsed", AVSKDataTypeFloat, 0, NULL, NULL, ReadElapsed, NULL, NULL, NULL, NULL,
                             NULL, NULL, NULL, NULL, NULL, NULL, NULL);
    if (AVSKInitializePlugins(gRoot, &kTable, 0) != AVSK_HOST_INTERFACE || AVSKCountPlugins() < 2) {
        AVSKShutdownPlugins();
        fprintf(stderr, "%s: no plugin was loaded from %sResources/plugins: put one there\n", argv[0], gRoot);
        return 2;
    }
    while (gFrame < gFrames)
        RunFrame();
    AVSKShutdownPlugins();
    return 0;
}
