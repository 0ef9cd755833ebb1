// The screen: fonts for measuring, and in frames that are written to a file a
// canvas behind the drawing slots.
#ifndef AVSK_HOST_SCREEN_DISPLAY_H
#define AVSK_HOST_SCREEN_DISPLAY_H

#include "Canvas.h"
#include "Font.h"

#include <optional>
#include <string>
#include <vector>

namespace host {

// A menu item as it is shown, with the items of the menu that it opens.
struct ShownItem {
    std::string name; // "-" is a separator; an empty one is not shown
    bool enabled = true;
    bool checked = false;
    bool opens = false;
    std::vector<ShownItem> below;
};

class Display {
  public:
    Display(int screenWidth, int screenHeight)
        : width(screenWidth), height(screenHeight), mouseX(screenWidth / 2), mouseY(screenHeight / 2) {}

    const int width;
    const int height;
    int mouseX; // rests in the middle until a session moves it
    int mouseY;
    Fonts fonts;
    std::optional<Canvas> canvas; // only while a frame is drawn that will be written
    int lastTexture = 0;          // numbers handed out so far

    // Begins a frame's drawing; a frame that is not written costs nothing.
    void Begin(bool written);
    // Draws what the simulator itself shows in a pass, with a line of status where that belongs.
    void DrawOwnPart(int drawCode, const std::string &status);
    // Draws the menu bar over everything and writes the picture. Throws std::runtime_error if that fails.
    void Write(const std::vector<ShownItem> &menuBar, const std::string &file);
};

} // namespace host

#endif
