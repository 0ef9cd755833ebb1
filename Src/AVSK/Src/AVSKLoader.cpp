// The life cycle of plugins: discovery, loading, unloading, enabling, disabling
// and reloading. Owns gCurrentAircraftPluginIDS, gScheduleReload, gLives and
// gIsUnloadingAll; called by the hooks, the pass of flight loops and plugins.
//
// Any call into a plugin or the host may re-enter the loader and load or unload
// plugins. A function that needs a record after such a call shares it, and then
// checks whether the plugin was unloaded.
#include "AVSKLoader.h"

#include "AVSKDelivery.h"
#include "AVSKDispatch.h"
#include "AVSKErrors.h"
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

bool gIsUnloadingAll = false;
int gLives = 0; // counts starts and shutdowns of the library

// The life of the library in which a function was called. A host that starts
// or shuts the library down from inside one of its services ends that life;
// then the function does nothing more.
class Life {
  public:
    bool IsOver() const { return begun != gLives; }

    // Nothing is loaded before the host has its ID, nor while every plugin is
    // being unloaded, whatever the host reports during these calls.
    bool MayLoad() const { return !IsOver() && !gAllPlugins.empty() && !gIsUnloadingAll; }

  private:
    int begun = gLives;
};

} // namespace

// Calls of which all are made even if one throws. The first exception passes
// on afterwards. Its type may live in the library of any plugin, so none is
// unmapped while an exception is held.
class LastCalls {
  public:
    LastCalls() = default;
    ~LastCalls() { gHeldExceptions -= first != nullptr; }
    LastCalls(const LastCalls &) = delete;
    LastCalls &operator=(const LastCalls &) = delete;

    template <class Call>
    void Make(Call call) {
        try {
            call();
        } catch (...) {
            if (!first) {
                first = std::current_exception();
                ++gHeldExceptions;
            }
        }
    }

    bool Thrown() const { return first != nullptr; }

    void Rethrow() const {
        if (first)
            std::rethrow_exception(first);
    }

  private:
    std::exception_ptr first;
};

