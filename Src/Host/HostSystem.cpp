// The slots about the simulator itself: log, clock, paths, versions, keys and
// buttons, messages.
#include "HostTable.h"
#include "Simulator.h"
#include "Text.h"

#include <cctype>

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

// No loudspeaker: what is said is read.
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

// The host has no functions of its own for plugins.
void *FindSymbol(const char * /*name*/) {
    Enter();
    return nullptr;
}

// Nobody types, so these are the only keys that plugins see. The key is a
// character, whatever its type; its virtual key is that of its capital letter.
void SimulateKeyPress(int /*keyType*/, int key) {
    constexpr int kDown = 4; // this host's key flags; 1 is shift and 2 control
    constexpr int kUp = 8;
    Enter();
    const auto character = static_cast<char>(key);
    const auto virtualKey = static_cast<char>(std::toupper(static_cast<unsigned char>(key)));
    AVSKKeyPressHook(character, kDown, virtualKey);
    AVSKKeyPressHook(character, kUp, virtualKey);
}

// No key command and no button is bound to anything here.
void CommandKeyStroke(int /*key*/) { Enter(); }
void CommandButton(const int * /*buttons*/, int /*release*/, int /*pass*/) { Enter(); }

// There is nothing to read again. The folders are not reported a second time:
// their plugins are still loaded, and starting them twice would ruin them.
int ReloadScenery() {
    Enter();
    return 1;
}

// Nobody is there to confirm, so the run goes on. The library shows this
// message between unloading and loading all plugins: IDs are given out anew,
// and scenery plugins come back when their folders are reported.
void ShowMessage(const char *line1, const char *line2, const char *line3, const char *line4) {
    Simulator &simulator = Enter();
    for (const char *line : {line1, line2, line3, line4}) {
        if (line && *line)
            simulator.console.Note(line);
    }
    simulator.hostCalls.clear();
    simulator.sceneryDue = true;
}

void ShowProgress(const char *text) {
    Simulator &simulator = Enter();
    if (text)
        simulator.console.Note(text);
}

// Messages are counted for their sender: in here the host itself is the plugin that runs.
void ReceiveMessage(AVSKPluginID sender, int /*message*/, void * /*parameter*/) { ++gSimulator->hostCalls[sender]; }

} // namespace

void FillSystemSlots(AVSKHostCallbacks &table) {
    table.getElapsedTime = GetElapsedTime;
    table.debugString = DebugString;
    table.speakString = SpeakString;
    table.getSystemPath = GetSystemPath;
    table.getPrefsPath = GetPrefsPath;
    table.getVersions = GetVersions;
    table.getLanguage = GetLanguage;
    table.findSymbol = FindSymbol;
    table.simulateKeyPress = SimulateKeyPress;
    table.commandKeyStroke = CommandKeyStroke;
    table.commandButton = CommandButton;
    table.reloadScenery = ReloadScenery;
    table.showMessage = ShowMessage;
    table.showProgress = ShowProgress;
    table.receiveMessage = ReceiveMessage;
}

} // namespace host
