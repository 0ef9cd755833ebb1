// The plugins with what they own, their windows, and what was found; see States.h.
// Called by LiveTopics.cpp.
#include "States.h"

#include "FrameCalls.h"

#include "Observing/Listings.h"
#include "Rules/Findings.h"
#include "Session/Runner.h"

#include "AVSK/AVSKPlugins.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>

namespace host {
namespace {

using Json = nlohmann::json;

const char *LevelName(Level level) {
    return level == Level::Error ? "error" : level == Level::Warning ? "warning" : "note";
}

// With four digits, which are enough for a reader.
double Rounded(double milliseconds) { return std::round(milliseconds * 1e4) / 1e4; }

} // namespace

Json PluginsState(SessionRunner &run, const FrameCalls *times) {
    constexpr std::size_t kMostOwned = 300;
    const crossings::Unobserved unobserved;
    const Ledger &owners = run.Observing().Owners();
    const Console &console = run.Sim().console;
    Json plugins = Json::array();
    for (int i = 1; i < AVSKCountPlugins(); ++i) {
        const AVSKPluginID plugin = AVSKGetNthPlugin(i);
        std::array<char, AVSK_TEXT_SIZE> name{};
        std::array<char, AVSK_TEXT_SIZE> path{};
        std::array<char, AVSK_TEXT_SIZE> signature{};
        std::array<char, AVSK_TEXT_SIZE> description{};
        AVSKGetPluginInfo(plugin, name.data(), path.data(), signature.data(), description.data());
        const std::vector<Possession> possessions = owners.OwnedBy(plugin);
        Json owns = Json::array();
        for (std::size_t k = 0; k < std::min(possessions.size(), kMostOwned); ++k)
            owns.push_back({{"kind", TraitsOf(possessions[k].kind).word},
                            {"what", console.WithoutRoot(possessions[k].what)},
                            {"madeBy", possessions[k].madeBy}});
        Json entry = {{"id", plugin},
                      {"name", name.data()},
                      {"signature", signature.data()},
                      {"description", description.data()},
                      {"path", console.WithoutRoot(path.data())},
                      {"enabled", AVSKIsPluginEnabled(plugin) != 0},
                      {"calls", run.Observing().Times().CallsOf(plugin)},
                      {"owned", possessions.size()},
                      {"owns", std::move(owns)}};
        if (times) {
            const std::string &label = crossings::LabelOf(plugin);
            double last = 0;
            if (!times->Frames().empty()) {
                const auto &present = times->Frames().back().plugins;
                const auto own = present.find(label);
                last = own == present.end() ? 0 : own->second;
            }
            entry["time"] = {{"last", Rounded(last)}, {"worst", Rounded(times->WorstOf(label))}};
        }
        plugins.push_back(std::move(entry));
    }
    return {{"topic", "plugins"}, {"plugins", std::move(plugins)}, {"leftBehind", owners.LeftBehind()}};
}

Json WindowsState(SessionRunner &run) {
    const crossings::Unobserved unobserved;
    Json windows = Json::array();
    for (int i = 1; i < AVSKCountPlugins(); ++i) {
        const AVSKPluginID plugin = AVSKGetNthPlugin(i);
        std::array<char, AVSK_TEXT_SIZE> name{};
        AVSKGetPluginInfo(plugin, name.data(), nullptr, nullptr, nullptr);
        int number = 0;
        for (const WindowState &window : WindowsOf(run.Observing().Owners(), plugin))
            windows.push_back({{"plugin", name.data()},
                               {"number", ++number},
                               {"place", window.place},
                               {"visible", window.visible},
                               {"front", window.front}});
    }
    return {{"topic", "windows"}, {"windows", std::move(windows)}};
}

Json FindingsState(SessionRunner &run) {
    Json findings = Json::array();
    for (const Finding &finding : run.Found()->All())
        findings.push_back({{"level", LevelName(finding.rule->level)},
                            {"rule", finding.rule->id},
                            {"plugin", finding.plugin},
                            {"function", finding.function},
                            {"text", finding.text},
                            {"callback", finding.callback},
                            {"source", finding.source},
                            {"frame", finding.frame},
                            {"count", finding.count},
                            {"allowed", finding.allowed},
                            {"advice", finding.rule->advice}});
    return {{"topic", "findings"}, {"findings", std::move(findings)}};
}

Json TimesSince(const FrameCalls &calls, int frame) {
    Json frames = Json::array();
    for (const FrameCalls::Frame &run : calls.Frames()) {
        if (run.number <= frame)
            continue;
        Json plugins = Json::object();
        for (const auto &[plugin, time] : run.plugins)
            plugins[std::string(plugin)] = Rounded(time);
        frames.push_back({{"frame", run.number}, {"total", Rounded(run.total)}, {"plugins", std::move(plugins)}});
    }
    return {{"topic", "time"}, {"frames", std::move(frames)}};
}

Json CallsOf(const FrameCalls &calls, int frame) {
    constexpr std::size_t kMost = 5000;
    Json list = Json::array();
    const auto &frames = calls.Frames();
    const auto found = std::find_if(frames.begin(), frames.end(),
                                    [frame](const FrameCalls::Frame &run) { return run.number == frame; });
    if (found == frames.end())
        return {{"topic", "frameCalls"}, {"frame", frame}, {"calls", list}, {"omitted", 0}};
    const std::size_t count = std::min(found->calls.size(), kMost);
    for (std::size_t i = 0; i < count; ++i) {
        const FrameCalls::Call &call = found->calls[i];
        std::string name = call.what->name;
        if (!call.callback.empty())
            name.append(" ").append(call.callback);
        list.push_back({{"depth", call.depth},
                        {"plugin", call.plugin},
                        {"name", std::move(name)},
                        {"start", Rounded(call.start)},
                        {"ms", Rounded(call.milliseconds)}});
    }
    return {{"topic", "frameCalls"},
            {"frame", frame},
            {"calls", std::move(list)},
            {"omitted", found->calls.size() - count}};
}

} // namespace host
