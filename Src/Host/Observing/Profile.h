// Time spent in plugins, by plugin and callback, and a budget for each frame.
#ifndef AVSK_HOST_OBSERVING_PROFILE_H
#define AVSK_HOST_OBSERVING_PROFILE_H

#include "Crossings/Crossing.h"

#include <map>
#include <string>
#include <utility>
#include <vector>

namespace host {

struct Simulator;

// A callback's time is its own: what other callbacks took that it caused is
// theirs. What the library and the host did for it is part of it.
class Profile : public crossings::Observer {
  public:
    explicit Profile(const Simulator &simulator);
    ~Profile() override;

    // The most that a plugin may take in a frame. An empty name is every
    // plugin without a budget of its own.
    void SetBudget(const std::string &plugin, double milliseconds) { mBudgets[plugin] = milliseconds; }

    void Begins(const crossings::Crossing &crossing) override;
    void Ends(const crossings::Crossing &crossing) override;

    // A table, the plugin and callback that took longest first.
    std::vector<std::string> Table() const;
    // The plugins that took more than their budget, one line each: how often,
    // when most, and where that went.
    std::vector<std::string> OverBudget() const;
    // How often a plugin called the library.
    long CallsOf(AVSKPluginID plugin) const;

  private:
    using Time = crossings::Crossing::Clock::duration;

    struct Row {
        long calls = 0;
        Time total{};
        Time present{}; // in the frame that is running
        Time worst{};   // in a frame
        int worstFrame = 0;
    };
    // A plugin's worst frame among those over its budget.
    struct Excess {
        int frames = 0;
        int frame = 0;
        Time time{};
        std::string callback;
        Time callbackTime{};
    };

    Row &RowOf(const crossings::Crossing &crossing);
    void CloseFrame();
    double BudgetOf(const std::string &plugin) const; // 0: none

    const Simulator &mSimulator;
    std::map<std::string, double> mBudgets;
    std::map<std::string, std::map<std::string, Row>> mRows; // plugin, callback
    std::map<std::pair<const crossings::Callback *, AVSKPluginID>, Row *> mKnown;
    std::map<std::string, Excess> mExcesses;
    std::map<AVSKPluginID, long> mCalls;
    std::vector<Time> mInner; // for each callback under way, the time of those it caused
    int mFrame = 0;
};

} // namespace host

#endif
