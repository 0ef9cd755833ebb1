// The trace as text. A call without inner calls takes one line; other calls take
// an opening and a closing line:
//
//       0.016701  host > library  AVSKEventHook(event=0, ...) {
//       0.016705    library > Menu  AVSKFlightLoop_f Tick(...) = 1  [2.1 us]
//       0.016709  } AVSKEventHook = 1  [8.0 us]
//
// The first column is seconds since the trace began.
#include "Trace.h"

#include "Crossings/Format.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cstdint>
#include <limits>

namespace host {
namespace {

using crossings::Crossing;
using crossings::Line;

using Nanoseconds = Crossing::Clock::rep;

// "    0.016701"
void AddSeconds(Line &line, Nanoseconds time) {
    constexpr std::size_t kWidth = 5;
    const Nanoseconds microseconds = (time + 500) / 1000;
    std::array<char, 24> seconds;
    const auto [end, error] =
        std::to_chars(seconds.begin(), seconds.end(), static_cast<std::uint32_t>(microseconds / 1'000'000));
    for (auto width = static_cast<std::size_t>(end - seconds.data()); width < kWidth; ++width)
        line.Add(' ');
    line.Add(std::string_view(seconds.data(), static_cast<std::size_t>(end - seconds.data())));
    std::array<char, 7> digits{'.'};
    auto rest = static_cast<std::uint32_t>(microseconds % 1'000'000);
    for (std::size_t i = digits.size() - 1; i > 0; --i, rest /= 10)
        digits[i] = static_cast<char>('0' + rest % 10);
    line.Add(std::string_view(digits.data(), digits.size()));
}

// "  [2.1 us]", or "  [1234 us]"
void AddDuration(Line &line, Nanoseconds time) {
    constexpr Nanoseconds kLong = 1'000'000;
    constexpr Nanoseconds kLongest = std::numeric_limits<int>::max();
    line.Add("  [");
    if (time < kLong) {
        const int tenths = (static_cast<int>(std::max<Nanoseconds>(time, 0)) + 50) / 100;
        line.Add(tenths / 10);
        line.Add('.');
        line.Add(tenths % 10);
    } else {
        line.Add(static_cast<int>(std::min((time + 500) / 1000, kLongest)));
    }
    line.Add(" us]");
}

class TextWriter : public TraceWriter {
  public:
    explicit TextWriter(TraceSink &file) : mFile(file) {}

    void Begin(const Crossing &crossing, int depth) override {
        if (mIsHeld)
            Write(" {");
        StartLine(crossing.began, depth);
        crossings::AddSides(mLine, crossing);
        mLine.Add("  ");
        crossings::AddCall(mLine, crossing);
        mIsHeld = true;
    }

    void End(const Crossing &crossing, int depth) override {
        if (!mIsHeld) {
            StartLine(crossing.ended, depth);
            mLine.Add("} ");
            crossings::AddTitle(mLine, crossing);
        }
        Line end;
        crossings::AddResult(end, crossing);
        AddDuration(end, crossing.Duration().count());
        Write(end.Text());
    }

    void Foreign(const crossings::Prototype &function, int thread, int depth) override {
        if (mIsHeld)
            Write(" {");
        StartLine(Crossing::Clock::now(), depth);
        mLine.Add("thread ");
        mLine.Add(thread);
        mLine.Add(function.form == crossings::Prototype::Form::OpenGL ? " > OpenGL  " : " > library  ");
        mLine.Add(function.name);
        Write(", which is not the host's thread");
    }

  private:
    void StartLine(Crossing::Clock::time_point time, int depth) {
        constexpr int kDeepest = 40; // indented
        mLine.Clear();
        AddSeconds(mLine, (time - mStart).count());
        mLine.Add("  ");
        for (int i = 0; i < depth && i < kDeepest; ++i)
            mLine.Add("  ");
    }

    // Long arguments are cut, the result and the duration never.
    void Write(std::string_view end) {
        mFile.Add(mLine.Text());
        mFile.Add(end);
        mFile.EndLine();
        mIsHeld = false;
    }

    TraceSink &mFile;
    const Crossing::Clock::time_point mStart = Crossing::Clock::now();
    Line mLine;
    bool mIsHeld = false; // the line of a call that has not made inner calls yet
};

} // namespace

std::unique_ptr<TraceWriter> MakeTextWriter(TraceSink &file) { return std::make_unique<TextWriter>(file); }

} // namespace host
