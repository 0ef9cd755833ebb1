// Keys, buttons, paths, folders and forwarders to the host, some of which check
// their arguments. Owns gButtons; called by plugins and by the hook of the frame
// event. Commands are in AVSKUtilitiesCommands.cpp.
#include "AVSK/AVSKUtilities.h"

#include "AVSKErrors.h"
#include "AVSKFeatures.h"
#include "AVSKHostTable.h"
#include "AVSKModules.h"
#include "AVSKPlatform.h"
#include "UTL_unicode.h"

#include <algorithm>
#include <cstring>
#include <string>
#include <vector>

namespace {

std::vector<int> &gButtons = *new std::vector<int>; // held joystick buttons, in the order of their presses

constexpr int kFirstFileType = 1;
constexpr int kLastFileType = 2;

bool IsFileType(int type) { return type >= kFirstFileType && type <= kLastFileType; }

struct KeyName {
    unsigned char code;
    const char *name;
};

constexpr KeyName kKeyNames[] = {
    {8, "Backspace"},
    {9, "Tab"},
    {12, "Clear"},
    {13, "Return"},
    {27, "Escape"},
    {32, "Space"},
    {33, "Page Up"},
    {34, "Page Down"},
    {35, "End"},
    {36, "Home"},
    {37, "Left"},
    {38, "Up"},
    {39, "Right"},
    {40, "Down"},
    {41, "Select"},
    {42, "Print"},
    {43, "Execute"},
    {44, "Snapshot"},
    {45, "Insert"},
    {46, "Delete"},
    {47, "Help"},
    {48, "0"},
    {49, "1"},
    {50, "2"},
    {51, "3"},
    {52, "4"},
    {53, "5"},
    {54, "6"},
    {55, "7"},
    {56, "8"},
    {57, "9"},
    {65, "A"},
    {66, "B"},
    {67, "C"},
    {68, "D"},
    {69, "E"},
    {70, "F"},
    {71, "G"},
    {72, "H"},
    {73, "I"},
    {74, "J"},
    {75, "K"},
    {76, "L"},
    {77, "M"},
    {78, "N"},
    {79, "O"},
    {80, "P"},
    {81, "Q"},
    {82, "R"},
    {83, "S"},
    {84, "T"},
    {85, "U"},
    {86, "V"},
    {87, "W"},
    {88, "X"},
    {89, "Y"},
    {90, "Z"},
    {96, "Numpad-0"},
    {97, "Numpad-1"},
    {98, "Numpad-2"},
    {99, "Numpad-3"},
    {100, "Numpad-4"},
    {101, "Numpad-5"},
    {102, "Numpad-6"},
    {103, "Numpad-7"},
    {104, "Numpad-8"},
    {105, "Numpad-9"},
    {106, "Numpad-*"},
    {107, "Numpad-+"},
    {109, "Numpad--"},
    {110, "Numpad-."},
    {111, "Numpad-/"},
    {112, "F1"},
    {113, "F2"},
    {114, "F3"},
    {115, "F4"},
    {116, "F5"},
    {117, "F6"},
    {118, "F7"},
    {119, "F8"},
    {120, "F9"},
    {121, "F10"},
    {122, "F11"},
    {123, "F12"},
    {124, "F13"},
    {125, "F14"},
    {126, "F15"},
    {127, "F16"},
    {128, "F17"},
    {129, "F18"},
    {130, "F19"},
    {131, "F20"},
    {132, "F21"},
    {133, "F22"},
    {134, "F23"},
    {135, "F24"},
    {176, "="},
    {177, "-"},
    {178, "]"},
    {179, "["},
    {180, "'"},
    {181, ";"},
    {182, "\\"},
    {183, ","},
    {184, "/"},
    {185, "."},
    {186, "`"},
    {187, "Enter"},
    {188, "Numpad-Enter"},
    {189, "Numpad-="},
};
static_assert(sizeof kKeyNames / sizeof *kKeyNames == 110);

// Has the host write a path into a plugin's buffer, and converts it to the plugin's form.
void GivePath(void (*fill)(char *), char *outPath) {
    if (!outPath)
        return;
    fill(outPath);
    if (!AVSKNeedPathConvert())
        return;
    std::string path = outPath;
    AVSKUTF8ToOld(path);
    strcpytrunc(outPath, path, AVSK_PATH_SIZE);
}

enum ButtonAction {
    kPress = 0,
    kRelease = 1
};

// The host expects two passes for a button.
void SendButton(int button, ButtonAction action) {
    const int list[] = {button, 0};
    gHooks->commandButton(list, action, 0);
    gHooks->commandButton(list, action, 1);
}

} // namespace

// ---- Keys and buttons

const char *AVSKGetVirtualKeyDescription(char virtualKey) {
    const auto code = static_cast<unsigned char>(virtualKey);
    for (const KeyName &key : kKeyNames)
        if (key.code == code)
            return key.name;
    return "Unknown";
}

