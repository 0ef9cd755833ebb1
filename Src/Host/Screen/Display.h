// The screen: fonts for measuring texts and, in frames whose picture is wanted,
// the canvas on which the drawing services draw. The canvas is a transparent layer.
// Before a plugin draws with OpenGL, what the layer has goes to OpenGL's screen, so
// that both are composed in the order of the frame.
#ifndef AVSK_HOST_SCREEN_DISPLAY_H
#define AVSK_HOST_SCREEN_DISPLAY_H

#include "Canvas.h"
#include "Font.h"

#include <memory>
#include <span>
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

// A part of the screen's whole width whose colour changes from the lower to the upper edge.
struct Gradient {
    int bottom, top;
    Colour low, high;
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

    // Texture numbers: the simulator's own textures are the first ones, then comes the layer's.
    static constexpr int kOwnTextures = 3;
    static constexpr int kLayerTexture = 4;
    int lastTexture = kLayerTexture; // given so far
    int drawCode = 0;                // of the pass that is drawn; 0 if none is

    // Set before a frame by anyone who needs its picture. The frame resets it. A frame without a picture costs nothing.
    bool wanted = false;
    // The line at the foot of the picture differs in each frame.
    bool hasStatusLine = true;
    // Null except while a frame is drawn whose picture is wanted.
    Canvas *canvas = nullptr;

    // Begins and ends the drawing of a frame.
    void Begin();
    void End();
    // Makes the layer's texture in a new context, which has given its number.
    void MakeLayerTexture() const;
    // Draws the simulator's own part of the pass; the status line is drawn over the instruments.
    void DrawOwnPart(const std::string &status);

    // The picture of the last frame, opaque, without the menu bar; null if nobody wanted it.
    // It is valid until the next frame.
    const Image *Shown() const { return mIsShown ? &mShown : nullptr; }
    // The same with the menu bar over it. It must be shown.
    const Image &ShownWith(const std::vector<ShownItem> &menuBar);

  private:
    // Draws what covers the screen faster than the layer can. False if there is no context.
    bool DrawGradientsByOpenGL(std::span<const Gradient> gradients) const;
    void DrawScene();
    // Draws a sentence on the face of the picture.
    void DrawMessage(Canvas &onto, const std::string &text) const;

    std::unique_ptr<Canvas> mCanvas; // made when the first picture is wanted
    Image mShown;
    Image mWithMenus;
    bool mIsWanted = false;
    bool mIsShown = false;
};

} // namespace host

#endif
