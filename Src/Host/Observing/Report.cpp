// The table of plugins at the end of a run; see Report.h.
#include "Report.h"

#include "Common/Columns.h"
#include "Common/Terminal.h"
#include "Common/Utf8.h"
#include "Services/Simulator.h"

#include "Profile.h"

#include "AVSK/AVSKPlugins.h"

#include <array>
#include <cstdio>
#include <string>
#include <vector>

#include <unistd.h>

namespace host {
namespace {

std::vector<std::string> DescribePlugin(const Profile &times, AVSKPluginID id) {
    std::array<char, AVSK_TEXT_SIZE> name{};
    std::array<char, AVSK_TEXT_SIZE> signature{};
    AVSKGetPluginInfo(id, name.data(), nullptr, signature.data(), nullptr);
    return {std::to_string(id), OneLine(name.data(), kWidestName), OneLine(signature.data(), kWidestName),
            AVSKIsPluginEnabled(id) != 0 ? "yes" : "no", std::to_string(times.CallsOf(id))};
}

} // namespace

void PrintReport(const Simulator &simulator, const Profile &times, bool hasRealTime) {
    const std::string build = simulator.datarefs.Build();
    std::printf("\n%d frames, %.2f simulated seconds", simulator.frame, static_cast<double>(simulator.Elapsed()));
    if (hasRealTime)
        std::printf(", in %.2f s", simulator.console.Seconds());
    std::printf("; library build: %s\n", build.empty() ? "not told" : build.c_str());

    std::printf("objects: %zu loaded, %zu on their way, %ld instances drawn; probes: %zu; view: %s\n\n",
                simulator.objects.Count(), simulator.objects.CountPending(), simulator.objects.drawn,
                simulator.probes.Count(), simulator.camera.ViewName());

    std::vector<std::vector<std::string>> rows = {{"ID", "plugin", "signature", "enabled", "calls"}};
    for (int i = 0; i < AVSKCountPlugins(); ++i)
        rows.push_back(DescribePlugin(times, AVSKGetNthPlugin(i)));
    std::vector<std::string> lines = AlignColumns(rows, {.numbers = {0, 4}});
    lines[0] = Emphasised(Emphasis::Heading, lines[0], STDOUT_FILENO);
    for (const std::string &line : lines)
        std::puts(line.c_str());
    std::printf("\nCalls: how often the plugin called the library since it was loaded.\n");
    std::fflush(stdout);
}

} // namespace host
