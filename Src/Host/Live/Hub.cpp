// Passes messages between pages and simulator; see Hub.h. Called by the server.
#include "Hub.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <cstdio>
#include <stdexcept>
#include <utility>

namespace host {
namespace {

using Json = nlohmann::json;

constexpr std::size_t kMostPages = 16;
constexpr std::size_t kMostDirect = 256; // messages that a page has not taken
constexpr std::size_t kMostAsked = 4096;
constexpr std::size_t kMostTopics = 32; // of a page

std::string TextOf(const Json &message) {
    return message.dump(-1, ' ', /*ensure_ascii=*/false, Json::error_handler_t::replace);
}

Json Parse(const std::string &text) { return Json::parse(text, nullptr, /*allow_exceptions=*/false); }

// The text behind a name; empty if there is none.
std::string TextIn(const Json &message, const char *name) {
    if (!message.is_object())
        return "";
    const auto found = message.find(name);
    return found != message.end() && found->is_string() ? found->get<std::string>() : "";
}

void Say(const std::string &line) {
    std::printf("live: %s\n", line.c_str());
    std::fflush(stdout);
}

} // namespace

Hub::Hub(Events &events, const LiveOptions &live, RoundFolders &folders, Calls calls)
    : mLive(live), mFolders(folders), mCalls(std::move(calls)),
      mSimulator(events, {[this](const ChannelMessage &message) { OnSimulator(message); },
                          [this](const SimulatorEnd &end) { OnSimulatorsEnd(end); }}) {}

// ---- The simulator

void Hub::StartSimulator() {
    const std::string folder = mFolders.Next();
    std::vector<std::string> arguments = mLive.arguments;
    if (mLive.watch)
        arguments.insert(arguments.end(), {"--round", folder});
    mSimulator.Start(arguments, folder);
    SendTopics();
}

void Hub::End() {
    if (mIsEnding)
        mSimulator.Kill();
    mIsEnding = true;
    if (!mSimulator.IsRunning())
        return mCalls.ended();
    mSimulator.Stop();
}

void Hub::Restart(const std::string &why) {
    if (mIsEnding || !mRestartsFor.empty())
        return;
    mRestartsFor = why;
    if (mSimulator.IsRunning())
        return mSimulator.Stop();
    OnSimulatorsEnd({});
}

void Hub::OnSimulatorsEnd(const SimulatorEnd &end) {
    if (mIsEnding)
        return mCalls.ended();
    mAsked.clear();
    const std::string why = std::exchange(mRestartsFor, "");
    if (why.empty()) {
        Say("the simulator has ended with " +
            (end.signal.empty() ? "status " + std::to_string(end.status) : "signal " + end.signal) +
            "; the page can start it again");
        const Json message = {{"topic", "ended"},
                              {"status", end.status},
                              {"signal", end.signal.empty() ? Json() : Json(end.signal)},
                              {"report", end.report}};
        mEnd = TextOf(message);
        TellAll(message);
        if (!std::exchange(mIsReady, true))
            mCalls.lost(end);
        return;
    }
    Say("the simulator starts again: " + why);
    mEnd.clear();
    mLatest.Clear();
    TellAll({{"topic", "restarted"}, {"why", why}});
    try {
        StartSimulator();
    } catch (const std::runtime_error &error) {
        OnSimulatorsEnd({2, "", error.what()});
    }
}

void Hub::OnSimulator(const ChannelMessage &message) {
    if (message.kind == MessageKind::Tiles)
        mLatest.AddTiles(message.payload);
    else
        OnSimulatorsJson(message.payload);
    WakeAll();
}

// What has an ID answers one page; some answers are for all pages.
void Hub::OnSimulatorsJson(const std::string &text) {
    Json message = Parse(text);
    const std::string topic = TextIn(message, "topic");
    if (topic.empty())
        throw std::runtime_error("no JSON object with a topic");
    const auto id = message.find("id");
    if (id != message.end() && id->is_number_unsigned()) {
        const auto asked = mAsked.find(id->get<std::uint32_t>());
        if (asked == mAsked.end())
            return;
        *id = Parse(asked->second.id);
        const auto page = mPages.find(asked->second.page);
        mAsked.erase(asked);
        if (page != mPages.end())
            Tell(page->second, message);
    } else if (topic == "answer" || topic == "frameCalls") {
        TellAll(message);
    } else {
        mLatest.Add(topic, message, text);
    }
    if (topic == "hello" && !std::exchange(mIsReady, true))
        mCalls.ready();
}

// ---- The pages

bool Hub::HasRoom() const { return mPages.size() < kMostPages; }

void Hub::Add(Upgrade &upgrade) {
    const int number = ++mLastPage;
    Page &page = mPages[number];
    page.direct.push_back(
        std::make_shared<const std::string>(TextOf({{"topic", "connected"}, {"running", mEnd.empty()}})));
    if (!mEnd.empty())
        page.direct.push_back(std::make_shared<const std::string>(mEnd));
    ClientCalls calls;
    calls.message = [this, number](const std::string &text) { return OnPage(number, text); };
    calls.next = [this, &page] { return NextFor(page); };
    calls.closed = [this, number] {
        mPages.erase(number);
        SendTopics();
    };
    page.client = OpenClient(upgrade, std::move(calls));
}

std::string Hub::OnPage(int number, const std::string &text) {
    Json message = Parse(text);
    const std::string action = TextIn(message, "do");
    if (action.empty())
        return "no JSON object with a text 'do'";
    Page &page = mPages.at(number);
    if (action == "topics") {
        OnPagesTopics(page, message);
    } else if (action == "shown") {
        const auto version = message.find("version");
        if (version == message.end() || !version->is_number_unsigned())
            return "'shown' needs a version";
        const auto shown = version->get<std::uint32_t>();
        std::erase_if(page.progress.unshown, [shown](std::uint32_t sent) { return sent <= shown; });
    } else if (action == "restart") {
        Restart("asked");
    } else {
        Forward(number, message, text);
    }
    page.client->Wake();
    return "";
}

void Hub::OnPagesTopics(Page &page, const Json &message) {
    page.open.clear();
    const auto open = message.find("open");
    for (const Json &topic : open != message.end() ? *open : Json::array()) {
        if (topic.is_string() && page.open.size() < kMostTopics)
            page.open.insert(topic.get<std::string>());
    }
    // A topic that is opened again gets its state again.
    std::erase_if(page.progress.states,
                  [&page](const auto &state) { return state.first != "hello" && !page.open.contains(state.first); });
    SendTopics();
}

// Tells the simulator which topics the pages have open.
void Hub::SendTopics() {
    mOpen.clear();
    for (const auto &[number, page] : mPages)
        mOpen.insert(page.open.begin(), page.open.end());
    mLatest.Keep(mOpen);
    mSimulator.Send(TextOf({{"do", "topics"}, {"open", mOpen}}));
}

// IDs are those of one page. In the simulator they are different for all.
void Hub::Forward(int number, Json &message, const std::string &text) {
    const auto id = message.find("id");
    const bool hasId = id != message.end();
    const Json pagesId = hasId ? *id : Json();
    if (hasId)
        *id = ++mLastAsked;
    if (!mSimulator.Send(hasId ? TextOf(message) : text)) {
        const char *why = mSimulator.IsRunning() ? "the simulator does not answer: restart it"
                                                 : "the simulator has ended: restart it";
        if (hasId)
            Tell(mPages.at(number), {{"topic", "answer"}, {"id", pagesId}, {"ok", false}, {"text", why}});
    } else if (hasId) {
        mAsked[mLastAsked] = {number, TextOf(pagesId)};
        if (mAsked.size() > kMostAsked)
            mAsked.erase(mAsked.begin());
    }
}

std::optional<Outgoing> Hub::NextFor(Page &page) const {
    if (page.direct.empty())
        return mLatest.Next(page.open, page.progress);
    Outgoing next{std::move(page.direct.front())};
    page.direct.pop_front();
    return next;
}

void Hub::Tell(Page &page, const Json &message) {
    page.direct.push_back(std::make_shared<const std::string>(TextOf(message)));
    if (page.direct.size() > kMostDirect)
        page.client->Drop();
}

void Hub::TellAll(const Json &message) {
    for (auto &[number, page] : mPages)
        Tell(page, message);
    WakeAll();
}

void Hub::WakeAll() {
    for (auto &[number, page] : mPages)
        page.client->Wake();
}

} // namespace host
