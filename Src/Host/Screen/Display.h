// The screen: fonts for measuring texts and, in frames whose picture is wanted,
// the canvas on which the drawing services draw.
#ifndef AVSK_HOST_SCREEN_DISPLAY_H
#define AVSK_HOST_SCREEN_DISPLAY_H

#include "Canvas.h"
#include "Font.h"

#include <memory>
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
    int lastTexture = 0; // numbers handed out so far

    // Set before a frame by anyone who needs its picture. The frame resets it. A frame without a picture costs nothing.
    bool wanted = false;
    // The line at the foot of the picture differs in each frame.
    bool hasStatusLine = true;
    // Null except while a frame is drawn whose picture is wanted.
    Canvas *canvas = nullptr;

    // Begins and ends the drawing of a frame.
    void Begin();
    void End();
    // Draws the simulator's own part of a pass; the status line is drawn over the instruments.
    void DrawOwnPart(int drawCode, const std::string &status);

    // The picture of the last frame, opaque, without the menu bar; null if nobody wanted it.
    // It is valid until the next frame.
    const Image *Shown() const { return mIsShown ? &mShown : nullptr; }
    // The same with the menu bar over it. It must be shown.
    Image ShownWith(const std::vector<ShownItem> &menuBar) const;

  private:
    std::unique_ptr<Canvas> mCanvas; // made when the first picture is wanted
    Image mShown;
    bool mIsShown = false;
};

} // namespace host

#endif
