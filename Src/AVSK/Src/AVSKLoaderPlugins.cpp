// Look-ups of plugins, messages, features, errors and warnings in the log. Owns
// kFeatureNames; called by plugins, the loader and the modules.
#include "AVSKErrors.h"
#include "AVSKFeatures.h"

#include "AVSKDispatch.h"
#include "AVSKHostTable.h"
#include "AVSKLoaderRegistry.h"
#include "AVSKMemory.h"
#include "AVSKPlatform.h"
#include "UTL_unicode.h"

#include "AVSK/AVSKPlugins.h"
#include "AVSK/AVSKUtilities.h"

#include <cstdarg>
#include <cstdio>
#include <cstring>
#include <initializer_list>
#include <string>
#include <string_view>

const char *const kFeatureNames[kFeatureCount] = {"AVSK_WANTS_REFLECTIONS", "AVSK_USE_NATIVE_PATHS"};

namespace {

void SendMessageTo(int receiver, int sender, int message, void *parameter) {
    const PluginRecord *record = PluginAt(receiver);
    if (!record || !record->receiveMessageFunc)
        return;
    if (const StDispatchCallback guard(receiver); guard())
        record->receiveMessageFunc(sender, message, parameter);
}

void ReportUnknownFeature() { AVSKSendError("Illegal feature name passed to AVSKEnableFeature"); }

} // namespace

// ---- Look-ups

int AVSKGetMyID() { return gDispatchedPlugin; }

int AVSKCountPlugins() { return PluginCount(); }

int AVSKGetNthPlugin(int index) { return index; }

int AVSKIsPluginEnabled(int plugin) {
    const PluginRecord *record = PluginAt(plugin);
    return record && record->enabled;
}

int AVSKFindPluginByPath(const char *path) {
    if (!path)
        return NO_PLUGIN_ID;
    std::string wanted;
    if (!CopyText(wanted, path, "AVSKFindPluginByPath"))
        return NO_PLUGIN_ID;
    if (AVSKNeedPathConvert())
        AVSKOldToUTF8(wanted);
    for (int id = 0; id < PluginCount(); ++id)
        if (PluginAt(id)->path == wanted)
            return id;
    return NO_PLUGIN_ID;
}

int AVSKFindPluginBySignature(const char *signature) {
    if (!signature)
        return NO_PLUGIN_ID;
    const std::string_view wanted = signature;
    for (int id = 0; id < PluginCount(); ++id)
        if (PluginAt(id)->signature == wanted)
            return id;
    return NO_PLUGIN_ID;
}

void AVSKGetPluginInfo(int plugin, char *outName, char *outPath, char *outSignature, char *outDescription) {
    static const PluginRecord kNobody;
    const PluginRecord *record = PluginAt(plugin);
    if (!record)
        record = &kNobody;
    if (outName)
        strcpytrunc(outName, record->name, AVSK_TEXT_SIZE);
    if (outPath) {
        std::string path = record->path;
        if (AVSKNeedPathConvert())
            AVSKUTF8ToOld(path);
        strcpytrunc(outPath, path, AVSK_TEXT_SIZE);
    }
    if (outSignature)
        strcpytrunc(outSignature, record->signature, AVSK_TEXT_SIZE);
    if (outDescription)
        strcpytrunc(outDescription, record->description, AVSK_TEXT_SIZE);
}

const char *AVSKDebugGetCurrentPluginName() { return DebugCurrentPluginName(); }

// ---- Messages

void AVSKSendMessageToPlugin(int target, int message, void *parameter) {
    const int sender = gDispatchedPlugin;
    if (target != NO_PLUGIN_ID) {
        SendMessageTo(target, sender, message, parameter);
        return;
    }
    for (int receiver = 0; receiver < PluginCount(); ++receiver)
        SendMessageTo(receiver, sender, message, parameter);
}

// ---- Features

int AVSKFeatureToID(const char *name) {
    for (int id = 0; name && id < kFeatureCount; ++id)
        if (std::strcmp(name, kFeatureNames[id]) == 0)
            return id;
    return -1;
}

int AVSKHasFeatureInternal(int pluginID, int featureID) {
    const PluginRecord *record = PluginAt(pluginID);
    return record ? record->features[featureID] : 0;
}

bool AVSKNeedPathConvert() { return AVSKHasFeatureInternal(gDispatchedPlugin, kFeatureUseNativePaths) == 0; }

int AVSKHasFeature(const char *name) { return AVSKFeatureToID(name) != -1; }

int AVSKIsFeatureEnabled(const char *name) {
    const int feature = AVSKFeatureToID(name);
    if (feature == -1) {
        ReportUnknownFeature(); // required: the text names the enabling function here too
        return 0;
    }
    return AVSKHasFeatureInternal(gDispatchedPlugin, feature);
}

void AVSKEnableFeature(const char *name, int enable) {
    const int feature = AVSKFeatureToID(name);
    if (feature == -1)
        ReportUnknownFeature();
    else if (PluginRecord *record = PluginAt(gDispatchedPlugin))
        record->features[feature] = enable;
}

void AVSKEnumerateFeatures(AVSKFeatureEnumerator_f callback, void *reference) {
    if (!callback)
        return;
    for (const char *name : kFeatureNames)
        callback(name, reference);
}

// ---- Errors and the log

void AVSKSetErrorCallback(AVSKError_f callback) {
    if (PluginRecord *record = PluginAt(gDispatchedPlugin))
        record->errorCallback = callback;
}

bool AVSKHasError() {
    const PluginRecord *record = PluginAt(gDispatchedPlugin);
    return record && record->errorCallback;
}

void AVSKSendError(const char *message) {
    if (AVSKHasError())
        PluginAt(gDispatchedPlugin)->errorCallback(message);
}

void AVSKLogPluginWarning(const char *message) {
    // Shared: the host may unload the plugin from inside its log.
    if (const PluginShare record = SharePlugin(gDispatchedPlugin))
        WriteLog({"[", record->name.c_str(), "]: ", message, "\n"});
    else
        WriteLog({"[unknown]: ", message, "\n"});
}

void LogUnreadFolder(const char *path, const char *reason) {
    if (gHooks)
        WriteLog({"Failed: ", path, ".  (This folder cannot be read: ", reason, ".)\n\n"});
}

bool CopyText(std::string &to, const char *from, const char *function) {
    if (MemorySuffices([&to, from] { to = from; }))
        return true;
    if (gHooks)
        WriteLog({"[", DebugCurrentPluginName(), "]: Out of memory in ", function, ": the call has no effect.\n"});
    return false;
}

void ReportOutOfMemory() {
    const std::initializer_list<const char *> message = {
        "AVSK: out of memory in a call of plugin '", DebugCurrentPluginName(), "'; the simulator cannot continue\n"};
    for (const char *piece : message)
        std::fputs(piece, stderr);
    WriteLog(message);
}

int AVSK_dprintf(const char *format, ...) {
    static char buffer[8192];
    va_list arguments;
    va_start(arguments, format);
    std::vsnprintf(buffer, sizeof buffer, format, arguments);
    va_end(arguments);
    if (gHooks)
        AVSKDebugString(buffer);
    return 0;
}
