// What the simulator itself shows in a picture: sky and ground, a status line,
// and over everything the menu bar with its first menu open. Called by
// Simulator.cpp during the frame.
#include "Display.h"

#include <algorithm>
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

void DrawSkyAndGround(Canvas &canvas, const Display &display) {
    constexpr Colour kZenith{0.16F, 0.36F, 0.66F};
    constexpr Colour kHaze{0.74F, 0.84F, 0.92F};
    constexpr Colour kFar{0.52F, 0.58F, 0.44F};
    constexpr Colour kNear{0.22F, 0.33F, 0.16F};
    const int horizon = display.height * 2 / 5;
    for (int y = 0; y < display.height; ++y) {
        const bool sky = y >= horizon;
        const int depth = sky ? display.height - horizon : horizon;
        const int distance = sky ? y - horizon : horizon - y;
        const float share = static_cast<float>(distance) / static_cast<float>(depth);
        canvas.Fill(0, y + 1, display.width, y, sky ? Between(kHaze, kZenith, share) : Between(kFar, kNear, share));
    }
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

void Display::Begin() {
    mIsShown = false;
    if (!std::exchange(wanted, false))
        return;
    if (!mCanvas) {
        mCanvas = std::make_unique<Canvas>(Image(width, height));
        mShown = Image(width, height);
    }
    mCanvas->Clear();
    canvas = mCanvas.get();
}

void Display::End() {
    if (!std::exchange(canvas, nullptr))
        return;
    constexpr std::uint32_t kOpaque = 0xFF000000;
    const Image &drawn = mCanvas->Pixels();
    std::transform(drawn.pixels.begin(), drawn.pixels.end(), mShown.pixels.begin(),
                   [](std::uint32_t pixel) { return pixel | kOpaque; });
    mIsShown = true;
}

void Display::DrawOwnPart(int drawCode, const std::string &status) {
    if (!canvas)
        return;
    if (drawCode == kTerrainPass)
        DrawSkyAndGround(*canvas, *this);
    else if (drawCode == kInstrumentPass && hasStatusLine)
        DrawStatus(*canvas, fonts[kMonospace], width, status);
}

Image Display::ShownWith(const std::vector<ShownItem> &menuBar) const {
    Canvas picture(mShown);
    MenuPainter(picture, fonts[kProportional], *this).Bar(menuBar);
    return picture.Pixels();
}

} // namespace host
