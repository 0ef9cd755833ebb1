// What the simulator itself shows in a picture: sky and ground, a status line,
// and over everything the menu bar with its first menu open. Called by
// Simulator.cpp during the frame.
#include "Display.h"

#include <algorithm>
#include <array>
#include <string>
#include <utility>
#include <vector>

namespace host {
namespace {

constexpr int kProportional = 0;
constexpr int kMonospace = 1;

constexpr int kTerrainPass = 2;     // the simulator draws the scenery
constexpr int kInstrumentPass = 19; // the simulator draws the instruments, below the windows

constexpr Colour kWhite{1, 1, 1};

Colour Between(Colour from, Colour to, float share) {
    return {from.red + (to.red - from.red) * share, from.green + (to.green - from.green) * share,
            from.blue + (to.blue - from.blue) * share};
}

void DrawGradient(Canvas &canvas, int width, const Gradient &gradient) {
    for (int y = gradient.bottom; y < gradient.top; ++y) {
        const float share =
            static_cast<float>(y - gradient.bottom) / static_cast<float>(gradient.top - gradient.bottom);
        canvas.Fill(0, y + 1, width, y, Between(gradient.low, gradient.high, share));
    }
}

// The ground below and the sky.
std::array<Gradient, 2> Scene(int height) {
    constexpr Colour kZenith{0.16F, 0.36F, 0.66F};
    constexpr Colour kHaze{0.74F, 0.84F, 0.92F};
    constexpr Colour kFar{0.52F, 0.58F, 0.44F};
    constexpr Colour kNear{0.22F, 0.33F, 0.16F};
    const int horizon = height * 2 / 5;
    return {Gradient{0, horizon, kNear, kFar}, Gradient{horizon, height, kHaze, kZenith}};
}

void DrawStatus(Canvas &canvas, const Font &font, int width, const std::string &status) {
    constexpr int kMargin = 8;
    canvas.Fill(0, font.Height() + kMargin, width, 0, {0, 0, 0}, 0.45F);
    canvas.Text(font, kMargin, kMargin / 2 + font.Height() - font.Ascent(), status, kWhite);
}

// Draws the menus with every submenu open: each stands beside the item that
// opens it, or below the submenu before it.
class MenuPainter {
  public:
    MenuPainter(Canvas &canvas, const Font &font, const Display &display)
        : mCanvas(canvas), mFont(font), mWidth(display.width), mHeight(display.height) {}

    void Bar(const std::vector<ShownItem> &bar) {
        const int top = mHeight;
        mCanvas.Fill(0, top, mWidth, top - kRow, kPanel);
        int x = kPad;
        for (std::size_t i = 0; i < bar.size(); ++i) {
            const int width = mFont.Width(bar[i].name) + 2 * kPad;
            if (i == 0) {
                mCanvas.Fill(x, top, x + width, top - kRow, kOpened);
                Panel(bar[i].below, x, top - kRow);
            }
            mCanvas.Text(mFont, x + kPad, Baseline(top), bar[i].name, i == 0 ? kWhite : kText);
            x += width;
        }
    }

  private:
    static constexpr int kRow = 22;
    static constexpr int kSeparatorRow = 9;
    static constexpr int kPad = 10;
    static constexpr int kMarkRoom = 18;
    static constexpr int kArrowRoom = 22;
    static constexpr int kGap = 6; // between submenus
    static constexpr Colour kPanel{0.93F, 0.93F, 0.92F};
    static constexpr Colour kBorder{0.45F, 0.45F, 0.45F};
    static constexpr Colour kText{0.08F, 0.08F, 0.08F};
    static constexpr Colour kGreyed{0.62F, 0.62F, 0.62F};
    static constexpr Colour kOpened{0.20F, 0.40F, 0.70F};

    Canvas &mCanvas;
    const Font &mFont;
    int mWidth;
    int mHeight;

    static bool Separator(const ShownItem &item) { return item.name == "-"; }

    static int RowOf(const ShownItem &item) {
        if (item.name.empty())
            return 0;
        return Separator(item) ? kSeparatorRow : kRow;
    }

    int Baseline(int top) const { return top - (kRow - mFont.Height()) / 2 - mFont.Ascent(); }

    // Draws a menu and its submenus; returns the lowest y that they reach.
    int Panel(const std::vector<ShownItem> &items, int left, int top) {
        int width = 0;
        int height = 0;
        for (const ShownItem &item : items) {
            width = std::max(width, mFont.Width(item.name));
            height += RowOf(item);
        }
        if (height == 0)
            return top;
        const int right = left + kMarkRoom + width + kArrowRoom;
        const int bottom = top - height;
        mCanvas.Fill(left - 1, top + 1, right + 1, bottom - 1, kBorder);
        mCanvas.Fill(left, top, right, bottom, kPanel);

        int y = top;
        int beside = top; // where the next submenu can begin
        int lowest = bottom;
        for (std::size_t i = 0; i < items.size(); ++i) {
            const ShownItem &item = items[i];
            if (Separator(item))
                mCanvas.Fill(left + 2, y - kSeparatorRow / 2, right - 2, y - kSeparatorRow / 2 - 1, kBorder);
            else if (!item.name.empty())
                Item(item, left, right, y);
            if (item.opens && !item.name.empty()) {
                beside = Panel(item.below, right + 2, std::min(y, beside));
                lowest = std::min(lowest, beside);
                beside -= kGap;
            }
            y -= RowOf(item);
        }
        return lowest;
    }

    void Item(const ShownItem &item, int left, int right, int top) {
        const Colour colour = item.opens ? kWhite : item.enabled ? kText : kGreyed;
        if (item.opens)
            mCanvas.Fill(left, top, right, top - kRow, item.enabled ? kOpened : kGreyed);
        if (item.checked)
            mCanvas.Text(mFont, left + 4, Baseline(top), "\u2713", colour);
        mCanvas.Text(mFont, left + kMarkRoom, Baseline(top), item.name, colour);
        if (item.opens)
            mCanvas.Text(mFont, right - kArrowRoom / 2 - 4, Baseline(top), "\u25B8", colour);
    }
};

} // namespace

void Display::DrawOwnPart(const std::string &status) {
    if (!canvas)
        return;
    if (drawCode == kTerrainPass)
        DrawScene();
    else if (drawCode == kInstrumentPass && hasStatusLine)
        DrawStatus(*canvas, fonts[kMonospace], width, status);
}

void Display::DrawScene() {
    const std::array<Gradient, 2> scene = Scene(height);
    if (DrawGradientsByOpenGL(scene))
        return;
    for (const Gradient &gradient : scene)
        DrawGradient(*canvas, width, gradient);
}

void Display::DrawMessage(Canvas &onto, const std::string &text) const {
    constexpr int kMargin = 8;
    constexpr Colour kAmber{1, 0.75F, 0};
    const Font &font = fonts[kProportional];
    const int top = height / 2;
    const int right = std::min(width, font.Width(text) + 4 * kMargin);
    onto.Fill(0, top, right, top - font.Height() - 2 * kMargin, {0, 0, 0}, 0.8F);
    onto.Text(font, 2 * kMargin, top - kMargin - font.Ascent(), text, kAmber);
}

const Image &Display::ShownWith(const std::vector<ShownItem> &menuBar) {
    mWithMenus = mShown; // without new memory after the first time
    Canvas picture(std::move(mWithMenus));
    MenuPainter(picture, fonts[kProportional], *this).Bar(menuBar);
    mWithMenus = std::move(picture).Take();
    return mWithMenus;
}

} // namespace host
