// The lenient codecs.
#include "UTL_unicode.h"

#include <gtest/gtest.h>

#include <csignal>
#include <cstdlib>
#include <tuple>

namespace {

const UTF8 *Bytes(const char *text) { return reinterpret_cast<const UTF8 *>(text); }

TEST(Unicode, Utf8RoundTripsAtEveryBoundary) {
    const std::pair<UTF32, const char *> cases[] = {{0x7F, "\x7F"},
                                                    {0x80, "\xC2\x80"},
                                                    {0x7FF, "\xDF\xBF"},
                                                    {0x800, "\xE0\xA0\x80"},
                                                    {0xD800, "\xED\xA0\x80"},
                                                    {0x10000, "\xF0\x90\x80\x80"},
                                                    {0x10FFFF, "\xF4\x8F\xBF\xBF"}};
    for (const auto &[cp, bytes] : cases) {
        UTF8 out[4];
        const int count = UTF8_encode(cp, out);
        EXPECT_EQ(std::string(reinterpret_cast<char *>(out), static_cast<std::size_t>(count)), bytes) << cp;
        EXPECT_EQ(UTF8_decode(Bytes(bytes)), cp);
        EXPECT_EQ(UTF8_next(Bytes(bytes)), Bytes(bytes) + count);
        EXPECT_EQ(UTF8_align(Bytes(bytes) + count - 1), Bytes(bytes));
    }
}

TEST(Unicode, BytesThatBeginNoCharacterAreZero) {
    EXPECT_EQ(UTF8_decode(Bytes("\xF8\x80")) + UTF8_decode(Bytes("\x80\x80")), 0U);
}

TEST(UnicodeDeathTest, Utf8AbortsBeyondTheLastCharacter) {
    UTF8 out[4];
    const auto encode = [&out] {
        std::signal(SIGABRT, [](int) { std::exit(7); }); // an exit writes the counts of coverage
        UTF8_encode(0x110000, out);
    };
    EXPECT_EXIT(encode(), testing::ExitedWithCode(7),
                "UTL_unicode:182: int UTF8_encode.UTF32, UTF8..: out of range unicode.\n");
}

TEST(Unicode, WholeTextsAreConverted) {
    const std::tuple<const char *, string_utf16, const char *> cases[] = {
        {"", {}, ""},
        {"A\xC3\xA9", {0x41, 0xE9}, "A\xC3\xA9"},
        {"\xF0\x9F\x98\x80z", {0xD83D, 0xDE00, 'z'}, "\xF0\x90\x80\x81z"},
        {"\xF0\x90\x80\x80", {0xD800, 0xDC00}, "\xF0\x90\x80\x80"},
        {"\xF0\x90\x80\xB0", {0xD800, 0xDC30}, "\xF0\x90\x80\x81"},
        {"\xEE\x80\x80", {0xE000}, "\xEE\x80\x80"},
        {"\xEF\xBF\xBF", {0xFFFF}, "\xEF\xBF\xBF"},
        {"\xF4\x8F\xBF\xBF", {0xDBFF, 0xDFFF}, "\xF0\x90\x80\x81"},
        {"\xE2\x82", {0x2080}, "\xE2\x82\x80"}}; // what is missing is zero
    for (const auto &[utf8, utf16, expected] : cases) {
        string_utf16 out = {1, 2};
        string_utf_8_to_16(utf8, out);
        EXPECT_EQ(out, utf16) << utf8;
        std::string back = "old";
        string_utf_16_to_8(out, back);
        EXPECT_EQ(back, expected);
    }
}

} // namespace
