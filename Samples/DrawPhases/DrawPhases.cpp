// DrawPhases: draws before and after one phase of the frame and counts the
// calls. A key sniffer for F9 turns both off and on.
#include <AVSK/AVSK.h>

#include <array>
#include <cstdio>

namespace {

constexpr int kFont = 1;
constexpr int kPhase = 50;   // the simulator's panel; windows are drawn between the two halves of this phase
constexpr int kKeyDown = 4;  // the simulator defines the flags: 1 shift, 2 control, 4 pressed
constexpr char kKeyF9 = 120; // virtual key codes of F1 to F12 are 112 to 123
constexpr int kLeft = 40;
constexpr int kBottom = 60;

// One per registration; the refcon tells them apart.
struct Half {
    const char *text;
    int line; // counted from the bottom
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
    return 1; // before the phase, 0 would suppress the simulator's own drawing
}

// Only a registered callback costs time, so unregister it to hide the drawing.
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

// Receives every key before hot keys and windows, so it consumes one key and passes the others on.
int Sniff(char /*key*/, int flags, char virtualKey, void * /*refcon*/) {
    if (virtualKey != kKeyF9)
        return 1;
    if ((flags & kKeyDown) != 0)
        Show(!gShown);
    return 0; // consume the release as well
}

} // namespace

int AVPluginStart(char *outName, char *outSignature, char *outDescription) {
    std::snprintf(outName, AVSK_TEXT_SIZE, "DrawPhases");
    std::snprintf(outSignature, AVSK_TEXT_SIZE, "aerivo.samples.drawphases");
    std::snprintf(outDescription, AVSK_TEXT_SIZE, "Draws before and after the panel; F9 switches it.");

    // The feature "AVSK_WANTS_REFLECTIONS" stays off: the text must not appear in reflections, and the
    // callbacks count frames.
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

// These are empty: the log reports every entry point that a plugin lacks.
int AVPluginEnable(void) { return 1; }
void AVPluginDisable(void) {}
void AVPluginReceiveMessage(AVSKPluginID /*sender*/, int /*message*/, void * /*parameter*/) {}