void AVSKSimulateKeyPress(int keyType, int key) { gHooks->simulateKeyPress(keyType, key); }

void AVSKCommandKeyStroke(int key) { gHooks->commandKeyStroke(key); }

void AVSKCommandButtonPress(int button) {
    SendButton(button, kPress);
    gButtons.push_back(button);
}

void AVSKCommandButtonRelease(int button) {
    SendButton(button, kRelease);
    const auto held = std::find(gButtons.begin(), gButtons.end(), button);
    if (held != gButtons.end())
        gButtons.erase(held);
}

void AVSKDoRepeatedButtons() {
    if (gButtons.empty())
        return;
    // A copy: the host may call plugins, which press and release buttons.
    std::vector<int> list = gButtons;
    list.push_back(0);
    gHooks->commandButton(list.data(), kPress, 1);
}

// ---- Paths and folders

void AVSKGetSystemPath(char *outPath) { GivePath(gHooks->getSystemPath, outPath); }

void AVSKGetPrefsPath(char *outPath) { GivePath(gHooks->getPrefsPath, outPath); }

const char *AVSKGetDirectorySeparator() { return AVSKNeedPathConvert() ? gDirSeparator : "/"; }

char *AVSKExtractFileAndPath(char *path) {
    if (!path || !*path)
        return path;
    const char separator = *AVSKGetDirectorySeparator();
    std::size_t last = std::strlen(path) - 1;
    if (path[last] == separator) {
        path[last] = '\0';
        if (last == 0)
            return path;
        --last;
    }
    while (last > 0 && path[last] != separator)
        --last;
    if (path[last] != separator)
        return path + last;
    path[last] = '\0';
    return path + last + 1;
}

int AVSKGetDirectoryContents(const char *folder, int first, char *outNames, int namesSize, char **outIndices,
                             int indexCount, int *outTotal, int *outReturned) {
    const bool convert = AVSKNeedPathConvert();
    std::vector<std::string> names;
    if (folder) {
        std::string path = folder;
        if (convert)
            AVSKOldToUTF8(path);
        AVSKFetchDirectoryContents(path.c_str(), "*.*", names);
    }
    if (outTotal)
        *outTotal = static_cast<int>(names.size());

    std::size_t space = outNames && namesSize > 0 ? static_cast<std::size_t>(namesSize) : 0;
    int returned = 0;
    int complete = 1;
    for (std::size_t i = first > 0 ? static_cast<std::size_t>(first) : 0; i < names.size(); ++i) {
        std::string &name = names[i];
        if (convert)
            AVSKUTF8ToOld(name);
        const std::size_t length = name.size() + 1;
        if (length > space || (outIndices && returned >= indexCount)) {
            complete = 0;
            break;
        }
        if (outIndices)
            outIndices[returned] = outNames;
        ++returned;
        std::memcpy(outNames, name.c_str(), length);
        outNames += length;
        space -= length;
    }
    // The list ends with an empty name and a null pointer, which need space too.
    if (complete && (space == 0 || (outIndices && returned >= indexCount)))
        complete = 0;
    if (complete) {
        *outNames = '\0';
        if (outIndices)
            outIndices[returned] = nullptr;
    }
    if (outReturned)
        *outReturned = returned;
    return complete;
}

// ---- The host's services

void AVSKSpeakString(const char *text) { gHooks->speakString(text); }

void AVSKReloadScenery() { gHooks->reloadScenery(); }

int AVSKGetLanguage() { return gHooks->getLanguage(); }

void *AVSKFindSymbol(const char *name) { return gHooks->findSymbol(name); }

int AVSKInitialized() { return gHooks != nullptr; }

void AVSKGetVersions(int *hostVersion, int *libVersion, int *hostValue) {
    int version = 0;
    int value = 0;
    gHooks->getVersions(&version, &value);
    if (hostValue)
        *hostValue = value;
    if (hostVersion)
        *hostVersion = version;
    if (libVersion)
        *libVersion = AVSK_VERSION;
}

int AVSKLoadDataFile(int fileType, const char *path) {
    if (!IsFileType(fileType)) {
        AVSKSendError("Illegal file type passed to AVSKLoadDataFile.");
        return 0;
    }
    if (!path)
        return 0;
    // A copy: the host may call the plugin, which may change the text.
    return gHooks->loadDataFile(fileType, std::string(path).c_str());
}

int AVSKSaveDataFile(int fileType, const char *path) {
    if (!path) {
        AVSKSendError("Null file path passed to AVSKSaveDataFile.");
        return 0;
    }
    if (!IsFileType(fileType)) {
        AVSKSendError("Illegal file type passed to AVSKSaveDataFile.");
        return 0;
    }
    return gHooks->saveDataFile(fileType, std::string(path).c_str());
}
