#include "Model.h"

#include "AVSKDisplay.h"
#include "AVSKModules.h"

#include <algorithm>

Fuzz &gFuzz = *new Fuzz;
Counters gCounters = {};

const bool kTrace = std::getenv("AVSK_FUZZ_TRACE") != nullptr;

const char *NameOf(Kind kind) {
#define FUZZ_NAME(kind, name) name,
    static const char *const names[] = {FUZZ_KINDS(FUZZ_NAME)};
    return names[static_cast<int>(kind)];
}

Incarnation *IncarnationOf(int id) {
    const PluginRecord *record = PluginAt(id);
    if (!record || id >= static_cast<int>(gFuzz.latest.size()))
        return nullptr;
    Incarnation *who = gFuzz.latest[static_cast<std::size_t>(id)];
    return who && who->record.get() == record ? who : nullptr;
}

Incarnation &Begin(int file) {
    const int id = AVSKGetMyID();
    if (Incarnation *begun = IncarnationOf(id)) { // by its constructors
        REQUIRE(begun->file == file, "file %d starts as plugin %d of file %d", file, id, begun->file);
        return *begun;
    }
    REQUIRE(id > AVSK_PLUGIN_AERIVO && id < AVSKCountPlugins(), "file %d starts as plugin %d", file, id);
    REQUIRE(!AVSKIsPluginEnabled(id), "file %d is enabled before it starts", file);
    Incarnation &who = gFuzz.incarnations.emplace_back();
    who.file = file;
    who.id = id;
    who.serial = ++gFuzz.serial;
    who.entries = gFuzz.files[file].entries;
    who.record = gAllPlugins[static_cast<unsigned>(id)];
    gFuzz.latest.resize(std::max<std::size_t>(gFuzz.latest.size(), static_cast<std::size_t>(id) + 1));
    Incarnation *&latest = gFuzz.latest[static_cast<std::size_t>(id)];
    if (latest)
        latest->heir = &who;
    latest = &who;
    gFuzz.watched.push_back(&who);
    return who;
}

Registration *Register(Kind kind) {
    if (gFuzz.registrations.size() == kMaxRegistrations)
        return nullptr;
    const int owner = AVSKGetMyID();
    const Incarnation *who = IncarnationOf(owner);
    REQUIRE(owner <= 0 || who, "plugin %d is dispatched and was never started", owner);
    Registration &added =
        gFuzz.registrations.emplace_back(Registration{kind, owner, who, who ? who->file : kProgram, ++gFuzz.serial});
    gFuzz.Of(kind).push_back(&added);
    return &added;
}

Status StatusOf(const Registration &registration) {
    if (registration.removed && !registration.revived)
        return Status::Gone;
    const Incarnation *who = registration.who;
    if (!who)
        return registration.owner == AVSK_PLUGIN_AERIVO ? Status::Live : Status::Gone;
    if (!who->record->unloaded) // it may be in its tear-down, which is unknown without a stop entry
        return who->stopped || !(who->entries & kStopEntry) ? Status::Limbo : Status::Live;
    // The library removes what destructors registered only after they returned.
    if (who->inLoader || gFuzz.reports < who->settled)
        return Status::Limbo;
    if (who->accepted || registration.kind == Kind::Load)
        return Status::Gone;
    for (const Incarnation *heir = who->heir; heir; heir = heir->heir)
        if (heir->accepted && heir->record->unloaded)
            return Status::Gone;
    return Status::Limbo;
}

Registration *Pick(Kind kind) {
    const auto &all = gFuzz.Of(kind);
    if (all.empty())
        return nullptr;
    // Counts from the latest: zero bytes, as short inputs yield, pick what was just registered.
    return all[all.size() - 1 - static_cast<std::size_t>(gFuzz.in.Byte()) % all.size()];
}

Registration *ByHandle(Kind kind, const void *handle) {
    const auto &all = gFuzz.Of(kind);
    const auto found = std::find_if(all.rbegin(), all.rend(), [&](const auto *each) { return each->handle == handle; });
    return found == all.rend() ? nullptr : *found;
}

Registration *ByRefcon(const void *refcon) {
    const auto offset =
        reinterpret_cast<std::uintptr_t>(refcon) - reinterpret_cast<std::uintptr_t>(gFuzz.registrations.data());
    const std::size_t index = offset / sizeof(Registration);
    if (offset % sizeof(Registration) != 0 || index >= gFuzz.registrations.size())
        return nullptr;
    return &gFuzz.registrations[index];
}

