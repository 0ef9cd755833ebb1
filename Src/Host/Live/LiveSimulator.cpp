// The simulator's process of `avsk live`: runs frames in real time and does what pages
// ask for; see LiveOptions.h. Frames advance simulated time as in sessions, so that the
// recording repeats the run exactly; speed and pauses only change when they run.
#include "Channel.h"
#include "LiveLines.h"
#include "LiveOptions.h"
#include "LiveTopics.h"
#include "Recording.h"
#include "ScreenChanges.h"

#include "Common/Text.h"
#include "Common/UsageError.h"
#include "Session/Forms.h"
#include "Session/RunSession.h"
#include "Session/Runner.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <csignal>
#include <ctime>
#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include <poll.h>

namespace host {
namespace {

using Json = nlohmann::json;
using Clock = std::chrono::steady_clock;
using namespace std::chrono_literals;
namespace fs = std::filesystem;

constexpr Clock::duration kBetweenPictures = 28ms; // every second frame of 60 a second
constexpr Clock::duration kBetweenStates = 100ms;

// What this thread has used of a processor. Other processes, and the threads of OpenGL, may run meanwhile.
std::chrono::nanoseconds TimeOfThread() {
    timespec time{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
    return std::chrono::seconds(time.tv_sec) + std::chrono::nanoseconds(time.tv_nsec);
}

// How often something happened in the last second.
class Rate {
  public:
    void Count() { ++mCount; }
    // To be called often.
    void Update(Clock::time_point now) {
        const double seconds = std::chrono::duration<double>(now - mSince).count();
        if (seconds < 1)
            return;
        mRate = std::round(mCount / seconds * 10) / 10;
        mCount = 0;
        mSince = now;
    }
    double PerSecond() const { return mRate; }

  private:
    int mCount = 0;
    double mRate = 0;
    Clock::time_point mSince = Clock::now();
};

class LiveSimulator {
  public:
    LiveSimulator(SessionRunner &run, Recording &recording, Channel &channel)
        : mRun(run), mRecording(recording), mChannel(channel), mLines(run, recording),
          mTopics(run, recording, channel) {}

    void Hello(const LiveOptions &live);
    // Runs until the channel is closed.
    void Run();

  private:
    void Wait() const;
    void Take(const std::string &text);
    void Do(const std::string &what, const Json &message);
    void DoLine(const Json &message);
    void Reply(const Json &message, const Answer &answer);
    void MoveMouse();
    void LimitMemory();
    Clock::duration Period() const;
    void RunDueFrames();
    void RunNextFrame();
    void RunFrame();
    void SendPicture();
    void SendStates();

    SessionRunner &mRun;
    Recording &mRecording;
    Channel &mChannel;
    LiveLines mLines;
    LiveTopics mTopics;
    ScreenChanges mScreen;
    Pace mPace;
    int mSingleFrames = 0; // to run although the simulator is paused
    std::optional<std::pair<int, int>> mMove;
    bool mIsPictureDue = true; // at the next frame
    Clock::time_point mNextFrame = Clock::now();
    Clock::time_point mNextPicture = mNextFrame;
    Clock::time_point mNextStates = mNextFrame;
    Rate mFrames;
    Rate mPictures;
};

void LiveSimulator::Hello(const LiveOptions &live) {
    const Simulator &simulator = mRun.Sim();
    const SetUp &setUp = mRun.ForSetUp();
    const auto budget = setUp.budgets.find("");
    mPace.budget = budget == setUp.budgets.end() ? setUp.options.observing.budget : budget->second;
    const fs::path named = !setUp.options.file.empty()      ? fs::path(setUp.options.file)
                           : !setUp.options.plugins.empty() ? fs::path(setUp.options.plugins.front())
                                                            : fs::path(simulator.options.root).parent_path();
    mTopics.Send({{"topic", "hello"},
                  {"protocol", 1},
                  {"name", named.stem() == "lin" ? named.parent_path().filename().string() : named.stem().string()},
                  {"screen", {simulator.display.width, simulator.display.height}},
                  {"fps", simulator.options.fps},
                  {"folder", mRecording.Folder()},
                  {"budget", mPace.budget},
                  {"watch", live.watch},
                  {"check", mRun.Found() != nullptr},
                  {"version", AVSK_HOST_VERSION}});
}

void LiveSimulator::Run() {
    while (mChannel.IsOpen()) {
        Wait();
        for (const std::string &message : mChannel.Receive())
            Take(message);
        RunDueFrames();
        SendStates();
    }
}

// Until something arrives, a frame is due, or states are.
void LiveSimulator::Wait() const {
    const Clock::time_point due = mPace.isPaused ? mNextStates : std::min(mNextFrame, mNextStates);
    const auto left = std::max(due - Clock::now(), Clock::duration::zero());
    const auto seconds = std::chrono::duration_cast<std::chrono::seconds>(left);
    const timespec timeout{static_cast<time_t>(seconds.count()),
                           static_cast<long>(std::chrono::nanoseconds(left - seconds).count())};
    pollfd arrival{mChannel.Descriptor(), POLLIN, 0};
    ppoll(&arrival, 1, &timeout, nullptr);
}

void LiveSimulator::Take(const std::string &text) {
    const Json message = Json::parse(text, nullptr, /*allow_exceptions=*/false);
    if (!message.is_object())
        return Reply(Json::object(), {false, "a request is a JSON object"});
    try {
        Do(message.at("do").get<std::string>(), message);
    } catch (const Json::exception &) {
        Reply(message, {false, "a value of the request is missing or has the wrong type: see Docs/live.md"});
    } catch (const UsageError &error) {
        Reply(message, {false, error.what()});
    }
}

void LiveSimulator::Do(const std::string &what, const Json &message) {
    if (what == "move") {
        mMove = {message.at("x").get<int>(), message.at("y").get<int>()};
    } else if (what == "line") {
        DoLine(message);
    } else if (what == "pause" || what == "continue") {
        mPace.isPaused = what == "pause";
        mNextFrame = Clock::now();
    } else if (what == "frame") {
        mPace.isPaused = true;
        ++mSingleFrames;
    } else if (what == "speed") {
        const auto speed = message.at("factor").get<double>();
        mPace.speed = std::isfinite(speed) ? std::clamp(speed, 0.1, 10.0) : 1;
        mNextFrame = Clock::now();
    } else if (what == "topics") {
        mIsPictureDue = true;
        mTopics.Open(message.at("open").get<std::set<std::string>>());
    } else if (what == "datarefs") {
        mTopics.Select({message.value("pattern", ""), message.value("pinned", std::vector<std::string>())});
    } else if (what == "calls") {
        mTopics.SelectCalls(message.value("filter", ""), message.value("paused", false));
    } else if (what == "frame-calls") {
        mTopics.SendCallsOf(message.at("frame").get<int>());
    } else if (what == "trace") {
        Reply(message, {true, mTopics.Trace()});
    } else if (what == "budget") {
        mPace.budget = std::max(message.at("milliseconds").get<double>(), 0.0);
    } else if (what == "picture") {
        MoveMouse();
        Reply(message, mLines.Expect(message.at("file").get<std::string>(), message.value("replace", false)));
    } else if (what == "save") {
        Reply(message, {true, mRecording.Save(message.at("file").get<std::string>(), message.value("replace", false))});
    } else {
        throw UsageError("there is no request '" + what + "'");
    }
}

void LiveSimulator::DoLine(const Json &message) {
    const auto line = message.at("line").get<std::string>();
    if (mMove && !mPace.isPaused && line == "release") {
        RunNextFrame(); // windows are told of a drag once a frame
    }
    MoveMouse();
    Reply(message, mLines.Do(line));
    mIsPictureDue = true;
    // The next frame runs early, so that the page soon shows what the line did. The one after it keeps its time.
    if (!mPace.isPaused && mNextFrame <= Clock::now() + Period())
        RunNextFrame();
}

void LiveSimulator::Reply(const Json &message, const Answer &answer) {
    const auto id = message.find("id");
    mTopics.Send({{"topic", "answer"},
                  {"id", id == message.end() ? Json(nullptr) : *id},
                  {"ok", answer.isOk},
                  {"text", answer.text}});
}

// Only the last movement before a frame, or before a line, counts.
void LiveSimulator::MoveMouse() {
    if (const auto move = std::exchange(mMove, std::nullopt))
        mLines.Do("move " + std::to_string(move->first) + "," + std::to_string(move->second));
}

// Expectations search all that was logged and called since the start or a mark. So that this does not grow for
// hours, a mark is set and recorded.
void LiveSimulator::LimitMemory() {
    constexpr std::size_t kLongestLog = 8 * 1024 * 1024;
    constexpr std::size_t kLongestCallLog = 100'000;
    if (mRun.Sim().console.Kept().size() <= kLongestLog && mRun.Calls().Size() <= kLongestCallLog)
        return;
    mLines.Do("# the log or the list of calls was long");
    mLines.Do("mark");
}

// Of a frame, in real time.
Clock::duration LiveSimulator::Period() const {
    return std::chrono::duration_cast<Clock::duration>(
        std::chrono::duration<double>(1 / (mRun.Sim().options.fps * mPace.speed)));
}

// Frames that are late are caught up with, but not for long: then messages are read first.
void LiveSimulator::RunDueFrames() {
    constexpr Clock::duration kLongest = 20ms;
    constexpr Clock::duration kLatest = 100ms; // time that is lost
    while (mSingleFrames > 0) {
        --mSingleFrames;
        mIsPictureDue = true;
        RunFrame();
    }
    const Clock::time_point begin = Clock::now();
    Clock::time_point now = begin;
    for (; !mPace.isPaused && mNextFrame <= now && now - begin < kLongest; now = Clock::now())
        RunNextFrame();
    if (mNextFrame + kLatest < now)
        mNextFrame = now;
    mFrames.Update(now);
    mPictures.Update(now);
}

void LiveSimulator::RunNextFrame() {
    RunFrame();
    mNextFrame += Period();
}

void LiveSimulator::RunFrame() {
    MoveMouse();
    const Clock::time_point begin = Clock::now();
    const bool isPictured = mTopics.IsOpen("screen") && (mIsPictureDue || begin >= mNextPicture);
    const std::chrono::nanoseconds used = TimeOfThread();
    mRun.Sim().display.wanted = isPictured;
    mRun.RunFrames(1);
    mRecording.AddFrame();
    mTopics.EndFrame();
    mFrames.Count();
    if (!isPictured)
        return;
    SendPicture();
    mIsPictureDue = false;
    // At most four fifths of the time are for pictures. A fast simulation needs more time for its frames.
    const Clock::time_point now = Clock::now();
    const Clock::duration pause = mPace.speed > 1 ? now - begin : (TimeOfThread() - used) / 4;
    mNextPicture = std::max(begin + kBetweenPictures, now + pause);
}

void LiveSimulator::SendPicture() {
    const Image *const shown = mRun.Sim().display.Shown();
    if (!shown)
        return;
    for (const std::string &message : mScreen.Update(*shown, mRun.Sim().frame))
        mChannel.Send(MessageKind::Tiles, message);
    mPictures.Count();
}

void LiveSimulator::SendStates() {
    const Clock::time_point now = Clock::now();
    if (now < mNextStates)
        return;
    LimitMemory();
    mPace.framesPerSecond = mPace.isPaused ? 0 : mFrames.PerSecond();
    mPace.picturesPerSecond = mPace.isPaused ? 0 : mPictures.PerSecond();
    mTopics.SendChanges(mPace);
    mNextStates = Clock::now() + kBetweenStates;
}

// The steps of the session that the plugins are loaded for.
void DoFirstSteps(LiveLines &lines, Console &console, const std::vector<Step> &steps) {
    for (const Step &step : steps) {
        if ((step.form->flags & kUnloads) != 0) {
            console.Note("live: the session's lines from 'unload' on are left out");
            return;
        }
        if (!step.form->IsSetUp())
            lines.DoFirst(step);
    }
}

} // namespace

int LiveSimulate(SessionOptions options, const LiveOptions &live, int channel) {
    std::signal(SIGINT, SIG_IGN); // Ctrl-C is for the server, which then closes the channel
    Channel server(channel);
    options.observing.check = true;
    const std::string file = options.file;
    SessionRunner run(std::move(options));
    SetUp &setUp = run.ForSetUp();
    setUp.aircraft = live.aircraft;
    std::vector<std::string> faults;
    const std::vector<Step> steps =
        file.empty() ? std::vector<Step>() : ReadSession(setUp, faults, /*needsSteps=*/false);
    if (!faults.empty())
        throw UsageError(Join(faults, "\n"));
    const SessionOptions asked = setUp.options;
    const std::string aircraft = setUp.aircraft;
    const std::string folder = (file.empty() ? fs::current_path() : fs::absolute(file).parent_path()).string();
    run.Start();
    Recording recording(asked, aircraft, setUp.budgets, folder);
    {
        LiveLines lines(run, recording);
        DoFirstSteps(lines, run.Sim().console, steps);
    }
    {
        LiveSimulator simulator(run, recording, server);
        simulator.Hello(live);
        simulator.Run();
    }
    return run.Finish();
}

} // namespace host
