// The puppets' entry points and callbacks. Each checks that the library may call
// it now, then acts as the input says.
#include "Puppets.h"

// Replaces the loader and the folder listings; the rest of the platform is the real code.
#define AVSKLoadDLL SystemLoadDLL
#define AVSKUnloadDLL SystemUnloadDLL
#define AVSKFindSymbol SystemFindSymbol
#define AVSKFetchDirectoryContents SystemFetchDirectoryContents
#include "AVSKPlatform.cpp"
#undef AVSKLoadDLL
#undef AVSKUnloadDLL
#undef AVSKFindSymbol
#undef AVSKFetchDirectoryContents

#include <cmath>
#include <cstring>

namespace {

// Counts the call, checks it, and returns the plugin whose entry point is called.
Incarnation &EntryOf(const char *entry) {
    ++gCounters.callbacks;
    TRACE("%s of file %d", entry, gFuzz.file);
    Incarnation *who = IncarnationOf(AVSKGetMyID());
    REQUIRE(who, "%s of file %d is called while %d is dispatched", entry, gFuzz.file, AVSKGetMyID());
    REQUIRE(who->file == gFuzz.file, "%s of file %d is called on the account of file %d", entry, gFuzz.file, who->file);
    REQUIRE(!who->record->unloaded, "%s of plugin %d is called after it was unloaded", entry, who->id);
    return *who;
}

void ActInEntry() { ActInCallback(8); }

// An exception whose type and destructor belong to a file.
struct Own {
    Own() : file(gFuzz.file), mapping(gFuzz.files[file].mapping) {}
    Own(const Own &) = default;
    Own &operator=(const Own &) = delete;
    ~Own() {
        REQUIRE(gFuzz.files[file].mapped && gFuzz.files[file].mapping == mapping,
                "file %d is unmapped before an exception of its own is destroyed", file);
    }
    const int file;
    const int mapping;
};

int OnStart(char *name, char *signature, char *description) {
    ++gCounters.starts;
    const int file = gFuzz.file;
    TRACE("start of file %d", file);
    Incarnation &who = Begin(file);
    std::snprintf(name, AVSK_TEXT_SIZE, "Puppet %d", file);
    std::strcpy(description, "a puppet");
    const int kind = gFuzz.in.Below(16);
    if (kind != 14) // 14: an empty signature, 13: possibly another plugin's
        std::snprintf(signature, AVSK_TEXT_SIZE, "fuzz.%d", kind == 13 ? gFuzz.in.Below(kPuppets) : file);
    ActInEntry();
    who.accepted = kind != 15;
    gFuzz.files[file].kept |= !who.accepted;
    return who.accepted;
}

void OnStop() {
    Incarnation &who = EntryOf("stop");
    REQUIRE(!who.stopped, "plugin %d is stopped twice", who.id);
    who.stopped = true;
    ActInEntry();
}

int OnEnable() {
    Incarnation &who = EntryOf("enable");
    REQUIRE(!who.record->enabled, "plugin %d is enabled while it is", who.id);
    REQUIRE(!who.enabling, "plugin %d is enabled while it is being enabled", who.id);
    who.asked = true;
    const AVSKScopedValue enabling(who.enabling, true);
    ActInEntry();
    return who.enabled = !gFuzz.in.Rarely(16);
}

void OnDisable() {
    Incarnation &who = EntryOf("disable");
    REQUIRE(!who.record->enabled, "plugin %d still counts as enabled in its disable call", who.id);
    REQUIRE(who.enabled || !who.record->enableFunc, "plugin %d is disabled, which was not enabled", who.id);
    who.enabled = false;
    ActInEntry();
}

void OnMessage(int sender, int message, void *parameter) {
    const Incarnation &who = EntryOf("message");
    REQUIRE(who.record->enabled, "plugin %d, disabled, hears message %d", who.id, message);
    const int from = message >= 1000 ? *static_cast<const int *>(parameter) : AVSK_PLUGIN_AERIVO;
    REQUIRE(sender == from, "message %d of plugin %d comes from %d", message, from, sender);
    ActInEntry();
}

// ---- The files and the simulated system loader

// The plugin files: one loose; folders with the first name that the loader tries,
// the second, or both; two plugins of the aircraft; one of a scenery.
struct Place {
    const char *folder;
    const char *entry; // in the folder: a file, or a plugin's own folder
    const char *path;
};
constexpr Place kPlaces[kPuppets] = {
    {"/Resources/plugins", "p0.avp", "/Resources/plugins/p0.avp"},
    {"/Resources/plugins", "p1", "/Resources/plugins/p1/32/lin.avp"},
    {"/Resources/plugins", "p1", "/Resources/plugins/p1/lin.avp"},
    {"/Resources/plugins", "PluginAdmin", "/Resources/plugins/PluginAdmin/lin.avp"},
    {"/Aircraft/a/plugins", "p4", "/Aircraft/a/plugins/p4/lin.avp"},
    {"/Aircraft/a/plugins", "p5", "/Aircraft/a/plugins/p5/32/lin.avp"},
    {"/Scenery/s/plugins", "p6", "/Scenery/s/plugins/p6/lin.avp"},
    {"/Resources/plugins", "p7", "/Resources/plugins/p7/lin.avp"},
};

struct Entry {
    const char *name;
    void *(*of)(int file);
};
template <auto kTarget>
void *EntryIn(int file) {
    return reinterpret_cast<void *>(OfFile<InFiles<kTarget>>(file));
}
constexpr Entry kEntries[] = {
    {"AVPluginStart", EntryIn<OnStart>},
    {"AVPluginStop", EntryIn<OnStop>},
    {"AVPluginEnable", EntryIn<OnEnable>},
    {"AVPluginDisable", EntryIn<OnDisable>},
    {"AVPluginReceiveMessage", EntryIn<OnMessage>},
};

int IndexOf(const File &file) { return static_cast<int>(&file - gFuzz.files); }

// Acts as a constructor or destructor of a file. No exception leaves it.
void ActInLoader(File &file) {
    const InFile call(IndexOf(file));
    const int id = AVSKGetMyID();
    REQUIRE(id != AVSK_PLUGIN_AERIVO, "a constructor of file %d runs on the host's account", gFuzz.file);
    bool nobodys = false;
    Incarnation *who = id == NO_PLUGIN_ID ? nullptr : &Begin(gFuzz.file);
    if (who && who->record->unloaded)
        who->settled = gFuzz.reports + 1;
    const AVSKScopedValue running(who ? who->inLoader : nobodys, true);
    file.kept |= !(file.entries & kStartEntry); // what it registers passes to the next plugin with its ID
    Catching([] { ActInCallback(256); });
}

} // namespace

