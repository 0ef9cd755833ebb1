// Font files and glyphs, by stb_truetype; see Font.h.
#include "Font.h"

#include "Common/Files.h"
#include "Common/Utf8.h"

#include <stb/stb_truetype.h>

#include <cmath>

namespace host {
namespace {

constexpr const char *kProportionalFile = AVSK_HOST_FONTS "/DejaVuSans.ttf";
constexpr const char *kMonospaceFile = AVSK_HOST_FONTS "/DejaVuSansMono.ttf";
constexpr int kWidthWithoutFont = 8;

int Round(float value) { return static_cast<int>(std::lround(value)); }

} // namespace

struct Font::Face {
    std::string file; // stb_truetype reads from it all the time
    stbtt_fontinfo info;
    float scale;
};

Font::Font(const std::string &file, float pixels) {
    auto face = std::make_unique<Face>();
    face->file = ReadFile(file).value_or("");
    if (face->file.empty() ||
        stbtt_InitFont(&face->info, reinterpret_cast<const unsigned char *>(face->file.data()), 0) == 0)
        return;
    face->scale = stbtt_ScaleForMappingEmToPixels(&face->info, pixels);
    int ascent = 0;
    int descent = 0;
    int gap = 0;
    stbtt_GetFontVMetrics(&face->info, &ascent, &descent, &gap);
    mAscent = Round(static_cast<float>(ascent) * face->scale);
    mHeight = mAscent + Round(static_cast<float>(-descent) * face->scale);
    mFace = std::move(face);
}

Font::~Font() = default;
Font::Font(Font &&) noexcept = default;

const Glyph &Font::Find(char32_t character) const {
    const auto known = mGlyphs.find(character);
    return known != mGlyphs.end() ? known->second : mGlyphs.emplace(character, Rasterise(character)).first->second;
}

int Font::Width(std::string_view text) const {
    int width = 0;
    while (!text.empty())
        width += Find(TakeCharacter(text)).advance;
    return width;
}

Glyph Font::Rasterise(char32_t character) const {
    Glyph glyph{kWidthWithoutFont, 0, 0, 0, 0, {}};
    if (!mFace)
        return glyph;
    const int index = stbtt_FindGlyphIndex(&mFace->info, static_cast<int>(character));
    int advance = 0;
    int bearing = 0;
    stbtt_GetGlyphHMetrics(&mFace->info, index, &advance, &bearing);
    glyph.advance = Round(static_cast<float>(advance) * mFace->scale);
    int right = 0;
    int bottom = 0;
    stbtt_GetGlyphBitmapBox(&mFace->info, index, mFace->scale, mFace->scale, &glyph.left, &glyph.top, &right, &bottom);
    glyph.width = right - glyph.left;
    glyph.height = bottom - glyph.top;
    if (glyph.width <= 0 || glyph.height <= 0)
        return glyph;
    glyph.coverage.resize(static_cast<std::size_t>(glyph.width) * static_cast<std::size_t>(glyph.height));
    stbtt_MakeGlyphBitmap(&mFace->info, glyph.coverage.data(), glyph.width, glyph.height, glyph.width, mFace->scale,
                          mFace->scale, index);
    return glyph;
}

Fonts::Fonts() : mFonts{Font(kProportionalFile, 13), Font(kMonospaceFile, 13), Font(kMonospaceFile, 20)} {}

const Font &Fonts::operator[](int number) const {
    constexpr int kDefault = 1;
    const bool exists = number >= 0 && number < static_cast<int>(mFonts.size());
    return mFonts[static_cast<std::size_t>(exists ? number : kDefault)];
}

std::string Fonts::Missing() const {
    if (!mFonts[0].Loaded())
        return kProportionalFile;
    return mFonts[1].Loaded() && mFonts[2].Loaded() ? "" : kMonospaceFile;
}

} // namespace host
