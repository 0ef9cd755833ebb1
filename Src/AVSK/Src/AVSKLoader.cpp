// The life cycle of plugins: discovery, loading, unloading, enabling, disabling
// and reloading. Owns gCurrentAircraftPluginIDS, gScheduleReload and
// gIsUnloadingAll; called by the hooks, the pass of flight loops and plugins.
//
// Any call into a plugin or the host may re-enter the loader and load or unload
// plugins. A function that needs a record after such a call shares it, and then
// checks whether the plugin was unloaded.
#include "AVSKLoader.h"

#include "AVSKDelivery.h"
#include "AVSKDispatch.h"
#include "AVSKHostTable.h"
#include "AVSKLoaderRegistry.h"
#include "AVSKModules.h"
#include "AVSKPlatform.h"
#include "AVSKScopedValue.h"

#include "AVSK/AVSKPlugins.h"

#include <algorithm>
#include <cstring>
#include <exception>
#include <string_view>
#include <type_traits>
#include <utility>

std::vector<int> &gCurrentAircraftPluginIDS = *new std::vector<int>;
bool gScheduleReload = false;

namespace {

// Unloading runs the clean-up functions in this order.
struct ModuleTeardown {
    void (*cleanUp)(int pluginID);
    bool (*holds)(int pluginID);
};
constexpr ModuleTeardown kTeardown[] = {
    {AVSKCommandCleanupHook, CommandsHold},
    {AVSKDisplayCleanupHook, DisplayHolds},
    {AVSKProcessingCleanupHook, ProcessingHolds},
    {AVSKCameraCleanupHook, CameraHolds},
    {AVSKMenuCleanupHook, MenusHold},
    {AVSKPlaneCleanupHook, PlanesHold},
    {AVSKDataRefsCleanupHook, DataRefsHold},
    {AVSKSharedDataCleanupHook, SharedDataHolds},
    {AVSKSceneryCleanupHook, SceneryHolds},
};

// Disabling runs the disable functions in this order.
constexpr void (*kDisableFunctions[])(int pluginID) = {
    AVSKDisplayDisableHook,
    AVSKCameraDisableHook,
    AVSKPlaneDisableHook,
};

bool AnyModuleHolds(int id) {
    return std::any_of(std::begin(kTeardown), std::end(kTeardown),
                       [id](const ModuleTeardown &module) { return module.holds(id); });
}

void CleanUp(int id) {
    for (const ModuleTeardown &module : kTeardown)
        module.cleanUp(id);
}

bool gIsUnloadingAll = false;

// Nothing is loaded before the host has its ID, nor while every plugin is
// being unloaded, whatever the host reports during these calls.
bool MayLoad() { return !gAllPlugins.empty() && !gIsUnloadingAll; }

// The last calls into plugins that are disabled or unloaded. Unloading
// completes even if these calls throw; the first exception passes on
// afterwards. Its type may live in the library of any of the plugins, so none
// is unmapped while an exception is held.
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

// ---- Loading

using StartFunction = int (*)(char *name, char *signature, char *description);

// Clears everything through which the library could call the plugin.
void ForgetEntryPoints(PluginRecord &record) {
    record.stopFunc = nullptr;
    record.enableFunc = nullptr;
    record.disableFunc = nullptr;
    record.receiveMessageFunc = nullptr;
    record.errorCallback = nullptr;
    SetPluginEnabled(record, false);
    record.unloaded = true;
}

// Removes a rejected record. If the plugin's start call loaded other plugins,
// these stand behind it and keep their IDs; then the record stays, empty.
void Withdraw(const PluginShare &record) {
    ForgetEntryPoints(*record);
    if (!gAllPlugins.empty() && gAllPlugins.back() == record)
        RemoveLastPlugin();
    AbandonDeliveries(*record);
}

// A text that a plugin fills in at its start. The plugin is promised 256
// bytes; the reserve protects the stack from one that writes more.
struct StartText {
    char text[AVSK_TEXT_SIZE];
    char reserve[4096 - AVSK_TEXT_SIZE];

