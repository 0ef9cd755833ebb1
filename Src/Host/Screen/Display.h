// The screen: fonts for measuring texts and, in frames that are written to a
// file, the canvas on which the drawing services draw.
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
    int mouseX; // in the middle until a session moves it
    int mouseY;
    Fonts fonts;
    std::optional<Canvas> canvas; // exists while a frame is drawn that will be written
    int lastTexture = 0;          // numbers handed out so far

    // Begins the drawing of a frame. A frame that is not written has no canvas and costs nothing.
    void Begin(bool written);
    // Draws the simulator's own part of a pass; the status line is drawn over the instruments.
    void DrawOwnPart(int drawCode, const std::string &status);
    // Draws the menu bar over everything and writes the picture. Throws std::runtime_error if that fails.
    void Write(const std::vector<ShownItem> &menuBar, const std::string &file);
};

} // namespace host

#endif
