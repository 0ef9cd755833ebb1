// Adds up the time in plugins; see Profile.h.
#include "Profile.h"

#include "CallbackTable.h"
#include "ObservedHost.h"

#include "Common/NearestName.h"
#include "Crossings/Callback.h"
#include "Crossings/Format.h"

#include <chrono>
#include <cstring>

namespace host {
namespace {

using crossings::Crossing;
using crossings::Side;

double Milliseconds(Crossing::Clock::duration time) { return std::chrono::duration<double, std::milli>(time).count(); }

bool IsPlugins(const Crossing &crossing) { return crossing.to == Side::Plugin; }

} // namespace

Profile::Profile(const ObservedHost &host, bool seesOpenGL) : mPresentFrame(host.Frame()), mSeesOpenGL(seesOpenGL) {
    crossings::AddObserver(*this);
}
Profile::~Profile() { crossings::RemoveObserver(*this); }

crossings::Interest Profile::InterestIn(const crossings::Prototype &function) const {
    using Form = crossings::Prototype::Form;
    return function.form == Form::Service    ? crossings::Interest::None
           : function.form == Form::Function ? crossings::Interest::Calls
                                             : crossings::Interest::Times;
}

void Profile::Begins(const Crossing &crossing) {
    const auto plugin = static_cast<std::size_t>(crossing.plugin);
    if (crossing.from == Side::Plugin && crossing.to == Side::Library && crossing.plugin >= 0) {
        if (plugin >= mCalls.size())
            mCalls.resize(plugin + 1);
        ++mCalls[plugin];
    }
    if (!IsPlugins(crossing))
        return;
    if (crossing.IsStart() && plugin < mCalls.size())
        mCalls[plugin] = 0; // the ID may have belonged to another plugin
    if (mPresentFrame != mFrame)
        CloseFrame();
    mInner.emplace_back();
}

void Profile::EndOpenGL(const Crossing &call) {
    if (!call.outer || !IsPlugins(*call.outer) || mInner.empty())
        return;
    const Time time = call.Duration();
    mInner.back().time += time;
    (call.outer->IsStart() ? mInner.back().openGL : OpenGLRowOf(*call.outer)).Add(1, time);
}

void Profile::Ends(const Crossing &crossing) {
    if (crossing.to == Side::OpenGL)
        return EndOpenGL(crossing);
    if (!IsPlugins(crossing) || mInner.empty())
        return;
    const Time whole = crossing.Duration();
    const Inner inner = mInner.back();
    const Time own = whole - inner.time;
    mInner.pop_back();
    if (!mInner.empty())
        mInner.back().time += whole;
    // A plugin gets its name at its start, and possibly the ID of an unloaded one.
    if (crossing.IsStart())
        mKnown.clear();
    if (inner.openGL.calls > 0)
        OpenGLRowOf(crossing).Add(inner.openGL.calls, inner.openGL.total);
    RowOf(crossing).Add(1, own);
}

Profile::Known &Profile::KnownOf(const Crossing &crossing) {
    const std::size_t number = crossing.callback->number;
    if (number >= mKnown.size())
        mKnown.resize(number + 1);
    Known &known = mKnown[number];
    if (known.plugin != crossing.plugin)
        known = {crossing.plugin, nullptr, nullptr};
    return known;
}

Profile::Row &Profile::RowOf(const Crossing &crossing) {
    Known &known = KnownOf(crossing);
    if (!known.row)
        known.row = &mRows[crossings::LabelOf(crossing.plugin)][crossings::TitleOf(crossing)];
    return *known.row;
}

Profile::Row &Profile::OpenGLRowOf(const Crossing &callback) {
    Known &known = KnownOf(callback);
    if (!known.openGL)
        known.openGL = &mRows[crossings::LabelOf(callback.plugin)]["OpenGL in " + crossings::TitleOf(callback)];
    return *known.openGL;
}

void Profile::CloseFrame() {
    for (auto &[plugin, rows] : mRows) {
        Time all{};
        const std::pair<const std::string, Row> *most = nullptr;
        for (auto &entry : rows) {
            all += entry.second.present;
            if (!most || entry.second.present > most->second.present)
                most = &entry;
            if (entry.second.present > entry.second.worst) {
                entry.second.worst = entry.second.present;
                entry.second.worstFrame = mFrame;
            }
        }
        // Frame 0 is loading, which has no budget.
        const double budget = BudgetOf(plugin);
        if (mHasBudgets && mFrame > 0 && budget > 0 && Milliseconds(all) > budget) {
            Excess &excess = mExcesses[plugin];
            ++excess.frames;
            if (all > excess.time)
                excess = {excess.frames, mFrame, all, most->first, most->second.present};
        }
        for (auto &entry : rows)
            entry.second.present = {};
    }
    mFrame = mPresentFrame;
}

void Profile::EndFrames() {
    CloseFrame();
    mHasBudgets = false;
}

double Profile::BudgetOf(const std::string &plugin) const {
    for (const std::string &name : {plugin, std::string()}) {
        if (const auto found = mBudgets.find(name); found != mBudgets.end())
            return found->second;
    }
    return 0;
}

std::vector<std::string> Profile::Table() {
    CloseFrame();
    const CallbackTable table(mRows, [](const Row &row) { return row.total; });
    std::vector<std::string> lines = {Formatted("%-*s  %9s  %10s  %9s  %11s  %6s  %s", table.width, "plugin", "calls",
                                                "total ms", "mean us", "worst frame", "ms", "callback")};
    for (const auto &[plugin, callback, row] : table.entries)
        lines.push_back(Formatted("%-*s  %9ld  %10.3f  %9.2f  %11d  %6.3f  %s", table.width, plugin.c_str(), row.calls,
                                  Milliseconds(row.total), Milliseconds(row.total) * 1e3 / row.calls, row.worstFrame,
                                  Milliseconds(row.worst), callback.c_str()));
    return lines;
}

std::vector<std::string> Profile::UnusedBudgets() const {
    std::vector<std::string> started;
    for (const auto &[plugin, rows] : mRows)
        started.push_back(plugin);
    std::vector<std::string> lines;
    for (const auto &[plugin, milliseconds] : mBudgets) {
        if (!plugin.empty() && !mRows.contains(plugin))
            lines.push_back("no plugin '" + plugin + "' was started, so its budget was not checked" +
                            DidYouMean(plugin, started));
    }
    return lines;
}

std::vector<std::string> Profile::OverBudget() const {
    std::vector<std::string> lines;
    for (const auto &[plugin, excess] : mExcesses)
        lines.push_back("'" + plugin + "'" +
                        Formatted(" took %.3f ms in frame %d, more than its budget of %g ms, most of it (%.3f ms) in ",
                                  Milliseconds(excess.time), excess.frame, BudgetOf(plugin),
                                  Milliseconds(excess.callbackTime)) +
                        excess.callback + Formatted("; over it in %d frames", excess.frames));
    return lines;
}

long Profile::CallsOf(AVSKPluginID plugin) const {
    const auto index = static_cast<std::size_t>(plugin);
    return index < mCalls.size() ? mCalls[index] : 0;
}

} // namespace host
