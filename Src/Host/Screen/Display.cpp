// The layer that the host draws on, and OpenGL's screen below it; see Display.h.
// Owns the layer's address for the calls of plugins that draw.
#include "Display.h"

#include "OpenGL/Context.h"

#include <algorithm>
#include <utility>

namespace host {
namespace {

Canvas *gLayer = nullptr; // null while nobody looks
bool gIsScreenDrawn = false;

void DrawLayer(const Canvas &layer) {
    const opengl::Api &gl = opengl::Gl();
    const Image &image = layer.Pixels();
    gl.BindTexture(GL_TEXTURE_2D, Display::kLayerTexture);
    gl.PixelStorei(GL_UNPACK_ROW_LENGTH, image.width);
    for (const PixelRectangle &area : layer.Touched())
        gl.TexSubImage2D(GL_TEXTURE_2D, 0, area.left, area.top, area.right - area.left, area.bottom - area.top, GL_RGBA,
                         GL_UNSIGNED_BYTE, image.Row(area.top) + area.left);
    gl.Enable(GL_TEXTURE_2D);
    // The texture's first row is the top row.
    const auto corner = [&](int x, int row) {
        gl.TexCoord2f(static_cast<float>(x) / static_cast<float>(image.width),
                      static_cast<float>(row) / static_cast<float>(image.height));
        gl.Vertex2f(static_cast<float>(x), static_cast<float>(image.height - row));
    };
    gl.Begin(GL_QUADS);
    for (const PixelRectangle &area : layer.Touched()) {
        corner(area.left, area.bottom);
        corner(area.right, area.bottom);
        corner(area.right, area.top);
        corner(area.left, area.top);
    }
    gl.End();
}

// Before a plugin draws, what the host has drawn so far goes below it.
void Flush() {
    gIsScreenDrawn = true;
    if (gLayer->Touched().empty())
        return;
    const opengl::OwnState state;
    if (!state.IsSet())
        return; // the layer stays above what the plugin draws now
    DrawLayer(*gLayer);
    gLayer->Clear();
}

void PutOver(const Canvas &layer, Image &screen) {
    for (const PixelRectangle &area : layer.Touched()) {
        for (int y = area.top; y < area.bottom; ++y) {
            const std::uint32_t *const above = layer.Pixels().Row(y);
            std::uint32_t *const row = screen.Row(y);
            std::transform(above + area.left, above + area.right, row + area.left, row + area.left, Over);
        }
    }
}

// From one colour at the lower edge to another at the upper one, over the whole width.
void DrawGradient(int width, const Gradient &gradient) {
    const opengl::Api &gl = opengl::Gl();
    const auto edge = [&](int y, const Colour &colour, int from, int to) {
        gl.Color3f(colour.red, colour.green, colour.blue);
        gl.Vertex2f(static_cast<float>(from), static_cast<float>(y));
        gl.Vertex2f(static_cast<float>(to), static_cast<float>(y));
    };
    gl.Begin(GL_QUADS);
    edge(gradient.bottom, gradient.low, 0, width);
    edge(gradient.top, gradient.high, width, 0);
    gl.End();
}

} // namespace

bool Display::DrawGradientsByOpenGL(std::span<const Gradient> gradients) const {
    if (!opengl::HasContext())
        return false;
    Flush();
    const opengl::OwnState state;
    if (!state.IsSet() || !canvas->Touched().empty())
        return false;
    for (const Gradient &gradient : gradients)
        DrawGradient(width, gradient);
    return true;
}

void Display::MakeLayerTexture() const {
    const opengl::Api &gl = opengl::Gl();
    gl.BindTexture(GL_TEXTURE_2D, kLayerTexture);
    gl.TexImage2D(GL_TEXTURE_2D, 0, GL_RGBA8, width, height, 0, GL_RGBA, GL_UNSIGNED_BYTE, nullptr);
    gl.TexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, GL_NEAREST);
    gl.TexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MAG_FILTER, GL_NEAREST);
    gl.BindTexture(GL_TEXTURE_2D, 0);
}

void Display::Begin() {
    mIsShown = false;
    mIsWanted = std::exchange(wanted, false);
    opengl::BeginFrame(mIsWanted);
    gIsScreenDrawn = false;
    if (!mIsWanted && !opengl::IsScreenRead())
        return;
    if (!mCanvas) {
        mCanvas = std::make_unique<Canvas>(Image(width, height));
        mShown = Image(width, height);
    }
    mCanvas->Clear();
    canvas = mCanvas.get();
    gLayer = canvas;
    opengl::BeforeDrawing(Flush);
}

void Display::End() {
    drawCode = 0;
    opengl::BeforeDrawing(nullptr);
    gLayer = nullptr;
    if (!std::exchange(canvas, nullptr) || !mIsWanted)
        return;
    if (opengl::IsUsed() && !opengl::Missing().empty())
        DrawMessage(*mCanvas, opengl::Missing());
    const bool isComposed = gIsScreenDrawn && opengl::HasContext();
    const std::uint32_t *const below = isComposed ? opengl::ReadScreen() : mCanvas->Pixels().pixels.data();
    std::transform(below, below + mShown.pixels.size(), mShown.pixels.begin(),
                   [](std::uint32_t pixel) { return pixel | kOpaque; });
    if (isComposed)
        PutOver(*mCanvas, mShown);
    mIsShown = true;
}

} // namespace host
