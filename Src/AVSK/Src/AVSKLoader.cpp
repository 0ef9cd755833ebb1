// The core: the registry of plugins and who is dispatched, discovery, loading
// and unloading, enabling and messages, features, deliveries and errors. Owns
// gAllPlugins, gCallFlags, gEnabledFlags, gCurrentAircraftPluginIDS,
// gScheduleReload, gDispatchedPlugin, gIsUnloadingAll, gWaitingLibraries,
// kFeatureNames and orphaned; called by plugins, the host's hooks and every module.
//
// Any call into a plugin or the host may come back in here and load or unload
// plugins. A function that needs a record after such a call holds a share of
// it, and asks it whether its plugin is still there.
#include "AVSKLoader.h"

#include "AVSKDispatch.h"
#include "AVSKErrors.h"
#include "AVSKHostTable.h"
#include "AVSKModules.h"
#include "AVSKPlatform.h"
#include "AVSKScopedValue.h"
#include "UTL_unicode.h"

#include <algorithm>
#include <climits>
#include <cstdarg>
#include <cstdio>
#include <cstring>
#include <exception>
#include <initializer_list>
#include <string_view>
#include <utility>

// Like the other modules', globals that hold memory are never destroyed: a
// host may stop the library while the process exits.
PluginRegistry &gAllPlugins = *new PluginRegistry;
AVSKCallFlags gCallFlags = {};
std::vector<int> &gCurrentAircraftPluginIDS = *new std::vector<int>;
bool gScheduleReload = false;
int gDispatchedPlugin = AVSK_PLUGIN_AERIVO;
const char *const kFeatureNames[kFeatureCount] = {"AVSK_WANTS_REFLECTIONS", "AVSK_USE_NATIVE_PATHS"};
AVSKDeliveryHead orphaned;

int StDispatchCallback::frames[kRecordedCalls + 2];
constinit StDispatchCallback::Stack StDispatchCallback::stack = {frames, false};

namespace {

using PluginShare = std::shared_ptr<PluginRecord>;

// The order in which an unloaded plugin's things go.
struct ModuleTeardown {
    void (*cleanup)(int pluginID);
    bool (*holds)(int pluginID);
};
constexpr ModuleTeardown kTeardown[] = {
    {AVSKCommandCleanupHook, AVSKCommandHolds},
    {AVSKDisplayCleanupHook, AVSKDisplayHolds},
    {AVSKProcessingCleanupHook, AVSKProcessingHolds},
    {AVSKCameraCleanupHook, AVSKCameraHolds},
    {AVSKMenuCleanupHook, AVSKMenuHolds},
    {AVSKPlaneCleanupHook, AVSKPlaneHolds},
    {AVSKDataRefsCleanupHook, AVSKDataRefsHolds},
    {AVSKSharedDataCleanupHook, AVSKSharedDataHolds},
    {AVSKSceneryCleanupHook, AVSKSceneryHolds},
};

// The order in which a disabled plugin loses what needs it to be awake.
constexpr void (*kDisableHooks[])(int pluginID) = {
    AVSKDisplayDisableHook,
    AVSKCameraDisableHook,
    AVSKPlaneDisableHook,
};

std::vector<void *> &gWaitingLibraries = *new std::vector<void *>; // unloaded while a call into them was under way

// What stands on the stack of calls for a plugin that was unloaded during its call.
int FrameOfUnloaded(int id) { return id | INT_MIN; }

int PluginCount() { return static_cast<int>(gAllPlugins.size()); }

PluginShare ShareOf(int id) { return AVSKPluginAt(id) ? gAllPlugins[static_cast<unsigned>(id)] : nullptr; }

// ---- The registry and its flags change together

std::vector<unsigned char> &gEnabledFlags = *new std::vector<unsigned char>;

void PublishFlags() { gCallFlags = {gEnabledFlags.data(), static_cast<unsigned>(gEnabledFlags.size())}; }

int Append(const PluginShare &record) {
    gEnabledFlags.push_back(record->enabled);
    gAllPlugins.push_back(record);
    PublishFlags();
    return record->id = PluginCount() - 1;
}

void RemoveLast() {
    gAllPlugins.pop_back();
    gEnabledFlags.pop_back();
    PublishFlags();
}

PluginRegistry RemoveAll() {
    gEnabledFlags.clear();
    PublishFlags();
    return std::exchange(gAllPlugins, {});
}

void SetEnabled(PluginRecord &record, bool enabled) {
    record.enabled = enabled;
    if (AVSKPluginAt(record.id) == &record)
        gEnabledFlags[static_cast<unsigned>(record.id)] = enabled;
}

void Log(std::initializer_list<const char *> pieces) {
    for (const char *piece : pieces)
        AVSKDebugString(piece);
}

bool gIsUnloadingAll = false;

// Nothing is loaded before the host has its ID, nor while everything is being
// unloaded, whatever the host reports from inside its services then.
bool MayLoad() { return !gAllPlugins.empty() && !gIsUnloadingAll; }

// The last calls into plugins that go. Going is finished whatever they
// throw; the first exception passes on when it is. It may be an object of any
// of the plugins, so while one is held no library is unmapped.
class LastCalls {
  public:
    LastCalls() = default;
    ~LastCalls() { held -= first != nullptr; }
    LastCalls(const LastCalls &) = delete;
    LastCalls &operator=(const LastCalls &) = delete;

