// A fixed scene for the picture test: two overlapping windows with texts and
// numbers, a box that a draw callback draws beneath them, and a menu with check marks.
#include "AVSK/AVSK.h"
#include "AVSK/AVSKDisplay.h"
#include "AVSK/AVSKGraphics.h"

#include <cstring>
#include <initializer_list>

namespace {

float kWhite[] = {1, 1, 1};
float kAmber[] = {1, 0.75F, 0};

void DrawText(const char *text, float *colour, int x, int y, int font) {
    char copy[64];
    std::strcpy(copy, text);
    AVSKDrawString(colour, x, y, copy, nullptr, font);
}

void DrawWindow(AVSKWindowID window, void *title) {
    int left = 0;
    int top = 0;
    int right = 0;
    int bottom = 0;
    AVSKGetWindowGeometry(window, &left, &top, &right, &bottom);
    AVSKDrawTranslucentDarkBox(left, top, right, bottom);
    DrawText(static_cast<const char *>(title), kWhite, left + 10, top - 20, 0);
    AVSKDrawNumber(kAmber, left + 10, top - 45, -123.456, 5, 2, 1, 1);
}

void IgnoreKey(AVSKWindowID /*window*/, char /*key*/, int /*flags*/, char /*virtualKey*/, void * /*refcon*/,
               int /*losingFocus*/) {}

int IgnoreClick(AVSKWindowID /*window*/, int /*x*/, int /*y*/, int /*status*/, void * /*refcon*/) { return 0; }

int DrawBeneath(int /*phase*/, int /*isBefore*/, void * /*refcon*/) {
    AVSKDrawTranslucentDarkBox(600, 300, 900, 250);
    DrawText("beneath the windows: \xC3\xA4\xC3\xB6\xE2\x82\xAC", kAmber, 610, 270, 2);
    return 1;
}

} // namespace

int AVPluginStart(char *outName, char *outSignature, char *outDescription) {
    std::strcpy(outName, "Scene");
    std::strcpy(outSignature, "test.scene");
    std::strcpy(outDescription, "The same picture every time");
    static char back[] = "back";
    static char front[] = "in front";
    AVSKCreateWindow(100, 500, 400, 300, 1, DrawWindow, IgnoreKey, IgnoreClick, back);
    AVSKCreateWindow(300, 400, 650, 200, 1, DrawWindow, IgnoreKey, IgnoreClick, front);
    AVSKRegisterDrawCallback(DrawBeneath, 50, 1, nullptr);
    const AVSKMenuID menu = AVSKCreateMenu("Scene", nullptr, 0, nullptr, nullptr);
    for (const int check : {AVSKMenuNoCheck, AVSKMenuUnchecked, AVSKMenuChecked})
        AVSKCheckMenuItem(menu, AVSKAppendMenuItem(menu, "An item", nullptr, 0), check);
    AVSKAppendMenuSeparator(menu);
    AVSKEnableMenuItem(menu, AVSKAppendMenuItem(menu, "Greyed", nullptr, 0), 0);
    return 1;
}

void AVPluginStop() {}
int AVPluginEnable() { return 1; }
void AVPluginDisable() {}
void AVPluginReceiveMessage(AVSKPluginID /*sender*/, int /*message*/, void * /*parameter*/) {}
