// The faults of services. The host calls each bad service through the library, as
// plugin 0, or reports to the library what does not fit.
#include "BadHost.h"

#include <array>
#include <climits>
#include <cmath>
#include <csignal>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <stdexcept>
#include <thread>

#include <fcntl.h>

namespace {

AVSKHostCallbacks &Table() { return *hostTable; }

// ---- Texts

// Longer than any buffer that a service is promised.
struct Room {
    std::array<char, 512> buffer;
    std::array<char, 64> behind;
};

void GetPrefs() {
    Room room{};
    AVSKGetPrefsPath(room.buffer.data());
}
void GetFolder() {
    Room room{};
    AVSKGetSystemPath(room.buffer.data());
}
void GetModel() {
    Room name{};
    Room path{};
    AVSKGetNthAircraftModel(0, name.buffer.data(), path.buffer.data());
}
void WriteNothing() {
    Table().getPrefsPath = [](char *) {};
}
void WriteNoEnd() {
    Table().getPrefsPath = [](char *out) { std::memset(out, 'a', 512); };
}
void WriteTooMuch() {
    Table().getPrefsPath = [](char *out) { std::strcpy(static_cast<char *>(std::memset(out, 'a', 512)) + 512, "b"); };
}
void WriteTooManyNumbers() {
    Table().generateTextureNumbers = [](int *textures, int) { *textures = 1; };
    std::array<int, 2> textures{};
    AVSKGenerateTextureNumbers(textures.data(), -1);
}
void WriteLatin() {
    Table().getPrefsPath = [](char *out) { std::strcpy(out, "/H\xF6he"); };
}
void LoseSeparator() {
    Table().getSystemPath = [](char *out) { std::strcpy(out, "/nowhere"); };
}
void Move() {
    Table().getSystemPath = [](char *out) { std::strcpy(out, "/elsewhere/"); };
}
void ExchangeTexts() {
    Table().getAircraftModel = [](int, char *path, char *name) {
        std::strcpy(name, "/planes/a.acf");
        std::strcpy(path, "a.acf");
    };
}

// ---- Measures and numbers

void GetScreen() {
    int width = 0;
    int height = 0;
    AVSKGetScreenSize(&width, &height);
}
void GetMouse() {
    int x = 0;
    int y = 0;
    AVSKGetMouseLocation(&x, &y);
}
void ClickFarAway() { AVSKMouseClickHook(INT_MIN, 0, 1); }
void Measure() {
    for (int count = 1; count < 5; ++count)
        AVSKMeasureString(0, "Text", count);
}
void GetFont() {
    int width = 0;
    int height = 0;
    int digitsOnly = 0;
    AVSKGetFontDimensions(0, &width, &height, &digitsOnly);
}
void ReadCamera() {
    AVSKCameraPosition position{};
    AVSKReadCameraPosition(&position);
}
// Inside one call of the host: it may move the origin between two.
float Convert(float /*sinceCall*/, float /*sinceLoop*/, int /*counter*/, void * /*refcon*/) {
    double a = 0;
    double b = 0;
    double c = 0;
    AVSKLocalToWorld(100, 200, 300, &a, &b, &c);
    AVSKWorldToLocal(a, b, c, &a, &b, &c);
    return 0;
}
void ConvertBack() { AVSKRegisterFlightLoopCallback(Convert, -1, nullptr); }
void GetTextures() {
    std::array<int, 4> textures{};
    AVSKGenerateTextureNumbers(textures.data(), 4);
}
void CountPlanes() {
    int total = 0;
    int active = 0;
    AVSKPluginID controller = 0;
    AVSKCountAircraft(&total, &active, &controller);
}
void AskEntry() {
    AVSKCountFMSEntries();
    AVSKGetDisplayedFMSEntry();
}
void LoseScreen() {
    Table().getScreenSize = [](int *width, int *height) { *width = *height = 0; };
}
void LoseMouse() {
    Table().getMouseLocation = [](int *x, int *y, int) { *x = *y = INT_MIN; };
}
void MeasureNegative() {
    Table().measureString = [](int, const char *, int) { return -1.0F; };
}
void MeasureBackwards() {
    Table().measureString = [](int, const char *, int count) { return 100.0F - 8 * static_cast<float>(count); };
}
void ConfuseFlag() {
    Table().getFontDimensions = [](int, int *width, int *height, int *digitsOnly) {
        *width = *height = *digitsOnly = 8;
    };
}
void LoseCamera() {
    Table().readCameraPosition = [](float *a, float *b, float *c, float *d, float *e, float *f, float *g) {
        *a = *b = *c = *d = *e = *f = *g = NAN;
    };
}
void ExchangeOutputs() {
    Table().worldToLocal = [](double a, double b, double c, double *x, double *y, double *z) {
        *x = b, *y = a, *z = c;
    };
}
void RepeatTexture() {
    Table().generateTextureNumbers = [](int *textures, int count) {
        for (int i = 0; i < count; ++i)
            textures[i] = 5;
    };
}
void CountNegative() {
    Table().countAircraft = [] { return -1; };
}
void LosePlan() {
    Table().countFMSEntries = [] { return 2; };
    Table().getDisplayedFMSEntry = [] { return 2; };
}

// ---- Handles

AVSKMenuID MakeMenu() {
    AVSKMenuID menu = AVSKCreateMenu("Menu", nullptr, 0, nullptr, nullptr);
    AVSKAppendMenuItem(menu, "One", nullptr, 1);
    AVSKAppendMenuSeparator(menu);
    return menu;
}
void MakeItems() { MakeMenu(); }
int lastItem;
void PickSeparator() {
    Table().appendMenuItem = [](void *, int, const char *, int) { return ++lastItem + 1000; };
    MakeMenu();
    AVSKMenuHook(lastItem + 1000);
}
void PickRemoved() {
    AVSKMenuID menu = MakeMenu();
    Table().appendMenuItem = [](void *, int, const char *, int) { return 2000; };
    AVSKAppendMenuItem(menu, "Two", nullptr, 1);
    AVSKRemoveMenuItem(menu, 2);
    AVSKMenuHook(2000);
}
void GiveNoProbe() {
    Table().createProbe = []() -> void * { return nullptr; };
    AVSKCreateProbe(AVSK_PROBE_Y);
}
void RepeatMenu() {
    Table().createMenu = [](void *, int, const char *) -> void * { return &lastItem; };
}
void RepeatItem() {
    Table().appendMenuItem = [](void *, int, const char *, int) { return 7; };
}
void FindTwice() {
    AVSKCreateCommand("bad/one", "One");
    AVSKCreateCommand("bad/one", "One");
}
void FindTwo() {
    AVSKCreateCommand("bad/one", "One");
    AVSKCreateCommand("bad/two", "Two");
}
void ChangeCommand() {
    Table().findCommand = [](const char *, const char *, int) -> void * {
        static std::array<char, 64> commands;
        static std::size_t last;
        return &commands[last++];
    };
}
void LoseSymbol() {
    Table().findSymbol = [](const char *) -> void * { return reinterpret_cast<void *>(std::uintptr_t{16}); };
    AVSKFindSymbol("symbol");
}

// ---- Commands and objects

void *Command() { return AVSKCreateCommand("bad/one", "One"); }
void EndUnbegun() {
    AVSKCommandHook(Command(), 0, 1, 1);
    AVSKCommandHook(Command(), 0, 1, 0);
}
void ReportOnce() {
    Table().beginCommand = [](void *command) { AVSKCommandHook(command, 1, 0, 1); };
    AVSKCommandBegin(Command());
    AVSKCommandEnd(Command());
}
void ReportNothing() {
    Table().beginCommand = [](void *) {};
    AVSKCommandBegin(Command());
    AVSKCommandEnd(Command());
}
// A handler stops the command, and the host reports its action all the same.
void IgnoreStop() {
    static constexpr auto kStop = [](AVSKCommandRef, int, void *) { return 0; };
    Table().beginCommand = [](void *command) {
        AVSKCommandHook(command, 1, 0, 1);
        AVSKCommandHook(command, 1, 0, 0);
    };
    AVSKRegisterCommandHandler(Command(), kStop, 1, nullptr);
    AVSKCommandBegin(Command());
    AVSKCommandEnd(Command());
}
using Completion = void (*)(void *, void *);
void LoadObject() {
    AVSKLoadObjectAsync(
        "object", [](AVSKObjectRef, void *) {}, nullptr);
}
void CompleteAnother() {
    Table().loadObjectAsync = [](const char *, Completion completion, void *argument) {
        completion(nullptr, static_cast<char *>(argument) + 100);
        completion(nullptr, argument);
    };
}
void CompleteTwice() {
    Table().loadObjectAsync = [](const char *, Completion completion, void *argument) {
        completion(nullptr, argument);
        completion(nullptr, argument);
    };
}
void CompleteNever() {
    Table().loadObjectAsync = [](const char *, Completion, void *) {};
}
void CompleteOnThread() {
    Table().loadObjectAsync = [](const char *, Completion completion, void *argument) {
        std::thread(completion, nullptr, argument).join();
    };
}
void RunLong() {
    constexpr int kLong = 700;
    for (RunFrame(); hostFrame < kLong; ++hostFrame)
        RunFrame();
}
void Lookup() {
    AVSKLookupObjects(
        "objects", 0, 0, [](const char *, void *) {}, nullptr);
}
void KeepEnumerator() {
    static void (*kept)(const char *, void *);
    Table().lookupObjects = [](const char *, float, float, void (*found)(const char *, void *), void *) {
        kept = found;
        return 0;
    };
    Lookup();
    kept("object", nullptr);
}
void Miscount() {
    Table().lookupObjects = [](const char *, float, float, void (*found)(const char *, void *), void *reference) {
        found("object", reference);
        return 2;
    };
}

// ---- Aircraft, and what a service leaves behind

const char *modelName = "a.acf";
void ReplaceAircraft() {
    Table().getAircraftModel = [](int, char *path, char *name) {
        std::sprintf(path, "/planes/%s", modelName);
        std::strcpy(name, modelName);
    };
    AVSKEventHook(AVSKHostEventPlaneLoaded, 0, 0, 0);
    modelName = "b.acf";
    GetModel();
}
void Speak() { AVSKSpeakString("text"); }
void SpeakOften() {
    for (int i = 0; i < 5; ++i)
        Speak();
}
void ThrowFromService() {
    Table().speakString = [](const char *) { throw std::runtime_error("fault"); };
    try {
        Speak();
    } catch (const std::runtime_error &) { // as intended
    }
}
void ChangeRounding() {
    Table().speakString = [](const char *) {
        const std::uint16_t control = 0x0F7F;
        asm volatile("fldcw %0" : : "m"(control));
    };
}
void BlockSignal() {
    Table().speakString = [](const char *) {
        sigset_t signals;
        sigemptyset(&signals);
        sigaddset(&signals, SIGUSR1);
        sigprocmask(SIG_BLOCK, &signals, nullptr);
    };
}
void LeaveFile() {
    Table().speakString = [](const char *) { static_cast<void>(open("/dev/null", O_RDONLY)); };
}

} // namespace

