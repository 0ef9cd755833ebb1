// DrawPhases: draws before and after one phase of the frame, and counts. A key
// sniffer switches both off and on: F9.
#include <AVSK/AVSK.h>

#include <array>
#include <cstdio>

namespace {

constexpr int kFont = 1;
constexpr int kPhase = 50;   // the simulator's panel; the windows are drawn between it and the half after
constexpr int kKeyDown = 4;  // flags are the simulator's: 1 shift, 2 control, 4 pressed
constexpr char kKeyF9 = 120; // virtual key codes of F1 to F12 are 112 to 123
constexpr int kLeft = 40;
constexpr int kBottom = 60;

// One registration each, told apart by the refcon.
struct Half {
    const char *text;
    int line; // from below
    int count;
};
Half gBefore{"before phase 50, beneath panel and windows", 1, 0};
Half gAfter{"after phase 50, above them", 0, 0};
bool gShown = false;

int Draw(int /*phase*/, int /*isBefore*/, void *refcon) {
    auto &half = *static_cast<Half *>(refcon);
    std::array<float, 3> colour{1.0F, 1.0F, 1.0F};
    std::array<char, 128> text{};
    int height = 0;
    AVSKGetFontDimensions(kFont, nullptr, &height, nullptr);
    std::snprintf(text.data(), text.size(), "DrawPhases: %d times %s", ++half.count, half.text);
    AVSKDrawString(colour.data(), kLeft, kBottom + half.line * height, text.data(), nullptr, kFont);
    return 1; // before the phase 0 would keep the simulator from drawing its part
}

// A callback that is not registered costs nothing, so hide by unregistering.
void Show(bool shown) {
    for (Half *half : {&gBefore, &gAfter}) {
        const int before = half == &gBefore ? 1 : 0;
        if (shown)
            AVSKRegisterDrawCallback(Draw, kPhase, before, half);
        else
            AVSKUnregisterDrawCallback(Draw, kPhase, before, half);
    }
    gShown = shown;
}

// Sees every key before hot keys and windows do, so it takes one key only and leaves the others alone.
int Sniff(char /*key*/, int flags, char virtualKey, void * /*refcon*/) {
    if (virtualKey != kKeyF9)
        return 1;
    if ((flags & kKeyDown) != 0)
        Show(!gShown);
    return 0; // the release is ours as well
}

} // namespace

int AVPluginStart(char *outName, char *outSignature, char *outDescription) {
    std::snprintf(outName, AVSK_TEXT_SIZE, "DrawPhases");
    std::snprintf(outSignature, AVSK_TEXT_SIZE, "aerivo.samples.drawphases");
    std::snprintf(outDescription, AVSK_TEXT_SIZE, "Draws before and after the panel; F9 switches it.");

    // The feature "AVSK_WANTS_REFLECTIONS" stays off: a text has no business in the mirror of a lake,
    // and the counts are of frames.
    Show(true);
    constexpr int kBeforeWindows = 1;
    AVSKRegisterKeySniffer(Sniff, kBeforeWindows, nullptr);
    return 1;
}

void AVPluginStop(void) {
    std::array<char, AVSK_TEXT_SIZE> line{};
    std::snprintf(line.data(), line.size(), "DrawPhases: drew %d times before and %d times after\n", gBefore.count,
                  gAfter.count);
    AVSKDebugString(line.data());
}

// Nothing to do, but the log mentions each entry point that a plugin does not have.
int AVPluginEnable(void) { return 1; }
void AVPluginDisable(void) {}
void AVPluginReceiveMessage(AVSKPluginID /*sender*/, int /*message*/, void * /*parameter*/) {}
