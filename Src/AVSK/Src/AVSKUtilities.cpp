// Small services that the host serves, some with a check in front. No globals;
// called by plugins, and AVSKDebugString by the whole library.
#include "AVSK/AVSKUtilities.h"

#include "AVSKErrors.h"
#include "AVSKHostTable.h"

#include <string>

namespace {

constexpr int kFirstFileType = 1;
constexpr int kLastFileType = 2;

bool IsFileType(int type) { return type >= kFirstFileType && type <= kLastFileType; }

} // namespace

void AVSKDebugString(const char *text) { gHooks->debugString(text); }

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
    // The host may call a plugin, which may change the text it passed us.
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
