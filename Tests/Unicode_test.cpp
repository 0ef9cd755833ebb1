// The lenient codecs.
#include "UTL_unicode.h"

#include <gtest/gtest.h>

namespace {

const UTF8 *Bytes(const char *text) { return reinterpret_cast<const UTF8 *>(text); }

TEST(Unicode, Utf8RoundTripsAtEveryBoundary) {
    const struct {
        UTF32 cp;
        const char *bytes;
    } cases[] = {{0x7F, "\x7F"},
                 {0x80, "\xC2\x80"},
                 {0xE9, "\xC3\xA9"},
                 {0x7FF, "\xDF\xBF"},
                 {0x800, "\xE0\xA0\x80"},
                 {0xD800, "\xED\xA0\x80"},
                 {0xFFFF, "\xEF\xBF\xBF"},
                 {0x10000, "\xF0\x90\x80\x80"},
                 {0x10FFFF, "\xF4\x8F\xBF\xBF"}};
    for (const auto &each : cases) {
        UTF8 out[4];
        const int count = UTF8_encode(each.cp, out);
        EXPECT_EQ(std::string(reinterpret_cast<char *>(out), static_cast<std::size_t>(count)), each.bytes) << each.cp;
        EXPECT_EQ(UTF8_decode(Bytes(each.bytes)), each.cp);
        EXPECT_EQ(UTF8_next(Bytes(each.bytes)), Bytes(each.bytes) + count);
        EXPECT_EQ(UTF8_align(Bytes(each.bytes) + count - 1), Bytes(each.bytes));
    }
}

TEST(Unicode, Utf8DecodesWhateverItIsGiven) {
    const struct {
        const char *bytes;
        UTF32 cp;
    } cases[] = {{"\x80", 0}, {"\xF8\x88", 0}, {"\xFF", 0}, {"\xC0\x80", 0}, {"\xC1\x81", 0x41}, {"\xC3(", 0xE8}};
    for (const auto &each : cases)
        EXPECT_EQ(UTF8_decode(Bytes(each.bytes)), each.cp) << each.bytes;
}

TEST(UnicodeDeathTest, Utf8AbortsBeyondTheLastCharacter) {
    UTF8 out[4];
    EXPECT_DEATH(UTF8_encode(0x110000, out), "UTL_unicode:182: int UTF8_encode.UTF32, UTF8..: out of range unicode.\n");
}

TEST(Unicode, Utf16EncodesByTheBookAndDecodesPairsToOneBit) {
    const struct {
        UTF32 cp;
        UTF16 units[2];
        int count;
        UTF32 decoded;
    } cases[] = {{0x41, {0x41}, 1, 0x41},
                 {0xFFFF, {0xFFFF}, 1, 0xFFFF},
                 {0xDC00, {0xDC00}, 1, 0xDC00},
                 {0x10000, {0xD800, 0xDC00}, 2, 0x10000},
                 {0x10001, {0xD800, 0xDC01}, 2, 0x10001},
                 {0x1F600, {0xD83D, 0xDE00}, 2, 0x10001},
                 {0x10FC00, {0xDBFF, 0xDC00}, 2, 0x10001},
                 {0x110000, {0xD800, 0xDC00}, 2, 0x10000}};
    for (const auto &each : cases) {
        SCOPED_TRACE(each.cp);
        UTF16 units[2] = {};
        EXPECT_EQ(UTF16_encode(each.cp, units), each.count);
        EXPECT_EQ(units[0], each.units[0]);
        EXPECT_EQ(units[1], each.units[1]);
        UTF32 decoded = 0;
        EXPECT_EQ(UTF16_decode(units, decoded), units + each.count);
        EXPECT_EQ(decoded, each.decoded);
    }
}

TEST(Unicode, ATrailNeedNotBeATrail) {
    const UTF16 units[] = {0xD800, 0x41, 0x42};
    UTF32 decoded = 0;
    EXPECT_EQ(UTF16_decode(units, decoded), units + 2);
    EXPECT_EQ(decoded, 0x10001U);
}

TEST(Unicode, WholeTextsAreConverted) {
    const struct {
        const char *utf8;
        string_utf16 utf16;
    } cases[] = {{"", {}},
                 {"A\xC3\xA9", {0x41, 0xE9}},
                 {"\xF0\x9F\x98\x80z", {0xD83D, 0xDE00, 'z'}},
                 {"\x80z", {0, 'z'}},
                 {"\xE2\x82", {0x2080}}}; // what is missing is zero
    for (const auto &each : cases) {
        string_utf16 out = {1, 2};
        string_utf_8_to_16(each.utf8, out);
        EXPECT_EQ(out, each.utf16) << each.utf8;
    }
    const struct {
        string_utf16 utf16;
        std::string utf8;
    } back[] = {{{}, ""},
                {{0x41, 0xE9}, "A\xC3\xA9"},
                {{0xD83D, 0xDE00, 'z'}, "\xF0\x90\x80\x81z"},
                {{0xDC00}, "\xED\xB0\x80"},
                {{0xD800}, "\xF0\x90\x80\x80"}};
    for (const auto &each : back) {
        std::string out = "old";
        string_utf_16_to_8(each.utf16, out);
        EXPECT_EQ(out, each.utf8);
    }
}

TEST(Unicode, TheLegacyFormOfPathsIsTheSame) {
    std::string path = "/A\xC3\xA9/\x80";
    const std::string before = path;
    AVSKOldToUTF8(path);
    AVSKUTF8ToOld(path);
    EXPECT_EQ(path, before);
}

} // namespace
