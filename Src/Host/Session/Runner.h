// Runs a session: its set-up, then its steps on a simulator of its own, and
// counts what failed.
#ifndef AVSK_HOST_SESSION_RUNNER_H
#define AVSK_HOST_SESSION_RUNNER_H

#include "ChosenRoot.h"
#include "Observing/CallLog.h"
#include "Observing/Observers.h"
#include "Services/Simulator.h"
#include "Session.h"
#include "SessionOptions.h"

#include <map>
#include <memory>
#include <string>
#include <vector>

namespace host {

// Runs the session that the options ask for, from its file or typed. Answers the exit status.
int RunSession(SessionOptions options);

class SessionRunner {
  public:
    explicit SessionRunner(SessionOptions options);
    ~SessionRunner();
    SessionRunner(const SessionRunner &) = delete;
    SessionRunner &operator=(const SessionRunner &) = delete;

    // Notes what the plugins will find. Throws UsageError.
    void SetUp(const Step &step);
    // Loads the plugins, if that was not done. Throws UsageError.
    void Start();
    // Does a step and says if it failed. The session goes on.
    void Do(const Step &step);
    // Unloads the plugins and sums up. Answers the exit status.
    int Finish();

    Simulator &Sim() { return *mSimulator; }
    CallLog &Calls() { return *mCalls; }
    Observers &Watch() { return *mObservers; }
    bool IsLoaded() const { return mLoaded; }
    void RunFrames(int count);
    void Unload();

    // A plugin by its signature or name; NO_PLUGIN_ID if there is none.
    static AVSKPluginID FindPlugin(const std::string &name);

  private:
    std::string Resolve(const Step &step, bool folder) const;

    SessionOptions mOptions;
    std::string mName;   // of the session, for messages
    std::string mFolder; // of its file; paths in it begin there
    std::string mAircraft;
    ChosenRoot mRoot;
    std::unique_ptr<Simulator> mSimulator;
    std::unique_ptr<CallLog> mCalls;
    std::unique_ptr<Observers> mObservers;
    std::map<std::string, double> mBudgets; // milliseconds, by plugin
    bool mLoaded = false;
    int mSteps = 0;
    int mExpectations = 0;
    int mFailed = 0;
};

// What steps and expectations do; listed with their words in Forms.cpp.
namespace steps {
std::string Frames(SessionRunner &run, const Step &step);
std::string Seconds(SessionRunner &run, const Step &step);
std::string Move(SessionRunner &run, const Step &step);
std::string Press(SessionRunner &run, const Step &step);
std::string Release(SessionRunner &run, const Step &step);
std::string Click(SessionRunner &run, const Step &step);
std::string Drag(SessionRunner &run, const Step &step);
std::string Wheel(SessionRunner &run, const Step &step);
std::string TypeKey(SessionRunner &run, const Step &step);
std::string KeyDown(SessionRunner &run, const Step &step);
std::string KeyUp(SessionRunner &run, const Step &step);
std::string Type(SessionRunner &run, const Step &step);
std::string PickMenu(SessionRunner &run, const Step &step);
std::string RunCommand(SessionRunner &run, const Step &step);
std::string BeginCommand(SessionRunner &run, const Step &step);
std::string EndCommand(SessionRunner &run, const Step &step);
std::string Button(SessionRunner &run, const Step &step);
std::string ChangeView(SessionRunner &run, const Step &step);
std::string Load(SessionRunner &run, const Step &step);
std::string ReportScenery(SessionRunner &run, const Step &step);
std::string Crash(SessionRunner &run, const Step &step);
std::string HoldLoads(SessionRunner &run, const Step &step);
std::string CompleteLoads(SessionRunner &run, const Step &step);
std::string FailLoads(SessionRunner &run, const Step &step);
std::string SendMessage(SessionRunner &run, const Step &step);
std::string Enable(SessionRunner &run, const Step &step);
std::string Disable(SessionRunner &run, const Step &step);
std::string Reload(SessionRunner &run, const Step &step);
std::string SetDataref(SessionRunner &run, const Step &step);
std::string TakeScreenshot(SessionRunner &run, const Step &step);
std::string Mark(SessionRunner &run, const Step &step);
std::string ListPossessions(SessionRunner &run, const Step &step);
std::string UnloadAll(SessionRunner &run, const Step &step);
} // namespace steps

namespace expectations {
std::string Dataref(SessionRunner &run, const Step &step);
std::string Logged(SessionRunner &run, const Step &step);
std::string WindowThere(SessionRunner &run, const Step &step);
std::string Item(SessionRunner &run, const Step &step);
std::string PluginState(SessionRunner &run, const Step &step);
std::string Called(SessionRunner &run, const Step &step);
std::string ViewShown(SessionRunner &run, const Step &step);
std::string Owns(SessionRunner &run, const Step &step);
std::string Tidy(SessionRunner &run, const Step &step);
std::string NothingLeft(SessionRunner &run, const Step &step);
} // namespace expectations

// The item at a path such as "Plugins/Lights/Beacon"; names may hold slashes too.
struct FoundItem {
    Menu *menu = nullptr; // null if there is none
    int index = 0;
    std::string there; // else: what there is instead
};
FoundItem FindItem(const MenuTree &menus, std::string_view path);

} // namespace host

#endif
