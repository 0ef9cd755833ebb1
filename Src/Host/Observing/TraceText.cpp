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

#include <chrono>

namespace host {
namespace {

using crossings::Crossing;
using crossings::Line;

class TextWriter : public TraceWriter {
  public:
    explicit TextWriter(std::FILE *file) : mFile(file) {}

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
            mLine.Add(crossings::TitleOf(crossing));
        }
        Line end;
        crossings::AddResult(end, crossing);
        const double microseconds = std::chrono::duration<double, std::micro>(crossing.Duration()).count();
        char duration[40];
        std::snprintf(duration, sizeof duration, microseconds < 1000 ? "  [%.1f us]" : "  [%.0f us]", microseconds);
        end.Add(std::string_view(duration));
        Write(end.Text());
    }

  private:
    void StartLine(Crossing::Clock::time_point time, int depth) {
        constexpr int kDeepest = 40; // indented
        char column[32];
        std::snprintf(column, sizeof column, "%12.6f  ", std::chrono::duration<double>(time - mStart).count());
        mLine.Clear();
        mLine.Add(std::string_view(column));
        for (int i = 0; i < depth && i < kDeepest; ++i)
            mLine.Add("  ");
    }

    // Long arguments are cut, the result and the duration never.
    void Write(std::string_view end) {
        const std::string_view text = mLine.Text();
        std::fprintf(mFile, "%.*s%.*s\n", static_cast<int>(text.size()), text.data(), static_cast<int>(end.size()),
                     end.data());
        mIsHeld = false;
    }

    std::FILE *mFile;
    const Crossing::Clock::time_point mStart = Crossing::Clock::now();
    Line mLine;
    bool mIsHeld = false; // the line of a call that has not made inner calls yet
};

} // namespace

std::unique_ptr<TraceWriter> MakeTextWriter(std::FILE *file) { return std::make_unique<TextWriter>(file); }

} // namespace host
