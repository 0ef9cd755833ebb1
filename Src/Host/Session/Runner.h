// The run of a session: applies its set-up, executes its steps on a simulator
// and counts failures.
#ifndef AVSK_HOST_SESSION_RUNNER_H
#define AVSK_HOST_SESSION_RUNNER_H

#include "Forms.h"
#include "Record.h"
#include "SetUp.h"
#include "Step.h"

#include "Observing/CallLog.h"
#include "Observing/DatarefNames.h"
#include "Observing/Observers.h"
#include "Rules/Checker.h"
#include "Services/Simulator.h"

#include <memory>
#include <string>

namespace host {

class OpenGLUsage;

class SessionRunner {
  public:
    explicit SessionRunner(SessionOptions options);
    ~SessionRunner();
    SessionRunner(const SessionRunner &) = delete;
    SessionRunner &operator=(const SessionRunner &) = delete;

    SetUp &ForSetUp() { return mSetUp; }
    // Loads the plugins if they are not loaded. Throws UsageError.
    void Start();
    // Executes a step or an expectation and prints why it failed. The session continues. False if it failed.
    bool Do(const Step &step);
    // Executes a step or an expectation. Returns why it failed.
    Failure Try(const Step &step);
    // Unloads the plugins and prints the summary. Returns the exit status.
    int Finish();

    // For steps and expectations.
    Simulator &Sim() { return *mSimulator; }
    CallLog &Calls() { return *mCalls; }
    Observers &Observing() { return *mObservers; }
    DatarefNames &Datarefs() { return *mDatarefs; }
    // Null unless the options ask for it.
    const Findings *Found() const { return mChecker ? &mChecker->Found() : nullptr; }
    bool IsLoaded() const { return mLoaded; }
    void RunFrames(int count);
    void Unload();

  private:
    void StartRecord(const std::string &file);

    SetUp mSetUp;
    const std::string &mName; // of the session, for messages
    std::unique_ptr<Simulator> mSimulator;
    std::unique_ptr<CallLog> mCalls;
    std::unique_ptr<Observers> mObservers;
    std::unique_ptr<Checker> mChecker;   // if the options ask for it
    std::unique_ptr<OpenGLUsage> mUsage; // likewise
    std::unique_ptr<Record> mRecord;     // if the options ask for it
    std::unique_ptr<DatarefNames> mDatarefs;
    bool mLoaded = false;
    int mSteps = 0;
    int mExpectations = 0;
    int mFailed = 0;
};

} // namespace host

#endif
