// What a called function must leave as it found it: the state of the processor
// and the signals that the thread blocks. It is compared around each call into a
// plugin or the host if somebody asks for it.
//
// A changed state is undone when the call has ended, because the observers, the
// library and the next plugin would suffer from it. A run that keeps states
// therefore goes on where another run might fail.
#ifndef AVSK_HOST_CALL_STATE_H
#define AVSK_HOST_CALL_STATE_H

#include <cstdint>

namespace crossings {

class Crossing;

// Whether states are compared; see KeepStates().
inline bool gKeepsStates = false;

struct CallState {
    std::uint16_t x87 = 0;     // control word
    std::uint32_t mxcsr = 0;   // the control bits
    bool isBackward = false;   // the direction flag: string instructions run downward
    std::uint64_t blocked = 0; // a bit for each signal; bit 0 is signal 1

    bool operator==(const CallState &other) const = default;
};

// Of the calling thread. Clears the direction flag.
CallState CurrentState() noexcept;

// From now on states are compared, or not.
void KeepStates(bool keep);

// Exists during a call; fills the states of the crossing, and undoes a change.
class StateKeeper {
  public:
    explicit StateKeeper(Crossing &crossing) noexcept
        : mCrossing(gKeepsStates && IsKept(crossing) ? &crossing : nullptr) {
        if (mCrossing)
            Begin();
    }
    ~StateKeeper() {
        if (mCrossing)
            End();
    }
    StateKeeper(const StateKeeper &) = delete;
    StateKeeper &operator=(const StateKeeper &) = delete;

  private:
    static bool IsKept(const Crossing &crossing) noexcept;
    void Begin() noexcept;
    void End() noexcept;

    Crossing *const mCrossing; // null if its states are not kept
};

} // namespace crossings

#endif