    std::string Take() {
        text[AVSK_TEXT_SIZE - 1] = '\0';
        return text;
    }
};

struct StartTexts {
    StartText name;
    StartText signature;
    StartText description;
};

// Looks the optional entry points up after the start entry, which it returns.
StartFunction FindEntryPoints(void *handle, PluginRecord &record) {
    const auto find = [handle](auto &entry, const char *name) {
        entry = reinterpret_cast<std::remove_reference_t<decltype(entry)>>(AVSKFindSymbol(handle, name, 1));
    };
    StartFunction start = nullptr;
    find(start, "AVPluginStart");
    find(record.stopFunc, "AVPluginStop");
    find(record.enableFunc, "AVPluginEnable");
    find(record.disableFunc, "AVPluginDisable");
    find(record.receiveMessageFunc, "AVPluginReceiveMessage");
    return start;
}

// Loads a library that has a start entry, and makes its record. Null, and the
// library is unloaded, if it is not a plugin.
PluginShare OpenPlugin(const std::string &path, int reportMissing, StartFunction &start) {
    void *handle = AVSKLoadDLL(path.c_str());
    if (!handle) {
        if (reportMissing)
            WriteLog({"Failed: ", path.c_str(),
                      ".  (This file is missing, not a DLL or could not be loaded due to another missing DLL.)\n\n"});
        return nullptr;
    }
    auto record = std::make_shared<PluginRecord>();
    start = FindEntryPoints(handle, *record);
    if (!start)
        WriteLog({"Failed: ", path.c_str(),
                  ".  (This file is a loadable DLL but is missing the AVPluginStart callback.)\n\n"});
    if (!start || !MayLoad()) { // the host may shut down from inside its log
        AVSKUnloadDLL(handle);
        return nullptr;
    }
    record->handle = handle;
    record->path = path;
    record->name = StripPluginsFolder(path.c_str());
    record->description = path;
    return record;
}

// Calls the start entry of a plugin in the registry. False if the plugin
// refused, and is withdrawn, or if the host unloaded it during the call.
bool StartPlugin(const PluginShare &record, StartFunction start, StartTexts &texts) {
    // A text that the plugin leaves alone is empty.
    texts.name.text[0] = texts.signature.text[0] = texts.description.text[0] = '\0';
    bool accepted = false;
    {
        const StDispatchCallback starting(record->id);
        try {
            accepted = start(texts.name.text, texts.signature.text, texts.description.text) != 0;
        } catch (...) {
            Withdraw(record); // the library stays mapped: the exception's type may live in it
            throw;
        }
        if (!accepted && !record->unloaded)
            WriteLog({"Failed: ", record->path.c_str(),
                      ". (The plugin refused to start by returning 0 from AVPluginStart.)\n\n"});
    }
    if (record->unloaded)
        return false;
    if (!accepted)
        Withdraw(record);
    return accepted;
}

// Unloads the library of a plugin that refused to start. What the plugin
// registered passes to the next plugin with its ID and may call into the
// library, which then stays mapped.
void ReleaseRefused(PluginRecord &record) {
    if (record.handle && !AnyModuleHolds(record.id))
        StDispatchCallback::ReleaseLibrary(record.id, record.handle);
}

// Unloads a plugin whose signature is taken, as the dispatched plugin.
void RejectDuplicate(const PluginShare &record, const std::string &signature) {
    try {
        // This frame keeps the library mapped while an exception of its stop call passes.
        const StDispatchCallback asHost(AVSK_PLUGIN_AERIVO);
        const AVSKScopedValue dispatched(gDispatchedPlugin, record->id);
        UnloadOnePlugin(record->id);
    } catch (...) {
        Withdraw(record);
        throw;
    }
    Withdraw(record);
    WriteLog({"Warning: ", record->path.c_str(), " Signature: ", signature.c_str(),
              ". (A version of this plugin is already loaded.)\n"});
}

// ---- Folders

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
    WriteLog({"Fetching plugins for ", folder.c_str(), "\n\n"});
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

PluginShare HostRecord() {
    auto host = std::make_shared<PluginRecord>();
    host->name = "Aerivo";
    host->path = "corvane.aerivo.aerivo"; // required: found by path, not by signature
    host->description = "Aerivo flight simulator";
    if (AVSKHostHasFullTable(gHooks)) // the receiver is the last slot
        host->receiveMessageFunc = gHooks->receiveMessage;
    host->enabled = true;
    return host;
}

} // namespace

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
    AppendPlugin(HostRecord());

    const std::string folder = std::string(hostFolder) + "Resources/plugins";
    WriteLog({"Fetching plugins for ", folder.c_str(), "\n\n"});
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

