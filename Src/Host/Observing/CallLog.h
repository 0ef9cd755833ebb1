// What the table of services was asked during a session: each call with its
// arguments as text. Expectations look here. Nothing is recorded in other runs.
#ifndef AVSK_HOST_OBSERVING_CALL_LOG_H
#define AVSK_HOST_OBSERVING_CALL_LOG_H

#include "Crossings/Crossing.h"

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

    void Begins(const crossings::Crossing &crossing) override;
    void Ends(const crossings::Crossing & /*crossing*/) override {}
    void Forget() { mCalls.clear(); }

    // Whether a slot was called with arguments that match; those behind the
    // last one wanted may be any.
    bool Contains(const std::string &slot, const Arguments &wanted) const;
    // The different calls of a slot that came last, for a reader.
    std::string Latest(const std::string &slot) const;

  private:
    std::string TextOf(const crossings::Value &value) const;
    // A handle by the name of what it stands for, never by its address, which is another in each run.
    std::string Describe(const void *handle) const;

    const Simulator &mSimulator;
    long mLast = 0;
    // Alike calls of many frames take the room of one. The number tells the order of the last ones.
    std::map<std::string, std::map<Arguments, long>, std::less<>> mCalls;
};

// Whether a text is what a session's word stands for: "*" is anything, numbers
// agree to four digits or to the tolerance in "1.5~0.1".
bool Matches(const std::string &wanted, const std::string &seen);

} // namespace host

#endif