namespace {

// Calls every clean-up function even if one throws: one of them offers the planes
// to other plugins, which may throw. Ends when the host starts the library anew
// meanwhile: the ID is another plugin's.
void CleanUp(const PluginRecord &record) {
    LastCalls calls;
    for (const ModuleTeardown &module : kTeardown)
        if (PluginAt(record.id) == &record)
            calls.Make([&] { module.cleanUp(record.id); });
    calls.Rethrow();
}

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
    record->handle = nullptr; // if it is not unmapped yet, it stays mapped
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

struct EntryPoints {
    StartFunction start;
    decltype(PluginRecord::stopFunc) stop;
    decltype(PluginRecord::enableFunc) enable;
    decltype(PluginRecord::disableFunc) disable;
    decltype(PluginRecord::receiveMessageFunc) receiveMessage;
};

EntryPoints FindEntryPoints(void *handle) {
    EntryPoints found;
    const auto find = [handle](auto &entry, const char *name) {
        entry = reinterpret_cast<std::remove_reference_t<decltype(entry)>>(AVSKFindSymbol(handle, name, 1));
    };
    find(found.start, "AVPluginStart");
    find(found.stop, "AVPluginStop");
    find(found.enable, "AVPluginEnable");
    find(found.disable, "AVPluginDisable");
    find(found.receiveMessage, "AVPluginReceiveMessage");
    return found;
}

// Unmaps the library of an unloaded plugin, and then takes what its static
// destructors registered.
void Unmap(const PluginShare &record) {
    const int id = record->id;
    if (PluginAt(id) != record.get())
        return; // re-entered: the inner call unmapped the library
    const AVSKScopedValue unmapping(record->unmapping, true);
    if (!StDispatchCallback::ReleaseLibrary(id, std::exchange(record->handle, nullptr)))
        return;
    record->errorCallback = nullptr;
    if (AnyModuleHolds(id))
        CleanUp(*record);
    AbandonDeliveries(*record);
}

// Removes a plugin that is not going to run. What it registered passes to the
// next plugin with its ID and may call into the library, which then stays mapped.
void Refuse(const PluginShare &record) {
    ForgetEntryPoints(*record);
    if (record->handle && !AnyModuleHolds(record->id))
        Unmap(record);
    Withdraw(record);
}

// Loads the library of a record in the registry and returns its start entry.
// Null, and the record is withdrawn, if it is not a plugin or if the host
// unloaded it meanwhile.
StartFunction OpenPlugin(const PluginShare &record, int reportMissing) {
    void *handle = nullptr;
    try {
        const StDispatchCallback constructing(record->id); // static constructors may register things
        handle = AVSKLoadDLL(record->path.c_str());
    } catch (...) {
        Withdraw(record);
        throw;
    }
    if (!handle) {
        Withdraw(record);
        if (reportMissing)
            WriteLog({"Failed: ", record->path.c_str(),
                      ".  (This file is missing, not a DLL or could not be loaded due to another missing DLL.)\n\n"});
        return nullptr;
    }
    const EntryPoints found = FindEntryPoints(handle);
    if (!found.start)
        WriteLog({"Failed: ", record->path.c_str(),
                  ".  (This file is a loadable DLL but is missing the AVPluginStart callback.)\n\n"});
    if (record->unloaded) { // its ID may be taken
        StDispatchCallback::ReleaseLibrary(NO_PLUGIN_ID, handle);
        return nullptr;
    }
    record->handle = handle;
    if (!found.start) {
        Refuse(record);
        return nullptr;
    }
    record->stopFunc = found.stop;
    record->enableFunc = found.enable;
    record->disableFunc = found.disable;
    record->receiveMessageFunc = found.receiveMessage;
    return found.start;
}

// Calls the start entry of a plugin. False if the plugin refused, or if the
// host unloaded it during the call.
bool StartPlugin(const PluginShare &record, StartFunction start, StartTexts &texts) {
    // A text that the plugin leaves alone is empty.
    texts.name.text[0] = texts.signature.text[0] = texts.description.text[0] = '\0';
    const StDispatchCallback starting(record->id);
    bool accepted = false;
    try {
        accepted = start(texts.name.text, texts.signature.text, texts.description.text) != 0;
    } catch (...) {
        Withdraw(record); // the library stays mapped: the exception's type may live in it
        throw;
    }
    if (!accepted && !record->unloaded)
        WriteLog({"Failed: ", record->path.c_str(),
                  ". (The plugin refused to start by returning 0 from AVPluginStart.)\n\n"});
    return accepted && !record->unloaded;
}

// Unloads a plugin whose signature is taken, as the dispatched plugin.
void RejectDuplicate(const PluginShare &record, const std::string &signature) {
    try {
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
    if (const int error = AVSKFetchDirectoryContents(folder.c_str(), pattern, names))
        LogUnreadFolder(folder.c_str(), std::strerror(error));
    std::sort(names.begin(), names.end());
    return names;
}

bool Contains(const std::string &text, const char *part) { return text.find(part) != std::string::npos; }

// Loads the fat plugins of a folder's subfolders and appends their IDs.
void LoadFatPluginsOf(const std::string &folder, std::vector<int> &ids, LastCalls &calls) {
    const Life life;
    if (!life.MayLoad())
        return;
    const std::vector<std::string> names = SortedContents(folder, "DIR");
    if (names.empty())
        return;
    WriteLog({"Fetching plugins for ", folder.c_str(), "\n\n"});
    for (const std::string &name : names) {
        if (!life.MayLoad())
            return;
        const int id = LoadFatPlugin(folder + "/" + name, calls);
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
    const Life life;
    AVSKSetDispatchedPlugin(AVSK_PLUGIN_AERIVO);
    AppendPlugin(HostRecord());

    const std::string folder = std::string(hostFolder) + "Resources/plugins";
    WriteLog({"Fetching plugins for ", folder.c_str(), "\n\n"});
    const std::vector<std::string> files = SortedContents(folder, "*.avp");
    LastCalls calls;
    if (life.MayLoad())
        LoadFatPlugin(folder + "/PluginAdmin", calls);
    for (const std::string &name : files) {
        if (Contains(name, "PluginAdmin") || !life.MayLoad())
            continue;
        if (AVSKHostHasProgress(gHooks))
            gHooks->showProgress(("Loading Plugin: " + name).c_str());
        if (life.MayLoad())
            calls.Make([&] { LoadOnePlugin(folder + "/" + name, 1); });
    }
    for (const std::string &name : SortedContents(folder, "DIR"))
        if (life.MayLoad() && !Contains(name, "PluginAdmin") && !Contains(name, "AVSK.framework") &&
            !Contains(name, "AVWidgets.framework"))
            LoadFatPlugin(folder + "/" + name, calls);
    calls.Rethrow();
}

void AVSKFindAndLoadAcfPlugins(const char *aircraftFolder) {
    LastCalls calls;
    LoadFatPluginsOf(std::string(aircraftFolder) + "/plugins", gCurrentAircraftPluginIDS, calls);
    calls.Rethrow();
}

void AVSKFindAndLoadSceneryPlugins(const char *sceneryFolder) {
    if (!sceneryFolder)
        return;
    const Life life;
    LastCalls calls;
    std::vector<int> ids;
    LoadFatPluginsOf(std::string(sceneryFolder) + "plugins", ids, calls);
    for (const int id : ids)
        if (!life.IsOver())
            calls.Make([id] { AVSKEnablePlugin(id); });
    calls.Rethrow();
}

void LoadUsersAircraftPlugins() {
    const Life life;
    std::string folder;
    if (!UsersAircraftFolder(folder) || life.IsOver())
        return;
    LastCalls calls;
    calls.Make([&folder] { AVSKFindAndLoadAcfPlugins(folder.c_str()); });
    calls.Make(AVSKEnableACFPlugins);
    calls.Rethrow();
}

void LoadAndEnablePlugins(const char *hostFolder, void (*prepare)()) {
    ++gLives;
    const Life life;
    prepare();
    if (life.IsOver())
        return;
    LastCalls calls;
    calls.Make([hostFolder] { AVSKFindAndLoadPlugins(hostFolder); });
    if (life.MayLoad())
        calls.Make(AVSKEnableAllPlugins);
    calls.Rethrow();
}

int LoadFatPlugin(const std::string &folder, LastCalls &calls) {
    const Life life;
    int id = NO_PLUGIN_ID;
    for (const char *file : {"/32/lin.avp", "/lin.avp"})
        if (id == NO_PLUGIN_ID && life.MayLoad())
            calls.Make([&] { id = LoadOnePlugin(folder + file, 0); });
    return id;
}

int LoadOnePlugin(const std::string &path, int reportMissing) {
    const auto record = std::make_shared<PluginRecord>();
    record->path = path;
    record->name = StripPluginsFolder(path.c_str());
    record->description = path;
    AppendPlugin(record);
    const StartFunction start = OpenPlugin(record, reportMissing);
    if (!start)
        return NO_PLUGIN_ID;
    StartTexts texts;
    const bool started = StartPlugin(record, start, texts);
    AVSKSetDispatchedPlugin(AVSK_PLUGIN_AERIVO); // not by a guard: the host stays dispatched
    if (!started) {
        Refuse(record);
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
    return record->unloaded ? NO_PLUGIN_ID : record->id; // the host may shut down from inside its log
}

// ---- Unloading

void UnloadOnePlugin(int id) {
    const PluginShare record = SharePlugin(id);
    if (record->unloaded) {
        // Re-entered. Without a handle its library may be being unmapped, and its
        // ID may be given away before that ends.
        if (record->handle)
            Unmap(record);
        else if ((!StDispatchCallback::ReleaseLibrary(id, nullptr) || record->unmapping) && AnyModuleHolds(id))
            CleanUp(*record);
        return;
    }
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
        calls.Make([&record] { CleanUp(*record); });
    if (!record->unloaded) {
        ForgetEntryPoints(*record);
        // A last call, such as to a window that lost the focus, may have thrown
        // or registered something. From here on the plugin is not called.
        if (calls.Thrown() || AnyModuleHolds(id))
            calls.Make([&record] { CleanUp(*record); });
        AbandonDeliveries(*record); // requested by the stop call
        Unmap(record);
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
    ++gLives;
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

void UnloadUsersAircraftPlugins() {
    LastCalls calls;
    calls.Make(AVSKDisableACFPlugins);
    calls.Make(AVSKUnloadAcfPlugin);
    calls.Rethrow();
}

// ---- Enabling, disabling and reloading

int AVSKEnablePlugin(int plugin) {
    const PluginShare record = plugin > AVSK_PLUGIN_AERIVO ? SharePlugin(plugin) : nullptr;
    // Without a handle the file is still being loaded.
    if (!record || record->unloaded || !record->handle || record->enabling)
        return 0;
    if (!record->enabled) {
        bool accepted = true;
        if (record->enableFunc) {
            const AVSKScopedValue enabling(record->enabling, true);
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
    LastCalls calls;
    for (int id = 0; id < PluginCount(); ++id)
        calls.Make([id] { AVSKEnablePlugin(id); });
    calls.Rethrow();
}

void AVSKDisableAllPlugins() {
    LastCalls calls;
    for (int id = 0; id < PluginCount(); ++id)
        calls.Make([id] { AVSKDisablePlugin(id); });
    calls.Rethrow();
}

// By index: an enable or disable entry may cause aircraft plugins to be loaded or unloaded.
void AVSKEnableACFPlugins() {
    LastCalls calls;
    for (std::size_t i = 0; i < gCurrentAircraftPluginIDS.size(); ++i)
        calls.Make([i] { AVSKEnablePlugin(gCurrentAircraftPluginIDS[i]); });
    calls.Rethrow();
}

void AVSKDisableACFPlugins() {
    LastCalls calls;
    for (std::size_t i = 0; i < gCurrentAircraftPluginIDS.size(); ++i)
        calls.Make([i] { AVSKDisablePlugin(gCurrentAircraftPluginIDS[i]); });
    calls.Rethrow();
}

void AVSKReloadPlugins() { gScheduleReload = true; }

void AVSKReloadPluginsInternal() {
    static bool reloading = false;
    const Life life;
    // Re-entered from a plugin's last call, or shut down: the request stands until the next pass.
    if (reloading || !life.MayLoad())
        return;
    const AVSKScopedValue flagged(reloading, true);
    gScheduleReload = false;
    LastCalls calls;
    const auto step = [&life, &calls](auto call) {
        if (!life.IsOver())
            calls.Make(call);
    };
    step(AVSKDisableAllPlugins);
    step(AVSKUnloadAcfPlugin);
    step(AVSKUnloadPlugins);
    step([] {
        if (AVSKHostHasMessages(gHooks))
            gHooks->showMessage("Please place your new plugin in the plugins folder.",
                                "I will then reload all plugins.", "", "");
    });
    char hostFolder[1024] = ""; // twice the 512 bytes that the host is promised
    step([&hostFolder] { gHooks->getSystemPath(hostFolder); });
    hostFolder[sizeof hostFolder - 1] = '\0';
    step([&hostFolder] { AVSKFindAndLoadPlugins(hostFolder); });
    std::string folder;
    bool hasFolder = false;
    step([&folder, &hasFolder] { hasFolder = UsersAircraftFolder(folder); });
    if (hasFolder)
        step([&folder] { AVSKFindAndLoadAcfPlugins(folder.c_str()); });
    step(AVSKEnableAllPlugins);
    calls.Rethrow();
}
