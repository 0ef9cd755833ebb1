// The table of plugins at the end of a run; see Report.h.
#include "Report.h"

#include "Common/Terminal.h"
#include "Common/Utf8.h"
#include "Services/Simulator.h"

#include "Profile.h"

#include "AVSK/AVSKPlugins.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <string>
#include <vector>

#include <unistd.h>

namespace host {
namespace {

constexpr std::size_t kColumns = 5;
using Row = std::array<std::string, kColumns>;

Row Describe(const Profile &times, AVSKPluginID id) {
    std::array<char, AVSK_TEXT_SIZE> name{};
    std::array<char, AVSK_TEXT_SIZE> signature{};
    AVSKGetPluginInfo(id, name.data(), nullptr, signature.data(), nullptr);
    return {std::to_string(id), OneLine(name.data(), kWidestName), OneLine(signature.data(), kWidestName),
            AVSKIsPluginEnabled(id) != 0 ? "yes" : "no", std::to_string(times.CallsOf(id))};
}

void PrintRow(const Row &row, const std::array<std::size_t, kColumns> &widths) {
    constexpr std::array<bool, kColumns> kNumber = {true, false, false, false, true};
    std::string line;
    for (std::size_t i = 0; i < kColumns; ++i) {
        const std::string blanks(widths[i] - CountCharacters(row[i]), ' ');
        line += kNumber[i] ? blanks + row[i] : row[i] + blanks;
        line += "  ";
    }
    line.erase(line.find_last_not_of(' ') + 1);
    std::printf("%s\n", line.c_str());
}

} // namespace

void PrintReport(const Simulator &simulator, const Profile &times) {
    const std::string build = simulator.datarefs.Build();
    std::printf("\n%d frames, %.2f simulated seconds, in %.2f s; library build: %s\n", simulator.frame,
                static_cast<double>(simulator.Elapsed()), simulator.console.Seconds(),
                build.empty() ? "not told" : build.c_str());

    std::printf("objects: %zu loaded, %zu on their way, %ld instances drawn; probes: %zu; view: %s\n\n",
                simulator.objects.Count(), simulator.objects.CountPending(), simulator.objects.drawn,
                simulator.probes.Count(), simulator.camera.ViewName());

    std::vector<Row> rows = {{"ID", "plugin", "signature", "enabled", "calls"}};
    for (int i = 0; i < AVSKCountPlugins(); ++i)
        rows.push_back(Describe(times, AVSKGetNthPlugin(i)));

    std::array<std::size_t, kColumns> widths{};
    for (const Row &row : rows) {
        for (std::size_t i = 0; i < kColumns; ++i)
            widths[i] = std::max(widths[i], CountCharacters(row[i]));
    }
    std::fputs(std::string(EmphasisBegin(Emphasis::Heading, STDOUT_FILENO)).c_str(), stdout);
    PrintRow(rows[0], widths);
    std::fputs(std::string(EmphasisEnd(STDOUT_FILENO)).c_str(), stdout);
    for (std::size_t i = 1; i < rows.size(); ++i)
        PrintRow(rows[i], widths);
    std::printf("\nCalls: how often the plugin called the library since it was loaded.\n");
    std::fflush(stdout);
}

} // namespace host