Registration &CheckCall(void *refcon, Kind kind) {
    ++gCounters.callbacks;
    TRACE("%s called", NameOf(kind));
    Registration *found = ByRefcon(refcon);
    REQUIRE(found, "a %s is called with a refcon of another run, %p", NameOf(kind), refcon);
    const Registration &r = *found;
    REQUIRE(r.kind == kind, "a %s is called with the refcon of a %s", NameOf(kind), NameOf(r.kind));
    REQUIRE(r.file == gFuzz.file, "a %s of file %d is called in file %d", NameOf(kind), r.file, gFuzz.file);
    if (kind == Kind::Feature) // runs as the caller, whose own calls may change the dispatched plugin
        return *found;
    const int self = AVSKGetMyID();
    REQUIRE(self == r.owner, "a %s of plugin %d is called as plugin %d", NameOf(kind), r.owner, self);
    REQUIRE(r.owner != NO_PLUGIN_ID, "a %s of nobody is called", NameOf(kind));
    REQUIRE(self == AVSK_PLUGIN_AERIVO || AVSKIsPluginEnabled(self), "a %s of %d, disabled, is called", NameOf(kind),
            self);
    REQUIRE(StatusOf(r) != Status::Gone, "a %s of plugin %d is called after its removal", NameOf(kind), self);
    return *found;
}

void CheckQuiet() {
    ++gFuzz.reports;
    REQUIRE(AVSKGetMyID() == AVSK_PLUGIN_AERIVO, "between hooks %d is dispatched, not the host", AVSKGetMyID());
    REQUIRE(gFuzz.file == kProgram, "file %d's code is still on the stack", gFuzz.file);
    REQUIRE(gCallFlags.count == std::max<std::size_t>(gAllPlugins.size(), 1), "%u flags", gCallFlags.count);
    for (unsigned id = 0; id < gAllPlugins.size(); ++id) {
        REQUIRE(gAllPlugins[id]->id == static_cast<int>(id), "the record at %u has ID %d", id, gAllPlugins[id]->id);
        REQUIRE((gCallFlags.enabled[id] != 0) == gAllPlugins[id]->enabled, "plugin %u: flag and record differ", id);
    }
    std::erase_if(gFuzz.watched, [](const Incarnation *each) {
        const PluginRecord &record = *each->record;
        if (record.unloaded) {
            REQUIRE(!record.enabled, "plugin %d of file %d is unloaded and enabled", each->id, each->file);
            return true;
        }
        REQUIRE(PluginAt(each->id) == &record, "plugin %d left the registry but is loaded", each->id);
        REQUIRE(each->enabled == record.enabled || !record.enableFunc || !record.disableFunc,
                "plugin %d: enabled is %d, its calls say %d", each->id, record.enabled, each->enabled);
        return false;
    });
}

void CheckAfterStart() {
    constexpr int installed[] = {0, 1, 3, 7};
    for (const int file : installed)
        REQUIRE(gFuzz.files[file].tried, "file %d was not loaded", file);
    for (const Incarnation *each : gFuzz.watched)
        REQUIRE(each->asked || each->record->unloaded || !each->record->enableFunc,
                "plugin %d of file %d was not asked to be enabled", each->id, each->file);
}

void CheckAfterShutdown() {
    REQUIRE(AVSKCountPlugins() == 0, "%d plugins are left after the shutdown", AVSKCountPlugins());
    constexpr bool (*holds[])(int) = {CommandsHold, DisplayHolds, ProcessingHolds, CameraHolds, MenusHold,
                                      PlanesHold,   DataRefsHold, SharedDataHolds, SceneryHolds};
    std::vector<bool> inherited(gFuzz.latest.size());
    for (const Incarnation &each : gFuzz.incarnations) {
        REQUIRE(each.record->unloaded, "plugin %d of file %d was not unloaded by the shutdown", each.id, each.file);
        if (!each.accepted)
            inherited[static_cast<std::size_t>(each.id)] = true;
    }
    for (std::size_t id = 1; id < inherited.size(); ++id)
        for (unsigned module = 0; !inherited[id] && module < std::size(holds); ++module)
            REQUIRE(!holds[module](static_cast<int>(id)), "module %u still holds something of plugin %zu", module, id);
    AVSKWindowCallbackRecord::ForEach([&](const AVSKWindowCallbackRecord *window) { // also those that are in no walk
        REQUIRE(window->owner <= 0 || inherited[static_cast<std::size_t>(window->owner)],
                "a window of plugin %d is left", window->owner);
    });
    for (int index = 0; index < kPuppets; ++index)
        REQUIRE(gFuzz.files[index].mapped == 0 || gFuzz.files[index].kept, "file %d is still mapped", index);
}
