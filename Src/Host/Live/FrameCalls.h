// The calls of the last frames, for the panels that show times and calls. It exists
// only while a page has one of them open.
#ifndef AVSK_HOST_LIVE_FRAME_CALLS_H
#define AVSK_HOST_LIVE_FRAME_CALLS_H

#include "Crossings/Crossing.h"
#include "Observing/Trace.h"

#include <cstddef>
#include <deque>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace host {

class FrameCalls : public crossings::Observer {
  public:
    struct Call {
        int depth;
        std::string_view plugin; // its code runs, or the library or the host works for it
        const crossings::Prototype *what;
        std::string_view callback; // its function's name; empty for other calls
        double start;              // milliseconds since the first call of the frame
        double milliseconds;
    };
    struct Frame {
        int number = 0;
        double total = 0;                           // milliseconds in the library and what it called
        std::map<std::string_view, double> plugins; // in their code and the library's work for it
        std::vector<Call> calls;
        std::string json; // events of the trace
    };
    struct Lines {
        std::vector<std::string> lines;
        int gap = 0; // that many older ones were dropped
    };

    // The frame number is read during calls, so it must outlive this.
    explicit FrameCalls(const int &frame);
    ~FrameCalls() override;
    FrameCalls(const FrameCalls &) = delete;
    FrameCalls &operator=(const FrameCalls &) = delete;

    // Whether the calls are kept as text too; those that match a pattern, or all.
    void ShowText(bool shown);
    void Filter(const std::string &pattern) { mFilter = pattern; }

    void Begins(const crossings::Crossing &crossing) override;
    void Ends(const crossings::Crossing &crossing) override;

    // The frame has run. Calls between frames belong to the next one.
    void EndFrame();

    const std::deque<Frame> &Frames() const { return mFrames; }
    // The most that a plugin took in a frame.
    double WorstOf(const std::string &plugin) const;
    // The lines of the trace that were not taken yet; at most so many.
    Lines TakeLines(std::size_t most);
    // The last frames that have text, as a file for trace viewers of so many bytes at most.
    std::string Json(std::size_t most) const;

  private:
    // What a writer of the trace writes into.
    class Text : public TraceSink {
      public:
        explicit Text(std::string &text) : mText(text) {}
        void Add(std::string_view text) override { mText += text; }
        void EndLine() override { mText += '\n'; }

      private:
        std::string &mText;
    };
    // A call under way.
    struct Open {
        const crossings::Crossing *crossing;
        std::size_t index;                            // in the frame's calls
        crossings::Crossing::Clock::duration inner{}; // time that is not this call's own
        bool isShown;
    };

    void Close(int number);
    bool IsWanted(const crossings::Crossing &crossing) const;
    void DivideLines();

    const int &mNow;
    int mSeen;   // the number of the frame in which the last call was made
    int mClosed; // the number of the last frame that is complete
    Frame mFrame;
    crossings::Crossing::Clock::time_point mBegan; // of its first call
    std::vector<Open> mOpen;
    std::deque<Frame> mFrames;
    std::size_t mCalls = 0; // in them
    std::size_t mBytes = 0; // of JSON in them
    std::map<std::string_view, double> mWorst;

    std::string mJsonHead;
    std::string mFilter;
    std::string mText; // unfinished
    std::deque<std::string> mLines;
    int mGap = 0;
    int mShown = 0; // calls under way that are written as text
    Text mTextSink{mText};
    Text mJsonSink{mFrame.json};
    std::unique_ptr<TraceWriter> mTextWriter;
    std::unique_ptr<TraceWriter> mJsonWriter;
};

} // namespace host

#endif