    template <class Call>
    void Make(Call call) {
        try {
            call();
        } catch (...) {
            if (!first) {
                first = std::current_exception();
                ++held;
            }
        }
    }

    bool Thrown() const { return first != nullptr; }

    static bool AnyThrown() { return held != 0; }

    void Rethrow() const {
        if (first)
            std::rethrow_exception(first);
    }

  private:
    std::exception_ptr first;
    static inline int held = 0;
};

// ---- Deliveries of plugins that go

// Pending deliveries end as cancellations when the host completes them, the
// completed ones now.
void AbandonDeliveries(PluginRecord &record) {
    while (AVSKDelivery *pending = AVSKDeliveryPop(record.pendingDeliveries)) {
        if (record.id != AVSK_PLUGIN_AERIVO) // which comes back as what it was
            pending->pluginID = NO_PLUGIN_ID;
        AVSKDeliveryEnqueue(orphaned, pending);
    }
    while (AVSKDelivery *deferred = AVSKDeliveryPop(record.deferredDeliveries)) {
        deferred->pluginID = NO_PLUGIN_ID;
        deferred->DeliverToPlugin(true);
    }
}

// ---- Loading

// Empties what the loader must never call again.
void ForgetEntryPoints(PluginRecord &record) {
    record.stopFunc = nullptr;
    record.enableFunc = nullptr;
    record.disableFunc = nullptr;
    record.receiveMessageFunc = nullptr;
    record.errorCallback = nullptr;
    SetEnabled(record, false);
    record.unloaded = true;
}

// Takes a rejected record out of the registry. Plugins that were loaded
// during its own start stand behind it and keep their IDs: it stays, empty.
void Withdraw(const PluginShare &record) {
    ForgetEntryPoints(*record);
    if (!gAllPlugins.empty() && gAllPlugins.back() == record)
        RemoveLast();
    AbandonDeliveries(*record);
}

bool AnyModuleHolds(int id) {
    return std::any_of(std::begin(kTeardown), std::end(kTeardown),
                       [id](const ModuleTeardown &module) { return module.holds(id); });
}

void CleanUp(int id) {
    for (const ModuleTeardown &module : kTeardown)
        module.cleanup(id);
}

// The three texts a plugin fills in. It is promised 256 bytes each; one that
// writes more reaches the reserve, not the stack.
struct StartText {
    char text[AVSK_TEXT_SIZE];
    char reserve[4096 - AVSK_TEXT_SIZE];

