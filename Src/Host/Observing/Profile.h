// The time spent in plugins, by plugin and callback, and budgets for each frame.
#ifndef AVSK_HOST_OBSERVING_PROFILE_H
#define AVSK_HOST_OBSERVING_PROFILE_H

#include "Crossings/Crossing.h"

#include <map>
#include <string>
#include <vector>

namespace host {

class ObservedHost;

// A callback's time includes the library's and the host's work for it. It does
// not include other callbacks that it caused: that time is theirs. The time in
// OpenGL has a row of its own for each callback.
class Profile : public crossings::Observer {
  public:
    // Without OpenGL, the time in it belongs to the callbacks, and plugins draw faster.
    Profile(const ObservedHost &host, bool seesOpenGL);
    ~Profile() override;

    // The most that a plugin may take in a frame. An empty name means all
    // plugins without a budget of their own.
    void SetBudget(const std::string &plugin, double milliseconds) { mBudgets[plugin] = milliseconds; }

    crossings::Interest InterestIn(const crossings::Prototype &function) const override;
    crossings::Interest InterestInOpenGL(const crossings::Prototype & /*function*/) const override {
        return mSeesOpenGL ? crossings::Interest::Times : crossings::Interest::None;
    }
    void Begins(const crossings::Crossing &crossing) override;
    void Ends(const crossings::Crossing &crossing) override;

    // Ends the last frame: unloading, which follows, has no budget.
    void EndFrames();

    // A table; the plugin and callback with the most time come first.
    std::vector<std::string> Table();
    // A line for each budget of a plugin that was never started.
    std::vector<std::string> UnusedBudgets() const;
    // One line for each plugin that exceeded its budget: the worst frame, its
    // slowest callback, and how many frames exceeded it.
    std::vector<std::string> OverBudget() const;
    // How often a plugin called the library since it was started.
    long CallsOf(AVSKPluginID plugin) const;

  private:
    using Time = crossings::Crossing::Clock::duration;

    struct Row {
        long calls = 0;
        Time total{};
        Time present{}; // in the present frame
        Time worst{};   // the most in one frame
        int worstFrame = 0;

        void Add(long count, Time time) {
            calls += count;
            total += time;
            present += time;
        }
    };
    // The worst frame of a plugin over its budget.
    struct Excess {
        int frames = 0;
        int frame = 0;
        Time time{};
        std::string callback;
        Time callbackTime{};
    };

    void CloseFrame();
    double BudgetOf(const std::string &plugin) const; // 0: none

    const int &mPresentFrame;
    const bool mSeesOpenGL;
    std::map<std::string, double> mBudgets;
    std::map<std::string, std::map<std::string, Row>> mRows; // plugin, callback
    struct Known {
        AVSKPluginID plugin = NO_PLUGIN_ID;
        Row *row = nullptr;    // null if it is not known yet
        Row *openGL = nullptr; // likewise
    };

    Known &KnownOf(const crossings::Crossing &crossing);
    Row &RowOf(const crossings::Crossing &crossing);
    Row &OpenGLRowOf(const crossings::Crossing &callback);
    void EndOpenGL(const crossings::Crossing &call);

    std::vector<Known> mKnown; // by the callback's number
    std::map<std::string, Excess> mExcesses;
    std::vector<long> mCalls; // by the plugin's ID
    // A callback under way.
    struct Inner {
        Time time{};  // of what it caused
        Row openGL{}; // of AVPluginStart: the plugin has no name yet
    };
    std::vector<Inner> mInner;
    int mFrame = 0;
    bool mHasBudgets = true; // false while plugins are unloaded at the end
};

} // namespace host

#endif
