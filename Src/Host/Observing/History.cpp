// Stores calls; see History.h.
#include "History.h"

#include "Crossings/Line.h"

#include <algorithm>
#include <exception>
#include <string_view>
#include <utility>

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
    mOpen = {};
    mLast = {};
    mDepth = mPushed = 0;
    mCount = 0;
    mHasThrown = false;
    mFreeCount = 0;
    for (Call &call : mCalls)
        Free(call);
}

// There are enough of them.
History::Call &History::Take() { return *mFree[--mFreeCount]; }

void History::Begins(const Crossing &crossing, std::uint32_t tick) {
    if (mHasThrown && std::uncaught_exceptions() == 0)
        mHasThrown = false; // it was caught
    Call &call = Take();
    call.Keep(crossing, crossing.depth <= kDeepest ? Open(crossing.depth - 1) : nullptr);
    call.tick = tick;
    call.depth = crossing.depth;
    call.isUnderWay = true;
    call.isLast = false;
    mDepth = crossing.depth + 1;
    if (crossing.depth < kDeepest)
        mOpen[static_cast<std::size_t>(crossing.depth)] = &call;
    if (!call.IsForHost()) {
        for (; mPushed < std::min(crossing.depth, kDeepest); ++mPushed) {
            if (Call *outer = mOpen[static_cast<std::size_t>(mPushed)])
                Push(*outer);
        }
        Push(call);
        mPushed = mDepth;
    } else if (crossing.depth >= kDeepest) {
        Free(call);
    }
}

void History::Ends(const Crossing &crossing) {
    NoteException(crossing);
    mDepth = crossing.depth;
    mPushed = std::min(mPushed, mDepth);
    if (crossing.depth >= kDeepest)
        return EndDeep(crossing);
    Call *const call = std::exchange(mOpen[static_cast<std::size_t>(crossing.depth)], nullptr);
    if (!call)
        return;
    call->isUnderWay = false;
    if (call->isLast)
        call->KeepResult(crossing);
    else
        Free(*call);
}

void History::Push(Call &call) {
    Call *&last = mLast[mCount++ % kLast];
    if (last) {
        last->isLast = false;
        if (!last->isUnderWay || last->depth >= kDeepest)
            Free(*last);
    }
    last = &call;
    call.isLast = true;
}

// The call is stored only if it is one of the last ones.
void History::EndDeep(const Crossing &crossing) {
    for (Call *call : mLast) {
        if (!call || !call->isUnderWay || call->depth != crossing.depth)
            continue;
        call->isUnderWay = false;
        call->KeepResult(crossing);
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
    return mDepth == 0 || depth < 0 ? nullptr : mOpen[static_cast<std::size_t>(std::min(depth, kDeepest - 1))];
}

const History::Call *History::InnermostOfPlugins() const {
    for (int depth = std::min(mDepth, kDeepest) - 1; depth >= 0; --depth) {
        if (const Call *call = Open(depth); call && call->To() == crossings::Side::Plugin)
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
        const Call *call = Open(depth);
        if (!isLeftOut && call)
            WriteIndented(depth, TextOf(*call).Text(), "");
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
        const Call &call = *mLast[(mCount - back) % kLast];
        Line result;
        if (call.isUnderWay)
            result.Add(" ...");
        else
            call.AddResult(result);
        WriteIndented(call.depth, TextOf(call).Text(), result.Text());
    }
}

} // namespace host