    std::string Take() {
        text[AVSK_TEXT_SIZE - 1] = '\0';
        return text;
    }
};

std::vector<std::string> SortedContents(const std::string &folder, const char *pattern) {
    std::vector<std::string> names;
    AVSKFetchDirectoryContents(folder.c_str(), pattern, names);
    std::sort(names.begin(), names.end());
    return names;
}

bool Contains(const std::string &text, const char *part) { return text.find(part) != std::string::npos; }

// Loads the fat plugins of a folder's subfolders and appends their IDs.
void LoadFatPluginsOf(const std::string &folder, std::vector<int> &ids) {
    if (!MayLoad())
        return;
    const std::vector<std::string> names = SortedContents(folder, "DIR");
    if (names.empty())
        return;
    Log({"Fetching plugins for ", folder.c_str(), "\n\n"});
    for (const std::string &name : names) {
        if (!MayLoad())
            return;
        const int id = LoadFatPlugin(folder + "/" + name);
        if (id != NO_PLUGIN_ID)
            ids.push_back(id);
    }
}

// The folder of the user's aircraft; false if the host names none.
bool UsersAircraftFolder(std::string &folder) {
    // Twice what the host is promised, as in StartText.
    char path[2 * AVSK_TEXT_SIZE] = "";
    char fileName[2 * AVSK_TEXT_SIZE] = "";
    gHooks->getAircraftModel(0, path, fileName);
    path[sizeof path - 1] = '\0';
    const char *slash = std::strrchr(path, '/');
    if (!slash)
        return false;
    folder.assign(path, static_cast<std::size_t>(slash - path));
    return true;
}

void SendMessageTo(int receiver, int sender, int message, void *parameter) {
    const PluginRecord *record = AVSKPluginAt(receiver);
    if (!record || !record->receiveMessageFunc)
        return;
    if (const StDispatchCallback guard(receiver); guard())
        record->receiveMessageFunc(sender, message, parameter);
}

void ReportUnknownFeature() { AVSKSendError("Illegal feature name passed to AVSKEnableFeature"); }

} // namespace

// ---- Dispatch

bool StDispatchCallback::IsUnderWay(int id) {
    if (stack.top == kSharedFrame)
        return true;
    return std::find(frames, stack.top, id) != stack.top;
}

void StDispatchCallback::ReleaseLibrary(int id, void *handle) {
    if (!IsUnderWay(id)) {
        if (handle)
            AVSKUnloadDLL(handle);
        return;
    }
    std::replace(frames, std::min(stack.top, frames + kRecordedCalls), id, FrameOfUnloaded(id));
    if (gDispatchedPlugin == id)
        gDispatchedPlugin = NO_PLUGIN_ID;
    stack.unloadsWait = true;
    if (handle)
        gWaitingLibraries.push_back(handle);
}

void StDispatchCallback::ReturnPastUnloads(const int *top, int previous) {
    if (top != frames) {
        if (top != kSharedFrame && top[-1] == FrameOfUnloaded(previous))
            gDispatchedPlugin = NO_PLUGIN_ID;
        return;
    }
    // An exception on its way out, or held until others are unloaded, may be of one of these libraries.
    if (std::uncaught_exceptions() > 0 || LastCalls::AnyThrown())
        return;
    stack.unloadsWait = false;
    for (void *handle : std::exchange(gWaitingLibraries, {}))
        AVSKUnloadDLL(handle);
}

void AVSKSetDispatchedPlugin(int id) { gDispatchedPlugin = id; }

int AVSKGetDispatchedPlugin() { return gDispatchedPlugin; }

const char *DebugCurrentPluginName() {
    const int id = gDispatchedPlugin;
    if (id == NO_PLUGIN_ID)
        return "[NO_PLUGIN_ID]";
    if (id == AVSK_PLUGIN_AERIVO)
        return "[AVSK_PLUGIN_AERIVO]";
    if (id < 0)
        return "[Bad plugin ID low]";
    const PluginRecord *record = AVSKPluginAt(id);
    return record ? record->name.c_str() : "[Bad plugin ID high]";
}

const char *AVSKDebugGetCurrentPluginName() { return DebugCurrentPluginName(); }

// ---- Registry

int AVSKGetMyID() { return gDispatchedPlugin; }

int AVSKCountPlugins() { return PluginCount(); }

int AVSKGetNthPlugin(int index) { return index; }

int AVSKIsPluginEnabled(int plugin) {
    const PluginRecord *record = AVSKPluginAt(plugin);
    return record && record->enabled;
}

int AVSKFindPluginByPath(const char *path) {
    if (!path)
        return NO_PLUGIN_ID;
    std::string wanted = path;
    if (AVSKNeedPathConvert())
        AVSKOldToUTF8(wanted);
    for (int id = 0; id < PluginCount(); ++id)
        if (AVSKPluginAt(id)->path == wanted)
            return id;
    return NO_PLUGIN_ID;
}

int AVSKFindPluginBySignature(const char *signature) {
    if (!signature)
        return NO_PLUGIN_ID;
    const std::string_view wanted = signature;
    for (int id = 0; id < PluginCount(); ++id)
        if (AVSKPluginAt(id)->signature == wanted)
            return id;
    return NO_PLUGIN_ID;
}