const Fault kServiceFaults[] = {
    {.rule = "host-text-unfilled", .before = WriteNothing, .started = GetPrefs},
    {.rule = "host-text-unterminated", .before = WriteNoEnd, .started = GetPrefs},
    {.rule = "host-overrun", .before = WriteTooMuch, .started = GetPrefs},
    {.rule = "host-overrun:2", .started = WriteTooManyNumbers},
    {.rule = "host-text-encoding", .before = WriteLatin, .started = GetPrefs},
    {.rule = "host-folder-separator", .before = LoseSeparator, .started = GetFolder},
    {.rule = "host-folder-differs", .before = Move, .started = GetFolder},
    {.rule = "host-model-path", .before = ExchangeTexts, .started = GetModel},
    {.rule = "host-screen-size", .before = LoseScreen, .started = GetScreen},
    {.rule = "host-mouse-place", .before = LoseMouse, .started = GetMouse},
    {.rule = "host-mouse-place:2", .started = ClickFarAway},
    {.rule = "host-width", .before = MeasureNegative, .started = Measure},
    {.rule = "host-width-contradicts", .before = MeasureBackwards, .started = Measure},
    {.rule = "host-font", .before = ConfuseFlag, .started = GetFont},
    {.rule = "host-not-finite", .before = LoseCamera, .started = ReadCamera},
    {.rule = "host-conversion", .before = ExchangeOutputs, .started = ConvertBack},
    {.rule = "host-textures", .before = RepeatTexture, .started = GetTextures},
    {.rule = "host-count", .before = CountNegative, .started = CountPlanes},
    {.rule = "host-entry-index", .before = LosePlan, .started = AskEntry},
    {.rule = "host-handle-null", .started = GiveNoProbe},
    {.rule = "host-menu-twice", .before = RepeatMenu, .started = MakeItems},
    {.rule = "host-item-twice", .before = RepeatItem, .started = MakeItems},
    {.rule = "host-item-picked", .started = PickSeparator},
    {.rule = "host-item-picked:2", .started = PickRemoved},
    {.rule = "host-command-changed", .before = ChangeCommand, .started = FindTwice},
    {.rule = "host-command-shared", .started = FindTwo},
    {.rule = "host-symbol", .started = LoseSymbol},
    {.rule = "host-command-unpaired", .started = EndUnbegun},
    {.rule = "host-command-after", .started = ReportOnce},
    {.rule = "host-command-after:2", .started = IgnoreStop},
    {.rule = "host-command-silent", .started = ReportNothing},
    {.rule = "host-load-unknown", .before = CompleteAnother, .started = LoadObject},
    {.rule = "host-load-twice", .before = CompleteTwice, .started = LoadObject},
    {.rule = "host-load-never", .before = CompleteNever, .started = LoadObject, .frame = RunLong},
    {.rule = "host-hook-thread:2", .before = CompleteOnThread, .started = LoadObject},
    {.rule = "host-enumerator-late", .started = KeepEnumerator},
    {.rule = "host-enumerator-count", .before = Miscount, .started = Lookup},
    {.rule = "host-aircraft-replaced", .started = ReplaceAircraft},
    {.rule = "host-throws", .started = ThrowFromService},
    {.rule = "host-state-processor", .before = ChangeRounding, .started = Speak},
    {.rule = "host-state-signals", .before = BlockSignal, .started = Speak},
    {.rule = "host-descriptor-left", .before = LeaveFile, .started = SpeakOften},
    {},
};