void LoadUsersAircraftPlugins() {
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
    StartFunction start = nullptr;
    const PluginShare record = OpenPlugin(path, reportMissing, start);
    if (!record)
        return NO_PLUGIN_ID;
    AppendPlugin(record);
    StartTexts texts;
    const bool started = StartPlugin(record, start, texts);
    AVSKSetDispatchedPlugin(AVSK_PLUGIN_AERIVO); // not by a guard: the host stays dispatched
    if (!started) {
        ReleaseRefused(*record);
        return NO_PLUGIN_ID;
    }
    const std::string signature = texts.signature.Take();
    // The signatures of this record and of the host are empty, so an empty
    // signature is always a duplicate.
    if (AVSKFindPluginBySignature(signature.c_str()) != NO_PLUGIN_ID) {
        RejectDuplicate(record, signature);
        return NO_PLUGIN_ID;
    }
    record->name = texts.name.Take();
    record->signature = signature;
    record->description = texts.description.Take();
    WriteLog({"Loaded: ", path.c_str(), " (", signature.c_str(), ").\n\n"});
    return record->id;
}

// ---- Unloading

void UnloadOnePlugin(int id) {
    const PluginShare record = SharePlugin(id);
    if (!record || record->unloaded) // unreachable: a defence, callers pass IDs of records
        return;
    AbandonDeliveries(*record);

    LastCalls calls;
    // Cleared before the call: if the stop call re-enters this function, the
    // inner call completes the unloading.
    if (void (*const stop)() = std::exchange(record->stopFunc, nullptr))
        calls.Make([id, stop] {
            const StDispatchCallback guard(id);
            stop();
        });
    if (!record->unloaded)
        calls.Make([id] { CleanUp(id); });
    if (!record->unloaded) {
        ForgetEntryPoints(*record);
        // A last call, such as to a window that lost the focus, may have thrown
        // or registered something. From here on the plugin is not called.
        if (calls.Thrown() || AnyModuleHolds(id))
            CleanUp(id);
        AbandonDeliveries(*record); // requested by the stop call
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
    const PluginRegistry leaving = RemoveAllPlugins();
    for (const PluginShare &record : leaving)
        AbandonDeliveries(*record);
    calls.Rethrow();
}

void DisableAndUnloadPlugins() {
    LastCalls calls;
    calls.Make(AVSKDisableAllPlugins);
    calls.Make(AVSKUnloadPlugins);
    calls.Rethrow();
}

void AVSKUnloadAcfPlugin() {
    std::vector<PluginShare> leaving;
    for (const int id : std::exchange(gCurrentAircraftPluginIDS, {}))
        if (PluginShare record = SharePlugin(id)) // unreachable: a defence, the list is cleared with the registry
            leaving.push_back(std::move(record));
    LastCalls calls;
    for (const PluginShare &record : leaving)
        if (PluginAt(record->id) == record.get())
            calls.Make([&record] { UnloadOnePlugin(record->id); });
    // Removing a record further forward would renumber those behind it.
    while (!gAllPlugins.empty() && std::find(leaving.begin(), leaving.end(), gAllPlugins.back()) != leaving.end()) {
        const PluginShare record = gAllPlugins.back();
        RemoveLastPlugin();
        AbandonDeliveries(*record);
    }
    calls.Rethrow();
}

// ---- Enabling, disabling and reloading

int AVSKEnablePlugin(int plugin) {
    const PluginShare record = plugin > AVSK_PLUGIN_AERIVO ? SharePlugin(plugin) : nullptr;
    if (!record || record->unloaded)
        return 0;
    if (!record->enabled) {
        bool accepted = true;
        if (record->enableFunc) {
            const StDispatchCallback guard(plugin); // not asked: the plugin is not enabled yet
            accepted = record->enableFunc() != 0;
        }
        if (record->unloaded)
            return 0;
        SetPluginEnabled(*record, accepted);
    }
    if (record->enabled)
        DeliverDeferred(*record);
    return record->enabled;
}

void AVSKDisablePlugin(int plugin) {
    const PluginShare record = plugin > AVSK_PLUGIN_AERIVO ? SharePlugin(plugin) : nullptr;
    if (!record || !record->enabled)
        return;
    for (void (*const disable)(int) : kDisableFunctions)
        disable(plugin);
    if (!record->enabled) // disabled meanwhile, by a call of a disable function
        return;
    SetPluginEnabled(*record, false);
    if (record->disableFunc) {
        const StDispatchCallback guard(plugin); // not asked: the plugin is disabled
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

// By index: an enable or disable entry may cause aircraft plugins to be loaded or unloaded.
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
    // Re-entered from a plugin's last call: the request stands until the next pass.
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
