// What pages want to know of a live simulator. Only topics that a page has open are
// made, and they are sent when they changed.
#ifndef AVSK_HOST_LIVE_LIVE_TOPICS_H
#define AVSK_HOST_LIVE_LIVE_TOPICS_H

#include "FrameCalls.h"
#include "States.h"

#include <nlohmann/json_fwd.hpp>

#include <deque>
#include <map>
#include <memory>
#include <set>
#include <string>
#include <string_view>
#include <vector>

namespace host {

class Channel;
class Recording;
class SessionRunner;

// How fast the simulator runs.
struct Pace {
    bool isPaused = false;
    double speed = 1;
    double framesPerSecond = 0; // of real time
    double picturesPerSecond = 0;
    double budget = 0; // milliseconds that the page marks; 0: none
};

class LiveTopics {
  public:
    // All must outlive it.
    LiveTopics(SessionRunner &run, const Recording &recording, Channel &channel);
    ~LiveTopics();
    LiveTopics(const LiveTopics &) = delete;
    LiveTopics &operator=(const LiveTopics &) = delete;

    void Send(const nlohmann::json &message);

    // The topics that pages have open now.
    void Open(std::set<std::string> topics);
    bool IsOpen(const std::string &topic) const { return mOpen.contains(topic); }
    void Select(DatarefQuery query);
    void SelectCalls(const std::string &filter, bool isPaused);
    // A frame has run.
    void EndFrame();
    void SendCallsOf(int frame);
    // The last calls as a file for trace viewers. Throws UsageError if they are not kept.
    std::string Trace() const;

    // Sends what changed since the last time.
    void SendChanges(const Pace &pace);

  private:
    void AddToLog(std::string_view text);
    void ObserveCalls();
    void SendIfChanged(const nlohmann::json &state);
    void SendLog();
    void SendCalls();
    void SendTimes();
    nlohmann::json SimulatorState(const Pace &pace);
    nlohmann::json RecordingState() const;

    SessionRunner &mRun;
    const Recording &mRecording;
    Channel &mChannel;
    std::set<std::string> mOpen;
    std::map<std::string, std::string> mSent; // by topic
    DatarefQuery mQuery;
    std::unique_ptr<FrameCalls> mCalls; // while a topic needs it
    std::string mFilter;
    bool mAreCallsPaused = false;
    int mTimesSent = 0;           // the last frame whose times were sent
    std::deque<std::string> mLog; // lines that were not sent
    std::string mLogLine;         // has no end yet
    int mLogGap = 0;
    std::vector<std::string> mModels; // of aircraft, in the root
    double mModelsUntil = 0;          // seconds of real time until which they are taken as known
};

} // namespace host

#endif
