// The calls of the host's services during a session, with their arguments as
// text. Expectations search it. It exists in sessions only.
#ifndef AVSK_HOST_OBSERVING_CALL_LOG_H
#define AVSK_HOST_OBSERVING_CALL_LOG_H

#include "Crossings/Crossing.h"

#include <cstddef>
#include <map>
#include <string>
#include <string_view>
#include <vector>

namespace host {

struct Simulator;

class CallLog : public crossings::Observer {
  public:
    using Arguments = std::vector<std::string>;

    explicit CallLog(const Simulator &simulator);
    ~CallLog() override;
    CallLog(const CallLog &) = delete;
    CallLog &operator=(const CallLog &) = delete;

    // Number of a slot's arguments by its name in the table; -1 if there is no such slot.
    static int CountArguments(std::string_view slot);

    crossings::Interest InterestIn(const crossings::Prototype &function) const override;
    void Begins(const crossings::Crossing &crossing) override;
    void Ends(const crossings::Crossing & /*crossing*/) override {}
    void Forget() {
        mCalls.clear();
        mSize = 0;
    }
    // The number of different calls that are kept.
    std::size_t Size() const { return mSize; }

    // Whether a slot was called with arguments that match. Arguments behind the
    // last wanted one may have any value.
    bool Contains(const std::string &slot, const Arguments &wanted) const;
    // The last different calls of a slot, for a reader.
    std::string Latest(const std::string &slot) const;

  private:
    const Simulator &mSimulator;
    long mLast = 0;
    std::size_t mSize = 0;
    // Equal calls are stored once, with the number of the last one.
    std::map<std::string, std::map<Arguments, long>, std::less<>> mCalls;
};

// Whether a text matches a word of a session: "*" matches everything, numbers
// match to four digits or within the tolerance in "1.5~0.1".
bool Matches(const std::string &wanted, const std::string &seen);

} // namespace host

#endif
