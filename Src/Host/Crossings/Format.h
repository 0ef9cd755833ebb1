// Calls as text. What a plugin passes may be anything: a text is read so that
// a bad address is shown and not followed.
#ifndef AVSK_HOST_FORMAT_H
#define AVSK_HOST_FORMAT_H

#include "Crossing.h"

#include <cstddef>
#include <span>
#include <string_view>

namespace crossings {

// A text of limited length, made without allocating.
class Line {
  public:
    static constexpr std::size_t kSize = 480;

    void Add(std::string_view text);
    void Add(char c) { Add(std::string_view(&c, 1)); }
    void Add(double number);
    void Add(int number);
    void Add(const Value &value);
    // "name=value, name=value"
    void Add(std::string_view names, std::span<const Value> values);

    std::string_view Text() const { return {mText, mLength}; }
    void Clear() { mLength = 0; }

  private:
    void AddHex(AVSKWord word);
    void AddText(const char *text, int length);

    char mText[kSize];
    std::size_t mLength = 0;
};

// "AVSKDrawString(colour=null, x=1, ...)"; for a callback also its function: "AVSKFlightLoop_f Tick(...)".
void AddCall(Line &line, const Crossing &crossing);
// " = 3", " = nothing" as "", or " threw".
void AddResult(Line &line, const Crossing &crossing);
// "Menu > library"
void AddSides(Line &line, const Crossing &crossing);

// Who calls, and who is called, by name: "host", "library" or the plugin's.
std::string_view CallerOf(const Crossing &crossing);
std::string_view CalleeOf(const Crossing &crossing);
// The function of the other side that is called: "AVSKFlightLoop_f Tick".
void AddTitle(Line &line, const Crossing &crossing);
std::string TitleOf(const Crossing &crossing);

// Reads a text of at most size - 1 bytes, or length if that is not negative;
// false if some of it is no memory of this process.
bool ReadText(const char *text, int length, char *buffer, std::size_t size);

} // namespace crossings

#endif
