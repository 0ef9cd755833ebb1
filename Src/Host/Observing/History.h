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
        std::uint32_t tick; // when it began, see Watchdog.h
        unsigned number;    // among all calls that were added to the last ones
    };

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

    struct Past {
        int depth;
        bool isOpen;
        KeptCall call;
    };

    Call &Slot(int depth) { return depth < kDeepest ? mOpen[static_cast<std::size_t>(depth)] : mDeeper; }
    void Push(int depth);
    void KeepResult(const crossings::Crossing &crossing);
    void NoteException(const crossings::Crossing &crossing);

    std::array<Call, kDeepest> mOpen{};
    Call mDeeper{}; // the last call deeper than that
    int mDepth = 0;
    std::array<Past, kLast> mLast{};
    unsigned mCount = 0; // of all calls that were added to mLast
    int mPushed = 0;     // so many of the calls under way, the outermost, were added to it
    Call mThrown{};
    bool mHasThrown = false;
};

// Writes to standard error. Safe in a signal handler.
void WriteError(std::string_view text);

} // namespace host

#endif
