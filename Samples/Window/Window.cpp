// Window: can be dragged by its top strip, takes the keyboard focus when clicked
// and shows what is typed. The simulator's font determines its size.
#include <AVSK/AVSK.h>

#include <array>
#include <cstdio>
#include <string>

namespace {

constexpr int kFont = 1; // the simulator defines the fonts; this one is monospaced
constexpr int kColumns = 44;
constexpr int kLines = 6;
constexpr int kKeyDown = 4; // the simulator defines the flags: 1 shift, 2 control, 4 pressed
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
int gGrabX = 0; // position of the mouse at the press, relative to the top left corner
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

// A window has screen coordinates with y upward, so lines are placed downward from its top.
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
    // Lines need OpenGL; a row of underscores looks like one.
    AVSKDrawString((gHasFocus ? bright : plain).data(), x, y, std::string(kColumns - 2, '_').data(), nullptr, kFont);
    write("Window", gHasFocus ? bright : plain);
    y -= font.height / 2;
    write("Drag the top strip to move the window.", plain);
    write("Click it, then type. Escape lets go.", plain);
    y -= font.height / 2;
    write("> " + gTyped + (gHasFocus ? "_" : ""), bright);
}

// After a consumed press the drags and the release arrive here too, wherever the mouse is.
int Click(AVSKWindowID window, int x, int y, int status, void * /*refcon*/) {
    const Rect at = Place();
    if (status == AVSKMouseDown) {
        // The library neither raises a clicked window nor gives it the focus.
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

// The window with the focus receives every key, including releases.
void Key(AVSKWindowID /*window*/, char key, int flags, char virtualKey, void * /*refcon*/, int losingFocus) {
    if (losingFocus != 0) {
        gHasFocus = false;
        return;
    }
    if ((flags & kKeyDown) == 0)
        return;
    if (virtualKey == kEscape)
        AVSKTakeKeyboardFocus(nullptr); // calls this function again with losingFocus
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
    gWindow = AVSKCreateWindowEx(&params); // without cursor and wheel function: these two may be null
    return 1;
}

void AVPluginStop(void) { AVSKDestroyWindow(gWindow); }

// These are empty: the log reports every entry point that a plugin lacks.
int AVPluginEnable(void) { return 1; }
void AVPluginDisable(void) {}
void AVPluginReceiveMessage(AVSKPluginID /*sender*/, int /*message*/, void * /*parameter*/) {}
