// What the simulator itself shows in a picture: sky and ground, a status line,
// and over everything the menu bar with its first menu open. Called by
// Simulator.cpp during the frame.
#include "HostDisplay.h"
#include "Simulator.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <stdexcept>

namespace host {
namespace {

constexpr int kProportional = 0;
constexpr int kMonospace = 1;

constexpr int kTerrainPass = 2;     // the host's part of the scenery
constexpr int kInstrumentPass = 19; // the host's part of what the windows lie on

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

void DrawStatus(Canvas &canvas, const Font &font, const Simulator &simulator) {
    const Aeroplane &plane = simulator.aeroplane;
    std::array<char, 160> text{};
    std::snprintf(text.data(), text.size(), "%8.2f s   %9.5f  %10.5f   %6.1f m   heading %05.1f",
                  static_cast<double>(simulator.Elapsed()), plane.latitude, plane.longitude, plane.altitude,
                  plane.heading);
    constexpr int kMargin = 8;
    canvas.Fill(0, font.Height() + kMargin, simulator.display.width, 0, {0, 0, 0}, 0.45F);
    canvas.Text(font, kMargin, kMargin / 2 + font.Height() - font.Ascent(), text.data(), kWhite);
}

// The menus as they look with the pointer held on every item at once: each
// submenu stands beside the item that opens it, or below the one before it.
class MenuPainter {
  public:
    MenuPainter(Canvas &canvas, const Font &font, const Display &display)
        : mCanvas(canvas), mFont(font), mWidth(display.width), mHeight(display.height) {}

    void Bar(const std::vector<Menu *> &bar) {
        const int top = mHeight;
        mCanvas.Fill(0, top, mWidth, top - kRow, kPanel);
        int x = kPad;
        for (std::size_t i = 0; i < bar.size(); ++i) {
            const int width = mFont.Width(bar[i]->name) + 2 * kPad;
            if (i == 0) {
                mCanvas.Fill(x, top, x + width, top - kRow, kOpened);
                Panel(*bar[i], x, top - kRow);
            }
            mCanvas.Text(mFont, x + kPad, Baseline(top), bar[i]->name, i == 0 ? kWhite : kText);
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

    static bool Separator(const MenuItem &item) { return item.name == "-"; }

    static int RowOf(const MenuItem &item) {
        if (item.name.empty())
            return 0;
        return Separator(item) ? kSeparatorRow : kRow;
    }

    int Baseline(int top) const { return top - (kRow - mFont.Height()) / 2 - mFont.Ascent(); }

    // Draws a menu and those beneath it; answers where the lowest of them ends.
    int Panel(Menu &menu, int left, int top) {
        int width = 0;
        int height = 0;
        for (const MenuItem &item : menu.items) {
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
        for (std::size_t i = 0; i < menu.items.size(); ++i) {
            const MenuItem item = menu.items[i];
            if (Separator(item))
                mCanvas.Fill(left + 2, y - kSeparatorRow / 2, right - 2, y - kSeparatorRow / 2 - 1, kBorder);
            else if (!item.name.empty())
                Item(menu, static_cast<int>(i), left, right, y);
            if (item.opens && !item.name.empty()) {
                beside = Panel(*item.opens, right + 2, std::min(y, beside));
                lowest = std::min(lowest, beside);
                beside -= kGap;
            }
            y -= RowOf(item);
        }
        return lowest;
    }

    void Item(Menu &menu, int index, int left, int right, int top) {
        const MenuItem &item = menu.items[static_cast<std::size_t>(index)];
        const bool enabled = AVSKMenuItemEnabled(&menu, index) != 0;
        const Colour colour = item.opens ? kWhite : enabled ? kText : kGreyed;
        if (item.opens)
            mCanvas.Fill(left, top, right, top - kRow, enabled ? kOpened : kGreyed);
        constexpr int kChecked = 1;
        int check = -1;
        if (AVSKCheckMenuHook(&menu, index, &check) == 0 && check == kChecked)
            mCanvas.Text(mFont, left + 4, Baseline(top), "\u2713", colour);
        mCanvas.Text(mFont, left + kMarkRoom, Baseline(top), item.name, colour);
        if (item.opens)
            mCanvas.Text(mFont, right - kArrowRoom / 2 - 4, Baseline(top), "\u25B8", colour);
    }
};

} // namespace

void Display::Begin(bool written) {
    canvas.reset();
    if (written)
        canvas.emplace(width, height);
}

void Display::DrawOwnPart(const Simulator &simulator, int drawCode) {
    if (!canvas)
        return;
    if (drawCode == kTerrainPass)
        DrawSkyAndGround(*canvas, *this);
    else if (drawCode == kInstrumentPass)
        DrawStatus(*canvas, fonts[kMonospace], simulator);
}

void Display::Write(const Simulator &simulator, const std::string &file) {
    MenuPainter(*canvas, fonts[kProportional], *this).Bar(simulator.menus.Bar());
    if (!canvas->WritePng(file))
        throw std::runtime_error("cannot write the picture '" + file + "': is there room on the disk?");
}

} // namespace host
