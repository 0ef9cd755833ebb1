// Stores calls; see History.h.
#include "History.h"

#include "Crossings/Line.h"

#include <algorithm>
#include <exception>
#include <string_view>

#include <unistd.h>

namespace host {

using crossings::Crossing;
using crossings::Line;

namespace {

void WriteIndented(int depth, std::string_view text, std::string_view end) {
    constexpr int kDeepestShown = 20;
    Line indent;
    for (int i = 0; i <= std::min(depth, kDeepestShown); ++i)
        indent.Add("  ");
    WriteError(indent.Text());
    WriteError(text);
    WriteError(end);
    WriteError("\n");
}

Line TextOf(const KeptCall &call) {
    Line text;
    call.AddCall(text);
    return text;
}

} // namespace

void WriteError(std::string_view text) {
    while (!text.empty()) {
        const ssize_t written = write(STDERR_FILENO, text.data(), text.size());
        if (written <= 0)
            return;
        text.remove_prefix(static_cast<std::size_t>(written));
    }
}

void History::Clear() {
    mCount = 0;
    mHasThrown = false;
}

void History::Begins(const Crossing &crossing, std::uint32_t tick) {
    if (mHasThrown && std::uncaught_exceptions() == 0)
        mHasThrown = false; // it was caught
    Call &call = Slot(crossing.depth);
    call.Keep(crossing);
    call.tick = tick;
    mDepth = crossing.depth + 1;
    if (!call.IsForHost()) {
        while (mPushed < mDepth)
            Push(mPushed++);
    }
}

void History::Ends(const Crossing &crossing) {
    NoteException(crossing);
    mDepth = crossing.depth;
    if (mPushed > mDepth) {
        KeepResult(crossing);
        mPushed = mDepth;
    }
}

void History::Push(int depth) {
    Call &call = Slot(depth);
    call.number = mCount;
    Past &past = mLast[mCount++ % kLast];
    past.depth = depth;
    past.isOpen = true;
    past.call = call;
}

void History::KeepResult(const Crossing &crossing) {
    // Later calls may have taken its place. The numbers of very deep calls are not stored.
    unsigned number = crossing.depth < kDeepest ? Slot(crossing.depth).number : mCount - 1;
    for (; mCount - number <= std::min(mCount, kLast); --number) {
        Past &past = mLast[number % kLast];
        if (!past.isOpen || past.depth != crossing.depth)
            continue;
        past.call.KeepResult(crossing);
        past.isOpen = false;
        return;
    }
}

// An exception ends calls from the innermost outward. Calls that destructors
// make meanwhile return.
void History::NoteException(const Crossing &crossing) {
    if (crossing.returned) {
        mHasThrown = mHasThrown && std::uncaught_exceptions() != 0;
    } else if (const Call *call = Open(crossing.depth); call && !mHasThrown) {
        mThrown = *call;
        mHasThrown = true;
    }
}

const History::Call *History::Open(int depth) const {
    return mDepth == 0 || depth < 0 ? nullptr : &mOpen[static_cast<std::size_t>(std::min(depth, kDeepest - 1))];
}

const History::Call *History::InnermostOfPlugins() const {
    for (int depth = std::min(mDepth, kDeepest) - 1; depth >= 0; --depth) {
        if (const Call *call = Open(depth); call->To() == crossings::Side::Plugin)
            return call;
    }
    return Innermost();
}

void History::WriteOpen() const {
    constexpr int kEachEnd = 8;
    if (mDepth > 0)
        WriteError("Calls under way, the outermost first:\n");
    const int kept = std::min(mDepth, kDeepest);
    for (int depth = 0; depth < kept; ++depth) {
        const bool isLeftOut = kept > 2 * kEachEnd && depth >= kEachEnd && depth < kept - kEachEnd;
        if (!isLeftOut)
            WriteIndented(depth, TextOf(mOpen[static_cast<std::size_t>(depth)]).Text(), "");
        else if (depth == kEachEnd)
            WriteIndented(depth, "...", "");
    }
    if (mDepth > kept) {
        Line more;
        more.Add("... and ");
        more.Add(mDepth - kept);
        more.Add(" more");
        WriteIndented(kept, more.Text(), "");
    }
}

void History::WriteLast() const {
    const unsigned count = std::min(mCount, kLast);
    if (count > 0)
        WriteError("The last calls from and to plugins, the oldest first:\n");
    for (unsigned back = count; back > 0; --back) {
        const Past &past = mLast[(mCount - back) % kLast];
        Line result;
        if (!past.isOpen)
            past.call.AddResult(result);
        WriteIndented(past.depth, TextOf(past.call).Text(), past.isOpen ? std::string_view(" ...") : result.Text());
    }
}

} // namespace host
