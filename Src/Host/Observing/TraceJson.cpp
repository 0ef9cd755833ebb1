// The trace as a JSON array of trace events: a begin and an end for each call.
// Viewers also open it without its end, after a crash.
#include "Trace.h"

#include "Common/Utf8.h"
#include "Crossings/Format.h"
#include "Crossings/ValueText.h"
#include "Crossings/Words.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace host {
namespace {

using crossings::Crossing;
using crossings::Line;
using crossings::Value;

void AddEscape(std::string &text, std::uint32_t unit) {
    constexpr std::string_view kDigits = "0123456789abcdef";
    text += "\\u";
    for (int shift = 12; shift >= 0; shift -= 4)
        text += kDigits[unit >> shift & 15U];
}

void AddCharacter(std::string &text, char32_t character) {
    constexpr char32_t kReplacement = 0xFFFD;
    const bool isNone = character > 0x10FFFF || (character >= 0xD800 && character < 0xE000);
    if (isNone)
        return AddEscape(text, kReplacement);
    if (character < 0x10000)
        return AddEscape(text, character);
    AddEscape(text, 0xD7C0 + (character >> 10));
    AddEscape(text, 0xDC00 + (character & 0x3FF));
}

// Names come from plugins and may be no valid UTF-8. The file has only ASCII.
void AddString(std::string &text, std::string_view string) {
    const auto isPlain = [](char c) { return c >= ' ' && c < 0x7F && c != '"' && c != '\\'; };
    text += '"';
    while (!string.empty()) {
        const auto *const end = std::find_if_not(string.begin(), string.end(), isPlain);
        text.append(string.begin(), end);
        string.remove_prefix(static_cast<std::size_t>(end - string.begin()));
        if (string.empty())
            break;
        const char32_t character = TakeCharacter(string);
        if (character == '"' || character == '\\')
            (text += '\\') += static_cast<char>(character);
        else
            AddCharacter(text, character);
    }
    text += '"';
}

void AddNumber(std::string &text, double number) {
    if (!std::isfinite(number)) {
        text += "null";
        return;
    }
    std::array<char, 32> digits;
    const bool isWhole = std::fabs(number) < 1e9 && number == std::trunc(number);
    const auto [end, error] = isWhole ? std::to_chars(digits.begin(), digits.end(), static_cast<int>(number))
                                      : std::to_chars(digits.begin(), digits.end(), number);
    text.append(digits.data(), end);
    if (isWhole)
        text += ".0";
}

void AddInteger(std::string &text, int number) {
    std::array<char, 16> digits;
    text.append(digits.data(), std::to_chars(digits.begin(), digits.end(), number).ptr);
}

void AddValue(std::string &text, const Value &value) {
    if (value.kind == Value::Kind::Integer)
        return AddInteger(text, value.integer);
    if (value.kind == Value::Kind::Real)
        return AddNumber(text, value.real);
    Line line;
    crossings::AddValue(line, value);
    AddString(text, line.Text());
}

void AddArguments(std::string &text, const Crossing &crossing) {
    std::string_view names = crossing.what.parameters;
    text += '{';
    for (const Value &value : crossing.arguments) {
        if (&value != crossing.arguments.data())
            text += ',';
        ((text += '"') += crossings::TakeWord(names)) += "\":";
        AddValue(text, value);
    }
    text += '}';
}

class JsonWriter : public TraceWriter {
  public:
    explicit JsonWriter(TraceSink &file) : mFile(file) {
        mFile.Add("[\n"
                  R"({"name":"process_name","ph":"M","pid":1,"tid":1,"args":{"name":"avsk"}})");
    }
    ~JsonWriter() override { mFile.Add("\n]\n"); }

    void Begin(const Crossing &crossing, int /*depth*/) override {
        Line title;
        crossings::AddTitle(title, crossing);
        Line sides;
        crossings::AddSides(sides, crossing);
        mText = R"({"name":)";
        AddString(mText, title.Text());
        mText += R"(,"cat":)";
        AddString(mText, sides.Text());
        mText += R"(,"ph":"B","ts":)";
        AddTime(crossing.began);
        mText += R"(,"pid":1,"tid":1,"args":)";
        AddArguments(mText, crossing);
        Write();
    }

    void End(const Crossing &crossing, int /*depth*/) override {
        mText = R"({"ph":"E","ts":)";
        AddTime(crossing.ended);
        mText += R"(,"pid":1,"tid":1)";
        if (!crossing.returned) {
            mText += R"(,"args":{"result":"threw"})";
        } else if (crossing.result.kind != Value::Kind::Nothing) {
            mText += R"(,"args":{"result":)";
            AddValue(mText, crossing.result);
            mText += '}';
        }
        Write();
    }

    void Foreign(const crossings::Prototype &function, int thread, int /*depth*/) override {
        mText = R"({"name":)";
        AddString(mText, function.name);
        mText += R"(,"cat":"another thread than the host's","ph":"i","s":"t","ts":)";
        AddTime(Crossing::Clock::now());
        mText += R"(,"pid":1,"tid":)" + std::to_string(thread);
        Write();
    }

  private:
    // In microseconds, with three digits behind the point.
    void AddTime(Crossing::Clock::time_point time) {
        // Two numbers of 32 bits: a division of 64 bits takes long.
        const auto nanoseconds = static_cast<std::uint64_t>((time - mStart).count());
        constexpr std::uint64_t kBillion = 1'000'000'000;
        const auto seconds = static_cast<std::uint32_t>(nanoseconds / kBillion);
        const auto part = static_cast<std::uint32_t>(nanoseconds - seconds * kBillion);
        std::array<char, 24> digits;
        char *at = digits.data();
        if (seconds != 0)
            at = std::to_chars(at, digits.end(), seconds).ptr;
        std::uint32_t microseconds = part / 1000;
        if (seconds == 0) {
            at = std::to_chars(at, digits.end(), microseconds).ptr;
        } else {
            for (int i = 5; i >= 0; --i, microseconds /= 10)
                at[i] = static_cast<char>('0' + microseconds % 10);
            at += 6;
        }
        mText.append(digits.data(), at);
        const std::uint32_t rest = part % 1000;
        mText += '.';
        mText += static_cast<char>('0' + rest / 100);
        mText += static_cast<char>('0' + rest / 10 % 10);
        mText += static_cast<char>('0' + rest % 10);
    }

    // Ends the line before it, and then adds the event.
    void Write() {
        mText += '}';
        mFile.Add(",");
        mFile.EndLine();
        mFile.Add(mText);
    }

    TraceSink &mFile;
    const Crossing::Clock::time_point mStart = Crossing::Clock::now();
    std::string mText; // of an event
};

} // namespace

std::unique_ptr<TraceWriter> MakeJsonWriter(TraceSink &file) { return std::make_unique<JsonWriter>(file); }

} // namespace host
