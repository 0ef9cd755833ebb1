// Window: is dragged by its top strip, takes the keyboard focus when it is
// clicked and echoes what is typed. Its size follows from the simulator's font.
#include <AVSK/AVSK.h>

#include <array>
#include <cstdio>
#include <string>

namespace {

constexpr int kFont = 1; // fonts are the simulator's; this is a monospaced one
constexpr int kColumns = 44;
constexpr int kLines = 6;
constexpr int kKeyDown = 4; // flags are the simulator's too: 1 shift, 2 control, 4 pressed
constexpr char kEscape = 27;
constexpr char kBackspace = 8;

struct CharSize {
    int width;
    int height;
};

struct Rect {
    int left, top, right, bottom;
};

AVSKWindowID gWindow = nullptr;
bool gHasFocus = false;
bool gDragged = false;
int gGrabX = 0; // where the mouse holds the window, from its left top corner
int gGrabY = 0;
std::string gTyped;

CharSize FontSize() {
    CharSize size{};
    AVSKGetFontDimensions(kFont, &size.width, &size.height, nullptr);
    return size;
}

Rect Place() {
    Rect at{};
    AVSKGetWindowGeometry(gWindow, &at.left, &at.top, &at.right, &at.bottom);
    return at;
}

// The coordinates of a window are the screen's, and y points upward: lines go down from the top.
void Draw(AVSKWindowID /*window*/, void * /*refcon*/) {
    const Rect at = Place();
    const CharSize font = FontSize();
    std::array<float, 3> bright{1.0F, 0.85F, 0.3F};
    std::array<float, 3> plain{0.85F, 0.85F, 0.85F};

    const int x = at.left + font.width;
    int y = at.top - font.height;
    const auto write = [&](std::string line, std::array<float, 3> &colour) {
        AVSKDrawString(colour.data(), x, y, line.data(), nullptr, kFont);
        y -= font.height;
    };
    AVSKDrawTranslucentDarkBox(at.left, at.top, at.right, at.bottom);
    // No line can be drawn without OpenGL, but underscores join to one.
    AVSKDrawString((gHasFocus ? bright : plain).data(), x, y, std::string(kColumns - 2, '_').data(), nullptr, kFont);
    write("Window", gHasFocus ? bright : plain);
    y -= font.height / 2;
    write("Drag the top strip to move the window.", plain);
    write("Click it, then type. Escape lets go.", plain);
    y -= font.height / 2;
    write("> " + gTyped + (gHasFocus ? "_" : ""), bright);
}

// A press that is taken has drags and the release come here too, wherever the mouse goes.
int Click(AVSKWindowID window, int x, int y, int status, void * /*refcon*/) {
    const Rect at = Place();
    if (status == AVSKMouseDown) {
        // A click alone neither raises a window nor gives it the focus.
        AVSKBringWindowToFront(window);
        AVSKTakeKeyboardFocus(window);
        gHasFocus = true;
        gDragged = y >= at.top - FontSize().height - 4;
        gGrabX = x - at.left;
        gGrabY = y - at.top;
    } else if (status == AVSKMouseDrag && gDragged) {
        const int left = x - gGrabX;
        const int top = y - gGrabY;
        AVSKSetWindowGeometry(window, left, top, left + at.right - at.left, top + at.bottom - at.top);
    } else if (status == AVSKMouseUp) {
        gDragged = false;
    }
    return 1;
}

// The focus window has every key to itself, releases included.
void Key(AVSKWindowID /*window*/, char key, int flags, char virtualKey, void * /*refcon*/, int losingFocus) {
    if (losingFocus != 0) {
        gHasFocus = false;
        return;
    }
    if ((flags & kKeyDown) == 0)
        return;
    if (virtualKey == kEscape)
        AVSKTakeKeyboardFocus(nullptr); // comes back in here with losingFocus
    else if (virtualKey == kBackspace && !gTyped.empty())
        gTyped.pop_back();
    else if (key >= ' ' && key <= '~' && gTyped.size() < kColumns - 6)
        gTyped += key;
}

} // namespace

int AVPluginStart(char *outName, char *outSignature, char *outDescription) {
    std::snprintf(outName, AVSK_TEXT_SIZE, "Window");
    std::snprintf(outSignature, AVSK_TEXT_SIZE, "aerivo.samples.window");
    std::snprintf(outDescription, AVSK_TEXT_SIZE, "A window to drag and to type in.");

    const CharSize font = FontSize();
    constexpr int kLeft = 40;
    constexpr int kTop = 500;
    AVSKCreateWindowParams params{};
    params.structSize = sizeof params;
    params.left = kLeft;
    params.top = kTop;
    params.right = kLeft + kColumns * font.width;
    params.bottom = kTop - kLines * font.height;
    params.visible = 1;
    params.drawFunc = Draw;
    params.mouseClickFunc = Click;
    params.keyFunc = Key;
    gWindow = AVSKCreateWindowEx(&params); // no cursor and no wheel function: those two may be null
    return 1;
}

void AVPluginStop(void) { AVSKDestroyWindow(gWindow); }

// Nothing to do, but the log mentions each entry point that a plugin does not have.
int AVPluginEnable(void) { return 1; }
void AVPluginDisable(void) {}
void AVPluginReceiveMessage(AVSKPluginID /*sender*/, int /*message*/, void * /*parameter*/) {}
