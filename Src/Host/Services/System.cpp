// The services of the simulator itself: log, clock, paths, versions, messages.
#include "Common/Text.h"
#include "ServiceTable.h"
#include "Simulator.h"

#include <utility>

namespace host {
namespace {

constexpr std::size_t kPathRoom = 512;
constexpr int kVersion = 100;
constexpr int kEdition = 1; // the second number of getVersions: 1 is this host
constexpr int kEnglish = 0;

float GetElapsedTime() { return Enter().Elapsed(); }

void DebugString(const char *text) {
    Simulator &simulator = Enter();
    if (text)
        simulator.console.Log(text);
}

// This host has no sound; speech goes to the log.
void SpeakString(const char *text) {
    Simulator &simulator = Enter();
    if (text)
        simulator.console.Note(std::string("says: ") + text);
}

void GetSystemPath(char *outPath) { CopyText(outPath, kPathRoom, Enter().options.root); }

void GetPrefsPath(char *outPath) { CopyText(outPath, kPathRoom, Enter().options.root + "Preferences/"); }

void GetVersions(int *hostVersion, int *hostValue) {
    Enter();
    Store(hostVersion, kVersion);
    Store(hostValue, kEdition);
}

int GetLanguage() {
    Enter();
    return kEnglish;
}

// There is nothing to read again. The folders are not reported a second time:
// their plugins are still loaded and would be started twice.
int ReloadScenery() {
    Enter();
    return 1;
}

// Nobody can confirm the message, so the run continues. The library shows it
// between unloading and loading all plugins. The scenery folders are reported
// again in the next frame, which loads their plugins. A watch puts new plugins in
// place here; they are then loaded by its start, which reports the scenery itself.
void ShowMessage(const char *line1, const char *line2, const char *line3, const char *line4) {
    Simulator &simulator = Enter();
    if (const auto place = std::exchange(simulator.placePlugins, nullptr))
        return place();
    std::string text = "message box:";
    for (const char *line : {line1, line2, line3, line4}) {
        if (line && *line)
            text += std::string(" ") + line;
    }
    simulator.console.Show(text);
    simulator.sceneryDue = true;
}

void ShowProgress(const char *text) {
    Simulator &simulator = Enter();
    if (text)
        simulator.console.Note(text);
}

// This host ignores messages; a trace shows them.
void ReceiveMessage(AVSKPluginID /*sender*/, int /*message*/, void * /*parameter*/) {}

} // namespace

void FillSystemSlots(AVSKHostCallbacks &table) {
    table.getElapsedTime = GetElapsedTime;
    table.debugString = DebugString;
    table.speakString = SpeakString;
    table.getSystemPath = GetSystemPath;
    table.getPrefsPath = GetPrefsPath;
    table.getVersions = GetVersions;
    table.getLanguage = GetLanguage;
    table.reloadScenery = ReloadScenery;
    table.showMessage = ShowMessage;
    table.showProgress = ShowProgress;
    table.receiveMessage = ReceiveMessage;
}

} // namespace host
