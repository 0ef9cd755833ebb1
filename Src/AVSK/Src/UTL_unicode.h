// Conversions of text: code-point codecs, UTF-8 from and to 16-bit text, and
// paths. Floor 0. The library itself calls only the two conversions of paths;
// only the tests call the others.
#ifndef UTL_UNICODE_H
#define UTL_UNICODE_H

#include <string>

using UTF8 = unsigned char;
using UTF16 = unsigned short;
using UTF32 = unsigned int;
using string_utf16 = std::basic_string<UTF16>;

// The start of the character that p points into. A byte at or before p must start a character.
const UTF8 *UTF8_align(const UTF8 *p);
// The start of the character after the one that p points into.
const UTF8 *UTF8_next(const UTF8 *p);
// The character that starts at p, or 0 if none starts there.
UTF32 UTF8_decode(const UTF8 *p);
// Writes 1 to 4 bytes and returns how many. Aborts above U+10FFFF.
int UTF8_encode(UTF32 cp, UTF8 *out);
// Decodes one character and returns the position after it. A surrogate pair
// gives U+10000 if all its payload bits are 0, else U+10001.
const UTF16 *UTF16_decode(const UTF16 *p, UTF32 &out);
// Writes 1 or 2 units and returns how many.
int UTF16_encode(UTF32 cp, UTF16 *out);

void string_utf_8_to_16(const std::string &in, string_utf16 &out);
void string_utf_16_to_8(const string_utf16 &in, std::string &out);

// Between the legacy form of paths and UTF-8. On this platform the two are the same.
void AVSKOldToUTF8(std::string &path);
void AVSKUTF8ToOld(std::string &path);

#endif
