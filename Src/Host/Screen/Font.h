// Fonts: measuring and glyphs. Widths are whole pixels, the same for measuring
// and drawing, so that a text fills exactly its measured width.
#ifndef AVSK_HOST_SCREEN_FONT_H
#define AVSK_HOST_SCREEN_FONT_H

#include <array>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace host {

struct Glyph {
    int advance; // pixels to the next glyph
    int left;    // of the bitmap, from the pen
    int top;     // of the bitmap, from the baseline, downward: negative above
    int width, height;
    std::vector<unsigned char> coverage; // width * height, top row first
};

class Font {
  public:
    // A font whose file cannot be read measures 8 pixels per character and draws nothing.
    Font(const std::string &file, float pixels);
    ~Font();
    Font(Font &&) noexcept;
    Font &operator=(Font &&) = delete;

    bool Loaded() const { return mFace != nullptr; }
    int Ascent() const { return mAscent; }
    int Height() const { return mHeight; }

    const Glyph &Find(char32_t character) const;
    int Width(std::string_view text) const;

  private:
    struct Face;

    Glyph Rasterise(char32_t character) const;

    std::unique_ptr<Face> mFace;
    int mAscent = 10;
    int mHeight = 13;
    mutable std::map<char32_t, Glyph> mGlyphs;
};

// The fonts that plugins can choose: 0 proportional, 1 monospace, 2 large
// monospace. Any other number selects 1.
class Fonts {
  public:
    Fonts();
    const Font &operator[](int number) const;

    // The first file that could not be read; empty if all could.
    std::string Missing() const;

  private:
    std::array<Font, 3> mFonts;
};

} // namespace host

#endif
