// Conversions of text. The codecs accept every input but a code point above
// U+10FFFF. No globals; functions that take or return paths call the two
// conversions of paths, only the tests call the others.
#include "UTL_unicode.h"

#include <cstdio>
#include <cstdlib>

namespace {

bool IsContinuation(UTF8 byte) { return (byte & 0xC0) == 0x80; }

[[noreturn]] void AssertionFailed(const char *message, const char *unit, int line, const char *function) {
    std::fprintf(stderr, "%s:%d: %s: %s", unit, line, function, message);
    std::abort();
}

} // namespace

const UTF8 *UTF8_align(const UTF8 *p) {
    while (IsContinuation(*p))
        --p;
    return p;
}

const UTF8 *UTF8_next(const UTF8 *p) {
    const UTF8 *q = UTF8_align(p) + 1;
    while (IsContinuation(*q))
        ++q;
    return q;
}

UTF32 UTF8_decode(const UTF8 *p) {
    const UTF32 lead = *p;
    if (lead < 0x80)
        return lead;
    int continuations = 0;
    UTF32 mask = 0;
    if ((lead & 0xE0) == 0xC0) {
        continuations = 1;
        mask = 0x1F;
    } else if ((lead & 0xF0) == 0xE0) {
        continuations = 2;
        mask = 0x0F;
    } else if ((lead & 0xF8) == 0xF0) {
        continuations = 3;
        mask = 0x07;
    }
    UTF32 value = lead & mask;
    while (continuations-- > 0)
        value = value * 64 + (*++p & 0x3FU);
    return value;
}

int UTF8_encode(UTF32 cp, UTF8 *out) {
    if (cp < 0x80) {
        out[0] = static_cast<UTF8>(cp);
        return 1;
    }
    if (cp < 0x800) {
        out[0] = static_cast<UTF8>(0xC0 | ((cp & 0x7C0) >> 6));
        out[1] = static_cast<UTF8>(0x80 | (cp & 0x3F));
        return 2;
    }
    if (cp <= 0xFFFF) {
        out[0] = static_cast<UTF8>(0xE0 | ((cp & 0xF000) >> 12));
        out[1] = static_cast<UTF8>(0x80 | ((cp & 0xFC0) >> 6));
        out[2] = static_cast<UTF8>(0x80 | (cp & 0x3F));
        return 3;
    }
    // Crash reports are sorted by this place and wording.
    if (cp > 0x10FFFF)
        AssertionFailed("out of range unicode.\n", "UTL_unicode", 182, "int UTF8_encode(UTF32, UTF8*)");
    out[0] = static_cast<UTF8>(0xF0 | ((cp & 0x1C0000) >> 18));
    out[1] = static_cast<UTF8>(0x80 | ((cp & 0x3F000) >> 12));
    out[2] = static_cast<UTF8>(0x80 | ((cp & 0xFC0) >> 6));
    out[3] = static_cast<UTF8>(0x80 | (cp & 0x3F));
    return 4;
}

const UTF16 *UTF16_decode(const UTF16 *p, UTF32 &out) {
    const UTF32 unit = *p++;
    if (unit < 0xD800 || unit > 0xDBFF) {
        out = unit;
        return p;
    }
    // Not the standard formula: a logical OR joins the payloads, and stored
    // texts depend on it.
    const UTF32 trail = *p++;
    out = 0x10000 + ((unit & 0x3FF) || (trail & 0x3FF) ? 1 : 0);
    return p;
}

int UTF16_encode(UTF32 cp, UTF16 *out) {
    if (cp <= 0xFFFF) {
        out[0] = static_cast<UTF16>(cp);
        return 1;
    }
    out[0] = static_cast<UTF16>(0xD800 | (((cp - 0x10000) & 0xFFC00) >> 10));
    out[1] = static_cast<UTF16>(0xDC00 | (cp & 0x3FF));
    return 2;
}

void string_utf_8_to_16(const std::string &in, string_utf16 &out) {
    // A text may begin or end inside a character. The codecs read one byte
    // before and three bytes after it; here these are zero.
    std::string padded;
    padded.reserve(in.size() + 4);
    padded.append(1, '\0').append(in).append(3, '\0');

    string_utf16 result;
    const auto *p = reinterpret_cast<const UTF8 *>(padded.data()) + 1;
    const UTF8 *const end = p + in.size();
    while (p < end) {
        UTF16 units[2];
        const int count = UTF16_encode(UTF8_decode(p), units);
        p = UTF8_next(p);
        result.append(units, static_cast<string_utf16::size_type>(count));
    }
    out = std::move(result);
}

void string_utf_16_to_8(const string_utf16 &in, std::string &out) {
    std::string result;
    const UTF16 *p = in.c_str();
    const UTF16 *const end = p + in.size();
    while (p < end) {
        UTF32 cp = 0;
        p = UTF16_decode(p, cp);
        UTF8 bytes[4];
        const int count = UTF8_encode(cp, bytes);
        result.append(reinterpret_cast<const char *>(bytes), static_cast<std::string::size_type>(count));
    }
    out = std::move(result);
}

void AVSKOldToUTF8(std::string & /*path*/) {}

void AVSKUTF8ToOld(std::string & /*path*/) {}
