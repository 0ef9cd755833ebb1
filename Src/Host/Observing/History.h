// The calls under way and the last ones, for reports of a crash.
#ifndef AVSK_HOST_OBSERVING_HISTORY_H
#define AVSK_HOST_OBSERVING_HISTORY_H

#include "KeptCall.h"

#include "Crossings/Crossing.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <string_view>

namespace host {

class History {
  public:
    struct Call : KeptCall {
        std::uint32_t tick = 0; // when it began, see Watchdog.h
        int depth = 0;
        bool isUnderWay = false;
        bool isLast = false; // one of the last ones
    };

    History() { Clear(); }
    // Forgets everything; no call may be under way.
    void Clear();
    void Begins(const crossings::Crossing &crossing, std::uint32_t tick);
    void Ends(const crossings::Crossing &crossing);

    // The number of calls under way.
    int Depth() const { return mDepth; }
    // The call under way at a depth, or the deepest that is stored. Null if there is none.
    const Call *Open(int depth) const;
    const Call *Innermost() const { return Open(mDepth - 1); }
    const Call *InnermostOfPlugins() const;
    // The innermost call that the last exception ended. Null if there is none.
    const Call *Thrown() const { return mHasThrown ? &mThrown : nullptr; }

    // Write to standard error; safe in a signal handler. The last calls leave out
    // the host's calls that did not lead to a plugin.
    void WriteOpen() const;
    void WriteLast() const;

  private:
    static constexpr int kDeepest = 128;
    static constexpr unsigned kLast = 20;

    Call &Take();
    void Free(Call &call) { mFree[mFreeCount++] = &call; }
    void Push(Call &call);
    void EndDeep(const crossings::Crossing &crossing);
    void NoteException(const crossings::Crossing &crossing);

    // A call is in use while it is under way, to some depth, and while it is one of the last ones.
    std::array<Call, kDeepest + kLast + 2> mCalls;
    std::array<Call *, kDeepest + kLast + 2> mFree;
    std::size_t mFreeCount = 0;
    std::array<Call *, kDeepest> mOpen{}; // by depth; null if the call began before this saw calls
    int mDepth = 0;
    std::array<Call *, kLast> mLast{};
    unsigned mCount = 0; // of all calls that were added to mLast
    int mPushed = 0;     // so many of the calls under way, the outermost, were added to it
    Call mThrown{};
    bool mHasThrown = false;
};

// Writes to standard error. Safe in a signal handler.
void WriteError(std::string_view text);

} // namespace host

#endif