InFile::InFile(int index) : previous(std::exchange(gFuzz.file, index)), mapping(gFuzz.files[index].mapping) {
    REQUIRE(gFuzz.files[index].mapped, "code of file %d is called, which is not mapped", index);
    ++gFuzz.files[index].underWay;
}

InFile::~InFile() {
    File &file = gFuzz.files[gFuzz.file];
    REQUIRE(file.mapped && file.mapping == mapping, "a call returns to file %d, which was unmapped", gFuzz.file);
    --file.underWay;
    gFuzz.file = previous;
}

void ThrowOwn() { throw Own(); }

void *AVSKLoadDLL(const char *path) {
    int index = 0;
    while (index < kPuppets && std::strcmp(kPlaces[index].path, path) != 0)
        ++index;
    if (index == kPuppets)
        return nullptr;
    File &file = gFuzz.files[index];
    file.tried = true;
    file.entries = kAllEntries;
    const int fault = file.mapped ? 0 : gFuzz.in.Below(64);
    if (fault == 63) { // loading fails
        AVSKDebugString("dlerror:a reason\n");
        return nullptr;
    }
    if (fault == 62)
        file.entries &= ~kStartEntry;
    else if (fault > 58)
        file.entries &= gFuzz.in.Byte() | kStartEntry;
    if (file.mapped++ == 0) {
        ++file.mapping;
        ActInLoader(file);
    }
    return &file;
}

void AVSKUnloadDLL(void *handle) {
    File &file = *static_cast<File *>(handle);
    const int index = IndexOf(file);
    if (file.mapped == 1)
        ActInLoader(file);
    if (--file.mapped > 0)
        return;
    REQUIRE(file.underWay == 0, "file %d is unmapped while its code is on the stack", index);
    for (const Incarnation *each : gFuzz.watched)
        REQUIRE(each->file != index || each->record->unloaded, "loaded plugin %d is unmapped", each->id);
}

void *AVSKFindSymbol(void *handle, const char *name, int logFailure) {
    const File &file = *static_cast<const File *>(handle);
    unsigned number = 0;
    while (std::strcmp(kEntries[number].name, name) != 0)
        ++number;
    if (file.entries >> number & 1U)
        return kEntries[number].of(IndexOf(file));
    if (logFailure)
        AVSKDebugString("dlerror:a reason\n");
    return nullptr;
}

void AVSKFetchDirectoryContents(const char *path, const char *pattern, std::vector<std::string> &out) {
    const bool wantFolders = std::strcmp(pattern, "DIR") == 0;
    for (const Place &each : kPlaces)
        if (std::strcmp(each.folder, path) == 0 && wantFolders != (suffix_matches(each.entry, "*.avp") != 0) &&
            (out.empty() || out.back() != each.entry))
            out.emplace_back(each.entry);
}

// ---- Callbacks

static void OnError(const char *message) {
    ++gCounters.callbacks;
    TRACE("error of file %d: %s", gFuzz.file, message);
    const int id = AVSKGetMyID();
    const Incarnation *who = IncarnationOf(id);
    REQUIRE(gFuzz.file == (who ? who->file : kProgram) && (who || id == AVSK_PLUGIN_AERIVO),
            "error of file %d for plugin %d: %s", gFuzz.file, id, message);
    REQUIRE(!who || (who->errorSet && (who->inLoader || !who->record->unloaded)),
            "error of plugin %d, which wants none: %s", id, message);
    ActInCallback(24);
}

AVSKError_f ErrorCallback(int file) { return OfFile<InFiles<OnError>>(file); }

void CheckLoop(const Registration &r, float total, int counter) {
    const FlightPass &pass = gFuzz.pass;
    REQUIRE(r.a == pass.phase, "a flight loop of phase %d is called in a pass of %d", r.a, pass.phase);
    REQUIRE(r.serial < pass.serial, "a flight loop is called in the pass in which it was created");
    REQUIRE(std::memcmp(&total, &pass.now, sizeof total) == 0 || (std::isnan(total) && std::isnan(pass.now)),
            "a flight loop hears of the time %g at %g", total, pass.now);
    REQUIRE(counter == AVSKGetCycleNumber(), "a flight loop hears of pass %d in %d", counter, AVSKGetCycleNumber());
}

void CheckCamera(const Registration &r, const AVSKCameraPosition *position, int isLosingControl) {
    REQUIRE(&r == gFuzz.camera, "the camera is asked of a plugin without control");
    REQUIRE(AVSKIsCameraBeingControlled(nullptr), "the camera is asked of a plugin when nobody has control");
    REQUIRE(!position == (isLosingControl != 0), "losing control %d, with a position or none", isLosingControl);
}
