// Makes and sends the topics; see LiveTopics.h. Called by LiveSimulator.cpp.
#include "LiveTopics.h"

#include "Channel.h"
#include "Recording.h"

#include "Common/UsageError.h"
#include "Session/Runner.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <array>
#include <cstdio>
#include <utility>

namespace host {
namespace {

using Json = nlohmann::json;

constexpr std::size_t kLinesAtOnce = 200; // of a message

std::string PositionOf(const Aeroplane &aeroplane) {
    std::array<char, 128> text{};
    std::snprintf(text.data(), text.size(), "%.5f %.5f %.0f m heading %.0f", aeroplane.latitude, aeroplane.longitude,
                  aeroplane.altitude, aeroplane.heading);
    return text.data();
}

// The path from the root, if the file is there.
std::string FromRoot(const std::string &path, const std::string &root) {
    return path.starts_with(root) ? path.substr(root.size()) : path;
}

} // namespace

LiveTopics::LiveTopics(SessionRunner &run, const Recording &recording, Channel &channel)
    : mRun(run), mRecording(recording), mChannel(channel) {
    AddToLog(mRun.Sim().console.Kept());
    mRun.Sim().console.OnLog([this](std::string_view text) { AddToLog(text); });
}

LiveTopics::~LiveTopics() { mRun.Sim().console.OnLog(nullptr); }

void LiveTopics::Send(const Json &message) {
    mChannel.Send(MessageKind::Json, message.dump(-1, ' ', false, Json::error_handler_t::replace));
}

void LiveTopics::SendIfChanged(const Json &state) {
    constexpr std::size_t kMost = 3 * 1024 * 1024;
    std::string text = state.dump(-1, ' ', false, Json::error_handler_t::replace);
    std::string &sent = mSent[state.at("topic").get<std::string>()];
    if (text == sent || text.size() > kMost)
        return;
    mChannel.Send(MessageKind::Json, text);
    sent = std::move(text);
}

void LiveTopics::Open(std::set<std::string> topics) {
    for (const std::string &topic : topics) {
        if (!mOpen.contains(topic))
            mSent.erase(topic); // what the page has may be old
    }
    mOpen = std::move(topics);
    ObserveCalls();
}

void LiveTopics::ObserveCalls() {
    if (!IsOpen("plugins") && !IsOpen("time") && !IsOpen("calls")) {
        mCalls.reset();
        return;
    }
    if (!mCalls) {
        mCalls = std::make_unique<FrameCalls>(mRun.Sim().frame);
        mTimesSent = mRun.Sim().frame;
    }
    mCalls->Filter(mFilter);
    mCalls->ShowText(IsOpen("calls") && !mAreCallsPaused);
}

void LiveTopics::Select(DatarefQuery query) { mQuery = std::move(query); }

void LiveTopics::SelectCalls(const std::string &filter, bool isPaused) {
    const bool isPattern = filter.empty() || filter.find('*') != std::string::npos;
    mFilter = isPattern ? filter : "*" + filter + "*";
    mAreCallsPaused = isPaused;
    ObserveCalls();
}

void LiveTopics::EndFrame() {
    if (mCalls)
        mCalls->EndFrame();
}

void LiveTopics::SendCallsOf(int frame) {
    if (mCalls)
        Send(CallsOf(*mCalls, frame));
}

std::string LiveTopics::Trace() const {
    constexpr std::size_t kMost = 5 * 512 * 1024; // its quotes need more room in a message
    if (!mCalls || !IsOpen("calls"))
        throw UsageError("the calls are kept only while the panel Calls is open");
    return mCalls->Json(kMost);
}

void LiveTopics::AddToLog(std::string_view text) {
    constexpr std::size_t kMost = 2000;
    mLogLine += text;
    std::size_t begin = 0;
    for (std::size_t end = 0; (end = mLogLine.find('\n', begin)) != std::string::npos; begin = end + 1)
        mLog.push_back(mLogLine.substr(begin, end - begin));
    mLogLine.erase(0, begin);
    while (mLog.size() > kMost) {
        mLog.pop_front();
        ++mLogGap;
    }
}

void LiveTopics::SendLog() {
    if (mLog.empty())
        return;
    const std::size_t count = std::min(mLog.size(), kLinesAtOnce);
    const auto end = mLog.begin() + static_cast<std::ptrdiff_t>(count);
    Send({{"topic", "log"}, {"lines", std::vector(mLog.begin(), end)}, {"gap", std::exchange(mLogGap, 0)}});
    mLog.erase(mLog.begin(), end);
}

void LiveTopics::SendCalls() {
    const FrameCalls::Lines taken = mCalls->TakeLines(kLinesAtOnce);
    if (!taken.lines.empty() || taken.gap > 0)
        Send({{"topic", "calls"}, {"lines", taken.lines}, {"gap", taken.gap}});
}

void LiveTopics::SendTimes() {
    if (mCalls->Frames().empty() || mCalls->Frames().back().number <= mTimesSent)
        return;
    Send(TimesSince(*mCalls, mTimesSent));
    mTimesSent = mCalls->Frames().back().number;
}

Json LiveTopics::SimulatorState(const Pace &pace) {
    constexpr double kFresh = 5; // seconds
    const Simulator &simulator = mRun.Sim();
    if (const double now = simulator.console.Seconds(); now >= mModelsUntil) {
        mModels = FilesInRoot(simulator.options.root, ".acf");
        mModelsUntil = now + kFresh;
    }
    return {{"topic", "simulator"},
            {"frame", simulator.frame},
            {"seconds", simulator.Elapsed()},
            {"paused", pace.isPaused},
            {"speed", pace.speed},
            {"view", simulator.camera.ViewName()},
            {"framesPerSecond", pace.framesPerSecond},
            {"picturesPerSecond", pace.picturesPerSecond},
            {"budget", pace.budget},
            {"aircraft", FromRoot(simulator.fleet.Model(0), simulator.options.root)},
            {"models", mModels},
            {"scenery", simulator.options.scenery},
            {"position", PositionOf(simulator.aeroplane)}};
}

Json LiveTopics::RecordingState() const {
    constexpr std::size_t kMost = 400;
    const std::vector<std::string> lines = mRecording.Tail(kMost);
    const std::string &saved = mRecording.SavedAs();
    return {{"topic", "recording"},
            {"omitted", mRecording.Count() - lines.size()},
            {"lines", lines},
            {"saved", saved.empty() ? Json(nullptr) : Json(saved)}};
}

void LiveTopics::SendChanges(const Pace &pace) {
    const auto send = [this](const char *topic, auto make) {
        if (IsOpen(topic))
            SendIfChanged(make());
    };
    send("simulator", [&] { return SimulatorState(pace); });
    send("plugins", [&] { return PluginsState(mRun, mCalls.get()); });
    send("windows", [&] { return WindowsState(mRun); });
    send("datarefs", [&] { return DatarefsState(mRun, mQuery); });
    send("menus", [&] { return MenusState(mRun); });
    send("commands", [&] { return CommandsState(mRun); });
    send("findings", [&] { return FindingsState(mRun); });
    send("recording", [&] { return RecordingState(); });
    if (IsOpen("time"))
        SendTimes();
    if (IsOpen("calls"))
        SendCalls();
    if (IsOpen("log"))
        SendLog();
}

} // namespace host