void AVSKGetPluginInfo(int plugin, char *outName, char *outPath, char *outSignature, char *outDescription) {
    static const PluginRecord kNobody;
    const PluginRecord *record = AVSKPluginAt(plugin);
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

// ---- Discovery and loading

const char *StripPluginsFolder(const char *path) {
    const std::string_view text = path;
    constexpr std::string_view folder = "plugins";
    const std::size_t last = text.rfind(folder);
    if (last == std::string_view::npos)
        return path;
    // A path may end with the folder itself: then nothing is left.
    return path + std::min(last + folder.size() + 1, text.size());
}

void AVSKFindAndLoadPlugins(const char *hostFolder) {
    AVSKSetDispatchedPlugin(AVSK_PLUGIN_AERIVO);

    auto host = std::make_shared<PluginRecord>();
    host->name = "Aerivo";
    host->path = "corvane.aerivo.aerivo"; // found by path, not by signature: both are relied upon
    host->description = "Aerivo flight simulator";
    if (AVSKHostHasFullTable(gHooks)) // it is the last slot
        host->receiveMessageFunc = gHooks->receiveMessage;
    host->enabled = true;
    Append(host);

    const std::string folder = std::string(hostFolder) + "Resources/plugins";
    Log({"Fetching plugins for ", folder.c_str(), "\n\n"});
    const std::vector<std::string> files = SortedContents(folder, "*.avp");
    if (MayLoad())
        LoadFatPlugin(folder + "/PluginAdmin");
    for (const std::string &name : files) {
        if (Contains(name, "PluginAdmin") || !MayLoad())
            continue;
        if (AVSKHostHasProgress(gHooks))
            gHooks->showProgress(("Loading Plugin: " + name).c_str());
        LoadOnePlugin(folder + "/" + name, 1);
    }
    for (const std::string &name : SortedContents(folder, "DIR"))
        if (MayLoad() && !Contains(name, "PluginAdmin") && !Contains(name, "AVSK.framework") &&
            !Contains(name, "AVWidgets.framework"))
            LoadFatPlugin(folder + "/" + name);
}

void AVSKFindAndLoadAcfPlugins(const char *aircraftFolder) {
    LoadFatPluginsOf(std::string(aircraftFolder) + "/plugins", gCurrentAircraftPluginIDS);
}

void AVSKFindAndLoadSceneryPlugins(const char *sceneryFolder) {
    if (!sceneryFolder)
        return;
    std::vector<int> ids;
    LoadFatPluginsOf(std::string(sceneryFolder) + "plugins", ids);
    for (const int id : ids)
        AVSKEnablePlugin(id);
}

void AVSKLoadUsersAircraftPlugins() {
    std::string folder;
    if (!UsersAircraftFolder(folder))
        return;
    AVSKFindAndLoadAcfPlugins(folder.c_str());
    AVSKEnableACFPlugins();
}

int LoadFatPlugin(const std::string &folder) {
    const int id = LoadOnePlugin(folder + "/32/lin.avp", 0);
    if (id != NO_PLUGIN_ID || !MayLoad())
        return id;
    return LoadOnePlugin(folder + "/lin.avp", 0);
}

int LoadOnePlugin(const std::string &path, int reportMissing) {
    void *handle = AVSKLoadDLL(path.c_str());
    if (!handle) {
        if (reportMissing)
            Log({"Failed: ", path.c_str(),
                 ".  (This file is missing, not a DLL or could not be loaded due to another missing DLL.)\n\n"});
        return NO_PLUGIN_ID;
    }

    auto record = std::make_shared<PluginRecord>();
    const auto find = [handle](auto &entry, const char *name) {
        entry = reinterpret_cast<std::remove_reference_t<decltype(entry)>>(AVSKFindSymbol(handle, name, 1));
    };
    int (*start)(char *, char *, char *) = nullptr;
    find(start, "AVPluginStart");
    find(record->stopFunc, "AVPluginStop");
    find(record->enableFunc, "AVPluginEnable");
    find(record->disableFunc, "AVPluginDisable");
    find(record->receiveMessageFunc, "AVPluginReceiveMessage");
    if (!start) {
        Log({"Failed: ", path.c_str(),
             ".  (This file is a loadable DLL but is missing the AVPluginStart callback.)\n\n"});
        AVSKUnloadDLL(handle);
        return NO_PLUGIN_ID;
    }
    if (!MayLoad()) { // the host was told of something missing, and has gone
        AVSKUnloadDLL(handle);
        return NO_PLUGIN_ID;
    }
    record->handle = handle;
    record->path = path;
    record->name = StripPluginsFolder(path.c_str());
    record->description = path;

    const int id = Append(record);
    StartText name;
    StartText signature;
    StartText description;
    // A text that the plugin leaves alone is empty.
    name.text[0] = signature.text[0] = description.text[0] = '\0';
    bool accepted = false;
    {
        const StDispatchCallback starting(id);
        try {
            accepted = start(name.text, signature.text, description.text) != 0;
        } catch (...) {
            // The library stays mapped: the exception is an object of its.
            Withdraw(record);
            throw;
        }
        if (!accepted && !record->unloaded)
            Log({"Failed: ", path.c_str(), ". (The plugin refused to start by returning 0 from AVPluginStart.)\n\n"});
    }
    if (record->unloaded) { // by the host, during its own start
        AVSKSetDispatchedPlugin(AVSK_PLUGIN_AERIVO);
        return NO_PLUGIN_ID;
    }
    if (!accepted) {
        Withdraw(record);
        AVSKSetDispatchedPlugin(AVSK_PLUGIN_AERIVO);
        // What it registered passes to the next plugin with its ID, and may
        // call into its library: then that stays mapped.
        if (!AnyModuleHolds(id))
            StDispatchCallback::ReleaseLibrary(id, handle);
        return NO_PLUGIN_ID;
    }
    AVSKSetDispatchedPlugin(AVSK_PLUGIN_AERIVO);

    const std::string signatureText = signature.Take();
    // The new record's own signature is still empty, and so is the host's: an
    // empty signature is always a duplicate.
    if (AVSKFindPluginBySignature(signatureText.c_str()) != NO_PLUGIN_ID) {
        try {
            const StDispatchCallback restoring;
            AVSKSetDispatchedPlugin(id);
            UnloadOnePlugin(id);
        } catch (...) {
            Withdraw(record);
            throw;
        }
        AVSKSetDispatchedPlugin(AVSK_PLUGIN_AERIVO);
        Withdraw(record);
        Log({"Warning: ", path.c_str(), " Signature: ", signatureText.c_str(),
             ". (A version of this plugin is already loaded.)\n"});
        return NO_PLUGIN_ID;
    }

    record->name = name.Take();
    record->signature = signatureText;
    record->description = description.Take();
    Log({"Loaded: ", path.c_str(), " (", signatureText.c_str(), ").\n\n"});
    return id;
}

void UnloadOnePlugin(int id) {
    const PluginShare record = ShareOf(id);
    if (!record || record->unloaded) // unreachable: a defence, callers pass IDs of records
        return;
    AbandonDeliveries(*record);

    LastCalls calls;
    // Taken first: should the stop call end in here again, the unloading is
    // finished there, and nothing is left to do when it returns.
    if (void (*const stop)() = std::exchange(record->stopFunc, nullptr))
        calls.Make([id, stop] {
            const StDispatchCallback guard(id);
            stop();
        });
    if (!record->unloaded)
        calls.Make([id] { CleanUp(id); });
    if (!record->unloaded) {
        ForgetEntryPoints(*record);
        // A last call, to a window that lost the focus, may have thrown or
        // registered anew. Now no call is made any more.
        if (calls.Thrown() || AnyModuleHolds(id))
            CleanUp(id);
        AbandonDeliveries(*record); // what the stop call still asked for
        void *handle = std::exchange(record->handle, nullptr);
        StDispatchCallback::ReleaseLibrary(id, LastCalls::AnyThrown() ? nullptr : handle);
    }
    calls.Rethrow();
}

void AVSKUnloadPlugins() {
    const AVSKScopedValue unloading(gIsUnloadingAll, true);
    LastCalls calls;
    for (int id = 1; id < PluginCount(); ++id)
        calls.Make([id] { UnloadOnePlugin(id); });
    gCurrentAircraftPluginIDS.clear();
    const PluginRegistry leaving = RemoveAll();
    for (const PluginShare &record : leaving)
        AbandonDeliveries(*record);
    calls.Rethrow();
}

void AVSKDisableAndUnloadPlugins() {
    LastCalls calls;
    calls.Make(AVSKDisableAllPlugins);
    calls.Make(AVSKUnloadPlugins);
    calls.Rethrow();
}

void AVSKUnloadAcfPlugin() {
    std::vector<PluginShare> leaving;
    for (const int id : std::exchange(gCurrentAircraftPluginIDS, {}))
        if (PluginShare record = ShareOf(id)) // unreachable: a defence, the list goes with the registry
            leaving.push_back(std::move(record));
    LastCalls calls;
    for (const PluginShare &record : leaving)
        if (AVSKPluginAt(record->id) == record.get())
            calls.Make([&record] { UnloadOnePlugin(record->id); });
    // Removing one further forward would renumber those behind it.
    while (!gAllPlugins.empty() && std::find(leaving.begin(), leaving.end(), gAllPlugins.back()) != leaving.end()) {
        const PluginShare record = gAllPlugins.back();
        RemoveLast();
        AbandonDeliveries(*record);
    }
    calls.Rethrow();
}

// ---- Enabling, reloading and messages

int AVSKEnablePlugin(int plugin) {
    const PluginShare record = plugin > AVSK_PLUGIN_AERIVO ? ShareOf(plugin) : nullptr;
    if (!record || record->unloaded)
        return 0;
    if (!record->enabled) {
        bool accepted = true;
        if (record->enableFunc) {
            const StDispatchCallback guard(plugin); // called though it is not enabled yet
            accepted = record->enableFunc() != 0;
        }
        if (record->unloaded)
            return 0;
        SetEnabled(*record, accepted);
    }
    if (record->enabled) {
        const StDispatchCallback guard(plugin);
        // A delivery may have the plugin disabled: the rest waits on.
        while (record->enabled) {
            AVSKDelivery *delivery = AVSKDeliveryPop(record->deferredDeliveries);
            if (!delivery)
                break;
            delivery->DeliverToPlugin(false);
        }
    }
    return record->enabled;
}

void AVSKDisablePlugin(int plugin) {
    const PluginShare record = plugin > AVSK_PLUGIN_AERIVO ? ShareOf(plugin) : nullptr;
    if (!record || !record->enabled)
        return;
    for (void (*const disable)(int) : kDisableHooks)
        disable(plugin);
    if (!record->enabled) // a hook called the plugin, which was disabled from there
        return;
    SetEnabled(*record, false);
    if (record->disableFunc) {
        const StDispatchCallback guard(plugin); // called though it is not enabled any more
        record->disableFunc();
    }
}

void AVSKEnableAllPlugins() {
    for (int id = 0; id < PluginCount(); ++id)
        AVSKEnablePlugin(id);
}

void AVSKDisableAllPlugins() {
    LastCalls calls;
    for (int id = 0; id < PluginCount(); ++id)
        calls.Make([id] { AVSKDisablePlugin(id); });
    calls.Rethrow();
}

// By index: an entry point may have aircraft plugins loaded or unloaded.
void AVSKEnableACFPlugins() {
    for (std::size_t i = 0; i < gCurrentAircraftPluginIDS.size(); ++i)
        AVSKEnablePlugin(gCurrentAircraftPluginIDS[i]);
}

void AVSKDisableACFPlugins() {
    for (std::size_t i = 0; i < gCurrentAircraftPluginIDS.size(); ++i)
        AVSKDisablePlugin(gCurrentAircraftPluginIDS[i]);
}

void AVSKReloadPlugins() { gScheduleReload = true; }

void AVSKReloadPluginsInternal() {
    static bool reloading = false;
    // From inside a plugin's last calls: then the request stands until they are over.
    if (reloading || gIsUnloadingAll)
        return;
    const AVSKScopedValue flagged(reloading, true);
    gScheduleReload = false;
    LastCalls calls;
    calls.Make(AVSKDisableAllPlugins);
    calls.Make(AVSKUnloadAcfPlugin);
    calls.Make(AVSKUnloadPlugins);
    if (AVSKHostHasMessages(gHooks))
        gHooks->showMessage("Please place your new plugin in the plugins folder.", "I will then reload all plugins.",
                            "", "");

    char hostFolder[1024] = ""; // twice the 512 bytes that the host is promised
    gHooks->getSystemPath(hostFolder);
    hostFolder[sizeof hostFolder - 1] = '\0';
    AVSKFindAndLoadPlugins(hostFolder);
    if (std::string folder; UsersAircraftFolder(folder))
        AVSKFindAndLoadAcfPlugins(folder.c_str());
    AVSKEnableAllPlugins();
    calls.Rethrow();
}

void AVSKSendMessageToPlugin(int target, int message, void *parameter) {
    const int sender = gDispatchedPlugin;
    if (target != NO_PLUGIN_ID) {
        SendMessageTo(target, sender, message, parameter);
        return;
    }
    for (int id = 0; id < PluginCount(); ++id)
        SendMessageTo(id, sender, message, parameter);
}

// ---- Features

int AVSKFeatureToID(const char *name) {
    for (int id = 0; name && id < kFeatureCount; ++id)
        if (std::strcmp(name, kFeatureNames[id]) == 0)
            return id;
    return -1;
}

int AVSKHasFeatureInternal(int pluginID, int featureID) {
    const PluginRecord *record = AVSKPluginAt(pluginID);
    return record ? record->features[featureID] : 0;
}

bool AVSKNeedPathConvert() { return AVSKHasFeatureInternal(gDispatchedPlugin, kFeatureUseNativePaths) == 0; }

int AVSKHasFeature(const char *name) { return AVSKFeatureToID(name) != -1; }

int AVSKIsFeatureEnabled(const char *name) {
    const int feature = AVSKFeatureToID(name);
    if (feature == -1) {
        ReportUnknownFeature(); // the wording names the enabling function here too
        return 0;
    }
    return AVSKHasFeatureInternal(gDispatchedPlugin, feature);
}

void AVSKEnableFeature(const char *name, int enable) {
    const int feature = AVSKFeatureToID(name);
    if (feature == -1)
        ReportUnknownFeature();
    else if (PluginRecord *record = AVSKPluginAt(gDispatchedPlugin))
        record->features[feature] = enable;
}

void AVSKEnumerateFeatures(AVSKFeatureEnumerator_f callback, void *reference) {
    if (!callback)
        return;
    for (const char *name : kFeatureNames)
        callback(name, reference);
}

// ---- Deliveries

void AVSKDeliveryEnqueue(AVSKDeliveryHead &head, AVSKDelivery *d) {
    d->next = head.next;
    d->prev = &head;
    if (head.next)
        head.next->prev = d;
    head.next = d;
}

void AVSKDeliveryDequeue(AVSKDelivery *d) {
    if (d->prev)
        d->prev->next = d->next;
    if (d->next)
        d->next->prev = d->prev;
    d->next = nullptr;
    d->prev = nullptr;
}

AVSKDelivery *AVSKDeliveryPop(AVSKDeliveryHead &head) {
    AVSKDelivery *first = head.next;
    if (first)
        AVSKDeliveryDequeue(first);
    return first;
}

void AVSKQueueDelivery(AVSKDelivery *d) {
    PluginRecord *record = AVSKPluginAt(d->pluginID);
    if (!record) {
        AVSKSendError("Internal error: async queue pending but the plugin ID is invalid.");
        return;
    }
    d->arrived = false;
    AVSKDeliveryEnqueue(record->pendingDeliveries, d);
}

void AVSKSendDelivery(AVSKDelivery *d) {
    if (std::exchange(d->arrived, true)) // unreachable: a defence, nobody sends one twice
        return;                          // unreachable: likewise
    AVSKDeliveryDequeue(d);
    PluginRecord *record = AVSKPluginAt(d->pluginID);
    if (!record) { // its plugin is gone
        d->DeliverToPlugin(true);
        return;
    }
    if (const StDispatchCallback guard(d->pluginID); guard())
        d->DeliverToPlugin(false);
    else
        AVSKDeliveryEnqueue(record->deferredDeliveries, d);
}

// ---- Errors and the log

void AVSKSetErrorCallback(AVSKError_f callback) {
    if (PluginRecord *record = AVSKPluginAt(gDispatchedPlugin))
        record->errorCallback = callback;
}

bool AVSKHasError() {
    const PluginRecord *record = AVSKPluginAt(gDispatchedPlugin);
    return record && record->errorCallback;
}

void AVSKSendError(const char *message) {
    if (AVSKHasError())
        AVSKPluginAt(gDispatchedPlugin)->errorCallback(message);
}

void AVSKLogPluginWarning(const char *message) {
    if (const PluginRecord *record = AVSKPluginAt(gDispatchedPlugin))
        Log({"[", std::string(record->name).c_str(), "]: ", message, "\n"});
    else
        Log({"[unknown]: ", message, "\n"});
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
