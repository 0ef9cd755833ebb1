// Keeps calls by frame; see FrameCalls.h. Called by the crossings and by LiveSimulator.cpp.
#include "FrameCalls.h"

#include "Crossings/Callback.h"
#include "Crossings/Format.h"

#include <algorithm>
#include <chrono>
#include <iterator>
#include <utility>

#include <fnmatch.h>

namespace host {
namespace {

using crossings::Crossing;
using crossings::Side;

// Enough for ten seconds of a usual simulator, and a limit to what a busy one keeps.
constexpr std::size_t kKeptFrames = 600;
constexpr std::size_t kKeptCalls = 300'000;
constexpr std::size_t kMostCallsOfFrame = 20'000;
constexpr std::size_t kKeptBytes = 16 * 1024 * 1024;
constexpr std::size_t kKeptLines = 2000;

double Milliseconds(Crossing::Clock::duration time) { return std::chrono::duration<double, std::milli>(time).count(); }

} // namespace

FrameCalls::FrameCalls(const int &frame) : mNow(frame), mSeen(frame), mClosed(frame) { crossings::AddObserver(*this); }
FrameCalls::~FrameCalls() { crossings::RemoveObserver(*this); }

void FrameCalls::ShowText(bool shown) {
    if (shown == (mTextWriter != nullptr))
        return;
    mTextWriter.reset();
    mJsonWriter.reset();
    mText.clear();
    mLines.clear();
    mFrame.json.clear();
    if (!shown)
        return;
    for (Frame &frame : mFrames)
        frame.json.clear(); // the times of a new writer have another origin
    mBytes = 0;
    mTextWriter = MakeTextWriter(mTextSink);
    mJsonWriter = MakeJsonWriter(mJsonSink);
    mJsonHead = std::exchange(mFrame.json, "");
}

void FrameCalls::Begins(const Crossing &crossing) {
    if (mOpen.empty() && mSeen != mNow) {
        if (mSeen > mClosed)
            Close(mSeen); // a line has run several frames
        mSeen = mNow;
    }
    if (mFrame.calls.empty())
        mBegan = crossing.began;
    Open open{&crossing, mFrame.calls.size(), {}, mTextWriter && IsWanted(crossing)};
    if (mFrame.calls.size() < kMostCallsOfFrame)
        mFrame.calls.push_back({static_cast<int>(mOpen.size()), crossings::LabelOf(crossing.plugin), &crossing.what,
                                crossings::CallbackName(crossing), Milliseconds(crossing.began - mBegan), 0});
    if (open.isShown)
        mTextWriter->Begin(crossing, mShown++);
    if (mJsonWriter && open.index < kMostCallsOfFrame)
        mJsonWriter->Begin(crossing, 0);
    mOpen.push_back(open);
}

void FrameCalls::Ends(const Crossing &crossing) {
    if (mOpen.empty() || mOpen.back().crossing != &crossing)
        return; // it began before this observed
    const Open open = mOpen.back();
    mOpen.pop_back();
    const Crossing::Clock::duration whole = crossing.Duration();
    if (open.index < kMostCallsOfFrame)
        mFrame.calls[open.index].milliseconds = Milliseconds(whole);
    if (crossing.to == Side::Plugin)
        mFrame.plugins[crossings::LabelOf(crossing.plugin)] += Milliseconds(whole - open.inner);
    // The host's work for a plugin is not the plugin's: it draws pictures, which no run without a page does.
    if (mOpen.empty())
        mFrame.total += Milliseconds(whole);
    else
        mOpen.back().inner += crossing.to == Side::Plugin || crossing.to == Side::Host ? whole : open.inner;
    if (open.isShown)
        mTextWriter->End(crossing, --mShown);
    if (mJsonWriter && open.index < kMostCallsOfFrame)
        mJsonWriter->End(crossing, 0);
    if (open.isShown)
        DivideLines();
}

bool FrameCalls::IsWanted(const Crossing &crossing) const {
    const auto matches = [this](std::string_view text) {
        return fnmatch(mFilter.c_str(), std::string(text).c_str(), FNM_CASEFOLD) == 0;
    };
    return mFilter.empty() || matches(crossing.what.name) || matches(crossings::CallbackName(crossing)) ||
           matches(crossings::LabelOf(crossing.plugin)) ||
           (crossing.outer && matches(crossings::LabelOf(crossing.outer->plugin)));
}

void FrameCalls::DivideLines() {
    std::size_t begin = 0;
    for (std::size_t end = 0; (end = mText.find('\n', begin)) != std::string::npos; begin = end + 1)
        mLines.push_back(mText.substr(begin, end - begin));
    mText.erase(0, begin);
    while (mLines.size() > kKeptLines) {
        mLines.pop_front();
        ++mGap;
    }
}

void FrameCalls::EndFrame() {
    if (mNow > mClosed && mOpen.empty())
        Close(mNow);
}

void FrameCalls::Close(int number) {
    mFrame.number = number;
    mClosed = number;
    for (const auto &[plugin, time] : mFrame.plugins)
        mWorst[plugin] = std::max(mWorst[plugin], time);
    mCalls += mFrame.calls.size();
    mBytes += mFrame.json.size();
    mFrames.push_back(std::exchange(mFrame, {}));
    while (mFrames.size() > kKeptFrames || (mFrames.size() > 1 && (mCalls > kKeptCalls || mBytes > kKeptBytes))) {
        mCalls -= mFrames.front().calls.size();
        mBytes -= mFrames.front().json.size();
        mFrames.pop_front();
    }
}

double FrameCalls::WorstOf(const std::string &plugin) const {
    const auto worst = mWorst.find(plugin);
    return worst == mWorst.end() ? 0 : worst->second;
}

FrameCalls::Lines FrameCalls::TakeLines(std::size_t most) {
    Lines taken;
    taken.gap = std::exchange(mGap, 0);
    while (mLines.size() > most) {
        mLines.pop_front();
        ++taken.gap;
    }
    taken.lines.assign(std::make_move_iterator(mLines.begin()), std::make_move_iterator(mLines.end()));
    mLines.clear();
    return taken;
}

std::string FrameCalls::Json(std::size_t most) const {
    auto begin = mFrames.end();
    for (std::size_t bytes = mJsonHead.size(); begin != mFrames.begin(); --begin) {
        bytes += std::prev(begin)->json.size();
        if (bytes > most)
            break;
    }
    std::string text = mJsonHead.empty() ? "[" : mJsonHead; // empty if text was never shown
    for (; begin != mFrames.end(); ++begin)
        text += begin->json;
    return text + "\n]\n";
}

} // namespace host
