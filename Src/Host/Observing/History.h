// The calls under way and the last ones, kept as text: when a plugin has
// ended the run nothing can be looked up any more. Allocates nothing but what
// the names of functions need the first time.
#ifndef AVSK_HOST_OBSERVING_HISTORY_H
#define AVSK_HOST_OBSERVING_HISTORY_H

#include "Crossings/Crossing.h"
#include "Crossings/Format.h"

#include <array>
#include <cstddef>

namespace host {

class History {
  public:
    struct Call {
        crossings::Side to;
        bool forHost;           // no plugin has to do with it
        crossings::Line plugin; // whose code runs in it, or on whose behalf
        crossings::Line title;  // "AVSKMenuHandler_f OnPick"
        crossings::Line text;   // "library > Menu  AVSKMenuHandler_f OnPick(menuRef=...)"
    };

    void Begins(const crossings::Crossing &crossing);
    void Ends(const crossings::Crossing &crossing);

    // The call under way at that depth, or the deepest that is kept. Null if there is none.
    const Call *Open(int depth) const;
    const Call *Innermost() const { return Open(mDepth - 1); }
    const Call *InnermostOfPlugins() const;
    // The call that the present exception, or the one that ended last, left first. Null if there is none.
    const Call *Thrown() const { return mHasThrown ? &mThrown : nullptr; }

    // Safe in a signal handler. Of the host's own calls the last ones are only those that led to a plugin.
    void WriteOpen() const;
    void WriteLast() const;

  private:
    static constexpr int kDeepest = 128;
    static constexpr unsigned kLast = 20;

    struct Past {
        int depth;
        bool isOpen;
        crossings::Line text;
        crossings::Line result;
    };

    Call &Slot(int depth) { return depth < kDeepest ? mOpen[static_cast<std::size_t>(depth)] : mDeeper; }
    void Push(int depth);
    void AddResult(const crossings::Crossing &crossing);
    void NoteException(const crossings::Crossing &crossing);

    std::array<Call, kDeepest> mOpen{};
    Call mDeeper{}; // the one that began last
    int mDepth = 0;
    std::array<Past, kLast> mLast{};
    unsigned mCount = 0; // of all that were among the last ones
    int mPushed = 0;     // of those under way, the outermost are among them, so many
    Call mThrown{};
    bool mHasThrown = false;
};

// Writes to standard error, in signal handlers too.
void WriteError(std::string_view text);

} // namespace host

#endif
